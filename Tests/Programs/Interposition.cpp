// A program that has a `method_swizzle` of its own: the class operations and mix-ins call it, since
// they look the function up by its name at each call.
#include <dlfcn.h>

#include <cstdio>
#include <string>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSString.h>

namespace {

std::string seen;
bool passOn = false;

}  // namespace

namespace brindle {

extern "C" BRINDLE_EXPORT BOOL method_swizzle(ClassRecord* cls, SEL target, SEL replacement) {
  seen += std::string(class_getName(Class(cls))) + (cls->isMeta ? "+" : "-") + sel_getName(target) +
          "/" + sel_getName(replacement) + " ";
  if (!passOn) return NO;
  const auto next =
      reinterpret_cast<BOOL (*)(ClassRecord*, SEL, SEL)>(::dlsym(RTLD_NEXT, "method_swizzle"));
  return next(cls, target, replacement);
}

namespace {

class Greeter : public Interface<Greeter, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Greeter> classPair;
  int one() const { return send<"one", int>(*this); }
};
constexpr MethodDefinition kGreeterMethods[] = {
    method<"one">([](const Greeter&) { return 1; }),
    method<"two">([](const Greeter&) { return 2; }),
    classMethod<"one">([](const Class&) { return 10; }),
    classMethod<"two">([](const Class&) { return 20; }),
};
constexpr ClassDefinition kGreeter{.name = "Greeter", .methods = kGreeterMethods};

class Louder : public Interface<Louder, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Louder> classPair;
};
constexpr MethodDefinition kLouderMethods[] = {
    method<"two">([](const Louder& self) { return send<"mixin_two", int>(self) * 100; }),
};
constexpr ClassDefinition kLouder{.name = "Louder", .methods = kLouderMethods};

}  // namespace
constinit ClassPair<Greeter> Greeter::classPair{kGreeter};
constinit ClassPair<Louder> Louder::classPair{kLouder};
namespace {

int failures = 0;

void expect(bool right, const char* what) {
  std::printf("%-64s %s\n", what, right ? "yes" : "NO");
  failures += right ? 0 : 1;
}

void run() {
  const Class cls = Greeter::class_();
  registerClass(Greeter::classPair);
  const SEL one = selector<"one">();
  const SEL two = selector<"two">();
  const Greeter greeter = Greeter::new_();

  expect(!swizzle(cls, one, two), "its NO is the answer of swizzle:with:");
  expect(!swizzleClassMethod(cls, one, two), "and of swizzleClassMethod:with:");
  class_mixIn(cls, Louder::class_());
  expect(seen == "Greeter-one/two Greeter+one/two Greeter-two/mixin_two ", "it sees every call");
  expect(greeter->one() == 1 && send<"one", int>(cls) == 10, "and can leave things as they are");

  passOn = true;
  expect(swizzle(cls, one, two), "it can hand calls on to the library's");
  expect(greeter->one() == 2, "which does the work");
  seen.clear();
  IMP slot = nullptr;
  expect(swizzle(cls, one, implementation([](const Greeter&) { return 3; }).implementation, &slot),
         "swizzle:with:store: has nothing to do with it");
  expect(seen.empty() && greeter->one() == 3, "and works as ever");
}

}  // namespace
}  // namespace brindle

int main() {
  brindle::run();
  return brindle::failures;
}
