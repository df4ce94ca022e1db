// A program that knows nothing of the `method_swizzle` that is preloaded into it: the class
// operations and mix-ins call that one all the same.
#include <dlfcn.h>

#include <cstdio>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {
namespace {

class Counter : public Interface<Counter, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Counter> classPair;
  int one() const { return send<"one", int>(*this); }
  int two() const { return send<"two", int>(*this); }
};
constexpr MethodDefinition kCounterMethods[] = {
    method<"one">([](const Counter&) { return 1; }),
    method<"two">([](const Counter&) { return 2; }),
};
constexpr ClassDefinition kCounter{.name = "Counter", .methods = kCounterMethods};

class Doubler : public Interface<Doubler, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Doubler> classPair;
};
constexpr MethodDefinition kDoublerMethods[] = {
    method<"one">([](const Doubler& self) { return send<"mixin_one", int>(self) * 2; }),
};
constexpr ClassDefinition kDoubler{.name = "Doubler", .methods = kDoublerMethods};

}  // namespace
constinit ClassPair<Counter> Counter::classPair{kCounter};
constinit ClassPair<Doubler> Doubler::classPair{kDoubler};
namespace {

int failures = 0;

void expect(bool right, const char* what) {
  std::printf("%-64s %s\n", what, right ? "yes" : "NO");
  failures += right ? 0 : 1;
}

void run() {
  const auto* calls = static_cast<const int*>(::dlsym(RTLD_DEFAULT, "preloadedCalls"));
  expect(calls != nullptr, "a library with a method_swizzle is preloaded");
  if (calls == nullptr) return;
  const Class cls = Counter::class_();
  registerClass(Counter::classPair);
  const Counter counter = Counter::new_();

  expect(swizzle(cls, selector<"one">(), selector<"two">()) && *calls == 1,
         "swizzle:with: calls it");
  expect(counter->one() == 2 && counter->two() == 1, "and it can hand the call on");
  class_mixIn(cls, Doubler::class_());
  expect(*calls == 2, "class_mixIn calls it for what the class has already");
  expect(counter->one() == 4, "which works as ever");
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
