#include <Brindle/Platform/Block.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// Counts what happens to a captured value.
struct Probe {
  static inline int copies = 0;
  static inline int moves = 0;
  static inline int living = 0;
  Probe() { ++living; }
  Probe(const Probe&) {
    ++copies;
    ++living;
  }
  Probe(Probe&&) noexcept {
    ++moves;
    ++living;
  }
  Probe& operator=(const Probe&) = delete;
  ~Probe() { --living; }
};

int call(const BlockArg<int(int)>& block, int argument) { return block(argument); }
Block<int(int)> keep(const BlockArg<int(int)>& block) { return block; }

static_assert(!std::is_copy_constructible_v<BlockArg<void()>>, "for parameters only");
static_assert(!std::is_move_constructible_v<BlockArg<void()>>);
static_assert(!std::is_constructible_v<Block<void()>, int>);
static_assert(!std::is_constructible_v<Block<void(int)>, decltype([](const id&) {})>);
static_assert(std::is_nothrow_move_constructible_v<Block<void()>>);

TEST(BlockTest, Tour) {
  int calls = 0;
  Block<void(const id&)> block = [&calls](const id& x) { calls += x ? 1 : 100; };
  block(NSObject::new_());
  block(nullptr);
  EXPECT_EQ(calls, 101);
  EXPECT_TRUE(isa<NSBlock>(block));
  EXPECT_EQ(call([](int n) { return n * 2; }, 21), 42);
  const Block<void(const id&)> same = block;
  EXPECT_TRUE(same == block);
}

TEST(BlockTest, AStackBlockIsCopiedNeverMovedWhenItIsKept) {
  Probe::copies = Probe::moves = 0;
  {
    const Probe probe;
    auto lambda = [probe](int n) { return n + 1; };
    Probe::copies = Probe::moves = 0;
    const Block<int(int)> first = keep(lambda);
    const Block<int(int)> second = keep(std::move(lambda));
    EXPECT_EQ(Probe::copies, 2);
    EXPECT_EQ(Probe::moves, 0);
    EXPECT_FALSE(first == second);
    EXPECT_EQ(first(1) + second(2), 5);
    EXPECT_EQ(lambda(3), 4);  // NOLINT(bugprone-use-after-move): a caller may pass it twice
  }
  EXPECT_EQ(Probe::living, 0);
}

TEST(BlockTest, CallingAStackBlockCopiesNothing) {
  const Probe probe;
  Probe::copies = Probe::moves = 0;
  const auto lambda = [probe, n = 1](int m) { return n + m; };
  Probe::copies = 0;
  EXPECT_EQ(call(lambda, 2), 3);
  EXPECT_EQ(Probe::copies + Probe::moves, 0);
}

TEST(BlockTest, EveryWayOfOwningAStackBlockMakesAHeapCopy) {
  const auto own = [](const BlockArg<int()>& block) {
    const detail::Lent<NSBlock> lent(block.record());
    const NSBlock& stack = lent.reference;
    std::vector<id> kept;
    kept.push_back(stack);
    kept.emplace_back(stack);
    const Field<NSBlock> field = stack;
    kept.push_back(field.get());
    kept.push_back(stack->copy());
    kept.push_back(send<"copyWithZone:", id>(stack, static_cast<NSZone*>(nullptr)));
    kept.push_back(stack->self());
    kept.push_back([captured = NSBlock(stack)] { return captured; }());
    const Mortal holder = Mortal::new_();
    holder->setHeld(stack);
    kept.push_back(holder->held());
    for (const id& each : kept) {
      EXPECT_NE(each.record(), block.record());
      EXPECT_NE(each.record()->count.load(), detail::kCountStackBlock);
    }
    return kept;
  };
  for (const id& each : own([text = std::string("captured text that is long")] {
         return static_cast<int>(text.size());
       })) {
    EXPECT_EQ(uncheckedCast<Block<int()>>(each)(), 26);
  }
}

TEST(BlockTest, RetainingAStackBlockByMessageAnswersTheCopyToRelease) {
  Probe::living = 0;
  const auto retainIt = [](const BlockArg<void()>& block) {
    const detail::Lent<NSBlock> lent(block.record());
    const id kept = send<"retain", id>(lent.reference);
    EXPECT_EQ((send<"retainCount", NSUInteger>(kept)), 2u);
    send<"release">(kept);
    send<"release">(lent.reference);
  };
  const Probe probe;
  retainIt([probe] {});
  EXPECT_EQ(Probe::living, 1);
}

TEST(BlockTest, CopyOfAHeapBlockIsTheSameBlock) {
  const Block<int()> block = [] { return 1; };
  const Block<int()> copy = uncheckedCast<Block<int()>>(block->copy());
  EXPECT_TRUE(copy == block);
  EXPECT_EQ(block->retainCount(), 2u);
}

TEST(BlockTest, MoveOnlyLambdas) {
  auto owned = std::make_unique<int>(7);
  const Block<int(int)> block = [owned = std::move(owned)](int n) { return *owned + n; };
  EXPECT_EQ(block(1), 8);
  EXPECT_EQ(call(block, 2), 9);
  auto onStack = [owned = std::make_unique<int>(1)](int n) { return *owned + n; };
  EXPECT_EQ(call(onStack, 2), 3) << "called, not kept";
  EXPECT_NE(raised([&] { keep(onStack); }).find("NSInvalidArgumentException"), std::string::npos);
}

TEST(BlockTest, MutableLambdasKeepTheirState) {
  const Block<int(int)> counter = [n = 0](int step) mutable { return n += step; };
  EXPECT_EQ(counter(1), 1);
  EXPECT_EQ(counter(2), 3);
  int n = 0;
  auto lambda = [&n, own = 0](int step) mutable {
    own += step;
    n = own;
    return own;
  };
  EXPECT_EQ(call(lambda, 5), 5);
  EXPECT_EQ(call(lambda, 5), 10) << "the caller's lambda itself runs";
}

TEST(BlockTest, FunctionsAndFunctionPointers) {
  struct Plain {
    static int twice(int n) { return 2 * n; }
  };
  const Block<int(int)> block = &Plain::twice;
  EXPECT_EQ(block(4), 8);
  EXPECT_EQ(call(&Plain::twice, 5), 10);
}

TEST(BlockTest, ReleasesItselfWhileItRuns) {
  Probe::living = 0;
  Block<int()> block;
  {
    const Probe probe;
    block = [&block, probe] {
      block = nullptr;
      return Probe::living;
    };
  }
  EXPECT_EQ(block(), 1) << "captured values live until the call is done";
  EXPECT_FALSE(block);
  EXPECT_EQ(Probe::living, 0);
}

TEST(BlockTest, CallingNilRaises) {
  const Block<void()> none;
  EXPECT_EQ(raised([&] { none(); }), "NSInvalidArgumentException: a nil block was called");
  EXPECT_NE(raised([] { call(nullptr, 1); }), "");
  EXPECT_FALSE(none->copy());
  EXPECT_EQ(none->retainCount(), 0u) << "messages to a nil block do nothing";
  EXPECT_FALSE(keep(nullptr));
}

TEST(BlockTest, ExceptionsPass) {
  const Block<void()> block = [] { throw std::runtime_error("from a block"); };
  EXPECT_EQ(raised([&] { block(); }), "from a block");
  EXPECT_EQ(block->retainCount(), 1u);
  EXPECT_EQ(raised([] { call([](int) -> int { throw std::runtime_error("stack"); }, 1); }),
            "stack");
}

TEST(BlockTest, ALambdaWhoseCopyThrowsLeavesNothing) {
  struct Angry {
    Angry() = default;
    Angry(const Angry&) { throw std::runtime_error("no copies"); }
  };
  struct Body {
    Angry inside;
    int operator()(int n) const { return n; }
  };
  const Body body;
  EXPECT_EQ(call(body, 1), 1);
  EXPECT_EQ(raised([&] { keep(body); }), "no copies");
  EXPECT_EQ(raised([&] { const Block<int(int)> block = body; }), "no copies");
}

TEST(BlockTest, EveryKindOfArgumentAndResult) {
  const Block<Mortal(const Mortal&, bool*, double)> block = [](const Mortal& object, bool* stop,
                                                               double d) -> Mortal {
    *stop = d > 1;
    return object;
  };
  const Mortal object = Mortal::new_();
  bool stop = false;
  EXPECT_TRUE(block(object, &stop, 1.5) == object);
  EXPECT_TRUE(stop);
  EXPECT_EQ(object->retainCount(), 1u);
  const Block<bool(NSObject*)> fails = [](NSObject* slot) {
    if (slot != nullptr) *slot = NSObject::new_();
    return false;
  };
  NSObject error;
  EXPECT_FALSE(fails(&error));
  EXPECT_TRUE(error);
  EXPECT_FALSE(fails(nullptr));
  const Block<Class(Class)> super = [](Class c) { return class_getSuperclass(c); };
  EXPECT_TRUE(super(Mortal::class_()) == NSObject::class_());
  const Block<void(const Block<int()>&)> nested = [](const Block<int()>& b) { EXPECT_EQ(b(), 3); };
  nested([] { return 3; });
}

TEST(BlockTest, ObjectsMayBeTakenByReferenceOrByValue) {
  const Mortal object = Mortal::new_();
  const Block<NSUInteger(const id&)> lent = [](const id& x) {
    return send<"retainCount", NSUInteger>(x);
  };
  const Block<NSUInteger(id)> owned = [](id x) { return send<"retainCount", NSUInteger>(x); };
  const Block<NSUInteger(const id&)> any = [](const auto& x) {
    return send<"retainCount", NSUInteger>(x);
  };
  EXPECT_EQ(lent(object), 1u);
  EXPECT_EQ(owned(object), 2u);
  EXPECT_EQ(any(object), 1u);
}

TEST(BlockTest, TheEndOfACapturedObjectMayRaise) {
  Block<void()> block = [holder = Ender::raising("captured")] {};
  EXPECT_EQ(raised([&block] { block = nullptr; }), "captured");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(BlockTest, InvokeIsPerformedByName) {
  int calls = 0;
  const Block<void()> block = [&calls] { ++calls; };
  send<"invoke">(block);
  const NSObject object = uncheckedCast<NSObject>(block);
  EXPECT_FALSE(object->performSelector(selector<"invoke">()));
  EXPECT_EQ(calls, 2);
}

TEST(BlockTest, RunsOnAnotherThreadAfterItsScope) {
  std::thread thread;
  int result = 0;
  {
    const Mortal object = Mortal::new_();
    object->setTag(9);
    const Block<void()> block = [object, &result] { result = object->tag(); };
    thread = std::thread([block] { block(); });
  }
  thread.join();
  EXPECT_EQ(result, 9);
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(BlockTest, CarriesItsEncoding) {
  using B = Block<bool(const id&, NSUInteger, bool*)>;
  const B block = [](const id&, NSUInteger, bool*) { return true; };
  const auto* record = static_cast<detail::BlockRecord*>(block.record());
  EXPECT_STREQ(record->operations->types, "c32@?0@8Q16^c24");
  EXPECT_STREQ(typeEncoding<B>(), "@?");
}

TEST(BlockTest, AllocRaises) {
  EXPECT_NE(raised([] { NSBlock::alloc(); }).find("made from a lambda"), std::string::npos);
}

#if BRINDLE_ASSERTIONS
TEST(BlockDeathTest, ABlockCalledWithOtherTypesStops) {
  const Block<int(int)> block = [](int n) { return n; };
  const auto wrong = uncheckedCast<Block<void(double)>>(block);
  EXPECT_DEATH(wrong(1.0), "a block of the types ii was called with the types vd");
}
#endif

}  // namespace
}  // namespace brindle
