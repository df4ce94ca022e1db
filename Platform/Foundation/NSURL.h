// A URL, as RFC 3986 has them, or a reference that is relative to one. Immutable; any thread.
//
//   NSURL page = NSURL::URLWithString("https://example.org/a/b?c#d"_ns);
//   page->host();                                          // example.org
//   NSURL::URLWithString("../e"_ns, page)->absoluteString(); // https://example.org/e
//   NSURL::fileURLWithPath("/tmp/50 %"_ns)->absoluteString() // file:///tmp/50%20%25
//
// Parts are those of the absolute URL, as they are written, with their percent signs, except for
// the path and its names, which are decoded. A part that is missing is nil, which an empty one is
// not.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSURL : public Interface<NSURL, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSURL> classPair;

  /// Nil for text that is no URL: the empty string, spaces, letters outside ASCII. A nil string
  /// raises NSInvalidArgumentException.
  static NSURL URLWithString(const NSString& string) {
    return send<"URLWithString:", NSURL>(class_(), string);
  }
  /// Relative to another one, which may be nil.
  static NSURL URLWithString(const NSString& string, const NSURL& base) {
    return send<"URLWithString:relativeToURL:", NSURL>(class_(), string, base);
  }
  /// Of a path of a file; a relative one counts from the current folder. It ends in a slash when
  /// the path does, or is that of a folder. Raises NSInvalidArgumentException for nil.
  static NSURL fileURLWithPath(const NSString& path) {
    return send<"fileURLWithPath:", NSURL>(class_(), path);
  }
  /// The same without asking the file system.
  static NSURL fileURLWithPath(const NSString& path, bool isDirectory) {
    return send<"fileURLWithPath:isDirectory:", NSURL>(class_(), path, isDirectory);
  }
  NSURL initWithString(const NSString& string) const {
    return send<"initWithString:", NSURL>(*this, string);
  }
  NSURL initWithString(const NSString& string, const NSURL& base) const {
    return send<"initWithString:relativeToURL:", NSURL>(*this, string, base);
  }

  /// Resolved against the base.
  NSString absoluteString() const { return send<"absoluteString", NSString>(*this); }
  /// As it was given.
  NSString relativeString() const { return send<"relativeString", NSString>(*this); }
  /// Nil for a URL that is relative to nothing.
  NSURL baseURL() const { return send<"baseURL", NSURL>(*this); }
  NSURL absoluteURL() const { return send<"absoluteURL", NSURL>(*this); }

  NSString scheme() const { return send<"scheme", NSString>(*this); }
  NSString user() const { return send<"user", NSString>(*this); }
  NSString password() const { return send<"password", NSString>(*this); }
  /// Without the brackets of a numeric address. Nil when it is empty.
  NSString host() const { return send<"host", NSString>(*this); }
  NSNumber port() const { return send<"port", NSNumber>(*this); }
  /// Decoded, without a slash at its end (but for the root): for a file URL the file's path.
  NSString path() const { return send<"path", NSString>(*this); }
  /// Empty after a bare question mark.
  NSString query() const { return send<"query", NSString>(*this); }
  NSString fragment() const { return send<"fragment", NSString>(*this); }
  bool isFileURL() const { return send<"isFileURL", bool>(*this); }

  // --- By the names of the path, see NSPathUtilities.h -----------------------------------------

  NSString lastPathComponent() const { return send<"lastPathComponent", NSString>(*this); }
  NSString pathExtension() const { return send<"pathExtension", NSString>(*this); }
  NSArray pathComponents() const { return send<"pathComponents", NSArray>(*this); }
  /// Encodes the component. With a slash at its end there is one at the URL's.
  NSURL URLByAppendingPathComponent(const NSString& component) const {
    return send<"URLByAppendingPathComponent:", NSURL>(*this, component);
  }
  /// Ends in a slash.
  NSURL URLByDeletingLastPathComponent() const {
    return send<"URLByDeletingLastPathComponent", NSURL>(*this);
  }
};

}  // namespace brindle
