// Paths as text: names with "/" between them. Several slashes in a row count as one, a slash at the
// end as none, and "/" itself is the root. Nothing here asks the file system.
#pragma once

#include <span>
#include <vector>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

/// Whether the path begins with "/".
inline bool isRooted(TextView path) noexcept { return !path.empty() && path[0] == u'/'; }

/// The path with single slashes, and none at its end.
Text tidyPath(TextView path);

/// The names in the path, without the root.
std::vector<TextView> namesInPath(TextView path);

/// The last name; "/" for the root, empty for the empty path.
TextView lastPathComponent(TextView path) noexcept;
/// All but the last name; "/" when only the root is left, and empty for a single name.
Text withoutLastPathComponent(TextView path);

/// What stands behind the last dot of the last name. Empty when there is none, and when nothing
/// stands before the dot (".profile"), or only dots do ("...").
TextView pathExtension(TextView path) noexcept;
/// Without the extension and its dot.
Text withoutPathExtension(TextView path);

/// One path below another.
Text joinPath(TextView path, TextView component);
/// With a dot and an extension; the root and the empty path stay what they are.
Text addPathExtension(TextView path, TextView extension);

/// The root (as "/"), the names, and "/" once more when the path ends in a slash.
std::vector<TextView> pathComponents(TextView path);
/// The reverse. An empty component counts for nothing, except at the end: there it is a slash.
Text pathFromComponents(std::span<const TextView> components);

/// Without "." and, in a rooted path, without ".." and the name before it. Other paths keep theirs.
Text resolveDots(TextView path);

}  // namespace brindle::internal
