#include "Platform/Foundation/Internal/FileCopy.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <vector>

#include "Platform/Foundation/Internal/FileContents.h"
#include "Platform/Foundation/Internal/FileOperations.h"

namespace brindle::internal {
namespace {

// Folders nest no deeper than paths are long, but a stack may be small.
constexpr int kMaximalDepth = 1000;

int result(int status) { return status == 0 ? 0 : errno; }

int copyBytes(int from, int to) {
  std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t count = ::read(from, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    if (count == 0) return 0;
    const int code = writeAll(to, {buffer.data(), static_cast<std::size_t>(count)});
    if (code != 0) return code;
  }
}

int setTimes(int file, const struct stat& item) {
  const std::array<timespec, 2> times{item.st_atim, item.st_mtim};
  return result(::futimens(file, times.data()));
}

int copyFile(const std::string& from, const std::string& to, const struct stat& item) {
  const int source = ::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
  if (source < 0) return errno;
  const int target = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  int code = target < 0 ? errno : 0;
  if (target >= 0) {
    code = copyBytes(source, target);
    if (code == 0) code = result(::fchmod(target, item.st_mode & 07777U));
    if (code == 0) code = setTimes(target, item);
    if (::close(target) != 0 && code == 0) code = errno;
  }
  ::close(source);
  return code;
}

int copyTree(const std::string& from, const std::string& to, int depth);

int copyFolder(const std::string& from, const std::string& to, const struct stat& item, int depth) {
  if (depth > kMaximalDepth) return ELOOP;
  // Before the copy is there, which may lie within the folder.
  std::vector<std::string> names;
  int code = listFolder(from, names);
  if (code == 0) code = result(::mkdir(to.c_str(), 0700));
  for (std::size_t i = 0; code == 0 && i < names.size(); ++i) {
    code = copyTree(from + "/" + names[i], to + "/" + names[i], depth + 1);
  }
  if (code != 0) return code;
  const int folder = ::open(to.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
  if (folder < 0) return errno;
  code = setTimes(folder, item);
  if (code == 0) code = result(::fchmod(folder, item.st_mode & 07777U));
  ::close(folder);
  return code;
}

int copyLink(const std::string& from, const std::string& to) {
  std::string destination;
  const int code = readLink(from, destination);
  return code != 0 ? code : result(::symlink(destination.c_str(), to.c_str()));
}

int copyTree(const std::string& from, const std::string& to, int depth) {
  struct stat item {};
  if (::lstat(from.c_str(), &item) != 0) return errno;
  if (S_ISDIR(item.st_mode)) return copyFolder(from, to, item, depth);
  if (S_ISLNK(item.st_mode)) return copyLink(from, to);
  if (S_ISREG(item.st_mode)) return copyFile(from, to, item);
  if (S_ISFIFO(item.st_mode)) return result(::mkfifo(to.c_str(), item.st_mode & 07777U));
  return ENOTSUP;
}

// Whether the path leads into that folder, at any depth.
bool leadsInto(const struct stat& outer, const std::string& path) {
  std::string parent = path;
  while (!parent.empty() && parent.back() == '/' && parent.size() > 1) parent.pop_back();
  const std::size_t slash = parent.rfind('/');
  parent = slash == std::string::npos ? "." : parent.substr(0, slash + 1);
  for (int depth = 0; depth < kMaximalDepth; ++depth) {
    struct stat folder {};
    if (::stat(parent.c_str(), &folder) != 0) return false;
    if (folder.st_dev == outer.st_dev && folder.st_ino == outer.st_ino) return true;
    parent += "/..";
    struct stat above {};
    if (::stat(parent.c_str(), &above) != 0) return false;
    if (above.st_dev == folder.st_dev && above.st_ino == folder.st_ino) return false;
  }
  return false;
}

}  // namespace

int copyItem(const std::string& from, const std::string& to) {
  struct stat item {};
  struct stat there {};
  if (::lstat(from.c_str(), &item) != 0) return errno;
  if (::lstat(to.c_str(), &there) == 0) return EEXIST;
  if (S_ISDIR(item.st_mode) && leadsInto(item, to)) return EINVAL;
  const int code = copyTree(from, to, 0);
  if (code != 0 && code != EEXIST) {
    makeFoldersWritable(to);
    removeItem(to);
  }
  return code;
}

void makeFoldersWritable(const std::string& path) {
  struct stat item {};
  if (::lstat(path.c_str(), &item) != 0 || !S_ISDIR(item.st_mode)) return;
  if ((item.st_mode & S_IRWXU) != S_IRWXU) ::chmod(path.c_str(), item.st_mode | S_IRWXU);
  std::vector<std::string> names;
  if (listFolder(path, names) != 0) return;
  for (const std::string& name : names) makeFoldersWritable(path + "/" + name);
}

}  // namespace brindle::internal
