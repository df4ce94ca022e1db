#include <Brindle/BDCleanup.h>

#include <cstddef>

#include <Brindle/Platform/Definition.h>

#include "Source/Internal/AtomicField.h"

namespace brindle {
namespace {

struct Fields {
  internal::AtomicField<Block<void()>> call;
};
Fields& fields(const BDCleanup& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"cleanup">(
        [](const ClassOf<BDCleanup>& self) -> BDCleanup { return self->alloc()->init(); }),
    classMethod<"cleanupWithCall:">(
        [](const ClassOf<BDCleanup>& self, const Block<void()>& call) -> BDCleanup {
          const BDCleanup cleanup = self->cleanup();
          cleanup->setCall(call);
          return cleanup;
        }),
    method<"capture">([](const BDCleanup&) {}),
    method<"call">([](const BDCleanup& self) { return fields(self).call.get(); }),
    method<"setCall:">([](const BDCleanup& self, const Block<void()>& call) {
      fields(self).call.set(call);  // a block on the stack is copied, a kept one never changes
    }),
    method<"dealloc">([](const BDCleanup& self) {
      // By message, so that a subclass's `call` runs. What it raises ends this method: the runtime
      // frees the object all the same.
      if (self->call()) self->call()();
      fields(self).call.set(nullptr);
      sendSuper<BDCleanup, "dealloc">(self);
    }),
};
constexpr PropertyDefinition kProperties[] = {{"call", "T@?,C,Vcall"}};
constexpr IvarDefinition kVariables[] = {ivar<Block<void()>>("call", offsetof(Fields, call))};
constexpr ClassDefinition kDefinition{.name = "BDCleanup",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<BDCleanup> BDCleanup::classPair{kDefinition};

}  // namespace brindle
