#include <Brindle/Platform/NSAutoreleasePool.h>

#include <utility>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>

namespace brindle {
namespace {

struct Fields {
  std::uint64_t token = 0;
  bool isOpen = false;
};

void drain(const NSAutoreleasePool& self) {
  Fields& fields = fieldsOf<Fields>(self);
  if (std::exchange(fields.isOpen, false)) autoreleasePoolPop(fields.token);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"addObject:">(
        [](const Class&, const id& object) { send<"autorelease", id>(object); }),
    method<"init">([](const NSAutoreleasePool& self) -> id {
      fieldsOf<Fields>(self) = {autoreleasePoolPush(), true};
      return self;
    }),
    method<"drain">([](const NSAutoreleasePool& self) { drain(self); }),
    method<"dealloc">([](const NSAutoreleasePool& self) {
      drain(self);
      sendSuper<NSAutoreleasePool, "dealloc">(self);
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSAutoreleasePool", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSAutoreleasePool> NSAutoreleasePool::classPair{kDefinition};

}  // namespace brindle
