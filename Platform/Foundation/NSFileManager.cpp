#include <Brindle/Platform/NSFileManager.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Platform/Foundation/Internal/FileContents.h"
#include "Platform/Foundation/Internal/FileErrors.h"
#include "Platform/Foundation/Internal/FileOperations.h"
#include "Platform/Foundation/Internal/PathAccess.h"

namespace brindle {
namespace {

using detail::FileAccess;
using detail::fileNameOf;

// The path of an item itself: with a slash behind it the system would follow a link.
std::optional<std::string> itemNameOf(const NSString& path) {
  auto name = fileNameOf(path);
  while (name && name->size() > 1 && name->back() == '/') name->pop_back();
  return name;
}

bool canAccess(const NSString& path, int how) {
  const auto name = fileNameOf(path);
  return name && ::access(name->c_str(), how) == 0;
}

// The permissions that attributes speak of.
std::optional<mode_t> permissionsIn(const NSDictionary& attributes) {
  const auto number = dynCast<NSNumber>(attributes->objectForKey(NSFilePosixPermissions));
  if (!number) return std::nullopt;
  return static_cast<mode_t>(number->unsignedIntegerValue() & 07777U);
}

NSArray contentsOfFolder(const NSString& path, NSError* error) {
  const auto name = fileNameOf(path);
  std::vector<std::string> names;
  if (!name) {
    detail::failForName(error, FileAccess::read, path);
    return nullptr;
  }
  if (const int code = internal::listFolder(*name, names)) {
    detail::fail(error, FileAccess::read, code, path);
    return nullptr;
  }
  std::vector<id> strings;
  strings.reserve(names.size());
  for (const std::string& item : names) strings.emplace_back(detail::pathString(item));
  return NSArray::arrayWithObjects(strings.data(), strings.size());
}

NSString destinationOfLink(const NSString& path, NSError* error) {
  const auto name = itemNameOf(path);
  std::string destination;
  if (!name) {
    detail::failForName(error, FileAccess::read, path);
    return nullptr;
  }
  if (const int code = internal::readLink(*name, destination)) {
    detail::fail(error, FileAccess::read, code, path);
    return nullptr;
  }
  return detail::pathString(destination);
}

NSString typeOf(mode_t mode) {
  if (S_ISREG(mode)) return NSFileTypeRegular;
  if (S_ISDIR(mode)) return NSFileTypeDirectory;
  return S_ISLNK(mode) ? NSFileTypeSymbolicLink : NSFileTypeUnknown;
}

template <class T>
NSNumber number(T value) {
  return NSNumber::numberWithUnsignedLongLong(static_cast<unsigned long long>(value));
}

NSDictionary attributesOf(const NSString& path, NSError* error) {
  const auto name = itemNameOf(path);
  struct stat item {};
  if (!name) {
    detail::failForName(error, FileAccess::read, path);
    return nullptr;
  }
  if (::lstat(name->c_str(), &item) != 0) {
    detail::fail(error, FileAccess::read, errno, path);
    return nullptr;
  }
  const double changed =
      static_cast<double>(item.st_mtim.tv_sec) + static_cast<double>(item.st_mtim.tv_nsec) * 1e-9;
  return {{NSFileType, typeOf(item.st_mode)},
          {NSFileSize, number(item.st_size)},
          {NSFilePosixPermissions, number(item.st_mode & 07777U)},
          {NSFileOwnerAccountID, number(item.st_uid)},
          {NSFileGroupOwnerAccountID, number(item.st_gid)},
          {NSFileReferenceCount, number(item.st_nlink)},
          {NSFileSystemNumber, number(item.st_dev)},
          {NSFileSystemFileNumber, number(item.st_ino)},
          {NSFileModificationDate, NSDate::dateWithTimeIntervalSince1970(changed)}};
}

bool createFolder(const NSString& path, bool withParents, const NSDictionary& attributes,
                  NSError* error) {
  const auto name = fileNameOf(path);
  if (!name) return detail::failForName(error, FileAccess::write, path);
  const int code = internal::makeFolder(*name, withParents, permissionsIn(attributes));
  return code == 0 || detail::fail(error, FileAccess::write, code, path);
}

bool createFile(const NSString& path, const NSData& contents, const NSDictionary& attributes) {
  const auto name = fileNameOf(path);
  if (!name || internal::writeFile(*name, contents->view(), false) != 0) return false;
  const auto mode = permissionsIn(attributes);
  return !mode || ::chmod(name->c_str(), *mode) == 0;
}

bool createLink(const NSString& path, const NSString& destination, NSError* error) {
  const auto name = itemNameOf(path);
  const auto target = fileNameOf(destination);
  if (!name) return detail::failForName(error, FileAccess::write, path);
  if (!target) return detail::failForName(error, FileAccess::write, destination);
  if (::symlink(target->c_str(), name->c_str()) == 0) return true;
  return detail::fail(error, FileAccess::write, errno, path);
}

// Moves or copies.
bool transfer(const NSString& path, const NSString& target, NSError* error, FileAccess access,
              int (*operation)(const std::string&, const std::string&)) {
  const auto from = itemNameOf(path);
  const auto to = itemNameOf(target);
  if (!from) return detail::failForName(error, access, path);
  if (!to) return detail::failForName(error, FileAccess::write, target);
  const int code = operation(*from, *to);
  if (code == 0) return true;
  // What is missing is the item, or the folder that it should go to.
  struct stat item {};
  const bool isThere = ::lstat(from->c_str(), &item) == 0;
  if (!isThere) return detail::fail(error, access, code, path);
  return detail::fail(error, FileAccess::write, code, target);
}

bool removeItem(const NSString& path, NSError* error) {
  const auto name = itemNameOf(path);
  if (!name) return detail::failForName(error, FileAccess::write, path);
  const int code = internal::removeItem(*name);
  return code == 0 || detail::fail(error, FileAccess::write, code, path);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"defaultManager">([](const Class&) -> id {
      // Never goes: threads may ask while the process ends.
      static const NSFileManager& kManager = *new NSFileManager(NSFileManager::new_());
      return kManager;
    }),
    method<"fileExistsAtPath:">([](const NSFileManager& self, const NSString& path) {
      return self->fileExistsAtPath(path, nullptr);
    }),
    method<"fileExistsAtPath:isDirectory:">(
        [](const NSFileManager&, const NSString& path, bool* isDirectory) {
          if (isDirectory != nullptr) *isDirectory = false;
          const auto name = fileNameOf(path);
          return name && internal::fileExists(*name, isDirectory);
        }),
    method<"isReadableFileAtPath:">(
        [](const NSFileManager&, const NSString& path) { return canAccess(path, R_OK); }),
    method<"isWritableFileAtPath:">(
        [](const NSFileManager&, const NSString& path) { return canAccess(path, W_OK); }),
    method<"isExecutableFileAtPath:">(
        [](const NSFileManager&, const NSString& path) { return canAccess(path, X_OK); }),
    method<"contentsOfDirectoryAtPath:error:">(
        [](const NSFileManager&, const NSString& path, NSError* error) {
          return contentsOfFolder(path, error);
        }),
    method<"destinationOfSymbolicLinkAtPath:error:">(
        [](const NSFileManager&, const NSString& path, NSError* error) {
          return destinationOfLink(path, error);
        }),
    method<"attributesOfItemAtPath:error:">(
        [](const NSFileManager&, const NSString& path, NSError* error) {
          return attributesOf(path, error);
        }),
    method<"contentsAtPath:">([](const NSFileManager&, const NSString& path) {
      return NSData::dataWithContentsOfFile(path);
    }),
    method<"displayNameAtPath:">(
        [](const NSFileManager&, const NSString& path) { return lastPathComponent(path); }),

    method<"createDirectoryAtPath:withIntermediateDirectories:attributes:error:">(
        [](const NSFileManager&, const NSString& path, bool withParents,
           const NSDictionary& attributes,
           NSError* error) { return createFolder(path, withParents, attributes, error); }),
    method<"createFileAtPath:contents:attributes:">(
        [](const NSFileManager&, const NSString& path, const NSData& contents,
           const NSDictionary& attributes) { return createFile(path, contents, attributes); }),
    method<"createSymbolicLinkAtPath:withDestinationPath:error:">(
        [](const NSFileManager&, const NSString& path, const NSString& destination,
           NSError* error) { return createLink(path, destination, error); }),
    method<"moveItemAtPath:toPath:error:">(
        [](const NSFileManager&, const NSString& path, const NSString& target, NSError* error) {
          return transfer(path, target, error, FileAccess::write, &internal::moveItem);
        }),
    method<"copyItemAtPath:toPath:error:">(
        [](const NSFileManager&, const NSString& path, const NSString& target, NSError* error) {
          return transfer(path, target, error, FileAccess::read, &internal::copyItem);
        }),
    method<"removeItemAtPath:error:">([](const NSFileManager&, const NSString& path,
                                         NSError* error) { return removeItem(path, error); }),

    method<"currentDirectoryPath">([](const NSFileManager&) -> NSString {
      const std::unique_ptr<char, void (*)(void*)> path(::getcwd(nullptr, 0), &std::free);
      return path ? detail::pathString(path.get()) : nullptr;
    }),
    method<"changeCurrentDirectoryPath:">([](const NSFileManager&, const NSString& path) {
      const auto name = fileNameOf(path);
      return name && ::chdir(name->c_str()) == 0;
    }),
    method<"fileSystemRepresentationWithPath:">(
        [](const NSFileManager& self, Cmd cmd, const NSString& path) {
          detail::requireArgument(self, cmd.selector, path);
          return fileSystemRepresentation(path);
        }),
    method<"stringWithFileSystemRepresentation:length:">(
        [](const NSFileManager& self, Cmd cmd, const char* bytes, NSUInteger length) {
          if (bytes == nullptr) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector, "null argument");
          }
          return detail::pathString({bytes, length});
        }),
};

constexpr ClassDefinition kDefinition{.name = "NSFileManager", .methods = kMethods};

}  // namespace

constinit ClassPair<NSFileManager> NSFileManager::classPair{kDefinition};

constinit const NSString NSFileType = "NSFileType"_ns;
constinit const NSString NSFileSize = "NSFileSize"_ns;
constinit const NSString NSFilePosixPermissions = "NSFilePosixPermissions"_ns;
constinit const NSString NSFileOwnerAccountID = "NSFileOwnerAccountID"_ns;
constinit const NSString NSFileGroupOwnerAccountID = "NSFileGroupOwnerAccountID"_ns;
constinit const NSString NSFileReferenceCount = "NSFileReferenceCount"_ns;
constinit const NSString NSFileSystemNumber = "NSFileSystemNumber"_ns;
constinit const NSString NSFileSystemFileNumber = "NSFileSystemFileNumber"_ns;
constinit const NSString NSFileModificationDate = "NSFileModificationDate"_ns;
constinit const NSString NSFileTypeRegular = "NSFileTypeRegular"_ns;
constinit const NSString NSFileTypeDirectory = "NSFileTypeDirectory"_ns;
constinit const NSString NSFileTypeSymbolicLink = "NSFileTypeSymbolicLink"_ns;
constinit const NSString NSFileTypeUnknown = "NSFileTypeUnknown"_ns;

}  // namespace brindle
