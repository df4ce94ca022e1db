#include <Brindle/Platform/NSEnumerator.h>

#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kGeneric = "NSGenericException";

/// Counts from its limit down to 1.
class Countdown : public Interface<Countdown, NSEnumerator> {
 public:
  using Interface::Interface;
  static ClassPair<Countdown> classPair;
  static Countdown from(int limit);
};

struct Fields {
  int left = 0;
};

constexpr MethodDefinition kMethods[] = {
    method<"nextObject">([](const Countdown& self) -> id {
      int& left = fieldsOf<Fields>(self).left;
      if (left == 0) return nullptr;
      return Member::with(left--);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "EnumeratorTestCountdown", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

constinit ClassPair<Countdown> Countdown::classPair{kDefinition};

Countdown Countdown::from(int limit) {
  auto made = Countdown::new_();
  fieldsOf<Fields>(made).left = limit;
  return made;
}

NSArray letters() { return {"a"_ns, "b"_ns, "c"_ns}; }

TEST(NSEnumeratorTest, Tour) {
  const NSEnumerator all = letters()->objectEnumerator();
  std::string seen;
  while (id letter = all->nextObject()) seen += told(letter);
  EXPECT_EQ(seen, "abc");
  EXPECT_EQ(listed(letters()->reverseObjectEnumerator()), "c b a");
}

TEST(NSEnumeratorTest, OnceAtTheEndItStaysThere) {
  const auto array = NSMutableArray::arrayWithArray(letters());
  for (const NSEnumerator& all : {array->objectEnumerator(), array->reverseObjectEnumerator(),
                                  NSSet::setWithArray(array)->objectEnumerator()}) {
    EXPECT_EQ(all->allObjects()->count(), 3u);
    EXPECT_FALSE(all->nextObject());
    EXPECT_FALSE(all->nextObject());
    EXPECT_EQ(all->allObjects()->count(), 0u);
    EXPECT_EQ(listed(all), "");
  }
}

TEST(NSEnumeratorTest, AllObjectsAreThoseStillToCome) {
  const NSEnumerator all = letters()->objectEnumerator();
  all->nextObject();
  EXPECT_TRUE(all->allObjects()->isEqual(NSArray{"b"_ns, "c"_ns}));
  EXPECT_FALSE(NSEnumerator()->allObjects());
  EXPECT_FALSE(NSEnumerator()->nextObject());
}

TEST(NSEnumeratorTest, KeepsItsCollection) {
  const int before = Member::living();
  NSEnumerator members = NSArray { Member::with(1), Member::with(2) } -> objectEnumerator();
  NSEnumerator backwards = NSArray { Member::with(3) } -> reverseObjectEnumerator();
  NSEnumerator keys = NSDictionary {
    { Member::with(4), "v"_ns }
    } -> keyEnumerator();
  NSEnumerator values = NSDictionary {
    { "k"_ns, Member::with(5) }
    } -> objectEnumerator();
  EXPECT_EQ(Member::living(), before + 5);
  EXPECT_EQ(listed(members), "m1 m2");
  EXPECT_EQ(listed(backwards), "m3");
  EXPECT_EQ(listed(keys), "m4");
  EXPECT_EQ(listed(values), "m5");
  EXPECT_EQ(Member::living(), before) << "at its end it lets the collection go";
}

TEST(NSEnumeratorTest, AChangedCollectionRaisesAtTheNextMember) {
  const auto array = NSMutableArray::arrayWithArray(letters());
  const auto set = NSMutableSet::setWithArray(array);
  const NSMutableDictionary dictionary = {{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}};
  const NSEnumerator all[] = {array->objectEnumerator(), array->reverseObjectEnumerator(),
                              set->objectEnumerator(), dictionary->keyEnumerator(),
                              dictionary->objectEnumerator()};
  for (const NSEnumerator& each : all) EXPECT_TRUE(each->nextObject());
  array->addObject("d"_ns);
  set->removeAllObjects();
  dictionary->removeAllObjects();
  for (const NSEnumerator& each : all) {
    EXPECT_EQ(raisedBy([&] { each->nextObject(); }), kGeneric);
    EXPECT_EQ(raisedBy([&] { each->allObjects(); }), kGeneric);
  }
}

TEST(NSEnumeratorTest, AfterTheLastMemberAChangeIsNoHarm) {
  const auto array = NSMutableArray::arrayWithArray(letters());
  const auto set = NSMutableSet::setWithArray(array);
  const NSEnumerator all[] = {array->objectEnumerator(), array->reverseObjectEnumerator(),
                              set->objectEnumerator()};
  for (const NSEnumerator& each : all) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(each->nextObject());
  }
  array->removeAllObjects();
  set->addObject("d"_ns);
  for (const NSEnumerator& each : all) EXPECT_FALSE(each->nextObject());
}

TEST(NSEnumeratorTest, AClientsCollectionThatShrinksRaises) {
  const auto array = ClientMutableArray::with({Member::with(1), Member::with(2), Member::with(3)});
  const NSEnumerator forwards = array->objectEnumerator();
  const NSEnumerator backwards = array->reverseObjectEnumerator();
  forwards->nextObject();
  array->removeObjectAtIndex(2);
  EXPECT_EQ(told(forwards->nextObject()), "m2");
  EXPECT_EQ(raisedBy([&] { forwards->nextObject(); }), kGeneric);
  EXPECT_EQ(raisedBy([&] { backwards->nextObject(); }), kGeneric);
}

TEST(NSEnumeratorTest, OutlivesThePoolsInWhichItIsAsked) {
  const NSEnumerator members =
      ClientArray::with({Member::with(1), Member::with(2)})->objectEnumerator();
  for (int i = 1; i <= 2; ++i) {
    AutoreleasePool pool;
    EXPECT_EQ(told(members->nextObject()), "m" + std::to_string(i));
  }
  AutoreleasePool pool;
  EXPECT_FALSE(members->nextObject());
}

TEST(NSEnumeratorTest, SubclassesSayWhatComesNext) {
  const int before = Member::living();
  EXPECT_EQ(listed(Countdown::from(20)).substr(0, 11), "m20 m19 m18");
  EXPECT_EQ(Countdown::from(20)->allObjects()->count(), 20u);
  const auto counting = Countdown::from(3);
  for (const id& member : counting) {
    if (told(member) == "m2") break;
  }
  EXPECT_EQ(told(counting->nextObject()), "m1") << "a loop asks for no more than it uses";
  EXPECT_EQ(raisedBy([] { NSEnumerator::new_()->nextObject(); }), "NSInvalidArgumentException");
  EXPECT_LE(Member::living(), before + 1);
}

}  // namespace
}  // namespace brindle
