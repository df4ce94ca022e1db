#include "Platform/Foundation/Internal/FileOperations.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string_view>

#include "Platform/Foundation/Internal/FileCopy.h"

namespace brindle::internal {
namespace {

int result(int status) { return status == 0 ? 0 : errno; }

bool isFolder(const std::string& path) {
  bool folder = false;
  return fileExists(path, &folder) && folder;
}

// Renames without replacing.
int renameItem(const std::string& from, const std::string& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
  // The volume cannot do both at once; or the move makes no sense, which comes out again.
  struct stat there {};
  if (::lstat(to.c_str(), &there) == 0) return EEXIST;
  return result(::rename(from.c_str(), to.c_str()));
}

// A folder that moves to another parent is written to: its ".." changes.
int renameReadOnlyFolder(const std::string& from, const std::string& to) {
  struct stat item {};
  if (::lstat(from.c_str(), &item) != 0 || !S_ISDIR(item.st_mode)) return EACCES;
  const mode_t mode = item.st_mode & 07777U;
  if ((mode & S_IWUSR) != 0 || ::chmod(from.c_str(), mode | S_IWUSR) != 0) return EACCES;
  const int code = renameItem(from, to);
  ::chmod(code == 0 ? to.c_str() : from.c_str(), mode);
  return code;
}

int moveToAnotherVolume(const std::string& from, const std::string& to) {
  const int code = copyItem(from, to);
  if (code != 0) return code;
  makeFoldersWritable(from);
  return removeItem(from);
}

}  // namespace

bool fileExists(const std::string& path, bool* isFolder) {
  struct stat item {};
  const bool exists = ::stat(path.c_str(), &item) == 0;
  if (isFolder != nullptr) *isFolder = exists && S_ISDIR(item.st_mode);
  return exists;
}

int listFolder(const std::string& path, std::vector<std::string>& names) {
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.c_str()), &::closedir);
  if (!folder) return errno;
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(folder.get());
    if (entry == nullptr) return errno;
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
}

int readLink(const std::string& path, std::string& destination) {
  for (std::size_t size = 256;; size *= 2) {
    destination.resize(size);
    const ssize_t length = ::readlink(path.c_str(), destination.data(), size);
    if (length < 0) return errno;
    if (static_cast<std::size_t>(length) == size) continue;  // perhaps cut
    destination.resize(static_cast<std::size_t>(length));
    return 0;
  }
}

int makeFolder(const std::string& path, bool withParents, std::optional<mode_t> mode) {
  if (withParents) {
    if (isFolder(path)) return 0;
    for (std::size_t end = path.find_first_not_of('/');;) {
      end = path.find('/', end);
      const std::size_t next = path.find_first_not_of('/', end);
      if (end == std::string::npos || next == std::string::npos) break;
      const std::string parent = path.substr(0, end);
      if (::mkdir(parent.c_str(), 0777) != 0) {
        const int code = errno;
        if (!isFolder(parent)) return code == EEXIST ? ENOTDIR : code;
      }
      end = next;
    }
  }
  if (::mkdir(path.c_str(), 0777) != 0) {
    const int code = errno;
    return withParents && isFolder(path) ? 0 : code;
  }
  return mode ? result(::chmod(path.c_str(), *mode & 07777U)) : 0;
}

int moveItem(const std::string& from, const std::string& to) {
  int code = renameItem(from, to);
  if (code == EACCES) code = renameReadOnlyFolder(from, to);
  return code == EXDEV ? moveToAnotherVolume(from, to) : code;
}

int removeItem(const std::string& path) {
  struct stat item {};
  if (::lstat(path.c_str(), &item) != 0) return errno;
  if (!S_ISDIR(item.st_mode)) return result(::unlink(path.c_str()));
  std::error_code code;
  std::filesystem::remove_all(path, code);
  return code.value();
}

}  // namespace brindle::internal
