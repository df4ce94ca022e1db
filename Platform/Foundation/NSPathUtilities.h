// Paths as strings, and where the folders of the user and the system are.
//
//   NSString draft = stringByAppendingPathComponent(NSTemporaryDirectory(), "draft.txt"_ns);
//   pathExtension(draft);                                   // txt
//   stringByDeletingPathExtension(lastPathComponent(draft)) // draft
//
// A path is names with "/" between them; several slashes count as one, one at the end as none. Each
// function is the message of its name; nil answers nil, a nil argument raises
// NSInvalidArgumentException. Only those that say so ask the file system. Any thread.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

/// The last name; "/" for the root, and empty for the empty string.
inline NSString lastPathComponent(const NSString& path) {
  return send<"lastPathComponent", NSString>(path);
}
/// All before the last name; "/" when only the root is left, empty for a single name.
inline NSString stringByDeletingLastPathComponent(const NSString& path) {
  return send<"stringByDeletingLastPathComponent", NSString>(path);
}
/// One path below the other. An empty one adds nothing.
inline NSString stringByAppendingPathComponent(const NSString& path, const NSString& component) {
  return send<"stringByAppendingPathComponent:", NSString>(path, component);
}
/// What stands behind the last dot of the last name; empty when there is none, and when only dots
/// or nothing stand before it: ".profile" has no extension.
inline NSString pathExtension(const NSString& path) {
  return send<"pathExtension", NSString>(path);
}
/// Without the extension and its dot.
inline NSString stringByDeletingPathExtension(const NSString& path) {
  return send<"stringByDeletingPathExtension", NSString>(path);
}
/// With a dot and the extension. The root and the empty string stay what they are.
inline NSString stringByAppendingPathExtension(const NSString& path, const NSString& extension) {
  return send<"stringByAppendingPathExtension:", NSString>(path, extension);
}
/// The root as "/", the names, and "/" once more when the path ends in a slash.
inline NSArray pathComponents(const NSString& path) {
  return send<"pathComponents", NSArray>(path);
}
/// The reverse. Raises NSInvalidArgumentException for nil.
inline NSString pathWithComponents(const NSArray& components) {
  return send<"pathWithComponents:", NSString>(NSString::class_(), components);
}
/// Whether the path begins with "/" or "~".
inline bool isAbsolutePath(const NSString& path) { return send<"isAbsolutePath", bool>(path); }
/// "~" at the start as the home folder ($HOME, otherwise the user database), "~name" as that
/// account's. Unchanged when there is no such account.
inline NSString stringByExpandingTildeInPath(const NSString& path) {
  return send<"stringByExpandingTildeInPath", NSString>(path);
}
/// With "~" for the user's home folder.
inline NSString stringByAbbreviatingWithTildeInPath(const NSString& path) {
  return send<"stringByAbbreviatingWithTildeInPath", NSString>(path);
}
/// Without a tilde, ".", superfluous slashes and, when it begins with "/", ".." (for which the file
/// system is asked where links lead).
inline NSString stringByStandardizingPath(const NSString& path) {
  return send<"stringByStandardizingPath", NSString>(path);
}
/// The same, and without links as far as the path exists. A relative path keeps its links and "..".
inline NSString stringByResolvingSymlinksInPath(const NSString& path) {
  return send<"stringByResolvingSymlinksInPath", NSString>(path);
}
/// The path for calls of the system, until the current pool is drained: UTF-8, with the bytes that
/// names have which are none (see NSFileManager.h). Raises NSInvalidArgumentException for the empty
/// string and one with a zero character. Null for nil.
inline const char* fileSystemRepresentation(const NSString& path) {
  return send<"fileSystemRepresentation", const char*>(path);
}

// --- Folders -------------------------------------------------------------------------------------

enum NSSearchPathDirectory : NSUInteger {
  NSApplicationDirectory = 1,
  NSLibraryDirectory = 5,
  NSDocumentDirectory = 9,
  NSAutosavedInformationDirectory = 11,
  NSDesktopDirectory = 12,
  NSCachesDirectory = 13,
  NSApplicationSupportDirectory = 14,
  NSDownloadsDirectory = 15,
  NSMoviesDirectory = 17,
  NSMusicDirectory = 18,
  NSPicturesDirectory = 19,
  NSSharedPublicDirectory = 21,
  NSTrashDirectory = 102,
};

using NSSearchPathDomainMask = NSUInteger;
enum : NSSearchPathDomainMask {
  NSUserDomainMask = 1,
  NSLocalDomainMask = 2,
  NSNetworkDomainMask = 4,
  NSSystemDomainMask = 8,
  NSAllDomainsMask = 0xFFFF,
};

/// Where things of a kind belong, the user's folder first; they need not exist. Library and
/// application support are $XDG_DATA_HOME, caches $XDG_CACHE_HOME, autosaved information
/// $XDG_STATE_HOME; documents, desktop, downloads and media are what `user-dirs.dirs` says. The
/// local folders are those of $XDG_DATA_DIRS but /usr/share, which is the system's. Empty for a
/// kind that has no place. Without `expandTilde` the home folder is written as "~".
BRINDLE_PLATFORM_EXPORT NSArray NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                                                    NSSearchPathDomainMask domains,
                                                                    bool expandTilde);
/// $TMPDIR, otherwise /tmp.
BRINDLE_PLATFORM_EXPORT NSString NSTemporaryDirectory();
/// $HOME, otherwise what the user database says.
BRINDLE_PLATFORM_EXPORT NSString NSHomeDirectory();
/// Of an account by its name, by the user database; nil when there is none.
BRINDLE_PLATFORM_EXPORT NSString NSHomeDirectoryForUser(const NSString& name);
/// The login name; the user's number when it has none.
BRINDLE_PLATFORM_EXPORT NSString NSUserName();

}  // namespace brindle
