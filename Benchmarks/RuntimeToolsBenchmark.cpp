// What changing classes costs, and what a message costs that goes through a change.
#include <string>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDSwizzle.h>
#include <benchmark/benchmark.h>

namespace brindle {
namespace {

/// Answers a number.
class Numbered : public Interface<Numbered, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Numbered> classPair;
  int number() const { return send<"number", int>(*this); }
  int other() const { return send<"other", int>(*this); }
};
constexpr MethodDefinition kMethods[] = {
    method<"number">([](const Numbered&) { return 1; }),
    method<"other">([](const Numbered&) { return 2; }),
};
constexpr ClassDefinition kNumbered{.name = "Numbered", .methods = kMethods};

}  // namespace
constinit ClassPair<Numbered> Numbered::classPair{kNumbered};
namespace {

Class newClass(Class superclass) {
  static int made = 0;
  const std::string name = "Bench" + std::to_string(++made);
  const Class cls = objc_allocateClassPair(superclass, name.c_str(), 0);
  objc_registerClassPair(cls);
  return cls;
}

Numbered newObject(Class cls) { return send<"new", Numbered>(cls); }

// --- Changing ------------------------------------------------------------------------------------

void storeSwizzle(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  const IMP code = implementation([](const Numbered&) { return 3; }).implementation;
  IMP slot = nullptr;
  for (auto _ : state) {
    class_swizzleMethodAndStore(cls, selector<"number">(), code, &slot);
    benchmark::DoNotOptimize(slot);
  }
}
BENCHMARK(storeSwizzle);

void storeSwizzleByMessage(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  const IMP code = implementation([](const Numbered&) { return 3; }).implementation;
  IMP slot = nullptr;
  for (auto _ : state) benchmark::DoNotOptimize(swizzle(cls, selector<"number">(), code, &slot));
}
BENCHMARK(storeSwizzleByMessage);

void exchange(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  for (auto _ : state) method_swizzle(cls, selector<"number">(), selector<"other">());
}
BENCHMARK(exchange);

/// Finds the function by its name each time.
void exchangeByMessage(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  for (auto _ : state) {
    benchmark::DoNotOptimize(swizzle(cls, selector<"number">(), selector<"other">()));
  }
}
BENCHMARK(exchangeByMessage);

/// Each leaves its memory behind, so there is a number of them.
void beginAndEndToken(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  for (auto _ : state) {
    SwizzleToken token =
        scopedSwizzle(cls, selector<"number">(), [](const Numbered&) { return 3; });
    token.end();
  }
}
BENCHMARK(beginAndEndToken)->Iterations(20000);

// --- Sending -------------------------------------------------------------------------------------

void sendUnchanged(benchmark::State& state) {
  const Numbered object = newObject(newClass(Numbered::class_()));
  for (auto _ : state) benchmark::DoNotOptimize(object->number());
}
BENCHMARK(sendUnchanged);

ImplementationSlot<int(Numbered)> plainSlot;

void sendSwizzled(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  swizzle(
      cls, selector<"number">(),
      [](const Numbered& self, Cmd cmd) { return plainSlot(self, cmd) + 1; }, plainSlot);
  const Numbered object = newObject(cls);
  for (auto _ : state) benchmark::DoNotOptimize(object->number());
}
BENCHMARK(sendSwizzled);

void sendSwizzledWithToken(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  ImplementationSlot<int(Numbered)> slot;
  const SwizzleToken token = scopedSwizzle(
      cls, selector<"number">(),
      [&slot](const Numbered& self, Cmd cmd) { return slot(self, cmd) + 1; }, slot);
  const Numbered object = newObject(cls);
  for (auto _ : state) benchmark::DoNotOptimize(object->number());
}
BENCHMARK(sendSwizzledWithToken);

/// The mix-in's code, which calls the former.
void sendMixedIn(benchmark::State& state) {
  const Class cls = newClass(Numbered::class_());
  const Class mixIn = newClass(NSObject::class_());
  const TypedImplementation code =
      implementation([](const NSObject& self) { return send<"mixin_number", int>(self) + 1; });
  class_addMethod(mixIn, selector<"number">(), code.implementation, code.types);
  class_mixIn(cls, mixIn);
  const Numbered object = newObject(cls);
  for (auto _ : state) benchmark::DoNotOptimize(object->number());
}
BENCHMARK(sendMixedIn);

}  // namespace
}  // namespace brindle
