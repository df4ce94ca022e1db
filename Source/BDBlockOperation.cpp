#include <Brindle/BDBlockOperation.h>

#include <cstddef>

#include <Brindle/Platform/Definition.h>

#include "Source/Internal/AtomicField.h"

namespace brindle {
namespace {

struct Fields {
  internal::AtomicField<Block<void()>> executionBlock;
  internal::AtomicField<Block<void()>> cancelBlock;
};
Fields& fields(const BDBlockOperation& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"blockOperationWithBlock:">(
        [](const ClassOf<BDBlockOperation>& self, const Block<void()>& block) {
          return self->alloc()->initWithBlock(block);
        }),
    classMethod<"blockOperationWithBlock:cancel:">(
        [](const ClassOf<BDBlockOperation>& self, const Block<void()>& block,
           const Block<void()>& cancel) { return self->alloc()->initWithBlock(block, cancel); }),
    method<"initWithBlock:">([](const BDBlockOperation& self, const Block<void()>& block) {
      return self->initWithBlock(block, nullptr);
    }),
    method<"initWithBlock:cancel:">([](const BDBlockOperation& self, const Block<void()>& block,
                                       const Block<void()>& cancel) -> BDBlockOperation {
      const auto operation = sendSuper<BDBlockOperation, "init", BDBlockOperation>(self);
      if (!operation) return nullptr;
      fields(operation).executionBlock.set(block);
      fields(operation).cancelBlock.set(cancel);
      return operation;
    }),
    method<"main">([](const BDBlockOperation& self) { self->executionBlock()(); }),
    method<"cancel">([](const BDBlockOperation& self) {
      sendSuper<BDBlockOperation, "cancel">(self);
      if (fields(self).cancelBlock.isSet()) self->cancelBlock()();
    }),
    method<"executionBlock">(
        [](const BDBlockOperation& self) { return fields(self).executionBlock.get(); }),
    method<"setExecutionBlock:">([](const BDBlockOperation& self, const Block<void()>& block) {
      fields(self).executionBlock.set(block);
    }),
    method<"cancelBlock">(
        [](const BDBlockOperation& self) { return fields(self).cancelBlock.get(); }),
    method<"setCancelBlock:">([](const BDBlockOperation& self, const Block<void()>& block) {
      fields(self).cancelBlock.set(block);
    }),
};
constexpr PropertyDefinition kProperties[] = {
    {"executionBlock", "T@?,C,VexecutionBlock"},
    {"cancelBlock", "T@?,C,VcancelBlock"},
};
constexpr IvarDefinition kVariables[] = {
    ivar<Block<void()>>("executionBlock", offsetof(Fields, executionBlock)),
    ivar<Block<void()>>("cancelBlock", offsetof(Fields, cancelBlock)),
};
constexpr ClassDefinition kDefinition{.name = "BDBlockOperation",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<BDBlockOperation> BDBlockOperation::classPair{kDefinition};

}  // namespace brindle
