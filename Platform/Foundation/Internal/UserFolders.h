// Where the user's things are: the home folder, and the folders of the XDG base directory
// specification. Variables of the environment that are empty count as unset, and a folder that is
// not given from the root on is ignored. Paths are bytes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::internal {

/// $HOME; otherwise what the user database says; otherwise "/".
std::string homeFolder();
/// Of an account by its name; nothing when there is none.
std::optional<std::string> homeFolderOf(const std::string& account);
/// The login name of the user that the process runs for; the number when it has none.
std::string userName();
/// $TMPDIR, otherwise /tmp.
std::string temporaryFolder();
/// $XDG_CONFIG_HOME, otherwise ~/.config.
std::string configurationFolder();

/// What the folders are for; the numbers are the platform's.
enum class FolderUse : std::uint32_t {
  applications = 1,
  library = 5,
  documents = 9,
  autosaved = 11,
  desktop = 12,
  caches = 13,
  applicationSupport = 14,
  downloads = 15,
  movies = 17,
  music = 18,
  pictures = 19,
  sharedPublic = 21,
  trash = 102,
};

enum FolderDomains : std::uint32_t { kUserDomain = 1, kLocalDomain = 2, kSystemDomain = 8 };

/// The folders for that use, the user's first. None for a use that has no place here. They need not
/// exist.
std::vector<std::string> foldersFor(FolderUse use, std::uint32_t domains);

/// What a `user-dirs.dirs` file says of a name such as "DOCUMENTS". `home` stands for $HOME.
std::optional<std::string> folderInUserFile(std::string_view contents, std::string_view name,
                                            const std::string& home);

}  // namespace brindle::internal
