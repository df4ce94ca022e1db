#include <Brindle/Platform/NSMutableDictionary.h>

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/NSMutableString.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kArgument = "NSInvalidArgumentException";

TEST(NSMutableDictionaryTest, Tour) {
  const auto ages = NSMutableDictionary::dictionary();
  ages->setObject("31"_ns, "Ann"_ns);
  ages->setObject("27"_ns, "Bo"_ns);
  ages->setObject("32"_ns, "Ann"_ns);
  EXPECT_EQ(listed(ages), "Ann Bo");
  EXPECT_EQ(told(ages["Ann"_ns]), "32");
  ages->removeObjectForKey("Ann"_ns);
  EXPECT_EQ(listed(ages->allValues()), "27");
}

TEST(NSMutableDictionaryTest, MadeInManyWays) {
  for (const NSMutableDictionary& made :
       {NSMutableDictionary::dictionary(), NSMutableDictionary::dictionaryWithCapacity(3),
        NSMutableDictionary::dictionaryWithCapacity(~NSUInteger{0}), NSMutableDictionary::new_(),
        NSMutableDictionary::dictionaryWithDictionary(nullptr)}) {
    EXPECT_EQ(classOf(made), NSMutableDictionary::class_());
    made->setObject("v"_ns, "k"_ns);
    EXPECT_EQ(made->count(), 1u);
  }
  const NSMutableDictionary braces = {{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}};
  EXPECT_EQ(classOf(braces), NSMutableDictionary::class_());
  EXPECT_EQ(listed(braces), "a b");
  const auto made = NSMutableDictionary::dictionaryWithObjects({"1"_ns, "2"_ns}, {"a"_ns, "b"_ns});
  EXPECT_TRUE(made->isEqual(braces));
  made->removeObjectForKey("b"_ns);
  EXPECT_TRUE(made->isEqual(NSMutableDictionary::dictionaryWithObject("1"_ns, "a"_ns)));
}

TEST(NSMutableDictionaryTest, RefusesNil) {
  const NSMutableDictionary dictionary = {{"a"_ns, "1"_ns}};
  EXPECT_EQ(raisedBy([&] { dictionary->setObject(nullptr, "k"_ns); }), kArgument);
  EXPECT_EQ(raisedBy([&] { dictionary->setObject("v"_ns, nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([&] { dictionary->removeObjectForKey(nullptr); }), kArgument);
  const Member uncopied = Member::with(1);
  uncopied->actions().copy = [] { return id(); };
  EXPECT_EQ(raisedBy([&] { dictionary->setObject("v"_ns, uncopied); }), kArgument);
  dictionary->addEntriesFromDictionary(nullptr);
  dictionary->removeObjectsForKeys(nullptr);
  EXPECT_EQ(listed(dictionary), "a");
  dictionary->setDictionary(nullptr);
  EXPECT_EQ(dictionary->count(), 0u);
}

TEST(NSMutableDictionaryTest, AnEqualKeyStays) {
  const Member first = Member::with(1);
  const NSMutableDictionary dictionary = {{first, "old"_ns}};
  dictionary->setObject("new"_ns, Member::with(1));
  EXPECT_EQ(dictionary->allKeys()[0], first);
  EXPECT_EQ(told(dictionary[first]), "new");
  const NSMutableString key = NSMutableString(std::string("key"));
  dictionary->setObject("v"_ns, key);
  key->appendString("s"_ns);
  EXPECT_EQ(listed(dictionary), "m1 key");
}

// What every mutable dictionary can do with strings as keys, whoever wrote it.
void tryEverything(const NSMutableDictionary& dictionary) {
  AutoreleasePool pool;
  dictionary->setDictionary({{"a"_ns, Member::with(1)}, {"b"_ns, Member::with(2)}});
  dictionary->addEntriesFromDictionary({{"b"_ns, Member::with(3)}, {"c"_ns, Member::with(4)}});
  EXPECT_EQ(listed(dictionary), "a b c");
  EXPECT_EQ(listed(dictionary->allValues()), "m1 m3 m4");
  dictionary->addEntriesFromDictionary(dictionary);
  dictionary->setDictionary(dictionary);
  EXPECT_EQ(listed(dictionary->allValues()), "m1 m3 m4");
  EXPECT_EQ(listed(dictionary->objectEnumerator()), "m1 m3 m4");
  const auto copy = cast<NSDictionary>(dictionary->copy());
  EXPECT_EQ(classOf(copy), NSDictionary::class_());
  const NSMutableDictionary changing = dictionary->mutableCopy();
  EXPECT_TRUE(copy->isEqual(dictionary));
  dictionary->removeObjectForKey("a"_ns);
  dictionary->removeObjectForKey("unknown"_ns);
  dictionary->removeObjectsForKeys({"c"_ns, "unknown"_ns});
  EXPECT_EQ(listed(dictionary), "b");
  EXPECT_EQ(listed(copy), "a b c");
  EXPECT_EQ(listed(changing), "a b c");
  EXPECT_FALSE(copy->isEqual(dictionary));
  dictionary->removeAllObjects();
  EXPECT_EQ(dictionary->count(), 0u);
  EXPECT_EQ(listed(dictionary), "");
  EXPECT_FALSE(dictionary["b"_ns]);
}

TEST(NSMutableDictionaryTest, EveryClassDoesEverything) {
  const int before = Member::living();
  const auto plain = plainSubclass<NSMutableDictionary>("PlainSubclassOfMutableDictionary");
  tryEverything(NSMutableDictionary::dictionary());
  tryEverything(ClientMutableDictionary::with({}));
  tryEverything(plain->dictionary());
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableDictionaryTest, ClassOperationsMakeAClientsDictionary) {
  const auto cls = ClientMutableDictionary::class_();
  const NSDictionary entries = {{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}};
  EXPECT_EQ(listed(cls->dictionaryWithDictionary(entries)), "a b");
  EXPECT_EQ(listed(cls->dictionaryWithObject("v"_ns, "k"_ns)), "k");
  EXPECT_EQ(listed(cls->dictionaryWithObjects({"1"_ns}, {"x"_ns})), "x");
  EXPECT_EQ(cls->dictionaryWithCapacity(5)->count(), 0u);
}

TEST(NSMutableDictionaryTest, TheOrderIsThatOfComing) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (int i = 0; i < 20; ++i) dictionary->setObject("v"_ns, Member::with(i));
  for (int i = 1; i < 20; ++i) dictionary->removeObjectForKey(Member::with(i));
  for (int i = 30; i < 33; ++i) dictionary->setObject("v"_ns, Member::with(i));
  dictionary->setObject("w"_ns, Member::with(0));
  dictionary->setObject("v"_ns, Member::with(5));
  EXPECT_EQ(listed(dictionary), "m0 m30 m31 m32 m5");
}

// --- Keys and values with a will of their own ----------------------------------------------------

TEST(NSMutableDictionaryTest, AKeyThatEmptiesTheDictionaryWhenAsked) {
  for (const int size : {3, 8, 9, 50}) {
    for (const int operation : {0, 1, 2}) {
      const auto dictionary = NSMutableDictionary::dictionary();
      for (int i = 0; i < size; ++i) dictionary->setObject(Member::with(i), Member::with(i));
      const Member asking = Member::with(2);
      asking->actions().isEqual = [&](const id&) {
        dictionary->removeAllObjects();
        return true;
      };
      if (operation == 0) {
        EXPECT_FALSE(dictionary[asking]);
      }
      if (operation == 1) dictionary->removeObjectForKey(asking);
      if (operation == 2) dictionary->setObject("v"_ns, asking);
      EXPECT_EQ(dictionary->count(), operation == 2 ? 1u : 0u);
    }
  }
}

TEST(NSMutableDictionaryTest, AKeyThatFillsTheDictionaryWhenAsked) {
  const auto dictionary = NSMutableDictionary::dictionary();
  dictionary->setObject("v"_ns, Member::with(2));
  const Member asking = Member::with(2);
  asking->actions().isEqual = [&, asked = false](const id& other) mutable {
    for (int i = 100; i < 150 && !asked; ++i) dictionary->setObject("v"_ns, Member::with(i));
    asked = true;
    return told(other) == "m2";
  };
  EXPECT_EQ(told(dictionary[asking]), "v");
  EXPECT_EQ(dictionary->count(), 51u);
}

TEST(NSMutableDictionaryTest, AKeyThatAlwaysChangesTheDictionaryRaises) {
  const auto dictionary = NSMutableDictionary::dictionary();
  dictionary->setObject("v"_ns, Member::with(2));
  const Member asking = Member::with(2);
  asking->actions().isEqual = [&](const id&) {
    dictionary->setObject("v"_ns, NSObject::new_()->description());
    return false;
  };
  EXPECT_EQ(raisedBy([&] { (void)dictionary[asking]; }), "NSGenericException");
  EXPECT_EQ(told(dictionary[Member::with(2)]), "v");
}

TEST(NSMutableDictionaryTest, AHashThatChangesTheDictionary) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (int i = 0; i < 20; ++i) dictionary->setObject("v"_ns, Member::with(i));
  const Member asking = Member::with(7);
  asking->actions().hash = [&] {
    dictionary->removeAllObjects();
    return NSUInteger{7};
  };
  dictionary->removeObjectForKey(asking);
  EXPECT_EQ(dictionary->count(), 0u);
  for (int i = 0; i < 20; ++i) dictionary->setObject("v"_ns, Member::with(i));
  dictionary->setObject("new"_ns, asking);
  EXPECT_EQ(listed(dictionary), "m7");
  const NSObject other = NSObject::new_();
  dictionary->removeAllObjects();
  EXPECT_FALSE(dictionary[other->description()]);
}

TEST(NSMutableDictionaryTest, AHashThatChangesLater) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (int i = 0; i < 20; ++i) dictionary->setObject("v"_ns, Member::with(i));
  const Member key = uncheckedCast<Member>(dictionary->allKeys()[3]);
  key->actions().hash = [] { return NSUInteger{999}; };
  EXPECT_FALSE(dictionary[key]) << "lost, as the key's class broke its word";
  EXPECT_EQ(listed(dictionary->allKeys()), listed(dictionary));
  EXPECT_EQ(cast<NSDictionary>(dictionary->copy())->count(), 20u);
  EXPECT_EQ(told(cast<NSDictionary>(dictionary->copy())[key]), "v");
  dictionary->setDictionary(dictionary);
  EXPECT_EQ(told(dictionary[key]), "v");
}

TEST(NSMutableDictionaryTest, TheEndOfAValueFindsTheDictionaryWhole) {
  const int before = Member::living();
  const auto dictionary = NSMutableDictionary::dictionary();
  std::string seen;
  const auto put = [&](const NSString& key) {
    const Member value = Member::with(0);
    value->actions().end = [&, key] {
      seen += std::to_string(dictionary->count()) + (dictionary[key] ? "+" : "-");
      if (dictionary->count() < 2) dictionary->setObject("late"_ns, "late"_ns);
    };
    dictionary->setObject(value, key);
  };
  put("a"_ns);
  put("b"_ns);
  dictionary->setObject("x"_ns, "a"_ns);
  dictionary->removeObjectForKey("b"_ns);
  EXPECT_EQ(seen, "2+1-");
  EXPECT_EQ(listed(dictionary), "a late");
  put("c"_ns);
  dictionary->removeAllObjects();
  EXPECT_EQ(seen, "2+1-0-");
  EXPECT_EQ(listed(dictionary), "late");
  dictionary->removeAllObjects();
  put("c"_ns);
  dictionary->removeObjectForKey("c"_ns);
  EXPECT_EQ(listed(dictionary), "late");
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableDictionaryTest, WhatTheEndsOfValuesRaiseLeavesTheRemoval) {
  const int before = Member::living();
  const auto dictionary = NSMutableDictionary::dictionary();
  for (int i = 0; i < 20; ++i) {
    const Member member = Member::with(i);
    member->actions().end = [i] { throw std::runtime_error("end " + std::to_string(i)); };
    dictionary->setObject(member, member->description());
  }
  EXPECT_EQ(raisedBy([&] { dictionary->removeAllObjects(); }), "end 0");
  EXPECT_EQ(dictionary->count(), 0u);
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableDictionaryTest, TheEndsOfEntriesOfADyingDictionaryFindItEmpty) {
  NSMutableDictionary dictionary = NSMutableDictionary::dictionary();
  ObjectRecord* lent = dictionary.record();
  std::string seen;
  for (int i = 0; i < 3; ++i) {
    const Member value = Member::with(i);
    value->actions().end = [&seen, lent] {
      const auto dying = borrow<NSMutableDictionary>(lent);
      seen += std::to_string(dying->count()) + (dying["k"_ns] ? "+" : "-");
    };
    dictionary->setObject(value, value->description());
  }
  dictionary = nullptr;
  EXPECT_EQ(seen, "0-0-0-");
}

TEST(NSMutableDictionaryTest, ARaisingKeyLeavesTheDictionary) {
  for (const int size : {2, 20}) {
    const auto dictionary = NSMutableDictionary::dictionary();
    for (int i = 0; i < size; ++i) dictionary->setObject("v"_ns, Member::with(i));
    const std::string all = listed(dictionary);
    const Member hashless = Member::with(1);
    hashless->actions().hash = []() -> NSUInteger { throw std::runtime_error("raised"); };
    const Member angry = Member::with(1);
    angry->actions().isEqual = [](const id&) -> bool { throw std::runtime_error("raised"); };
    for (const Member& key : {hashless, angry}) {
      EXPECT_EQ(raisedBy([&] { dictionary->setObject("w"_ns, key); }), "raised");
      EXPECT_EQ(raisedBy([&] { dictionary->removeObjectForKey(key); }), "raised");
      EXPECT_EQ(raisedBy([&] { (void)dictionary[key]; }), "raised");
    }
    EXPECT_EQ(listed(dictionary), all);
    EXPECT_EQ(told(dictionary[Member::with(1)]), "v");
    dictionary->removeObjectForKey(Member::with(1));
    EXPECT_EQ(dictionary->count(), static_cast<NSUInteger>(size - 1));
  }
}

// --- Against a model -----------------------------------------------------------------------------

void runRandomProgram(unsigned seed, int steps, int keys) {
  std::mt19937 random(seed);
  const auto below = [&random](int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
  };
  const auto dictionary = NSMutableDictionary::dictionary();
  std::unordered_map<int, int> model;
  for (int step = 0; step < steps; ++step) {
    const int key = below(keys);
    const int value = below(1000);
    const int operation = below(step / 1000 % 2 == 0 ? 4 : 6);  // it grows and shrinks in turns
    if (operation < 3) {
      dictionary->setObject(Member::with(value), Member::with(key));
      model[key] = value;
    } else if (operation == 3) {
      const id found = dictionary[Member::with(key)];
      ASSERT_EQ(static_cast<bool>(found), model.contains(key));
      ASSERT_EQ(uncheckedCast<Member>(found)->number(), found ? model[key] : 0);
    } else {
      dictionary->removeObjectForKey(Member::with(key));
      model.erase(key);
    }
    if (below(5000) == 0) {
      dictionary->removeAllObjects();
      model.clear();
    }
    ASSERT_EQ(dictionary->count(), model.size());
  }
  std::size_t seen = 0;
  for (const id& key : dictionary) {
    const int number = uncheckedCast<Member>(key)->number();
    ASSERT_TRUE(model.contains(number));
    ASSERT_EQ(uncheckedCast<Member>(dictionary[key])->number(), model[number]);
    ++seen;
  }
  EXPECT_EQ(seen, model.size());
}

TEST(NSMutableDictionaryTest, DoesWhatAHashTableDoes) {
  const int before = Member::living();
  for (const int keys : {3, 10, 30, 300, 10000}) runRandomProgram(1, 10000, keys);
  EXPECT_EQ(Member::living(), before);
}

TEST(NSMutableDictionaryTest, AQueueDoesNotGrow) {
  const auto dictionary = NSMutableDictionary::dictionary();
  for (int i = 0; i < 100000; ++i) {
    dictionary->setObject("v"_ns, Member::with(i));
    if (i >= 10) dictionary->removeObjectForKey(Member::with(i - 10));
  }
  EXPECT_EQ(listed(dictionary).substr(0, 13), "m99990 m99991");
  EXPECT_EQ(dictionary->count(), 10u);
}

}  // namespace
}  // namespace brindle
