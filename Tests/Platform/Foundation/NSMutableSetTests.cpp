#include <Brindle/Platform/NSMutableSet.h>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kArgument = "NSInvalidArgumentException";

TEST(NSMutableSetTest, Tour) {
  const NSMutableSet set = {"a"_ns};
  set->addObject("b"_ns);
  set->addObject("a"_ns);
  EXPECT_EQ(listed(set), "a b");
  set->unionSet({"c"_ns});
  set->minusSet({"b"_ns});
  EXPECT_EQ(listed(set), "a c");
  set->intersectSet({"c"_ns, "d"_ns});
  EXPECT_EQ(listed(set), "c");
}

TEST(NSMutableSetTest, MadeInManyWays) {
  for (const NSMutableSet& made :
       {NSMutableSet::set(), NSMutableSet::setWithCapacity(3),
        NSMutableSet::setWithCapacity(~NSUInteger{0}), NSMutableSet::new_(),
        NSMutableSet::setWithArray(nullptr), NSMutableSet::setWithSet(nullptr)}) {
    EXPECT_EQ(classOf(made), NSMutableSet::class_());
    made->addObject("x"_ns);
    EXPECT_EQ(listed(made), "x");
  }
  const auto made = NSMutableSet::setWithArray({"a"_ns, "b"_ns, "a"_ns});
  made->removeObject("b"_ns);
  EXPECT_TRUE(made->isEqual(NSMutableSet::setWithObject("a"_ns)));
}

TEST(NSMutableSetTest, Nil) {
  const NSMutableSet set = {"a"_ns};
  EXPECT_EQ(raisedBy([&] { set->addObject(nullptr); }), kArgument);
  set->removeObject(nullptr);
  set->unionSet(nullptr);
  set->minusSet(nullptr);
  set->addObjectsFromArray(nullptr);
  EXPECT_EQ(listed(set), "a");
  set->intersectSet(nullptr);
  EXPECT_EQ(set->count(), 0u);
  set->addObject("a"_ns);
  set->setSet(nullptr);
  EXPECT_EQ(set->count(), 0u);
}

TEST(NSMutableSetTest, AnEqualMemberStays) {
  const Member first = Member::with(1);
  const NSMutableSet set = {first};
  set->addObject(Member::with(1));
  EXPECT_EQ(set->anyObject(), first);
  set->removeObject(Member::with(1));
  EXPECT_EQ(set->count(), 0u);
  EXPECT_EQ(first->retainCount(), 1u);
}

// What every mutable set can do, whoever wrote it.
void tryEverything(const NSMutableSet& set) {
  AutoreleasePool pool;
  const auto m = [](int number) { return Member::with(number); };
  set->setSet({m(1), m(2), m(3)});
  set->addObjectsFromArray({m(4), m(1), m(4)});
  EXPECT_EQ(listed(set), "m1 m2 m3 m4");
  set->unionSet(set);
  set->intersectSet(set);
  set->setSet(set);
  EXPECT_EQ(listed(set), "m1 m2 m3 m4");
  const auto copy = cast<NSSet>(set->copy());
  EXPECT_EQ(classOf(copy), NSSet::class_());
  EXPECT_TRUE(copy->isEqual(set));
  const NSMutableSet changing = set->mutableCopy();
  set->minusSet({m(2), m(9)});
  set->removeObject(m(9));
  EXPECT_EQ(listed(set), "m1 m3 m4");
  set->intersectSet({m(4), m(3), m(8)});
  EXPECT_EQ(listed(set), "m3 m4");
  set->unionSet({m(5)});
  EXPECT_EQ(listed(set->setByAddingObject(m(6))), "m3 m4 m5 m6");
  EXPECT_EQ(listed(copy), "m1 m2 m3 m4");
  EXPECT_EQ(listed(changing), "m1 m2 m3 m4");
  set->minusSet(set);
  EXPECT_EQ(set->count(), 0u);
  set->addObject(m(1));
  set->removeAllObjects();
  EXPECT_EQ(listed(set), "");
  EXPECT_FALSE(set->anyObject());
}

TEST(NSMutableSetTest, EveryClassDoesEverything) {
  const int before = Member::living();
  const auto plain = plainSubclass<NSMutableSet>("PlainSubclassOfMutableSet");
  tryEverything(NSMutableSet::set());
  tryEverything(ClientMutableSet::with({}));
  tryEverything(plain->set());
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableSetTest, ClassOperationsMakeAClientsSet) {
  const auto cls = ClientMutableSet::class_();
  EXPECT_EQ(listed(cls->setWithArray({"a"_ns, "b"_ns, "a"_ns})), "a b");
  EXPECT_EQ(listed(cls->setWithSet({"x"_ns})), "x");
  EXPECT_EQ(listed(cls->setWithObject("y"_ns)), "y");
  EXPECT_EQ(cls->setWithCapacity(5)->count(), 0u);
}

TEST(NSMutableSetTest, AMemberThatEmptiesTheSetWhenAsked) {
  for (const int size : {3, 50}) {
    const auto set = NSMutableSet::set();
    for (int i = 0; i < size; ++i) set->addObject(Member::with(i));
    const Member asking = Member::with(2);
    asking->actions().isEqual = [&](const id&) {
      set->removeAllObjects();
      return true;
    };
    EXPECT_FALSE(set->containsObject(asking));
    EXPECT_EQ(set->count(), 0u);
    for (int i = 0; i < size; ++i) set->addObject(Member::with(i));
    set->addObject(asking);
    EXPECT_EQ(listed(set), "m2");
    set->setSet({Member::with(2), Member::with(3)});
    const NSMutableSet others = {asking};
    others->minusSet(set);
    EXPECT_LE(set->count(), 2u);
  }
}

TEST(NSMutableSetTest, TheEndOfAMemberFindsTheSetWhole) {
  const int before = Member::living();
  const auto set = NSMutableSet::set();
  std::string seen;
  for (int i = 0; i < 20; ++i) {
    const Member member = Member::with(i);
    member->actions().end = [&] {
      seen += std::to_string(set->count()) + " ";
      set->addObject("late"_ns);
    };
    set->addObject(member);
  }
  set->removeObject(Member::with(5));
  EXPECT_EQ(seen, "19 ");
  EXPECT_EQ(set->count(), 20u);
  seen = "";
  set->intersectSet({Member::with(1), "late"_ns});
  EXPECT_EQ(listed(set), "m1 late");
  set->removeAllObjects();
  EXPECT_EQ(listed(set), "late");
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableSetTest, WhatTheEndsOfMembersRaiseLeavesTheRemoval) {
  const int before = Member::living();
  const auto set = NSMutableSet::set();
  for (int i = 0; i < 20; ++i) {
    const Member member = Member::with(i);
    member->actions().end = [i] { throw std::runtime_error("end " + std::to_string(i)); };
    set->addObject(member);
  }
  EXPECT_EQ(raisedBy([&] { set->removeAllObjects(); }), "end 0");
  EXPECT_EQ(set->count(), 0u);
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableSetTest, ARaisingMemberLeavesTheSet) {
  const NSMutableSet set = {Member::with(1), Member::with(2)};
  const Member angry = Member::with(2);
  angry->actions().isEqual = [](const id&) -> bool { throw std::runtime_error("raised"); };
  const NSMutableSet others = {angry};
  EXPECT_EQ(raisedBy([&] { set->addObject(angry); }), "raised");
  EXPECT_EQ(raisedBy([&] { set->removeObject(angry); }), "raised");
  EXPECT_EQ(raisedBy([&] { set->unionSet(others); }), "raised");
  EXPECT_EQ(raisedBy([&] { set->minusSet(others); }), "raised");
  EXPECT_EQ(raisedBy([&] { (void)others->isSubsetOfSet(set); }), "raised");
  EXPECT_EQ(listed(set), "m1 m2");
  set->removeObject(Member::with(2));
  EXPECT_EQ(listed(set), "m1");
}

TEST(NSMutableSetTest, DoesWhatAHashSetDoes) {
  const int before = Member::living();
  for (const int range : {5, 20, 1000}) {
    std::mt19937 random(static_cast<unsigned>(range));
    const auto set = NSMutableSet::set();
    std::unordered_set<int> model;
    for (int step = 0; step < 10000; ++step) {
      const int number = static_cast<int>(random() % static_cast<unsigned>(range));
      switch (random() % 4) {
        case 0:
        case 1:
          set->addObject(Member::with(number));
          model.insert(number);
          break;
        case 2:
          set->removeObject(Member::with(number));
          model.erase(number);
          break;
        default:
          ASSERT_EQ(set->containsObject(Member::with(number)), model.contains(number));
      }
      ASSERT_EQ(set->count(), model.size());
    }
    std::size_t seen = 0;
    for (const id& member : set) {
      ASSERT_TRUE(model.contains(uncheckedCast<Member>(member)->number()));
      ++seen;
    }
    EXPECT_EQ(seen, model.size());
  }
  EXPECT_EQ(Member::living(), before);
}

}  // namespace
}  // namespace brindle
