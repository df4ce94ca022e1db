#include "Platform/Foundation/Internal/UserFolders.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "Platform/Foundation/Internal/FileContents.h"

namespace brindle::internal {
namespace {

constexpr std::size_t kMaximalRecord = std::size_t{1} << 26U;

// A folder from the environment.
std::optional<std::string> variable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value != '/') return std::nullopt;
  return value;
}

// Asks the user database with more and more room; `ask(record, buffer, size, found)`.
template <class Ask, class Take>
void askAccounts(const Ask& ask, const Take& take) {
  for (std::size_t size = 1024; size <= kMaximalRecord; size *= 2) {
    std::vector<char> buffer(size);
    passwd record{};
    passwd* found = nullptr;
    const int code = ask(&record, buffer.data(), size, &found);
    if (code == ERANGE) continue;
    if (code == 0 && found != nullptr) take(*found);
    return;
  }
}

template <class Take>
void askForUser(const Take& take) {
  askAccounts([](passwd* record, char* buffer, std::size_t size,
                 passwd** found) { return ::getpwuid_r(::getuid(), record, buffer, size, found); },
              take);
}

std::string below(const std::string& folder, const char* rest) {
  return (folder == "/" ? "" : folder) + rest;
}

std::string dataFolder() {
  return variable("XDG_DATA_HOME").value_or(below(homeFolder(), "/.local/share"));
}

struct UserFolder {
  FolderUse use;
  const char* name;
  const char* otherwise;
};
constexpr UserFolder kUserFolders[] = {
    {FolderUse::documents, "DOCUMENTS", "/Documents"},
    {FolderUse::desktop, "DESKTOP", "/Desktop"},
    {FolderUse::downloads, "DOWNLOAD", "/Downloads"},
    {FolderUse::movies, "VIDEOS", "/Videos"},
    {FolderUse::music, "MUSIC", "/Music"},
    {FolderUse::pictures, "PICTURES", "/Pictures"},
    {FolderUse::sharedPublic, "PUBLICSHARE", "/Public"},
};

std::optional<std::string> folderOfUser(FolderUse use) {
  switch (use) {
    case FolderUse::applications:
      return below(dataFolder(), "/applications");
    case FolderUse::library:
    case FolderUse::applicationSupport:
      return dataFolder();
    case FolderUse::autosaved:
      return variable("XDG_STATE_HOME").value_or(below(homeFolder(), "/.local/state"));
    case FolderUse::caches:
      return variable("XDG_CACHE_HOME").value_or(below(homeFolder(), "/.cache"));
    case FolderUse::trash:
      return below(dataFolder(), "/Trash");
    default:
      break;
  }
  for (const UserFolder& folder : kUserFolders) {
    if (folder.use != use) continue;
    const std::string home = homeFolder();
    std::string contents;
    (void)readFile(below(configurationFolder(), "/user-dirs.dirs"), contents);
    return folderInUserFile(contents, folder.name, home).value_or(below(home, folder.otherwise));
  }
  return std::nullopt;
}

// Behind a folder of shared data; null for uses that only users have.
const char* placeInSharedData(FolderUse use) {
  if (use == FolderUse::applications) return "/applications";
  return use == FolderUse::library || use == FolderUse::applicationSupport ? "" : nullptr;
}

std::vector<std::string> sharedFolders() {
  const char* value = std::getenv("XDG_DATA_DIRS");
  std::string_view rest = value == nullptr ? "" : value;
  if (rest.empty()) rest = "/usr/local/share:/usr/share";
  std::vector<std::string> folders;
  while (!rest.empty()) {
    const std::string_view folder = rest.substr(0, rest.find(':'));
    rest.remove_prefix(std::min(folder.size() + 1, rest.size()));
    if (!folder.empty() && folder.front() == '/') folders.emplace_back(folder);
  }
  return folders;
}

bool isSystemFolder(std::string_view folder) {
  while (!folder.empty() && folder.back() == '/') folder.remove_suffix(1);
  return folder == "/usr/share";
}

}  // namespace

std::string homeFolder() {
  if (auto home = variable("HOME")) return *std::move(home);
  std::string home;
  askForUser([&home](const passwd& record) {
    if (record.pw_dir != nullptr) home = record.pw_dir;
  });
  return home.empty() ? "/" : home;
}

std::optional<std::string> homeFolderOf(const std::string& account) {
  std::optional<std::string> home;
  askAccounts(
      [&account](passwd* record, char* buffer, std::size_t size, passwd** found) {
        return ::getpwnam_r(account.c_str(), record, buffer, size, found);
      },
      [&home](const passwd& record) {
        if (record.pw_dir != nullptr && *record.pw_dir != '\0') home = record.pw_dir;
      });
  return home;
}

std::string userName() {
  std::string name;
  askForUser([&name](const passwd& record) {
    if (record.pw_name != nullptr) name = record.pw_name;
  });
  return name.empty() ? std::to_string(::getuid()) : name;
}

std::string temporaryFolder() { return variable("TMPDIR").value_or("/tmp"); }

std::string configurationFolder() {
  return variable("XDG_CONFIG_HOME").value_or(below(homeFolder(), "/.config"));
}

std::vector<std::string> foldersFor(FolderUse use, std::uint32_t domains) {
  std::vector<std::string> folders;
  if ((domains & kUserDomain) != 0) {
    if (auto folder = folderOfUser(use)) folders.push_back(*std::move(folder));
  }
  if (use == FolderUse::caches && (domains & kSystemDomain) != 0)
    folders.emplace_back("/var/cache");
  const char* place = placeInSharedData(use);
  if (place == nullptr) return folders;
  for (const bool system : {false, true}) {
    if ((domains & (system ? kSystemDomain : kLocalDomain)) == 0) continue;
    for (const std::string& shared : sharedFolders()) {
      if (isSystemFolder(shared) == system) folders.push_back(below(shared, place));
    }
  }
  return folders;
}

std::optional<std::string> folderInUserFile(std::string_view contents, std::string_view name,
                                            const std::string& home) {
  const std::string start = "XDG_" + std::string(name) + "_DIR=\"";
  std::optional<std::string> result;
  while (!contents.empty()) {
    std::string_view line = contents.substr(0, contents.find('\n'));
    contents.remove_prefix(std::min(line.size() + 1, contents.size()));
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with(start)) continue;
    line.remove_prefix(start.size());
    std::string folder;
    if (line.starts_with("$HOME")) {
      line.remove_prefix(5);
      if (!line.starts_with('/') && !line.starts_with('"')) continue;
      folder = home == "/" ? "" : home;
    } else if (!line.starts_with('/')) {
      continue;
    }
    std::size_t i = 0;
    for (; i < line.size() && line[i] != '"'; ++i) {
      if (line[i] == '\\' && i + 1 < line.size()) ++i;
      folder += line[i];
    }
    if (i == line.size()) continue;  // no quote at the end
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    result = folder.empty() ? "/" : folder;
  }
  return result;
}

}  // namespace brindle::internal
