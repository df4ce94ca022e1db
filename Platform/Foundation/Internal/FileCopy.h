// Copies of files and folders, for moves to other volumes too.
#pragma once

#include <string>

namespace brindle::internal {

/// Makes the folder, when it is one, and all folders in it writable for their owner, as far as that
/// goes; links are not followed.
void makeFoldersWritable(const std::string& path);

}  // namespace brindle::internal
