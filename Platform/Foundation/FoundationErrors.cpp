#include <Brindle/Platform/FoundationErrors.h>

#include <cerrno>
#include <system_error>

#include <Brindle/Platform/NSMutableDictionary.h>

#include "Platform/Foundation/Internal/FileErrors.h"

namespace brindle {
namespace {

NSInteger readingCode(int code) {
  switch (code) {
    case ENOENT:
      return NSFileReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileReadNoPermissionError;
    case ENAMETOOLONG:
      return NSFileReadInvalidFileNameError;
    case EFBIG:
    case EOVERFLOW:
      return NSFileReadTooLargeError;
    default:
      return NSFileReadUnknownError;
  }
}

NSInteger writingCode(int code) {
  switch (code) {
    case ENOENT:
      return NSFileNoSuchFileError;
    case EACCES:
    case EPERM:
      return NSFileWriteNoPermissionError;
    case ENAMETOOLONG:
      return NSFileWriteInvalidFileNameError;
    case EEXIST:
      return NSFileWriteFileExistsError;
    case ENOSPC:
    case EDQUOT:
      return NSFileWriteOutOfSpaceError;
    case EROFS:
      return NSFileWriteVolumeReadOnlyError;
    default:
      return NSFileWriteUnknownError;
  }
}

void put(NSError* error, NSInteger code, const NSString& path, const NSError& underlying) {
  const NSMutableDictionary info = cast<NSMutableDictionary>(NSMutableDictionary::dictionary());
  if (path) info->setObject(path, NSFilePathErrorKey);
  if (underlying) {
    info->setObject(underlying, NSUnderlyingErrorKey);
    info->setObject(
        NSString::stringWithFormat("%@: %@"_ns, path, underlying->localizedDescription()),
        NSLocalizedDescriptionKey);
  }
  *error = NSError::errorWithDomain(NSCocoaErrorDomain, code, info);
}

}  // namespace

constinit const NSString NSCocoaErrorDomain = "NSCocoaErrorDomain"_ns;

namespace detail {

bool fail(NSError* error, FileAccess access, int code, const NSString& path) {
  if (error == nullptr) return false;
  put(error, access == FileAccess::read ? readingCode(code) : writingCode(code), path,
      NSError::errorWithDomain(NSPOSIXErrorDomain, code, nullptr));
  return false;
}

bool failForName(NSError* error, FileAccess access, const NSString& path) {
  return failWithCode(
      error,
      access == FileAccess::read ? NSFileReadInvalidFileNameError : NSFileWriteInvalidFileNameError,
      path);
}

bool failWithCode(NSError* error, NSInteger code, const NSString& path) {
  if (error != nullptr) put(error, code, path, nullptr);
  return false;
}

}  // namespace detail
}  // namespace brindle
