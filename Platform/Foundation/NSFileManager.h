// Files and folders by their paths.
//
//   NSFileManager files = NSFileManager::defaultManager();
//   NSError error = nullptr;
//   if (!files->moveItemAtPath(draft, letter, &error)) std::cerr << error->localizedDescription();
//
// Operations that can fail answer false or nil and put an error into the slot, unless it is null:
// see FoundationErrors.h for the codes. A path that is relative counts from the current folder; a
// tilde is a name like any other. Names whose bytes are not UTF-8 come and go through strings
// unharmed: such a byte is the lone unit U+DC00 + byte. Any thread; what is asked may have changed
// when the answer arrives. Left out: delegates, URLs in place of paths, enumerators, links' targets
// as items of their own on other volumes than files, folders, links and pipes.
#pragma once

#include <Brindle/Platform/FoundationErrors.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSDictionary.h>

namespace brindle {

extern "C" {
// Keys of an item's attributes, and what their values are.
/// One of the strings below.
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileType;
/// Numbers.
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileSize;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFilePosixPermissions;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileOwnerAccountID;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileGroupOwnerAccountID;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileReferenceCount;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileSystemNumber;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileSystemFileNumber;
/// A date.
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileModificationDate;

BRINDLE_PLATFORM_EXPORT extern const NSString NSFileTypeRegular;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileTypeDirectory;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileTypeSymbolicLink;
BRINDLE_PLATFORM_EXPORT extern const NSString NSFileTypeUnknown;
}

class NSFileManager : public Interface<NSFileManager, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSFileManager> classPair;

  /// The same one every time.
  static NSFileManager defaultManager() { return send<"defaultManager", NSFileManager>(class_()); }

  // --- What is there ---------------------------------------------------------------------------

  /// Links are followed: one that leads nowhere does not exist. False for nil.
  bool fileExistsAtPath(const NSString& path) const {
    return send<"fileExistsAtPath:", bool>(*this, path);
  }
  /// The slot says whether it is a folder; false where nothing exists.
  bool fileExistsAtPath(const NSString& path, bool* isDirectory) const {
    return send<"fileExistsAtPath:isDirectory:", bool>(*this, path, isDirectory);
  }
  bool isReadableFileAtPath(const NSString& path) const {
    return send<"isReadableFileAtPath:", bool>(*this, path);
  }
  bool isWritableFileAtPath(const NSString& path) const {
    return send<"isWritableFileAtPath:", bool>(*this, path);
  }
  bool isExecutableFileAtPath(const NSString& path) const {
    return send<"isExecutableFileAtPath:", bool>(*this, path);
  }
  /// The names in a folder, hidden ones too, in the folder's own order. Nil when it fails.
  NSArray contentsOfDirectoryAtPath(const NSString& path, NSError* error) const {
    return send<"contentsOfDirectoryAtPath:error:", NSArray>(*this, path, error);
  }
  /// Where a link leads, as it is written there. Nil when there is no link.
  NSString destinationOfSymbolicLinkAtPath(const NSString& path, NSError* error) const {
    return send<"destinationOfSymbolicLinkAtPath:error:", NSString>(*this, path, error);
  }
  /// Of a link itself, not of what it leads to. Nil when it fails.
  NSDictionary attributesOfItemAtPath(const NSString& path, NSError* error) const {
    return send<"attributesOfItemAtPath:error:", NSDictionary>(*this, path, error);
  }
  /// The bytes of a file; nil when it cannot be read.
  NSData contentsAtPath(const NSString& path) const {
    return send<"contentsAtPath:", NSData>(*this, path);
  }
  /// What people call the item: its name.
  NSString displayNameAtPath(const NSString& path) const {
    return send<"displayNameAtPath:", NSString>(*this, path);
  }

  // --- Changes ---------------------------------------------------------------------------------

  /// With the folders on the way when asked, and then true for a folder that is there already.
  /// Of the attributes, which may be nil, NSFilePosixPermissions counts, for the last folder.
  bool createDirectoryAtPath(const NSString& path, bool withIntermediateDirectories,
                             const NSDictionary& attributes, NSError* error) const {
    return send<"createDirectoryAtPath:withIntermediateDirectories:attributes:error:", bool>(
        *this, path, withIntermediateDirectories, attributes, error);
  }
  /// A file with those bytes (none for nil), in place of one that is there.
  bool createFileAtPath(const NSString& path, const NSData& contents,
                        const NSDictionary& attributes) const {
    return send<"createFileAtPath:contents:attributes:", bool>(*this, path, contents, attributes);
  }
  bool createSymbolicLinkAtPath(const NSString& path, const NSString& destination,
                                NSError* error) const {
    return send<"createSymbolicLinkAtPath:withDestinationPath:error:", bool>(*this, path,
                                                                             destination, error);
  }
  /// Moves a file, a link or a folder, to another volume too. Nothing is ever replaced: with
  /// something at the target it fails.
  bool moveItemAtPath(const NSString& path, const NSString& target, NSError* error) const {
    return send<"moveItemAtPath:toPath:error:", bool>(*this, path, target, error);
  }
  /// Copies the same, links as links; nothing is replaced.
  bool copyItemAtPath(const NSString& path, const NSString& target, NSError* error) const {
    return send<"copyItemAtPath:toPath:error:", bool>(*this, path, target, error);
  }
  /// A folder goes with all that is in it, a link alone.
  bool removeItemAtPath(const NSString& path, NSError* error) const {
    return send<"removeItemAtPath:error:", bool>(*this, path, error);
  }

  // --- The current folder, and paths as bytes --------------------------------------------------

  /// Nil when it is gone.
  NSString currentDirectoryPath() const { return send<"currentDirectoryPath", NSString>(*this); }
  /// For the whole process.
  bool changeCurrentDirectoryPath(const NSString& path) const {
    return send<"changeCurrentDirectoryPath:", bool>(*this, path);
  }
  /// The path for calls of the system, until the current pool is drained. Raises
  /// NSInvalidArgumentException for nil, the empty string and one with a zero character.
  const char* fileSystemRepresentationWithPath(const NSString& path) const {
    return send<"fileSystemRepresentationWithPath:", const char*>(*this, path);
  }
  /// The reverse. Raises NSInvalidArgumentException for null.
  NSString stringWithFileSystemRepresentation(const char* bytes, NSUInteger length) const {
    return send<"stringWithFileSystemRepresentation:length:", NSString>(*this, bytes, length);
  }
};

}  // namespace brindle
