#include "Platform/Foundation/Internal/FileContents.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>

namespace brindle::internal {
namespace {

int closed(int file, int code) {
  const bool failed = ::close(file) != 0;
  return code == 0 && failed ? errno : code;
}

// A new file in the same folder, with the permissions that new files have; negative when it fails.
int openBeside(const std::string& path, std::string& beside) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::uint64_t number = 0;
    if (::getrandom(&number, sizeof number, 0) != sizeof number) return -1;
    beside = folder + ".new-" + std::to_string(number);
    const int file = ::open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0 || errno != EEXIST) return file;
  }
  return -1;
}

int writeInPlace(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) return errno;
  return closed(file, writeAll(file, bytes));
}

int writeThroughAnother(const std::string& path, std::string_view bytes) {
  std::string beside;
  const int file = openBeside(path, beside);
  if (file < 0) return errno;
  int code = writeAll(file, bytes);
  struct stat old {};
  if (code == 0 && ::stat(path.c_str(), &old) == 0 && ::fchmod(file, old.st_mode & 07777U) != 0) {
    code = errno;
  }
  if (code == 0 && ::fsync(file) != 0) code = errno;
  code = closed(file, code);
  if (code == 0 && ::rename(beside.c_str(), path.c_str()) != 0) code = errno;
  if (code != 0) ::unlink(beside.c_str());
  return code;
}

}  // namespace

int writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return 0;
}

int readFile(const std::string& path, std::string& bytes) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return errno;
  std::array<char, 65536> buffer;
  for (;;) {
    const ssize_t count = ::read(file, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) {
      const int code = count < 0 ? errno : 0;
      ::close(file);
      return code;
    }
    bytes.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

int writeFile(const std::string& path, std::string_view bytes, bool atomically) {
  return atomically ? writeThroughAnother(path, bytes) : writeInPlace(path, bytes);
}

}  // namespace brindle::internal
