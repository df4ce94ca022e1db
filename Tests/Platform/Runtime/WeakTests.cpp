#include <Brindle/Platform/Weak.h>

#include <atomic>
#include <thread>
#include <type_traits>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Field.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

static_assert(std::is_nothrow_move_constructible_v<Weak<Mortal>>);
static_assert(std::is_nothrow_copy_constructible_v<Weak<Mortal>>);

TEST(WeakTest, Tour) {
  Mortal object = Mortal::new_();
  const Weak<Mortal> weak = object;
  if (const Mortal strong = weak.lock())
    EXPECT_TRUE(strong == object);
  else
    ADD_FAILURE();
  EXPECT_EQ(object->retainCount(), 1u);
  object = nullptr;
  EXPECT_FALSE(weak.lock());
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(WeakTest, NilAndMovedFromReadNil) {
  Weak<Mortal> weak;
  EXPECT_FALSE(weak.lock());
  const Mortal object = Mortal::new_();
  weak = object;
  Weak<Mortal> moved = std::move(weak);
  EXPECT_FALSE(weak.lock());  // NOLINT(bugprone-use-after-move): moving leaves nil
  EXPECT_TRUE(moved.lock() == object);
  moved = nullptr;
  EXPECT_FALSE(moved.lock());
  EXPECT_FALSE(Weak<Mortal>(Mortal()).lock());
}

TEST(WeakTest, ManyReferencesReadNilTogether) {
  Mortal object = Mortal::new_();
  std::vector<Weak<NSObject>> all(50, Weak<NSObject>(object));
  all.push_back(all.front());
  all.front() = all.back();
  for (const auto& weak : all) EXPECT_TRUE(weak.lock() == object);
  object = nullptr;
  for (const auto& weak : all) EXPECT_FALSE(weak.lock());
}

TEST(WeakTest, ReassigningForgetsTheOldObject) {
  Mortal a = Mortal::new_();
  const Mortal b = Mortal::new_();
  Weak<Mortal> weak = a;
  weak = b;
  a = nullptr;
  EXPECT_TRUE(weak.lock() == b);
}

TEST(WeakTest, AnotherObjectAtTheSameAddressIsNotFound) {
  std::vector<Weak<Mortal>> past;
  for (int i = 0; i < 100; ++i) {
    const Mortal object = Mortal::new_();
    for (const auto& weak : past) ASSERT_FALSE(weak.lock());
    past.emplace_back(object);
  }
}

TEST(WeakTest, ReadsNilInsideDealloc) {
  Weak<Ender> early;
  bool ran = false;
  Ender object = Ender::with([&](const Ender& self) {
    ran = true;
    EXPECT_FALSE(early.lock());
    const Weak<Ender> late = self;
    EXPECT_FALSE(late.lock());
  });
  early = object;
  object = nullptr;
  EXPECT_TRUE(ran);
}

TEST(WeakTest, ReadsNilWhileFieldsEnd) {
  Mortal outer = Mortal::new_();
  const Weak<Mortal> weak = outer;
  bool ran = false;
  outer->setHeld(Ender::with([&](const Ender&) {
    ran = true;
    EXPECT_FALSE(weak.lock());
  }));
  outer = nullptr;
  EXPECT_TRUE(ran);
}

TEST(WeakTest, ABlockOnTheStackIsNeverHeld) {
  const auto look = [](const BlockArg<void()>& block) {
    const Weak<NSBlock> weak = uncheckedCast<NSBlock>(id(Adopt{}, nullptr));
    EXPECT_FALSE(weak.lock());
    ObjectRecord* record = block.record();
    const detail::Lent<NSBlock> lent(record);
    const Weak<NSBlock> onStack = lent.reference;
    EXPECT_FALSE(onStack.lock()) << "it would outlive its caller";
  };
  look([] {});
  Block<void()> kept = [] {};
  const Weak<Block<void()>> weak = kept;
  EXPECT_TRUE(weak.lock() == kept);
  kept = nullptr;
  EXPECT_FALSE(weak.lock());
}

TEST(WeakTest, ConstantsAndClassesStay) {
  const Weak<id> weak = id(NSObject::class_());
  EXPECT_TRUE(weak.lock() == id(NSObject::class_()));
}

TEST(WeakTest, BreaksTheCycleOfABlockThatItsObjectKeeps) {
  {
    const Mortal object = Mortal::new_();
    const Weak<Mortal> weak = object;
    object->setHeld(Block<int()>([weak] { return weak.lock()->tag(); }));
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(WeakTest, RacesWithTheLastRelease) {
  std::atomic<int> seen{0};
  for (int round = 0; round < 2000; ++round) {
    Mortal object = Mortal::new_();
    object->setTag(7);
    const Weak<Mortal> weak = object;
    std::atomic<bool> go{false};
    std::thread reader([&go, &seen, weak] {
      while (!go) {
      }
      for (int i = 0; i < 3; ++i) {
        if (const Mortal strong = weak.lock()) seen += strong->tag() == 7 ? 1 : 1000000;
      }
      const Weak<Mortal> copy = weak;
      EXPECT_TRUE(!copy.lock() || true);
    });
    go = true;
    object = nullptr;
    reader.join();
    ASSERT_FALSE(weak.lock());
  }
  EXPECT_LE(seen, 6000);
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(WeakTest, ManyThreadsMakeAndReadThem) {
  {
    std::vector<Mortal> objects;
    for (int i = 0; i < 8; ++i) objects.push_back(Mortal::new_());
    std::vector<std::thread> threads;
    std::atomic<int> found{0};
    for (int t = 0; t < 8; ++t) {
      threads.emplace_back([objects, &found] {
        for (int i = 0; i < 500; ++i) {
          const Mortal& object = objects[static_cast<std::size_t>(i) % objects.size()];
          const Weak<Mortal> weak = object;
          if (weak.lock() == object) ++found;
        }
      });
    }
    objects.clear();
    for (std::thread& t : threads) t.join();
    EXPECT_EQ(found, 4000);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

}  // namespace
}  // namespace brindle
