#include "Platform/Foundation/Internal/BundleLayout.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace brindle::internal {
namespace {

constexpr std::size_t kLargestFile = std::size_t{64} << 20U;

std::string currentFolder() {
  const std::unique_ptr<char, void (*)(void*)> folder(::getcwd(nullptr, 0), &std::free);
  return folder ? folder.get() : "/";
}

// What lies beside the folders for code within "Contents".
bool isFolderForOtherThings(std::string_view name) {
  constexpr std::string_view kOther[] = {"Resources",     "Frameworks", "SharedFrameworks",
                                         "SharedSupport", "PlugIns",    "Versions"};
  return std::find(std::begin(kOther), std::end(kOther), name) != std::end(kOther);
}

// "Current", or the last version when nothing says which is the current one.
std::string currentVersion(const std::string& versions) {
  std::string current = joined(versions, "Current");
  if (isFolder(current)) return current;
  const std::vector<std::string> names = namesIn(versions);
  for (auto name = names.rbegin(); name != names.rend(); ++name) {
    std::string folder = joined(versions, *name);
    if (isFolder(folder)) return folder;
  }
  return "";
}

std::string firstFile(std::initializer_list<std::string> paths) {
  for (const std::string& path : paths) {
    if (isFile(path)) return path;
  }
  return "";
}

std::string firstFolder(std::initializer_list<std::string> paths) {
  for (const std::string& path : paths) {
    if (isFolder(path)) return path;
  }
  return "";
}

// The names that an executable may have.
std::vector<std::string> executableNames(const BundleLayout& layout, std::string_view name) {
  if (!name.empty()) return {std::string(name)};
  const std::string own(withoutExtension(nameOf(layout.path)));
  return {own, own + ".so", "lib" + own + ".so"};
}

}  // namespace

std::string_view nameOf(std::string_view path) noexcept {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string parentOf(std::string_view path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string_view::npos || slash == 0 ? "/" : std::string(path.substr(0, slash));
}

std::string_view extensionOf(std::string_view path) noexcept {
  const std::string_view name = nameOf(path);
  const std::size_t point = name.rfind('.');
  return point == std::string_view::npos || point == 0 ? std::string_view()
                                                       : name.substr(point + 1);
}

std::string_view withoutExtension(std::string_view name) noexcept {
  const std::size_t point = name.rfind('.');
  return point == std::string_view::npos || point == 0 ? name : name.substr(0, point);
}

std::string joined(std::string_view folder, std::string_view name) {
  std::string result(folder);
  if (!result.ends_with('/')) result += '/';
  return result += name;
}

std::string absolutePath(std::string_view path) {
  std::string whole = path.starts_with('/') ? std::string(path) : joined(currentFolder(), path);
  std::string result;
  bool goesUp = false;
  for (std::size_t start = 0; start < whole.size();) {
    const std::size_t end = std::min(whole.find('/', start), whole.size());
    const std::string_view part = std::string_view(whole).substr(start, end - start);
    start = end + 1;
    if (part.empty() || part == ".") continue;
    goesUp = goesUp || part == "..";
    result += '/';
    result += part;
  }
  if (result.empty()) return "/";
  if (!goesUp) return result;
  std::string real = realPath(result);
  return real.empty() ? result : real;
}

bool isFolder(const std::string& path) noexcept {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool isFile(const std::string& path) noexcept {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string realPath(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : "";
}

std::vector<std::string> namesIn(const std::string& folder) {
  std::vector<std::string> names;
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.c_str()), &::closedir);
  if (!stream) return names;
  while (const dirent* entry = ::readdir(stream.get())) {  // NOLINT: the stream is this thread's
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string contentsOfFile(const std::string& path) {
  // A pipe would wait for its writer, so it is not opened for waiting, and then not read.
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return "";
  std::string bytes;
  struct stat status {};
  if (::fstat(file, &status) == 0 && S_ISREG(status.st_mode)) {
    char buffer[16384];
    for (;;) {
      const ssize_t count = ::read(file, buffer, sizeof buffer);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) bytes.clear();
      if (count <= 0) break;
      bytes.append(buffer, static_cast<std::size_t>(count));
      if (bytes.size() <= kLargestFile) continue;
      bytes.clear();
      break;
    }
  }
  ::close(file);
  return bytes;
}

BundleLayout layoutOf(const std::string& path) {
  BundleLayout layout{path, path, "", path, ""};
  const std::string contents = joined(path, "Contents");
  if (isFolder(contents)) {
    layout.contents = contents;
    layout.resources = joined(contents, "Resources");
    layout.infoFile =
        firstFile({joined(contents, "Info.plist"), joined(layout.resources, "Info.plist")});
    return layout;
  }
  const std::string versions = joined(path, "Versions");
  if (isFolder(versions)) layout.version = currentVersion(versions);
  const std::string& version = layout.version.empty() ? path : layout.version;
  const std::string resources =
      firstFolder({joined(path, "Resources"), joined(version, "Resources")});
  if (!resources.empty())
    layout.resources = resources;
  else if (!layout.version.empty())
    layout.resources = version;
  layout.infoFile = firstFile({joined(layout.resources, "Info.plist"), joined(path, "Info.plist"),
                               joined(version, "Info.plist")});
  return layout;
}

BundleLayout layoutOfProgram(const std::string& executable) {
  const std::string folder = parentOf(executable);
  if (nameOf(folder) == "Contents") return layoutOf(parentOf(folder));
  const std::string around = parentOf(folder);
  if (nameOf(around) == "Contents") return layoutOf(parentOf(around));
  BundleLayout layout = layoutOf(folder);
  if (layout.resources != folder || !layout.infoFile.empty()) return layout;
  const std::string share = joined(joined(around, "share"), nameOf(executable));
  if (!isFolder(share)) return layout;
  layout.resources = share;
  layout.contents = joined(joined(around, "lib"), nameOf(executable));
  layout.infoFile = firstFile({joined(share, "Info.plist")});
  return layout;
}

std::string executableIn(const BundleLayout& layout, std::string_view name) {
  if (name == "." || name == ".." || name.find('/') != std::string_view::npos ||
      name.find('\0') != std::string_view::npos) {
    return "";
  }
  std::vector<std::string> folders;
  if (layout.contents != layout.path && nameOf(layout.contents) == "Contents") {
    folders.push_back(joined(layout.contents, "Linux"));
    for (const std::string& other : namesIn(layout.contents)) {
      if (other != "Linux" && !isFolderForOtherThings(other)) {
        folders.push_back(joined(layout.contents, other));
      }
    }
    folders.push_back(layout.contents);
  }
  folders.push_back(layout.path);
  if (!layout.version.empty()) folders.push_back(layout.version);
  for (const std::string& own : executableNames(layout, name)) {
    for (const std::string& folder : folders) {
      std::string path = joined(folder, own);
      if (isFile(path)) return path;
    }
  }
  return "";
}

std::string folderIn(const BundleLayout& layout, std::string_view name) {
  std::string path = joined(layout.contents, name);
  if (layout.version.empty() || isFolder(path)) return path;
  std::string versioned = joined(layout.version, name);
  return isFolder(versioned) ? versioned : path;
}

std::vector<std::string> foldersAroundCode(const std::string& image) {
  std::vector<std::string> folders;
  const std::string folder = parentOf(image);
  const std::string around = parentOf(folder);
  if (nameOf(around) == "Contents" || nameOf(around) == "Versions") {
    folders.push_back(parentOf(around));
  }
  if (nameOf(folder) == "Contents") folders.push_back(around);
  if (!extensionOf(folder).empty() || !layoutOf(folder).infoFile.empty()) {
    folders.push_back(folder);
  }
  // A library libName.so has its bundle beside it: Name.framework, whose executable is a link to
  // it.
  const std::string_view name = nameOf(image);
  const std::size_t end = name.find(".so");
  if (name.starts_with("lib") && end != std::string_view::npos) {
    std::string framework = joined(folder, name.substr(3, end - 3)) + ".framework";
    if (isFolder(framework)) folders.push_back(std::move(framework));
  }
  return folders;
}

}  // namespace brindle::internal
