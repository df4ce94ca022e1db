// How the runtime raises exceptions that it does not know: the floor above makes the exception
// object and throws it.
#pragma once

#include <string>

#include <Brindle/Platform/Export.h>

namespace brindle::detail {

using RaiseHandler = void (*)(const char* name, const std::string& reason);

/// Installed once by the exception class while the library starts. The handler does not return.
void setRaiseHandler(RaiseHandler handler) noexcept;

/// Raises an exception of that name. Without a handler it throws a std::runtime_error.
[[noreturn]] void raise(const char* name, const std::string& reason);

}  // namespace brindle::detail
