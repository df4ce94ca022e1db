// Names as strings and back, the result of a comparison, and the log. Include NSString.h to use the
// strings. Everything here may be used on any thread.
#pragma once

#include <array>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/FormatArgument.h>
#include <Brindle/Platform/NSRange.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

class NSString;
class Protocol;

/// How a receiver stands to what it is compared with.
enum NSComparisonResult : NSInteger {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
};

/// The selector's text; nil for the null selector.
BRINDLE_PLATFORM_EXPORT NSString NSStringFromSelector(SEL selector);
/// The selector of that text, registered when it is new; null for nil.
BRINDLE_PLATFORM_EXPORT SEL NSSelectorFromString(const NSString& name);
/// The class's name; nil for nil.
BRINDLE_PLATFORM_EXPORT NSString NSStringFromClass(Class cls);
/// The registered class of that name; nil when there is none, and for nil.
BRINDLE_PLATFORM_EXPORT Class NSClassFromString(const NSString& name);
/// The protocol's name; nil for nil.
BRINDLE_PLATFORM_EXPORT NSString NSStringFromProtocol(const Protocol& protocol);

namespace detail {
BRINDLE_PLATFORM_EXPORT void log(const NSString& format, FormatArguments arguments);
}

/// Writes one line to standard error: time, program, process and thread, then the filled format.
/// A nil format writes nothing.
template <class... A>
void NSLog(const NSString& format, const A&... arguments) {
  const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
  detail::log(format, {list});
}

}  // namespace brindle
