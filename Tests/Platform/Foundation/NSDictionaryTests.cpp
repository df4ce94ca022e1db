#include <Brindle/Platform/NSDictionary.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

const char* const kArgument = "NSInvalidArgumentException";

TEST(NSDictionaryTest, Tour) {
  const NSDictionary ages = {{"Ann"_ns, NSNumber(31)}, {"Bo"_ns, NSNumber(27)}};
  EXPECT_EQ(ages->count(), 2u);
  EXPECT_EQ(told(ages->objectForKey(NSString(std::string("Bo")))), "27");
  EXPECT_EQ(told(ages["Ann"_ns]), "31");
  EXPECT_FALSE(ages["Cy"_ns]);
  EXPECT_EQ(listed(ages), "Ann Bo");
  EXPECT_EQ(listed(ages->allValues()), "31 27");
  EXPECT_EQ(told(ages), "{\n    Ann = 31;\n    Bo = 27;\n}");
}

TEST(NSDictionaryTest, MadeInManyWays) {
  const id objects[] = {"1"_ns, "2"_ns};
  const id keys[] = {"a"_ns, "b"_ns};
  EXPECT_EQ(NSDictionary::dictionary()->count(), 0u);
  EXPECT_EQ(NSDictionary::alloc()->init()->count(), 0u);
  EXPECT_EQ(NSDictionary::dictionaryWithObjects(nullptr, nullptr, 0)->count(), 0u);
  EXPECT_EQ(NSDictionary::dictionaryWithDictionary(nullptr)->count(), 0u);
  EXPECT_EQ(NSDictionary::dictionaryWithObjects(NSArray(), NSArray())->count(), 0u);
  const NSDictionary all[] = {
      {{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}},
      NSDictionary::dictionaryWithObjects(objects, keys, 2),
      NSDictionary::dictionaryWithObjects({"1"_ns, "2"_ns}, {"a"_ns, "b"_ns}),
      NSDictionary::dictionaryWithDictionary(
          ClientDictionary::with({{"b", "2"_ns}, {"a", "1"_ns}})),
      NSDictionary::alloc()->initWithObjects(objects, keys, 2),
      NSDictionary::alloc()->initWithDictionary({{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}})};
  for (const NSDictionary& each : all) {
    EXPECT_EQ(listed(each), "a b");
    EXPECT_EQ(listed(each->allValues()), "1 2");
    EXPECT_TRUE(each->isEqual(all[0]));
    EXPECT_EQ(classOf(each), NSDictionary::class_());
  }
  EXPECT_EQ(told(NSDictionary::dictionaryWithObject("v"_ns, "k"_ns)["k"_ns]), "v");
}

TEST(NSDictionaryTest, NilAnswersNothing) {
  const NSDictionary nil;
  EXPECT_EQ(nil->count(), 0u);
  EXPECT_FALSE(nil["a"_ns]);
  EXPECT_FALSE(nil->allKeys());
  EXPECT_FALSE(nil->isEqualToDictionary(nil));
}

TEST(NSDictionaryTest, NilIsNeitherKeyNorValue) {
  EXPECT_EQ(raisedBy([] { NSDictionary::dictionaryWithObject(nullptr, "k"_ns); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSDictionary::dictionaryWithObject("v"_ns, nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSDictionary({{"k"_ns, id()}}); }), kArgument);
  EXPECT_EQ(raisedBy([] {
              NSDictionary::dictionaryWithObjects({"v"_ns}, {"a"_ns, "b"_ns});
            }),
            kArgument);
  EXPECT_EQ(raisedBy([] { NSDictionary::dictionaryWithObjects({"v"_ns}, nullptr); }), kArgument);
  EXPECT_FALSE(NSDictionary({{"k"_ns, "v"_ns}})->objectForKey(nullptr));
  const Member uncopied = Member::with(1);
  uncopied->actions().copy = [] { return id(); };
  EXPECT_EQ(raisedBy([&] { NSDictionary::dictionaryWithObject("v"_ns, uncopied); }), kArgument);
  EXPECT_EQ(raisedBy([] { NSDictionary::dictionaryWithObject("v"_ns, NSObject::new_()); }),
            kArgument)
      << "a key must be able to copy itself";
}

TEST(NSDictionaryTest, KeysAreCopied) {
  const NSMutableString key = NSMutableString(std::string("key"));
  const NSDictionary dictionary = {{key, "v"_ns}};
  key->setString("changed"_ns);
  EXPECT_EQ(told(dictionary["key"_ns]), "v");
  EXPECT_FALSE(dictionary[key]);
  EXPECT_EQ(listed(dictionary), "key");
}

TEST(NSDictionaryTest, OfEqualKeysTheFirstStaysAndTheLastValueCounts) {
  const Member first = Member::with(1);
  const NSDictionary dictionary = {
      {first, "old"_ns}, {"k"_ns, "v"_ns}, {Member::with(1), "new"_ns}};
  EXPECT_EQ(dictionary->count(), 2u);
  EXPECT_EQ(dictionary->allKeys()[0], first);
  EXPECT_EQ(told(dictionary[first]), "new");
}

TEST(NSDictionaryTest, AsksForKeysAndValues) {
  const NSDictionary dictionary = {
      {"a"_ns, Member::with(1)}, {"b"_ns, Member::with(2)}, {"c"_ns, Member::with(1)}};
  EXPECT_EQ(listed(dictionary->allKeysForObject(Member::with(1))), "a c");
  EXPECT_EQ(dictionary->allKeysForObject(Member::with(3))->count(), 0u);
  EXPECT_EQ(dictionary->allKeysForObject(nullptr)->count(), 0u);
  EXPECT_EQ(listed(dictionary->objectsForKeys({"b"_ns, "x"_ns, "b"_ns}, "none"_ns)), "m2 none m2");
  EXPECT_EQ(dictionary->objectsForKeys(nullptr, "none"_ns)->count(), 0u);
  EXPECT_EQ(raisedBy([&] { (void)dictionary->objectsForKeys({"a"_ns}, nullptr); }), kArgument);
  EXPECT_EQ(listed(dictionary->keyEnumerator()), "a b c");
  EXPECT_EQ(listed(dictionary->objectEnumerator()), "m1 m2 m1");
}

TEST(NSDictionaryTest, EqualWhateverTheClassAndOrder) {
  const NSDictionary all[] = {
      {{"a"_ns, Member::with(1)}, {"b"_ns, Member::with(2)}},
      {{"b"_ns, Member::with(2)}, {"a"_ns, Member::with(1)}},
      NSMutableDictionary{{"a"_ns, Member::with(1)}, {"b"_ns, Member::with(2)}},
      ClientDictionary::with({{"a", Member::with(1)}, {"b", Member::with(2)}}),
      ClientMutableDictionary::with({{"a", Member::with(1)}, {"b", Member::with(2)}})};
  for (const NSDictionary& a : all) {
    for (const NSDictionary& b : all) {
      EXPECT_TRUE(a->isEqual(b));
      EXPECT_TRUE(a->isEqualToDictionary(b));
      EXPECT_EQ(a->hash(), b->hash());
    }
    EXPECT_FALSE(a->isEqual(NSDictionary{{"a"_ns, Member::with(1)}, {"c"_ns, Member::with(2)}}));
    EXPECT_FALSE(a->isEqual(NSDictionary{{"a"_ns, Member::with(1)}, {"b"_ns, Member::with(1)}}));
    EXPECT_FALSE(a->isEqual(NSDictionary{{"a"_ns, Member::with(1)}}));
    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_FALSE(a->isEqualToDictionary(nullptr));
    EXPECT_FALSE(a->isEqual(NSArray{"a"_ns, "b"_ns}));
  }
}

TEST(NSDictionaryTest, ClientsOverrideThreeOperations) {
  const auto plain = plainSubclass<NSDictionary>("PlainSubclassOfDictionary");
  const NSDictionary all[] = {
      ClientDictionary::with({{"a", Member::with(1)}, {"b", Member::with(2)}}),
      plain->dictionaryWithObjects({Member::with(1), Member::with(2)}, {"a"_ns, "b"_ns})};
  for (const NSDictionary& each : all) {
    AutoreleasePool pool;
    EXPECT_EQ(each->count(), 2u);
    EXPECT_EQ(listed(each), "a b");
    EXPECT_EQ(listed(each->keyEnumerator()), "a b");
    EXPECT_EQ(listed(each->objectEnumerator()), "m1 m2");
    EXPECT_EQ(listed(each->allKeys()), "a b");
    EXPECT_EQ(listed(each->allValues()), "m1 m2");
    EXPECT_EQ(told(each["b"_ns]), "m2");
    EXPECT_FALSE(each["c"_ns]);
    EXPECT_EQ(listed(each->allKeysForObject(Member::with(2))), "b");
    EXPECT_EQ(listed(each->objectsForKeys({"b"_ns, "c"_ns}, "-"_ns)), "m2 -");
    EXPECT_EQ(told(each), "{\n    a = m1;\n    b = m2;\n}");
    EXPECT_EQ(each->copy(), each);
    EXPECT_EQ(listed(each->mutableCopy()->allValues()), "m1 m2");
  }
}

TEST(NSDictionaryTest, KeepsTheOrderOfManyKeys) {
  for (const int count : {1, 8, 9, 16, 17, 33, 1000}) {
    std::vector<id> keys;
    for (int i = 0; i < count; ++i) keys.push_back(Member::with((i * 7919) % 10007));
    const auto dictionary =
        NSDictionary::dictionaryWithObjects(keys.data(), keys.data(), keys.size());
    ASSERT_EQ(dictionary->count(), keys.size());
    EXPECT_TRUE(
        dictionary->allKeys()->isEqual(NSArray::arrayWithObjects(keys.data(), keys.size())));
    for (const id& key : keys) EXPECT_EQ(dictionary[key], key);
    EXPECT_FALSE(dictionary[Member::with(-1)]);
  }
}

TEST(NSDictionaryTest, KeysOfOneHashAreToldApart) {
  std::vector<id> keys;
  for (int i = 0; i < 100; ++i) {
    const Member key = Member::with(i);
    key->actions().hash = [] { return NSUInteger{7}; };
    keys.push_back(key);
  }
  const auto dictionary =
      NSDictionary::dictionaryWithObjects(keys.data(), keys.data(), keys.size());
  for (const id& key : keys) EXPECT_EQ(dictionary[key], key);
}

TEST(NSDictionaryTest, AKeyThatChangesTheArraysItCameFrom) {
  const Member greedy = Member::with(1);
  const NSMutableArray keys = {greedy, Member::with(2)};
  const NSMutableArray objects = {Member::with(3), Member::with(4)};
  greedy->actions().copy = [&]() -> id {
    keys->removeAllObjects();
    objects->removeAllObjects();
    return "greedy"_ns;
  };
  const auto dictionary = NSDictionary::dictionaryWithObjects(objects, keys);
  EXPECT_EQ(listed(dictionary), "greedy m2");
  EXPECT_EQ(listed(dictionary->allValues()), "m3 m4");
}

TEST(NSDictionaryTest, InitialisingAgainReplacesTheEntries) {
  const NSDictionary dictionary = {{"a"_ns, "1"_ns}, {"b"_ns, "2"_ns}};
  EXPECT_EQ(listed(dictionary->initWithDictionary(dictionary)), "a b");
  EXPECT_EQ(listed(dictionary->initWithDictionary({{"c"_ns, "3"_ns}})), "c");
  EXPECT_FALSE(dictionary["a"_ns]);
}

TEST(NSDictionaryTest, ARaisingKeyMakesNoDictionary) {
  const int before = Member::living();
  {
    const Member raising = Member::with(2);
    raising->actions().hash = []() -> NSUInteger { throw std::runtime_error("hash"); };
    EXPECT_EQ(raisedBy([&] {
                NSDictionary({{Member::with(1), "v"_ns}, {raising, "v"_ns}});
              }),
              "hash");
    const NSDictionary dictionary = {{Member::with(1), "v"_ns}};
    EXPECT_EQ(raisedBy([&] { (void)dictionary[raising]; }), "hash");
    EXPECT_EQ(told(dictionary[Member::with(1)]), "v");
    const Member angry = Member::with(1);
    angry->actions().isEqual = [](const id&) -> bool { throw std::runtime_error("isEqual"); };
    EXPECT_EQ(raisedBy([&] { (void)dictionary[angry]; }), "isEqual");
    EXPECT_EQ(told(dictionary[Member::with(1)]), "v");
  }
  EXPECT_EQ(Member::living(), before);
}

TEST(NSDictionaryTest, CopiesOfAnImmutableDictionaryAreItself) {
  const int before = Member::living();
  {
    const Member value = Member::with(1);
    const NSDictionary dictionary = {{"a"_ns, value}};
    EXPECT_EQ(value->retainCount(), 2u);
    EXPECT_EQ(dictionary->copy(), dictionary);
    const NSMutableDictionary changing = dictionary->mutableCopy();
    EXPECT_EQ(classOf(changing), NSMutableDictionary::class_());
    changing->setObject("other"_ns, "a"_ns);
    EXPECT_EQ(dictionary["a"_ns], value);
    EXPECT_EQ(value->retainCount(), 2u);
  }
  EXPECT_EQ(Member::living(), before);
}

TEST(NSDictionaryTest, ManyThreadsAskAtOnce) {
  std::vector<id> keys;
  for (int i = 0; i < 100; ++i) keys.push_back(Member::with(i));
  const auto dictionary =
      NSDictionary::dictionaryWithObjects(keys.data(), keys.data(), keys.size());
  std::vector<std::thread> threads;
  std::vector<int> found(4);
  for (int& count : found) {
    threads.emplace_back([&count, &dictionary, &keys] {
      for (const id& key : dictionary) count += dictionary[key] == key ? 1 : 0;
      for (const id& key : keys) count += dictionary->objectForKey(key) ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(found, std::vector<int>(4, 200));
}

}  // namespace
}  // namespace brindle
