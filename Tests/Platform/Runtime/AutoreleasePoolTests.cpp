#include <Brindle/Platform/AutoreleasePool.h>

#include <memory>
#include <stdexcept>
#include <thread>

#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

/// A Mortal that only pools own.
void autoreleased(int tag) {
  const Mortal object = Mortal::new_();
  object->setTag(tag);
  object->autorelease();
}

class AutoreleasePoolTest : public ::testing::Test {
 protected:
  void SetUp() override { Mortal::ended(); }
  void TearDown() override { EXPECT_EQ(Mortal::living(), 0); }
};

TEST_F(AutoreleasePoolTest, Tour) {
  Weak<Mortal> weak;
  {
    const AutoreleasePool pool;
    {
      const Mortal object = Mortal::new_();
      EXPECT_TRUE(object->autorelease() == object);
      EXPECT_EQ(object->retainCount(), 2u);
      weak = object;
    }
    EXPECT_TRUE(weak.lock());
  }
  EXPECT_FALSE(weak.lock());
}

TEST_F(AutoreleasePoolTest, DrainsTheNewestFirst) {
  {
    const AutoreleasePool pool;
    for (int tag : {1, 2, 3}) autoreleased(tag);
  }
  EXPECT_EQ(Mortal::ended(), "3 2 1 ");
}

TEST_F(AutoreleasePoolTest, NestedPoolsHoldTheirOwn) {
  const std::uint64_t outer = autoreleasePoolPush();
  autoreleased(1);
  const std::uint64_t inner = autoreleasePoolPush();
  EXPECT_NE(outer, inner);
  autoreleased(2);
  autoreleasePoolPop(inner);
  EXPECT_EQ(Mortal::ended(), "2 ");
  autoreleased(3);
  autoreleasePoolPop(outer);
  EXPECT_EQ(Mortal::ended(), "3 1 ");
}

// The pool would release memory that is gone.
TEST_F(AutoreleasePoolTest, AnObjectThatIsEndingIsNotKept) {
  const AutoreleasePool pool;
  Ender object = Ender::with([](const Ender& self) { self->autorelease(); }, 5);
  object = nullptr;
  EXPECT_EQ(Mortal::ended(), "5 ");
}

TEST_F(AutoreleasePoolTest, AnOuterPoolTakesInnerOnesAlong) {
  const std::uint64_t outer = autoreleasePoolPush();
  autoreleased(1);
  const std::uint64_t inner = autoreleasePoolPush();
  autoreleased(2);
  autoreleasePoolPop(outer);
  EXPECT_EQ(Mortal::ended(), "2 1 ");
  const std::uint64_t later = autoreleasePoolPush();
  autoreleased(3);
  autoreleasePoolPop(inner);
  autoreleasePoolPop(outer);
  EXPECT_EQ(Mortal::ended(), "") << "draining them again does nothing";
  autoreleasePoolPop(later);
  EXPECT_EQ(Mortal::ended(), "3 ");
}

TEST_F(AutoreleasePoolTest, UnknownTokensDoNothing) {
  autoreleasePoolPop(0);
  autoreleasePoolPop(~std::uint64_t{0});
  const AutoreleasePool pool;
  autoreleased(1);
  autoreleasePoolPop(~std::uint64_t{0});
  EXPECT_EQ(Mortal::living(), 1);
}

TEST_F(AutoreleasePoolTest, AnObjectMayBeInAPoolManyTimes) {
  const Mortal object = Mortal::new_();
  {
    const AutoreleasePool pool;
    for (int i = 0; i < 1000; ++i) object->autorelease();
    EXPECT_EQ(object->retainCount(), 1001u);
  }
  EXPECT_EQ(object->retainCount(), 1u);
}

TEST_F(AutoreleasePoolTest, WhatEndsMayAutoreleaseAgainAndUsePools) {
  {
    const AutoreleasePool pool;
    Ender::with(
        [](const Ender&) {
          autoreleased(2);
          const AutoreleasePool own;
          autoreleased(3);
        },
        1)
        ->autorelease();
  }
  EXPECT_EQ(Mortal::ended(), "3 1 2 ") << "into the pool that is being drained";
}

TEST_F(AutoreleasePoolTest, AnEndMayDrainThePoolItIsIn) {
  const std::uint64_t outer = autoreleasePoolPush();
  autoreleased(1);
  const std::uint64_t inner = autoreleasePoolPush();
  autoreleased(2);
  Ender::with([outer](const Ender&) { autoreleasePoolPop(outer); }, 3)->autorelease();
  autoreleasePoolPop(inner);
  EXPECT_EQ(Mortal::ended(), "2 1 3 ");
}

TEST_F(AutoreleasePoolTest, ARaiseLeavesTheDrainAndTheRestStaysBelow) {
  const std::uint64_t outer = autoreleasePoolPush();
  const std::uint64_t inner = autoreleasePoolPush();
  autoreleased(1);
  Ender::raising("drained", 2)->autorelease();
  autoreleased(3);
  EXPECT_EQ(raised([inner] { autoreleasePoolPop(inner); }), "drained");
  EXPECT_EQ(Mortal::ended(), "3 2 ");
  autoreleasePoolPop(inner);
  EXPECT_EQ(Mortal::ended(), "") << "the inner pool is gone";
  autoreleasePoolPop(outer);
  EXPECT_EQ(Mortal::ended(), "1 ");
}

TEST_F(AutoreleasePoolTest, ARaiseLeavesTheClosingBraceOfAPool) {
  const AutoreleasePool below;
  EXPECT_EQ(raised([] {
              const AutoreleasePool pool;
              Ender::raising("brace")->autorelease();
            }),
            "brace");
}

TEST_F(AutoreleasePoolTest, ARaiseOnItsWayIsNotMetByAnother) {
  const AutoreleasePool below;
  EXPECT_EQ(raised([] {
              const AutoreleasePool pool;
              Ender::raising("swallowed")->autorelease();
              throw std::runtime_error("on its way");
            }),
            "on its way");
}

TEST_F(AutoreleasePoolTest, APoolIsDrainedWhenAnExceptionLeavesItsScope) {
  EXPECT_EQ(raised([] {
              const AutoreleasePool pool;
              autoreleased(1);
              throw std::runtime_error("out");
            }),
            "out");
  EXPECT_EQ(Mortal::ended(), "1 ");
}

TEST_F(AutoreleasePoolTest, AThreadWithoutAPoolDrainsAtItsEnd) {
  std::thread([] {
    autoreleased(1);
    Ender::with([](const Ender&) { autoreleased(3); }, 2)->autorelease();
  }).join();
  EXPECT_EQ(Mortal::ended(), "2 3 1 ");
}

TEST_F(AutoreleasePoolTest, AThreadThatLeavesAPoolOpenDrainsAtItsEnd) {
  std::thread([] {
    autoreleasePoolPush();
    autoreleased(1);
  }).join();
  EXPECT_EQ(Mortal::ended(), "1 ");
}

TEST_F(AutoreleasePoolTest, PoolsBelongToTheirThread) {
  const std::uint64_t mine = autoreleasePoolPush();
  autoreleased(1);
  std::thread([mine] { autoreleasePoolPop(mine); }).join();
  EXPECT_EQ(Mortal::ended(), "");
  autoreleasePoolPop(mine);
  EXPECT_EQ(Mortal::ended(), "1 ");
}

TEST_F(AutoreleasePoolTest, NilIsNotPooled) {
  const AutoreleasePool pool;
  EXPECT_FALSE(Mortal()->autorelease());
}

}  // namespace
}  // namespace brindle
