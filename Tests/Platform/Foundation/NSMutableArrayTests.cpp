#include <Brindle/Platform/NSMutableArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";

TEST(NSMutableArrayTest, Tour) {
  const NSMutableArray list = {"a"_ns, "b"_ns};
  list->addObject("c"_ns);
  list->insertObject("start"_ns, 0);
  list->replaceObjectAtIndex(1, "A"_ns);
  EXPECT_EQ(listed(list), "start A b c");
  list->removeObjectAtIndex(0);
  list->removeLastObject();
  list->exchangeObjectAtIndex(0, 1);
  EXPECT_EQ(listed(list), "b A");
}

TEST(NSMutableArrayTest, MadeInManyWays) {
  const id objects[] = {"a"_ns, "b"_ns};
  for (const NSMutableArray& made :
       {NSMutableArray::array(), NSMutableArray::arrayWithCapacity(3),
        NSMutableArray::arrayWithCapacity(~NSUInteger{0}), NSMutableArray::arrayWithArray(nullptr),
        NSMutableArray::new_()}) {
    EXPECT_EQ(classOf(made), NSMutableArray::class_());
    EXPECT_EQ(made->count(), 0u);
    made->addObject("x"_ns);
    EXPECT_EQ(listed(made), "x");
  }
  for (const NSMutableArray& made :
       {NSMutableArray::arrayWithObjects(objects, 2), NSMutableArray{"a"_ns, "b"_ns}}) {
    made->removeObjectAtIndex(1);
    EXPECT_TRUE(made->isEqual(NSMutableArray::arrayWithObject("a"_ns)));
  }
}

TEST(NSMutableArrayTest, RefusesNil) {
  const NSMutableArray list = {"a"_ns};
  EXPECT_EQ(raisedBy([&] { list->addObject(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([&] { list->insertObject(nullptr, 0); }), kArgument);
  EXPECT_EQ(raisedBy([&] { list->replaceObjectAtIndex(0, nullptr); }), kArgument);
  list->removeObject(nullptr);
  list->removeObjectIdenticalTo(nullptr);
  list->removeObjectsInArray(nullptr);
  list->addObjectsFromArray(nullptr);
  EXPECT_EQ(listed(list), "a");
  list->setArray(nullptr);
  EXPECT_EQ(list->count(), 0u);
}

TEST(NSMutableArrayTest, RefusesPlacesBeyondTheEnd) {
  const NSMutableArray list = {"a"_ns, "b"_ns};
  for (const NSUInteger index : {NSUInteger{2}, kMissing, ~NSUInteger{0}}) {
    EXPECT_EQ(raisedBy([&] { list->replaceObjectAtIndex(index, "x"_ns); }), kRange);
    EXPECT_EQ(raisedBy([&] { list->removeObjectAtIndex(index); }), kRange);
    EXPECT_EQ(raisedBy([&] { list->exchangeObjectAtIndex(0, index); }), kRange);
    EXPECT_EQ(raisedBy([&] { list->exchangeObjectAtIndex(index, 0); }), kRange);
  }
  EXPECT_EQ(raisedBy([&] { list->insertObject("x"_ns, 3); }), kRange);
  EXPECT_EQ(raisedBy([&] { list->insertObject("x"_ns, ~NSUInteger{0}); }), kRange);
  EXPECT_EQ(raisedBy([&] { list->removeObjectsInRange({1, 2}); }), kRange);
  EXPECT_EQ(raisedBy([&] { list->removeObjectsInRange({3, 0}); }), kRange);
  EXPECT_EQ(raisedBy([&] { list->removeObjectsInRange({1, ~0ull}); }), kRange);
  EXPECT_EQ(raisedBy([] { NSMutableArray::array()->removeLastObject(); }), kRange);
  EXPECT_EQ(listed(list), "a b");
  list->insertObject("c"_ns, 2);
  list->removeObjectsInRange({3, 0});
  list->exchangeObjectAtIndex(1, 1);
  EXPECT_EQ(listed(list), "a b c");
}

// What every mutable array can do, whoever wrote it.
void tryEverything(const NSMutableArray& list) {
  AutoreleasePool pool;
  const auto m = [](int number) { return Member::with(number); };
  list->setArray(NSArray{m(1), m(2), m(1), m(3), m(1)});
  list->removeObject(m(1));
  EXPECT_EQ(listed(list), "m2 m3");
  const Member very = m(2);
  list->addObjectsFromArray(NSArray{very, m(2), very});
  list->removeObjectIdenticalTo(very);
  EXPECT_EQ(listed(list), "m2 m3 m2");
  list->removeObjectsInArray(NSArray{m(2), m(9)});
  EXPECT_EQ(listed(list), "m3");
  list->addObjectsFromArray(list);
  EXPECT_EQ(listed(list), "m3 m3");
  list->setArray(list);
  EXPECT_EQ(listed(list), "m3 m3");
  list->removeObjectsInArray(list);
  EXPECT_EQ(list->count(), 0u);
  list->setArray(NSArray{m(5), m(4), m(3), m(2), m(1)});
  list->removeObjectsInRange({1, 2});
  EXPECT_EQ(listed(list), "m5 m2 m1");
  list->exchangeObjectAtIndex(0, 2);
  EXPECT_EQ(listed(list), "m1 m2 m5");
  list->insertObject(m(9), 1);
  list->replaceObjectAtIndex(0, m(8));
  list->sortUsingSelector(selector<"compare:">());
  EXPECT_EQ(listed(list), "m2 m5 m8 m9");
  list->sortUsingComparator([](const id& a, const id& b) {
    return uncheckedCast<Member>(b)->compare(uncheckedCast<Member>(a));
  });
  EXPECT_EQ(listed(list), "m9 m8 m5 m2");
  list->removeLastObject();
  const auto copy = cast<NSArray>(list->copy());
  EXPECT_EQ(classOf(copy), NSArray::class_());
  const NSMutableArray changing = list->mutableCopy();
  list->removeObjectAtIndex(0);
  EXPECT_EQ(listed(list), "m8 m5");
  EXPECT_EQ(listed(copy), "m9 m8 m5");
  EXPECT_EQ(listed(changing), "m9 m8 m5");
  EXPECT_EQ(listed(list->reverseObjectEnumerator()), "m5 m8");
  list->removeAllObjects();
  EXPECT_EQ(list->count(), 0u);
  EXPECT_FALSE(list->firstObject());
  EXPECT_FALSE(list->lastObject());
}

TEST(NSMutableArrayTest, EveryClassDoesEverything) {
  const int before = Member::living();
  const auto plain = plainSubclass<NSMutableArray>("PlainSubclassOfMutableArray");
  tryEverything(NSMutableArray::array());
  tryEverything(ClientMutableArray::with({}));
  tryEverything(plain->array());
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableArrayTest, ClassOperationsMakeAClientsArray) {
  const id objects[] = {"a"_ns, "b"_ns};
  const auto cls = ClientMutableArray::class_();
  EXPECT_EQ(listed(cls->arrayWithObjects(objects, 2)), "a b");
  EXPECT_EQ(listed(cls->arrayWithArray(NSArray{"x"_ns})), "x");
  EXPECT_EQ(listed(cls->arrayWithObject("y"_ns)), "y");
  EXPECT_EQ(cls->arrayWithCapacity(5)->count(), 0u);
  EXPECT_EQ(classOf(cls->array()), cls);
}

TEST(NSMutableArrayTest, AnEmptyOneIsInitialisedWithInit) {
  const Class cls = objc_allocateClassPair(NSMutableArray::class_(), "ArrayThatBeginsWithOne", 0);
  const auto [begin, types] = implementation([](const NSMutableArray& self) -> NSMutableArray {
    const auto made = self->initWithObjects(nullptr, 0);
    send<"addObject:">(made, "one"_ns);
    return self;
  });
  class_addMethod(cls, selector<"init">(), begin, types);
  objc_registerClassPair(cls);
  EXPECT_EQ(listed(ClassOf<NSMutableArray>(cls)->array()), "one");
  EXPECT_EQ(listed(ClassOf<NSMutableArray>(cls)->arrayWithCapacity(9)), "one");
}

TEST(NSMutableArrayTest, RemovesManyFromMany) {
  const auto list = NSMutableArray::array();
  const Member odd = Member::with(1);
  const Member even = Member::with(2);
  for (int i = 0; i < 100000; ++i) list->addObject(i % 2 != 0 ? odd : even);
  list->removeObject(odd);
  EXPECT_EQ(list->count(), 50000u);
  list->removeObjectsInRange({1, 49998});
  EXPECT_EQ(listed(list), "m2 m2");
  EXPECT_EQ(odd->retainCount(), 1u);
  EXPECT_EQ(even->retainCount(), 3u);
}

// --- Members with a will of their own ------------------------------------------------------------

TEST(NSMutableArrayTest, AMemberThatEmptiesTheArrayWhileOthersAreRemoved) {
  for (const NSMutableArray& list :
       {NSMutableArray::array(), NSMutableArray(ClientMutableArray::with({}))}) {
    list->setArray(NSArray{Member::with(1), Member::with(2), Member::with(3)});
    const Member asking = Member::with(2);
    asking->actions().isEqual = [&](const id&) {
      list->removeAllObjects();
      return true;
    };
    list->removeObject(asking);
    EXPECT_EQ(list->count(), 0u);
  }
}

TEST(NSMutableArrayTest, AMemberThatComesWhileOthersAreRemovedStays) {
  const NSMutableArray list = {Member::with(1), Member::with(2)};
  const Member asking = Member::with(2);
  asking->actions().isEqual = [&, added = false](const id& other) mutable {
    if (!added) list->insertObject("new"_ns, 0);
    added = true;
    return told(other) == "m2";
  };
  list->removeObject(asking);
  EXPECT_EQ(listed(list), "new m1");
}

TEST(NSMutableArrayTest, TheEndOfAMemberFindsTheArrayWhole) {
  const int before = Member::living();
  const NSMutableArray list = NSMutableArray::array();
  std::string seen;
  const auto add = [&](int number) {
    const Member member = Member::with(number);
    member->actions().end = [&] {
      seen += std::to_string(list->count());
      if (list->count() < 3) list->addObject("late"_ns);
    };
    list->addObject(member);
  };
  for (int i = 0; i < 4; ++i) add(i);
  list->removeObjectAtIndex(1);           // 3 left
  list->replaceObjectAtIndex(0, "a"_ns);  // still 3
  list->removeLastObject();               // 2 left, one comes
  list->removeObjectsInRange({0, 2});     // the late one left, another comes
  EXPECT_EQ(seen, "3321");
  EXPECT_EQ(listed(list), "late late");
  add(7);
  add(8);
  list->removeAllObjects();
  EXPECT_EQ(seen, "332101");
  EXPECT_EQ(listed(list), "late late");
  add(9);
  list->setArray(NSArray{"x"_ns});
  EXPECT_EQ(listed(list), "x late");
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableArrayTest, ARaisingMemberLeavesTheArray) {
  const NSMutableArray list = {Member::with(1), Member::with(2), Member::with(3)};
  const Member asking = Member::with(3);
  asking->actions().isEqual = [](const id& other) -> bool {
    if (told(other) == "m2") throw std::runtime_error("asked");
    return true;
  };
  EXPECT_EQ(raisedBy([&] { list->removeObject(asking); }), "asked");
  EXPECT_EQ(raisedBy([&] { (void)NSArray({asking})->isEqualToArray({Member::with(2)}); }), "asked");
  EXPECT_EQ(listed(list), "m1 m2 m3");
}

TEST(NSMutableArrayTest, WhatTheEndsOfMembersRaiseLeavesTheRemoval) {
  const int before = Member::living();
  const auto filled = [] {
    const auto list = NSMutableArray::array();
    for (int i = 0; i < 3; ++i) {
      const Member member = Member::with(i);
      member->actions().end = [i] { throw std::runtime_error("end " + std::to_string(i)); };
      list->addObject(member);
    }
    return list;
  };
  NSMutableArray list = filled();
  EXPECT_EQ(raisedBy([&] { list->removeObjectAtIndex(1); }), "end 1");
  EXPECT_EQ(raisedBy([&] { list->removeAllObjects(); }), "end 0");
  EXPECT_EQ(list->count(), 0u);
  list = filled();
  EXPECT_EQ(raisedBy([&] { list->removeObjectsInRange({1, 2}); }), "end 1");
  EXPECT_EQ(raisedBy([&] { list->replaceObjectAtIndex(0, "y"_ns); }), "end 0");
  EXPECT_EQ(listed(list), "y");
  list = filled();
  EXPECT_EQ(raisedBy([&] { list->setArray({"x"_ns}); }), "end 0");
  EXPECT_EQ(listed(list), "x");
  list = filled();
  EXPECT_EQ(raisedBy([&] { list->removeObject(Member::with(2)); }), "end 2");
  EXPECT_EQ(raisedBy([&] { list = nullptr; }), "end 0");
  EXPECT_EQ(Member::living(), before);
}

// --- Against a model -----------------------------------------------------------------------------

void runRandomProgram(const NSMutableArray& list, unsigned seed, int steps) {
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t limit) {
    return static_cast<std::size_t>(random() % limit);
  };
  std::vector<int> model;
  for (int step = 0; step < steps; ++step) {
    const int number = static_cast<int>(below(50));
    const Member member = Member::with(number);
    const std::size_t place = below(model.size() + 1);
    const auto at = model.begin() + static_cast<std::ptrdiff_t>(place);
    switch (below(9)) {
      case 0:
      case 1:
      case 2:
        list->addObject(member);
        model.push_back(number);
        break;
      case 3:
      case 4:
        list->insertObject(member, place);
        model.insert(at, number);
        break;
      case 5:
        if (at == model.end()) break;
        list->removeObjectAtIndex(place);
        model.erase(at);
        break;
      case 6:
        if (at == model.end()) break;
        list->replaceObjectAtIndex(place, member);
        *at = number;
        break;
      case 7: {
        const auto found = std::find(model.begin(), model.end(), number);
        const auto wanted =
            found == model.end() ? kMissing : static_cast<NSUInteger>(found - model.begin());
        ASSERT_EQ(list->indexOfObject(member), wanted);
        break;
      }
      default:
        if (below(20) != 0) break;
        list->removeObject(member);
        std::erase(model, number);
    }
    ASSERT_EQ(list->count(), model.size());
  }
  std::size_t i = 0;
  for (const id& member : list) ASSERT_EQ(uncheckedCast<Member>(member)->number(), model[i++]);
  EXPECT_EQ(i, model.size());
}

TEST(NSMutableArrayTest, DoesWhatAVectorDoes) {
  const int before = Member::living();
  AutoreleasePool pool;
  runRandomProgram(NSMutableArray::array(), 1, 10000);
  runRandomProgram(NSMutableArray::arrayWithCapacity(100000), 2, 10000);
  EXPECT_EQ(Member::living(), before);
  runRandomProgram(ClientMutableArray::with({}), 3, 1000);
}

}  // namespace
}  // namespace brindle
