// Whole files as bytes. Each function answers 0 or the `errno` of what failed.
#pragma once

#include <string>
#include <string_view>

namespace brindle::internal {

/// Writes all bytes to an open file.
int writeAll(int file, std::string_view bytes);

/// Reads the file to its end.
int readFile(const std::string& path, std::string& bytes);

/// Makes the file, or replaces what is in it; atomically through a file beside it, which takes its
/// place and its permissions. A link is followed, but atomically it is replaced.
int writeFile(const std::string& path, std::string_view bytes, bool atomically);

}  // namespace brindle::internal
