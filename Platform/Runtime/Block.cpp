#include <Brindle/Platform/Block.h>

#include <cstdio>
#include <cstdlib>

#include <Brindle/Platform/Definition.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace detail {
namespace {

// The lambda stands behind the record, at the next place that suits every alignment.
constexpr std::size_t kLambdaOffset = (sizeof(BlockRecord) + alignof(std::max_align_t) - 1) /
                                      alignof(std::max_align_t) * alignof(std::max_align_t);

}  // namespace

BlockRecord* allocateBlock(BlockInvoke invoke, const BlockOperations* operations) {
  static const std::uint32_t birth = realized(blockClassRecord())->number << kBirthShift;
  void* memory = std::malloc(kLambdaOffset + operations->size);  // NOLINT(*-no-malloc)
  if (memory == nullptr) throw std::bad_alloc();
  auto* block = ::new (memory) BlockRecord(blockClassRecord(), 1, invoke, operations,
                                           static_cast<char*>(memory) + kLambdaOffset);
  block->flags.store(birth, std::memory_order_relaxed);
  return block;
}

void freeUnfinishedBlock(BlockRecord* block) noexcept { std::free(block); }  // NOLINT

ClassRecord* blockClassRecord() noexcept { return &NSBlock::classPair.cls; }

ObjectRecord* copyStackBlock(ObjectRecord* record) {
  auto* block = static_cast<BlockRecord*>(record);
  if (block->operations->copy == nullptr) {
    raise("NSInvalidArgumentException",
          "a block whose lambda can only be moved was kept: make it with Block(std::move(lambda))");
  }
  BlockRecord* copy = allocateBlock(block->invoke, block->operations);
  try {
    block->operations->copy(copy->lambda, block->lambda);
  } catch (...) {
    freeUnfinishedBlock(copy);
    throw;
  }
  return copy;
}

void raiseNilBlock() { raise("NSInvalidArgumentException", "a nil block was called"); }

void stopForWrongBlockTypes(const char* wanted, const char* found) {
  std::fprintf(stderr, "brindle: a block of the types %s was called with the types %s\n", found,
               wanted);
  std::abort();
}

}  // namespace detail

namespace {

constexpr MethodDefinition kMethods[] = {
    classMethod<"allocWithZone:">([](const Class&, NSZone*) -> id {
      detail::raise("NSInvalidArgumentException", "a block is made from a lambda, not by alloc");
    }),
    // Owning a block on the stack makes a heap copy; a heap block is retained.
    method<"copy">([](const NSBlock& self) { return self; }),
    method<"copyWithZone:">([](const NSBlock& self, NSZone*) { return self; }),
    // The same, for lambdas that take and answer nothing.
    method<"invoke">([](const NSBlock& self) { uncheckedCast<Block<void()>>(self)(); }),
};

// What a block record adds to an object. The lambda is destroyed with it, as fields are, so that a
// raise out of the end of something captured is treated as everywhere.
struct Code {
  detail::BlockInvoke invoke;
  const detail::BlockOperations* operations;
  void* lambda;
};
static_assert(sizeof(detail::BlockRecord) == sizeof(ObjectRecord) + sizeof(Code));

constexpr FieldsDefinition kFields{sizeof(Code), alignof(Code),
                                   [](void* memory) { ::new (memory) Code{}; },
                                   [](void* memory) {
                                     const Code& code = *static_cast<Code*>(memory);
                                     if (code.operations != nullptr)
                                       code.operations->destroy(code.lambda);
                                   }};

constexpr ClassDefinition kDefinition{.name = "NSBlock", .methods = kMethods, .fields = kFields};

}  // namespace

constinit ClassPair<NSBlock> NSBlock::classPair{kDefinition};

}  // namespace brindle
