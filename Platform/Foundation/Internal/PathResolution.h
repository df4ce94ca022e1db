// Paths with the help of the file system: links and homes. Paths are bytes.
#pragma once

#include <string>

namespace brindle::internal {

/// A rooted path without links, "." and "..", as far as it exists; what does not is taken by its
/// text. Another path only loses "." and superfluous slashes.
std::string resolveLinks(const std::string& path);

/// "~" and "~account" at the start of the path as the home folders that they stand for. The path
/// itself when there is no tilde, or no such account.
std::string expandTilde(const std::string& path);

/// The reverse, for the user's home folder.
std::string abbreviateWithTilde(const std::string& path);

/// Without a tilde, ".", superfluous slashes and, in a rooted path, "..": behind a link that leads
/// elsewhere, ".." is that place's folder.
std::string standardizePath(const std::string& path);

}  // namespace brindle::internal
