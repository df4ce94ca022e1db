#include <Brindle/Platform/NSFastEnumeration.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kGeneric = "NSGenericException";

TEST(NSFastEnumerationTest, Tour) {
  std::string seen;
  for (const id& colour : NSArray{"red"_ns, "green"_ns})
    seen += std::string(cast<NSString>(colour));
  EXPECT_EQ(seen, "redgreen");
  const NSMutableArray changing = {"a"_ns, "b"_ns};
  EXPECT_EQ(raisedBy([&] {
              for (const id& x : changing) changing->addObject(x);
            }),
            kGeneric);
}

TEST(NSFastEnumerationTest, NilAndEmptyHaveNothing) {
  EXPECT_EQ(listed(NSArray()), "");
  EXPECT_EQ(listed(NSDictionary()), "");
  EXPECT_EQ(listed(NSSet()), "");
  EXPECT_EQ(listed(NSEnumerator()), "");
  EXPECT_EQ(listed(NSArray::array()), "");
  EXPECT_EQ(listed(NSMutableDictionary::dictionary()), "");
  EXPECT_EQ(listed(NSMutableSet::set()), "");
  EXPECT_EQ(listed(ClientArray::with({})), "");
  EXPECT_EQ(listed(ClientSet::with({})), "");
  EXPECT_EQ(listed(NSArray::array()->objectEnumerator()), "");
}

// A collection of `count` members, kept alive by the loop alone.
NSMutableArray arrayOf(int count) {
  const auto array = NSMutableArray::array();
  for (int i = 0; i < count; ++i) array->addObject(Member::with(i));
  return array;
}
NSMutableSet setOf(int count) { return NSMutableSet::setWithArray(arrayOf(count)); }
NSMutableDictionary dictionaryOf(int count) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (const id& key : arrayOf(count)) dictionary->setObject("value"_ns, key);
  return dictionary;
}
ClientArray clientArrayOf(int count) {
  std::vector<id> members;
  for (const id& member : arrayOf(count)) members.push_back(member);
  return ClientArray::with(members);
}

TEST(NSFastEnumerationTest, TheLoopKeepsATemporary) {
  const int before = Member::living();
  for (const int count : {1, 15, 16, 17, 32, 33, 100}) {
    AutoreleasePool pool;
    const std::string all = listed(arrayOf(count));
    EXPECT_EQ(listed(setOf(count)), all) << count;
    EXPECT_EQ(listed(dictionaryOf(count)), all) << count;
    EXPECT_EQ(listed(clientArrayOf(count)), all) << count;
    EXPECT_EQ(listed(arrayOf(count)->objectEnumerator()), all) << count;
  }
  EXPECT_EQ(Member::living(), before);
}

// Changes the collection while member `at` of `count` is seen, and tells what came of it.
template <class Collection, class Change>
std::string changedAt(const Collection& collection, int at, const Change& change) {
  int seen = 0;
  const std::string raised = raisedBy([&] {
    for (const id& member : collection) {
      if (static_cast<void>(member), seen++ == at) change(collection);
    }
  });
  return raised + " after " + std::to_string(seen);
}

TEST(NSFastEnumerationTest, AChangeRaisesBeforeTheNextMember) {
  const id extra = Member::with(-1);
  const auto grow = [&](const NSMutableArray& a) { a->addObject(extra); };
  const auto empty = [](const auto& a) { a->removeAllObjects(); };
  const auto growSet = [&](const NSMutableSet& s) { s->addObject(extra); };
  const auto growDictionary = [&](const NSMutableDictionary& d) { d->setObject(extra, extra); };
  for (const int count : {2, 15, 16, 17, 33}) {
    for (int at = 0; at + 1 < count; ++at) {
      const std::string wanted = kGeneric + (" after " + std::to_string(at + 1));
      EXPECT_EQ(changedAt(arrayOf(count), at, grow), wanted) << count;
      EXPECT_EQ(changedAt(arrayOf(count), at, empty), wanted) << count;
      EXPECT_EQ(changedAt(setOf(count), at, growSet), wanted) << count;
      EXPECT_EQ(changedAt(setOf(count), at, empty), wanted) << count;
      EXPECT_EQ(changedAt(dictionaryOf(count), at, growDictionary), wanted) << count;
      EXPECT_EQ(changedAt(dictionaryOf(count), at, empty), wanted) << count;
    }
  }
}

TEST(NSFastEnumerationTest, AfterTheLastMemberAChangeIsNoHarm) {
  const auto empty = [](const auto& a) { a->removeAllObjects(); };
  const auto drop = [](const NSMutableArray& a) { a->removeLastObject(); };
  for (const int count : {1, 15, 16, 17, 32, 33}) {
    const std::string wanted = " after " + std::to_string(count);
    EXPECT_EQ(changedAt(arrayOf(count), count - 1, empty), wanted);
    EXPECT_EQ(changedAt(arrayOf(count), count - 1, drop), wanted);
    EXPECT_EQ(changedAt(setOf(count), count - 1, empty), wanted);
    EXPECT_EQ(changedAt(dictionaryOf(count), count - 1, empty), wanted);
  }
}

TEST(NSFastEnumerationTest, InitialisingAgainIsAChange) {
  const auto array = arrayOf(3);
  const auto set = setOf(20);
  const auto dictionary = dictionaryOf(20);
  EXPECT_EQ(raisedBy([&] {
              for ([[maybe_unused]] const id& x : array) array->init();
            }),
            kGeneric);
  EXPECT_EQ(raisedBy([&] {
              for ([[maybe_unused]] const id& x : set) set->init();
            }),
            kGeneric);
  EXPECT_EQ(raisedBy([&] {
              for ([[maybe_unused]] const id& x : dictionary) dictionary->init();
            }),
            kGeneric);
}

TEST(NSFastEnumerationTest, AMemberAddedAtTheLastIsANextOne) {
  const id extra = Member::with(-1);
  EXPECT_EQ(changedAt(arrayOf(3), 2, [&](const auto& a) { a->addObject(extra); }),
            kGeneric + std::string(" after 3"));
  EXPECT_EQ(changedAt(setOf(3), 2, [&](const auto& s) { s->addObject(extra); }),
            kGeneric + std::string(" after 3"));
}

TEST(NSFastEnumerationTest, TheRaiseNamesTheCollection) {
  std::string text;
  try {
    const auto array = arrayOf(2);
    for (const id& x : array) array->removeObject(id(x));
  } catch (const std::exception& raised) {
    text = raised.what();
  }
  EXPECT_NE(text.find("NSMutableArray"), std::string::npos) << text;
  EXPECT_NE(text.find("mutated while being enumerated"), std::string::npos) << text;
}

TEST(NSFastEnumerationTest, LoopsNestAndLeaveEarly) {
  const auto set = setOf(20);
  int pairs = 0;
  for (const id& a : set) {
    for (const id& b : set) pairs += a == b ? 1 : 0;
  }
  EXPECT_EQ(pairs, 20);
  for (const id& a : set) {
    if (a) break;
  }
  set->removeAllObjects();
  EXPECT_EQ(set->count(), 0u);
}

TEST(NSFastEnumerationTest, MembersOfAClientsClassLiveAsLongAsTheLoop) {
  AutoreleasePool pool;
  const auto array = ClientMutableArray::with({Member::with(1), Member::with(2), Member::with(3)});
  std::string seen;
  for (const id& member : array) {
    array->replaceObjectAtIndex(0, "other"_ns);
    seen += told(member);
  }
  EXPECT_EQ(seen, "m1m2m3");
}

TEST(NSFastEnumerationTest, TwoLoopsShareAnEnumerator) {
  const NSEnumerator members = arrayOf(5)->objectEnumerator();
  std::string outer;
  for (const id& first : members) {
    outer += told(first);
    EXPECT_EQ(listed(members), "m1 m2 m3 m4");
  }
  EXPECT_EQ(outer, "m0");
}

}  // namespace
}  // namespace brindle
