#include <Brindle/Platform/NSArray.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";

TEST(NSArrayTest, Tour) {
  const NSArray colours = {"red"_ns, "green"_ns, "blue"_ns};
  EXPECT_EQ(colours->count(), 3u);
  EXPECT_EQ(colours[1], "green"_ns);
  EXPECT_EQ(colours->lastObject(), "blue"_ns);
  EXPECT_EQ(colours->indexOfObject(NSString(std::string("blue"))), 2u);
  EXPECT_EQ(colours->indexOfObject("pink"_ns), kMissing);
  EXPECT_EQ(listed(colours->sortedArrayUsingSelector(selector<"compare:">())), "blue green red");
  EXPECT_EQ(told(colours->componentsJoinedByString(", "_ns)), "red, green, blue");
  EXPECT_EQ(listed(colours->subarrayWithRange({1, 2})), "green blue");
  EXPECT_EQ(told(colours), "(\n    red,\n    green,\n    blue\n)");
}

TEST(NSArrayTest, MadeInManyWays) {
  const id objects[] = {"a"_ns, "b"_ns, "c"_ns};
  EXPECT_EQ(listed(NSArray::array()), "");
  EXPECT_EQ(listed(NSArray::arrayWithObject("a"_ns)), "a");
  EXPECT_EQ(listed(NSArray::arrayWithObjects(objects, 2)), "a b");
  EXPECT_EQ(listed(NSArray::arrayWithObjects(nullptr, 0)), "");
  EXPECT_EQ(listed(NSArray::arrayWithArray({"a"_ns, "b"_ns})), "a b");
  EXPECT_EQ(NSArray::arrayWithArray(nullptr)->count(), 0u);
  EXPECT_EQ(listed(NSArray::alloc()->init()), "");
  EXPECT_EQ(listed(NSArray::alloc()->initWithObjects(objects, 3)), "a b c");
  EXPECT_EQ(listed(NSArray::alloc()->initWithArray(ClientArray::with({"x"_ns}))), "x");
  const NSArray inner = {"a"_ns};
  EXPECT_EQ(NSArray::arrayWithObject(inner)[0], inner);
  EXPECT_EQ((NSArray{inner, inner})[0], inner);
  EXPECT_FALSE(NSArray{}) << "empty braces are nil";
}

TEST(NSArrayTest, NilAnswersNothing) {
  const NSArray nil;
  EXPECT_EQ(nil->count(), 0u);
  EXPECT_FALSE(nil->objectAtIndex(7));
  EXPECT_FALSE(nil->firstObject());
  EXPECT_FALSE(nil->isEqualToArray(nil));
  EXPECT_FALSE(nil->arrayByAddingObject("a"_ns));
  EXPECT_FALSE(nil->mutableCopy());
}

TEST(NSArrayTest, NilIsNoMember) {
  const id withNil[] = {"a"_ns, nullptr};
  EXPECT_EQ(raisedBy([&] { NSArray::arrayWithObjects(withNil, 2); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSArray::arrayWithObject(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSArray({"a"_ns, id()}); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)NSArray::array()->arrayByAddingObject(nullptr); }), kArgument);
  std::string text;
  try {
    NSArray::arrayWithObjects(withNil, 2);
  } catch (const std::exception& raised) {
    text = raised.what();
  }
  EXPECT_NE(text.find("-[NSArray initWithObjects:count:]: nil argument at place 1"),
            std::string::npos)
      << text;
}

TEST(NSArrayTest, BeyondTheEndRaises) {
  const NSArray abc = {"a"_ns, "b"_ns, "c"_ns};
  for (const NSUInteger index : {NSUInteger{3}, NSUInteger{4}, kMissing, ~NSUInteger{0}}) {
    EXPECT_EQ(raisedBy([&] { (void)abc->objectAtIndex(index); }), kRange) << index;
    EXPECT_EQ(raisedBy([&] { (void)NSArray::array()->objectAtIndex(index); }), kRange) << index;
  }
  EXPECT_EQ(raisedBy([&] { (void)NSArray::array()->objectAtIndex(0); }), kRange);
  for (const NSArray& array : {abc, NSArray(ClientArray::with({"a"_ns, "b"_ns, "c"_ns}))}) {
    EXPECT_EQ(array->subarrayWithRange({3, 0})->count(), 0u);
    EXPECT_EQ(listed(array->subarrayWithRange({0, 3})), "a b c");
    EXPECT_EQ(raisedBy([&] { (void)array->subarrayWithRange({4, 0}); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)array->subarrayWithRange({2, 2}); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)array->subarrayWithRange({1, ~0ull}); }), kRange);
  }
  std::string text;
  try {
    (void)abc->objectAtIndex(3);
  } catch (const std::exception& raised) {
    text = raised.what();
  }
  EXPECT_NE(text.find("-[NSArray objectAtIndex:]: index 3 beyond the end of 3"), std::string::npos)
      << text;
}

TEST(NSArrayTest, FindsTheFirstThatIsEqual) {
  const Member second = Member::with(2);
  const NSArray array = {Member::with(1), second, Member::with(2)};
  EXPECT_EQ(array->indexOfObject(Member::with(2)), 1u);
  EXPECT_EQ(array->indexOfObjectIdenticalTo(second), 1u);
  EXPECT_EQ(array->indexOfObjectIdenticalTo(Member::with(2)), kMissing);
  EXPECT_TRUE(array->containsObject(Member::with(1)));
  EXPECT_FALSE(array->containsObject(Member::with(3)));
  EXPECT_FALSE(array->containsObject(nullptr));
  EXPECT_EQ(array->indexOfObject(nullptr), kMissing);
  EXPECT_EQ(array->indexOfObjectIdenticalTo(nullptr), kMissing);
}

TEST(NSArrayTest, EqualWhateverTheClass) {
  const NSArray arrays[] = {{Member::with(1), Member::with(2)},
                            NSMutableArray{Member::with(1), Member::with(2)},
                            ClientArray::with({Member::with(1), Member::with(2)}),
                            ClientMutableArray::with({Member::with(1), Member::with(2)})};
  for (const NSArray& a : arrays) {
    for (const NSArray& b : arrays) {
      EXPECT_TRUE(a->isEqual(b));
      EXPECT_TRUE(a->isEqualToArray(b));
      EXPECT_EQ(a->hash(), b->hash());
    }
    EXPECT_FALSE(a->isEqual(NSArray{Member::with(2), Member::with(1)}));
    EXPECT_FALSE(a->isEqual(NSArray{Member::with(1)}));
    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_FALSE(a->isEqualToArray(nullptr));
    EXPECT_FALSE(a->isEqual(NSSet{Member::with(1), Member::with(2)}));
  }
}

TEST(NSArrayTest, ClientsOverrideTwoOperations) {
  const Class plain = plainSubclass<NSArray>("PlainSubclassOfArray");
  const id members[] = {Member::with(3), Member::with(1), Member::with(2)};
  const NSArray arrays[] = {ClientArray::with({members, members + 3}),
                            ClassOf<NSArray>(plain)->arrayWithObjects(members, 3)};
  for (const NSArray& array : arrays) {
    AutoreleasePool pool;
    EXPECT_EQ(listed(array), "m3 m1 m2");
    EXPECT_EQ(array->firstObject(), members[0]);
    EXPECT_EQ(array->lastObject(), members[2]);
    EXPECT_EQ(array->indexOfObject(Member::with(2)), 2u);
    EXPECT_EQ(array->indexOfObjectIdenticalTo(members[1]), 1u);
    EXPECT_TRUE(array->containsObject(Member::with(1)));
    EXPECT_EQ(listed(array->objectEnumerator()), "m3 m1 m2");
    EXPECT_EQ(listed(array->reverseObjectEnumerator()), "m2 m1 m3");
    EXPECT_EQ(listed(array->arrayByAddingObject("x"_ns)), "m3 m1 m2 x");
    EXPECT_EQ(listed(array->arrayByAddingObjectsFromArray(array)), "m3 m1 m2 m3 m1 m2");
    EXPECT_EQ(listed(array->subarrayWithRange({1, 1})), "m1");
    EXPECT_EQ(told(array->componentsJoinedByString("-"_ns)), "m3-m1-m2");
    EXPECT_EQ(listed(array->sortedArrayUsingSelector(selector<"compare:">())), "m1 m2 m3");
    EXPECT_EQ(listed(array->mutableCopy()), "m3 m1 m2");
    EXPECT_EQ(array->copy(), array);
    EXPECT_EQ(told(array), "(\n    m3,\n    m1,\n    m2\n)");
    array->makeObjectsPerformSelector(selector<"poke">());
  }
  EXPECT_EQ(uncheckedCast<Member>(members[0])->pokes(), 2);
}

TEST(NSArrayTest, MadeFromOneAndAnother) {
  const NSArray a = {"a"_ns};
  EXPECT_EQ(listed(a->arrayByAddingObjectsFromArray({"b"_ns})), "a b");
  EXPECT_EQ(listed(a->arrayByAddingObjectsFromArray(nullptr)), "a");
  EXPECT_EQ(listed(a), "a");
  EXPECT_EQ(told(NSArray::array()->componentsJoinedByString(","_ns)), "");
  EXPECT_EQ(told(a->componentsJoinedByString(","_ns)), "a");
  EXPECT_EQ(told(NSArray({"a"_ns, NSNumber(2)})->componentsJoinedByString(nullptr)), "a2");
}

TEST(NSArrayTest, SendsToEveryMember) {
  const Member one = Member::with(1);
  const NSArray array = {one, one, Member::with(2)};
  array->makeObjectsPerformSelector(selector<"poke">());
  array->makeObjectsPerformSelector(selector<"poke:">(), "x"_ns);
  array->makeObjectsPerformSelector(selector<"poke:">(), nullptr);
  EXPECT_EQ(one->pokes(), 2 + 20 + 200);
  EXPECT_EQ(raisedBy([&] { array->makeObjectsPerformSelector(selector<"unknownToAll">()); }),
            kArgument);
}

// --- Sorting -------------------------------------------------------------------------------------

int numberOf(const id& object) { return uncheckedCast<Member>(object)->number(); }

TEST(NSArraySortingTest, KeepsTheOrderOfEqualMembers) {
  std::mt19937 random(1);
  for (const int count : {0, 1, 2, 3, 5, 16, 17, 1000}) {
    std::vector<id> members;
    for (int i = 0; i < count; ++i)
      members.push_back(Member::with(static_cast<int>(random() % 10)));
    const NSArray array = NSArray::arrayWithObjects(members.data(), members.size());
    std::stable_sort(members.begin(), members.end(),
                     [](const id& a, const id& b) { return numberOf(a) < numberOf(b); });
    const NSArray sorted = array->sortedArrayUsingSelector(selector<"compare:">());
    const NSArray again = array->sortedArrayUsingComparator([](const id& a, const id& b) {
      return uncheckedCast<Member>(a)->compare(uncheckedCast<Member>(b));
    });
    ASSERT_EQ(sorted->count(), members.size());
    for (NSUInteger i = 0; i < members.size(); ++i) {
      ASSERT_EQ(sorted[i], members[i]) << i;
      ASSERT_EQ(again[i], members[i]) << i;
    }
  }
}

TEST(NSArraySortingTest, AComparisonThatContradictsItselfLosesNoMember) {
  std::mt19937 random(2);
  std::vector<id> members;
  for (int i = 0; i < 1000; ++i) members.push_back(Member::with(i));
  const NSArray array = NSArray::arrayWithObjects(members.data(), members.size());
  const auto sorted = array->sortedArrayUsingComparator([&random](const id&, const id&) {
    return static_cast<NSComparisonResult>(static_cast<int>(random() % 3) - 1);
  });
  const auto always =
      array->sortedArrayUsingComparator([](const id&, const id&) { return NSOrderedDescending; });
  EXPECT_EQ(NSSet::setWithArray(sorted)->count(), 1000u);
  EXPECT_EQ(NSSet::setWithArray(always)->count(), 1000u);
}

TEST(NSArraySortingTest, ARaiseLeavesTheArray) {
  const int before = Member::living();
  {
    const NSMutableArray array = {Member::with(3), Member::with(2), Member::with(1)};
    int calls = 0;
    const auto compare = [&calls](const id&, const id&) -> NSComparisonResult {
      if (++calls == 2) (void)NSArray::array()->objectAtIndex(0);
      return NSOrderedDescending;
    };
    EXPECT_EQ(raisedBy([&] { array->sortUsingComparator(compare); }), kRange);
    EXPECT_EQ(listed(array), "m3 m2 m1");
    EXPECT_EQ(raisedBy([&] { (void)array->sortedArrayUsingComparator(nullptr); }), kArgument);
    EXPECT_EQ(raisedBy([&] { array->sortUsingSelector(selector<"unknownToAll:">()); }), kArgument);
  }
  EXPECT_EQ(Member::living(), before);
}

// --- Members with a will of their own ------------------------------------------------------------

TEST(NSArrayTest, AMemberThatEmptiesTheArrayWhenAsked) {
  for (const bool find : {true, false}) {
    const NSMutableArray array = {Member::with(1), Member::with(2), Member::with(3)};
    const Member asking = Member::with(9);
    asking->actions().isEqual = [&](const id& other) {
      array->removeAllObjects();
      return numberOf(other) < 0;  // still there
    };
    if (find) {
      EXPECT_EQ(array->indexOfObject(asking), kMissing);
    } else {
      EXPECT_FALSE(NSArray({asking, asking, asking})->isEqualToArray(array));
    }
    EXPECT_EQ(array->count(), 0u);
  }
}

TEST(NSArrayTest, ADescriptionThatChangesItsArrayAndTheSeparator) {
  const NSMutableArray array = {Member::with(1), Member::with(2)};
  const NSMutableString separator = NSMutableString(std::string(100, '-'));
  uncheckedCast<Member>(array[0])->actions().description = [&]() -> NSString {
    array->removeAllObjects();
    separator->setString(""_ns);
    return "first"_ns;
  };
  EXPECT_EQ(told(array->componentsJoinedByString(separator)),
            "first" + std::string(100, '-') + "m2");
}

TEST(NSArrayTest, AMemberThatLooksAtTheArrayItGoesWith) {
  const int before = Member::living();
  NSUInteger seen = 99;
  NSArray array = NSArray::arrayWithObject(Member::with(1));
  ObjectRecord* lent = array.record();
  uncheckedCast<Member>(array[0])->actions().end = [&] {
    seen = send<"count", NSUInteger>(borrow<id>(lent));
  };
  array = nullptr;
  EXPECT_EQ(seen, 0u);
  EXPECT_EQ(Member::living(), before);
}

TEST(NSArrayTest, InitialisingAgainReplacesTheMembers) {
  const NSArray array = {Member::with(1), Member::with(2)};
  EXPECT_EQ(listed(array->initWithArray(array)), "m1 m2");
  const id other[] = {"x"_ns};
  EXPECT_EQ(listed(array->initWithObjects(other, 1)), "x");
}

// --- Life ----------------------------------------------------------------------------------------

TEST(NSArrayTest, CopiesOfAnImmutableArrayAreItself) {
  const int before = Member::living();
  {
    const NSArray array = {Member::with(1)};
    EXPECT_EQ(array->copy(), array);
    const NSMutableArray changing = array->mutableCopy();
    EXPECT_EQ(classOf(changing), NSMutableArray::class_());
    changing->addObject(Member::with(2));
    EXPECT_EQ(listed(array), "m1");
    EXPECT_EQ(Member::living(), before + 2);
  }
  EXPECT_EQ(Member::living(), before);
}

TEST(NSArrayTest, HoldsItsMembersOnce) {
  const Member member = Member::with(1);
  {
    const NSArray array = {member, member};
    EXPECT_EQ(member->retainCount(), 3u);
    (void)array->sortedArrayUsingSelector(selector<"compare:">());
    (void)array->indexOfObject(Member::with(1));
    (void)told(array);
    EXPECT_EQ(member->retainCount(), 3u);
  }
  EXPECT_EQ(member->retainCount(), 1u);
}

TEST(NSArrayTest, ManyThreadsAskAtOnce) {
  std::vector<id> members;
  for (int i = 0; i < 100; ++i) members.push_back(Member::with(i));
  const NSArray array = NSArray::arrayWithObjects(members.data(), members.size());
  const Member wanted = Member::with(50);
  std::vector<std::thread> threads;
  std::vector<int> sums(4);
  for (int& sum : sums) {
    threads.emplace_back([&sum, &array, &wanted] {
      for (const id& member : array) sum += numberOf(member);
      sum += static_cast<int>(array->indexOfObject(wanted));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(sums, std::vector<int>(4, 4950 + 50));
}

}  // namespace
}  // namespace brindle
