// A program that knows nothing of the `method_swizzle` that is preloaded into it: the class
// operations and mix-ins call that one all the same.
#include <dlfcn.h>

#include <cstdio>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

int failures = 0;

void expect(bool right, const char* what) {
  std::printf("%-64s %s\n", what, right ? "yes" : "NO");
  failures += right ? 0 : 1;
}

/// A class with a method `one`.
template <class Body>
Class made(const char* name, Body body) {
  const Class cls = objc_allocateClassPair(NSObject::class_(), name, 0);
  const auto one = implementation(body);
  class_addMethod(cls, selector<"one">(), one.implementation, one.types);
  objc_registerClassPair(cls);
  return cls;
}

void run() {
  const auto* calls = static_cast<const int*>(::dlsym(RTLD_DEFAULT, "preloadedCalls"));
  expect(calls != nullptr, "a library with a method_swizzle is preloaded");
  if (calls == nullptr) return;
  const Class cls = made("Counter", [](const NSObject&) { return 1; });
  const auto two = implementation([](const NSObject&) { return 2; });
  class_addMethod(cls, selector<"two">(), two.implementation, two.types);
  const id counter = send<"new", id>(cls);
  const auto one = [&counter] { return send<"one", int>(counter); };

  expect(swizzle(cls, selector<"one">(), selector<"two">()) && *calls == 1,
         "swizzle:with: calls it");
  expect(one() == 2 && send<"two", int>(counter) == 1, "and it can hand the call on");
  class_mixIn(
      cls, made("Doubler", [](const NSObject& self) { return send<"mixin_one", int>(self) * 2; }));
  expect(*calls == 2, "class_mixIn calls it for what the class has already");
  expect(one() == 4, "which works as ever");
  swizzleClassMethod(cls, selector<"class">(), selector<"self">());
  expect(*calls == 3, "swizzleClassMethod:with: calls it");
  expect(method_swizzle(cls.record(), selector<"one">(), selector<"two">()) && *calls == 4,
         "a call from the program itself reaches it");
}

}  // namespace
}  // namespace brindle

int main() {
  brindle::run();
  return brindle::failures;
}
