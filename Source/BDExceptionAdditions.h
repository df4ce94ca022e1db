// The call stack of an exception as text.
//
//   catch (const RaisedException& raised) {
//     std::cerr << raised.what() << '\n' << decodedStackTrace(raised.exception());
//   }
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableString.h>

namespace brindle {

/// A line for each return address that the exception captured when it was raised, the innermost
/// first, each ending in a newline: image, symbol and address as the C library's
/// `backtrace_symbols` writes them. Symbols are there for what a library exports, and for programs
/// linked with -rdynamic. Empty when the exception was never raised; nil for nil.
inline NSMutableString decodedStackTrace(const NSException& exception) {
  return send<"decodedStackTrace", NSMutableString>(exception);
}

}  // namespace brindle
