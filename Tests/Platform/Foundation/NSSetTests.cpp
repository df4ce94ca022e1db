#include <Brindle/Platform/NSSet.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kArgument = "NSInvalidArgumentException";

TEST(NSSetTest, Tour) {
  const NSSet vowels = {"a"_ns, "e"_ns, "i"_ns, "a"_ns};
  EXPECT_EQ(vowels->count(), 3u);
  EXPECT_TRUE(vowels->containsObject(NSString(std::string("e"))));
  EXPECT_FALSE(vowels->containsObject("x"_ns));
  EXPECT_EQ(listed(vowels), "a e i");
  EXPECT_TRUE(NSSet({"i"_ns, "a"_ns})->isSubsetOfSet(vowels));
  EXPECT_EQ(listed(vowels->setByAddingObject("o"_ns)), "a e i o");
  EXPECT_EQ(told(vowels), "{(\n    a,\n    e,\n    i\n)}");
}

TEST(NSSetTest, MadeInManyWays) {
  const id objects[] = {"a"_ns, "b"_ns, "a"_ns};
  EXPECT_EQ(NSSet::set()->count(), 0u);
  EXPECT_EQ(NSSet::alloc()->init()->count(), 0u);
  EXPECT_EQ(NSSet::setWithObjects(nullptr, 0)->count(), 0u);
  EXPECT_EQ(NSSet::setWithArray(nullptr)->count(), 0u);
  EXPECT_EQ(NSSet::setWithSet(nullptr)->count(), 0u);
  EXPECT_EQ(listed(NSSet::setWithObject("a"_ns)), "a");
  EXPECT_EQ(listed(NSSet::setWithObjects(objects, 3)), "a b");
  EXPECT_EQ(listed(NSSet::setWithArray({"b"_ns, "a"_ns, "b"_ns})), "b a");
  EXPECT_EQ(listed(NSSet::setWithSet({"b"_ns, "a"_ns})), "b a");
  EXPECT_EQ(listed(NSSet::alloc()->initWithObjects(objects, 2)), "a b");
  EXPECT_EQ(listed(NSSet::alloc()->initWithArray({"x"_ns})), "x");
  EXPECT_EQ(listed(NSSet::alloc()->initWithSet(ClientSet::with({"x"_ns}))), "x");
  const NSSet inner = {"a"_ns};
  EXPECT_EQ(NSSet::setWithObject(inner)->anyObject(), inner);
  EXPECT_FALSE(NSSet{}) << "empty braces are nil";
}

TEST(NSSetTest, NilIsNoMember) {
  EXPECT_EQ(raisedBy([] { NSSet::setWithObject(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSSet({"a"_ns, id()}); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)NSSet::set()->setByAddingObject(nullptr); }), kArgument);
  EXPECT_FALSE(NSSet({"a"_ns})->containsObject(nullptr));
  EXPECT_FALSE(NSSet({"a"_ns})->member(nullptr));
  const NSSet nil;
  EXPECT_EQ(nil->count(), 0u);
  EXPECT_FALSE(nil->anyObject());
  EXPECT_FALSE(nil->allObjects());
}

TEST(NSSetTest, TheFirstOfEqualMembersStaysAndIsNotCopied) {
  const Member first = Member::with(1);
  first->actions().copy = [] { return id(); };
  const NSSet set = {first, Member::with(1)};
  EXPECT_EQ(set->count(), 1u);
  EXPECT_EQ(set->member(Member::with(1)), first);
  EXPECT_EQ(set->anyObject(), first);
  EXPECT_FALSE(set->member(Member::with(2)));
  EXPECT_FALSE(NSSet::set()->anyObject());
}

TEST(NSSetTest, EqualWhateverTheClassAndOrder) {
  const NSSet all[] = {{Member::with(1), Member::with(2)},
                       {Member::with(2), Member::with(1)},
                       NSMutableSet{Member::with(1), Member::with(2)},
                       ClientSet::with({Member::with(1), Member::with(2)}),
                       ClientMutableSet::with({Member::with(1), Member::with(2)})};
  for (const NSSet& a : all) {
    for (const NSSet& b : all) {
      EXPECT_TRUE(a->isEqual(b));
      EXPECT_TRUE(a->isEqualToSet(b));
      EXPECT_EQ(a->hash(), b->hash());
      EXPECT_TRUE(a->isSubsetOfSet(b));
      EXPECT_TRUE(a->intersectsSet(b));
    }
    EXPECT_FALSE(a->isEqual(NSSet{Member::with(1), Member::with(3)}));
    EXPECT_FALSE(a->isEqual(NSSet{Member::with(1)}));
    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_FALSE(a->isEqualToSet(nullptr));
    EXPECT_FALSE(a->isEqual(NSArray{Member::with(1), Member::with(2)}));
  }
}

TEST(NSSetTest, SubsetsAndIntersections) {
  const NSSet small = {Member::with(1)};
  const NSSet large = {Member::with(1), Member::with(2)};
  const NSSet other = {Member::with(3)};
  const NSSet empty = NSSet::set();
  EXPECT_TRUE(small->isSubsetOfSet(large));
  EXPECT_FALSE(large->isSubsetOfSet(small));
  EXPECT_TRUE(empty->isSubsetOfSet(small));
  EXPECT_TRUE(empty->isSubsetOfSet(nullptr));
  EXPECT_FALSE(small->isSubsetOfSet(nullptr));
  EXPECT_TRUE(small->intersectsSet(large));
  EXPECT_FALSE(large->intersectsSet(other));
  EXPECT_FALSE(empty->intersectsSet(empty));
  EXPECT_FALSE(small->intersectsSet(nullptr));
}

TEST(NSSetTest, MadeFromOneAndAnother) {
  const NSSet set = {Member::with(1)};
  EXPECT_EQ(listed(set->setByAddingObject(Member::with(1))), "m1");
  EXPECT_EQ(listed(set->setByAddingObjectsFromSet({Member::with(2), Member::with(1)})), "m1 m2");
  EXPECT_EQ(listed(set->setByAddingObjectsFromArray({Member::with(2), Member::with(2)})), "m1 m2");
  EXPECT_EQ(listed(set->setByAddingObjectsFromSet(nullptr)), "m1");
  EXPECT_EQ(listed(set->setByAddingObjectsFromArray(nullptr)), "m1");
  EXPECT_EQ(listed(set), "m1");
}

TEST(NSSetTest, ClientsOverrideThreeOperations) {
  const auto plain = plainSubclass<NSSet>("PlainSubclassOfSet");
  const Member one = Member::with(1);
  const NSSet all[] = {ClientSet::with({one, Member::with(2)}),
                       plain->setWithArray({one, Member::with(2)})};
  for (const NSSet& set : all) {
    AutoreleasePool pool;
    EXPECT_EQ(set->count(), 2u);
    EXPECT_EQ(listed(set), "m1 m2");
    EXPECT_EQ(listed(set->objectEnumerator()), "m1 m2");
    EXPECT_EQ(listed(set->allObjects()), "m1 m2");
    EXPECT_EQ(set->anyObject(), one);
    EXPECT_EQ(set->member(Member::with(1)), one);
    EXPECT_TRUE(set->containsObject(Member::with(2)));
    EXPECT_EQ(listed(set->setByAddingObject("x"_ns)), "m1 m2 x");
    EXPECT_EQ(listed(set->mutableCopy()), "m1 m2");
    EXPECT_EQ(set->copy(), set);
    EXPECT_EQ(told(set), "{(\n    m1,\n    m2\n)}");
    set->makeObjectsPerformSelector(selector<"poke">());
    set->makeObjectsPerformSelector(selector<"poke:">(), "x"_ns);
  }
  EXPECT_EQ(one->pokes(), 22);
}

TEST(NSSetTest, CopiesOfAnImmutableSetAreItself) {
  const int before = Member::living();
  {
    const Member member = Member::with(1);
    const NSSet set = {member};
    EXPECT_EQ(member->retainCount(), 2u);
    EXPECT_EQ(set->copy(), set);
    const NSMutableSet changing = set->mutableCopy();
    EXPECT_EQ(classOf(changing), NSMutableSet::class_());
    changing->addObject(Member::with(2));
    EXPECT_EQ(listed(set), "m1");
  }
  EXPECT_EQ(Member::living(), before);
}

TEST(NSSetTest, InitialisingAgainReplacesTheMembers) {
  const NSSet set = {"a"_ns, "b"_ns};
  EXPECT_EQ(listed(set->initWithSet(set)), "a b");
  EXPECT_EQ(listed(set->initWithArray({"c"_ns})), "c");
  EXPECT_FALSE(set->containsObject("a"_ns));
}

TEST(NSSetTest, ARaisingMemberMakesNoSet) {
  const int before = Member::living();
  {
    const Member raising = Member::with(1);
    raising->actions().isEqual = [](const id&) -> bool { throw std::runtime_error("isEqual"); };
    EXPECT_EQ(raisedBy([&] { NSSet({Member::with(1), raising}); }), "isEqual");
  }
  EXPECT_EQ(Member::living(), before);
}

}  // namespace
}  // namespace brindle
