// What is done with files and folders as a whole. Each operation answers 0 or the `errno` of what
// failed. None of them changes the place of the process or anything else that threads share.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace brindle::internal {

/// Whether there is something at the path; links are followed, so that one that leads nowhere is
/// nothing.
bool fileExists(const std::string& path, bool* isFolder = nullptr);

/// The names in a folder in its own order, without "." and "..".
int listFolder(const std::string& path, std::vector<std::string>& names);

/// Where a link leads, as it is written in the link.
int readLink(const std::string& path, std::string& destination);

/// Makes a folder, with the permissions of `mode` or those of every new folder. `withParents` makes
/// the folders on the way too and is content with a folder that is already there.
int makeFolder(const std::string& path, bool withParents, std::optional<mode_t> mode);

/// Moves whatever is at the path, a link itself and not what it leads to. Fails with EEXIST when
/// there is something at the target. A folder that its owner may not write is moved all the same.
/// To another volume it is copied, and then removed here.
int moveItem(const std::string& from, const std::string& to);

/// Copies a file with its permissions and times, a link as a link, a folder with all that is in it.
/// Fails with EEXIST when there is something at the target. After another failure nothing is left
/// at the target.
int copyItem(const std::string& from, const std::string& to);

/// Removes a file, a link, or a folder with all that is in it.
int removeItem(const std::string& path);

}  // namespace brindle::internal
