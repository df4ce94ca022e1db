// A program linked with the platform only, which opens a plug-in that is linked with libBrindle:
// the plug-in's `awake` is called, the program's is not.
//   plain_program PLUGIN
#include <dlfcn.h>

#include <cstdio>

#include "Tests/Linking/Waker.h"

int main(int count, char** arguments) {
  if (count < 2) return 2;
  using namespace brindle;
  // Classes that were allocated before the library came, and one after.
  const int early = awakenings(makeWaker(NSObject::class_(), "Early"));
  void* handle = ::dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return 2;
  auto* plugin = reinterpret_cast<int (*)()>(::dlsym(handle, "plugin"));  // NOLINT
  const int ofPlugin = plugin();
  const int late = awakenings(makeWaker(NSObject::class_(), "Late"));
  // Now everybody sees the library's names, which does not link the program with it.
  ::dlopen(arguments[1], RTLD_NOW | RTLD_GLOBAL);
  const bool shown = ::dlsym(RTLD_DEFAULT, "__kBrindleAwakeLinkCheckingSymbol") != nullptr;
  // Code that was not asked about yet.
  const Class open = makeWaker(NSObject::class_(), "Open");
  const auto another = implementation([](const NSObject&) { awakened += 10; });
  class_replaceMethod(open, selector<"awake">(), another.implementation, another.types);
  const int afterwards = awakenings(open);
  std::printf("early %d, plug-in %d, late %d, shown %d, afterwards %d\n", early, ofPlugin, late,
              shown ? 1 : 0, afterwards);
  return early == 0 && ofPlugin == 1 && late == 0 && shown && afterwards == 0 ? 0 : 1;
}
