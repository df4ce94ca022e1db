// Text in files.
//
//   NSError error = nullptr;
//   if (!writeToURL(letter, url, true, NSUTF8StringEncoding, &error)) report(error);
//
// What fails answers false or nil and puts an error into the slot, unless it is null: see
// FoundationErrors.h. Any thread.
#pragma once

#include <Brindle/Platform/FoundationErrors.h>
#include <Brindle/Platform/NSURL.h>

namespace brindle {

/// Writes the text to a file, which is made or replaced; atomically through another file beside it.
/// False when that fails, when the text cannot be encoded, and for nil.
inline bool writeToFile(const NSString& string, const NSString& path, bool atomically,
                        NSStringEncoding encoding, NSError* error) {
  return send<"writeToFile:atomically:encoding:error:", bool>(string, path, atomically, encoding,
                                                              error);
}
/// The same for a file URL. Others fail.
inline bool writeToURL(const NSString& string, const NSURL& url, bool atomically,
                       NSStringEncoding encoding, NSError* error) {
  return send<"writeToURL:atomically:encoding:error:", bool>(string, url, atomically, encoding,
                                                             error);
}
/// The text of a file; nil when it cannot be read, or is no text in the encoding.
inline NSString stringWithContentsOfFile(const NSString& path, NSStringEncoding encoding,
                                         NSError* error) {
  return send<"stringWithContentsOfFile:encoding:error:", NSString>(NSString::class_(), path,
                                                                    encoding, error);
}

}  // namespace brindle
