// The variables of the data classes.
#pragma once

#include <string>

#include <Brindle/Platform/NSData.h>

namespace brindle::detail {

/// The bytes of a data object of any class that keeps them here.
std::string& bytesOf(const NSData& data);

/// New immutable data.
NSData makeData(std::string bytes);

}  // namespace brindle::detail
