// Preloaded into a program, its `method_swizzle` stands before the library's own: it counts the
// calls and hands them on.
#include <dlfcn.h>

#include <Brindle/Platform/Types.h>

namespace brindle {

extern "C" {
[[gnu::visibility("default")]] extern int preloadedCalls;
int preloadedCalls = 0;

[[gnu::visibility("default")]] BOOL method_swizzle(ClassRecord* cls, SEL target, SEL replacement);
BOOL method_swizzle(ClassRecord* cls, SEL target, SEL replacement) {
  ++preloadedCalls;
  const auto next =
      reinterpret_cast<BOOL (*)(ClassRecord*, SEL, SEL)>(::dlsym(RTLD_NEXT, "method_swizzle"));
  return next(cls, target, replacement);
}
}

}  // namespace brindle
