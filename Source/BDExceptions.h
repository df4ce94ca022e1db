// The names of the exceptions that tell a programming error: a broken contract of the caller's, or
// something inside that should never happen. Each name is its own text.
//
//   NSException::raise(BDInvalidArgumentException, "Invalid named range %i"_ns, 20);
//
// The library itself raises BDInvalidArgumentException and BDInternalInconsistencyException; the
// others are there for its clients. It catches nothing. Failures that can be dealt with are
// reported as NSError instead.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

extern "C" {
BRINDLE_EXPORT extern const NSString BDGenericException;
/// An index or a range beyond the end.
BRINDLE_EXPORT extern const NSString BDRangeException;
/// An operation that is not there yet.
BRINDLE_EXPORT extern const NSString BDNotImplementedException;
/// An operation that a subclass has to define.
BRINDLE_EXPORT extern const NSString BDSubclassRequiredException;
/// An argument that the operation does not take.
BRINDLE_EXPORT extern const NSString BDInvalidArgumentException;
/// A state that should not be possible.
BRINDLE_EXPORT extern const NSString BDInternalInconsistencyException;
/// An object that is there, but cannot be reached.
BRINDLE_EXPORT extern const NSString BDObjectInaccessibleException;
/// An object that is not there.
BRINDLE_EXPORT extern const NSString BDObjectNotAvailableException;
}

}  // namespace brindle
