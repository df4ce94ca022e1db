#include <Brindle/Platform/NSObjCRuntime.h>

#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <string>

#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

// "2024-11-21 06:46:01.123 program[123:456] "
std::string logPrefix() {
  timeval now{};
  ::gettimeofday(&now, nullptr);
  tm local{};
  ::localtime_r(&now.tv_sec, &local);
  char time[32];
  std::strftime(time, sizeof time, "%Y-%m-%d %H:%M:%S", &local);
  char rest[64];
  std::snprintf(rest, sizeof rest, "[%d:%d] ", ::getpid(), ::gettid());
  char fraction[8];
  std::snprintf(fraction, sizeof fraction, ".%03d", static_cast<int>(now.tv_usec / 1000) % 1000);
  return std::string(time) + fraction + " " + program_invocation_short_name + rest;
}

// One write for a whole line, so that lines of several threads do not mix.
void writeToStandardError(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(STDERR_FILENO, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace

NSString NSStringFromSelector(SEL selector) {
  return selector != nullptr ? NSString(sel_getName(selector)) : nullptr;
}

SEL NSSelectorFromString(const NSString& name) {
  return name ? sel_registerName(std::string(name).c_str()) : nullptr;
}

NSString NSStringFromClass(Class cls) { return cls ? NSString(class_getName(cls)) : nullptr; }

Class NSClassFromString(const NSString& name) {
  return name ? objc_getClass(std::string(name).c_str()) : nullptr;
}

NSString NSStringFromProtocol(const Protocol& protocol) {
  return protocol ? NSString(protocol_getName(protocol)) : nullptr;
}

void detail::log(const NSString& format, FormatArguments arguments) {
  if (!format) return;
  const std::string text(formatString(format, arguments.list));
  writeToStandardError(logPrefix() + text + (text.ends_with('\n') ? "" : "\n"));
}

}  // namespace brindle
