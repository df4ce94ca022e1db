// Codes of the platform's own errors, for those who want to know what went wrong with a file:
//
//   if (!manager->moveItemAtPath(from, to, &error) && error->code() == NSFileWriteFileExistsError)
//     askForAnotherName();
//
// Their domain is NSCocoaErrorDomain; the path lies under NSFilePathErrorKey, and under
// NSUnderlyingErrorKey an error with the system's `errno` in NSPOSIXErrorDomain.
#pragma once

#include <Brindle/Platform/NSError.h>

namespace brindle {

extern "C" {
BRINDLE_PLATFORM_EXPORT extern const NSString NSCocoaErrorDomain;
}

enum : NSInteger {
  /// Removing, moving or making something where there is nothing.
  NSFileNoSuchFileError = 4,
  NSFileReadUnknownError = 256,
  NSFileReadNoPermissionError = 257,
  /// Nil, empty, too long, or with a zero character.
  NSFileReadInvalidFileNameError = 258,
  /// A property list that is none, text that is no text in its encoding.
  NSFileReadCorruptFileError = 259,
  NSFileReadNoSuchFileError = 260,
  NSFileReadInapplicableStringEncodingError = 261,
  NSFileReadTooLargeError = 263,
  NSFileWriteUnknownError = 512,
  NSFileWriteNoPermissionError = 513,
  NSFileWriteInvalidFileNameError = 514,
  /// There is something at the target already.
  NSFileWriteFileExistsError = 516,
  /// The text has characters that the encoding has not.
  NSFileWriteInapplicableStringEncodingError = 517,
  NSFileWriteOutOfSpaceError = 640,
  NSFileWriteVolumeReadOnlyError = 642,
};

}  // namespace brindle
