#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSEnumerator.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

/// The dictionaries that an observer of the key is handed while the body runs, first to last.
template <class Body>
std::vector<NSDictionary> changes(const WatchedPerson& person, const NSString& key,
                                  NSUInteger options, Body body) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  std::vector<NSDictionary> all;
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    all.push_back(change);
  });
  addObserver(person, recorder, key, options);
  body();
  removeObserver(person, recorder, key);
  return all;
}

TEST(ChangeDictionary, IsADictionaryLikeAnyOther) {
  const WatchedPerson ann = WatchedPerson::new_();
  const NSDictionary change = changes(ann, "age"_ns, kNew | kOld, [&] { ann->setAge(5); }).front();
  const NSDictionary same = {
      {"kind"_ns, NSNumber(1)}, {"old"_ns, NSNumber(0)}, {"new"_ns, NSNumber(5)}};
  EXPECT_TRUE(isa<NSDictionary>(change));
  EXPECT_EQ(change->count(), 3U);
  EXPECT_TRUE(change->isEqual(same));
  EXPECT_TRUE(same->isEqual(change));
  EXPECT_EQ(change->hash(), same->hash());
  EXPECT_EQ(std::string(change->description()), std::string(same->description()));
  EXPECT_TRUE(change->copy()->isEqual(same));
  const auto changed = cast<NSMutableDictionary>(change->mutableCopy());
  changed->setObject("more"_ns, "extra"_ns);
  EXPECT_EQ(changed->count(), 4U);
  EXPECT_EQ(change->count(), 3U);
}

TEST(ChangeDictionary, FindsKeysByTheirText) {
  const WatchedPerson ann = WatchedPerson::new_();
  const NSDictionary change = changes(ann, "age"_ns, kNew, [&] { ann->setAge(5); }).front();
  const auto made = cast<NSMutableString>(NSMutableString::string());
  made->setString("new"_ns);
  EXPECT_TRUE(change->objectForKey(made)->isEqual(NSNumber(5)));
  EXPECT_TRUE(change->objectForKey("kind"_ns)->isEqual(NSNumber(1)));
  EXPECT_EQ(change->objectForKey("old"_ns), nullptr);
  EXPECT_EQ(change->objectForKey("indexes"_ns), nullptr);
  EXPECT_EQ(change->objectForKey("none"_ns), nullptr);
  EXPECT_EQ(change->objectForKey(NSNumber(1)), nullptr);
  EXPECT_EQ(change->objectForKey(id()), nullptr);
}

TEST(ChangeDictionary, EnumeratesWhatItHas) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setItems(NSArray{"a"_ns});
  const std::vector<NSDictionary> told =
      changes(ann, "items"_ns, kNew | kOld | kPrior, [&] { ann->replaceItem(0, "b"_ns); });
  ASSERT_EQ(told.size(), 2U);
  const auto keys = [](const NSDictionary& change) {
    std::string text;
    for (const id& key : change) text += std::string(key->description()) + " ";
    return text;
  };
  EXPECT_EQ(keys(told[0]), "kind old indexes notificationIsPrior ");
  EXPECT_EQ(keys(told[1]), "kind old new indexes ");
  EXPECT_EQ(told[0]->count(), 4U);
  EXPECT_EQ(told[1]->allValues()->count(), 4U);
  EXPECT_EQ(textOfChange(told[0]), "kind=4 old=(a,) at=[0,] prior=1");
  EXPECT_EQ(textOfChange(told[1]), "kind=4 old=(a,) new=(b,) at=[0,]");
}

TEST(ChangeDictionary, StaysRightAfterLaterChanges) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setName("zero"_ns);
  std::vector<NSDictionary> ages = changes(ann, "age"_ns, kNew | kOld, [&] {
    for (int age = 1; age <= 5; ++age) ann->setAge(age);
  });
  const std::vector<NSDictionary> names = changes(ann, "name"_ns, kNew | kOld, [&] {
    ann->setName("one"_ns);
    ann->setName(nullptr);
  });
  ann->setAge(100);
  ann->setName("last"_ns);
  ASSERT_EQ(ages.size(), 5U);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(textOfChange(ages[i]),
              "kind=1 old=" + std::to_string(i) + " new=" + std::to_string(i + 1));
  }
  EXPECT_EQ(textOfChange(names[0]), "kind=1 old=zero new=one");
  EXPECT_EQ(textOfChange(names[1]), "kind=1 old=one new=null");
}

TEST(ChangeDictionary, KeepsNoValueOnceNobodyKeepsIt) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "friend"_ns, kNew | kOld);
  const auto befriended = [&ann] {
    const WatchedPerson person = WatchedPerson::new_();
    ann->setFriend(person);
    return Weak<id>(person);
  };
  const Weak<id> first = befriended();
  const Weak<id> second = befriended();
  EXPECT_EQ(first.lock(), nullptr);
  EXPECT_EQ(second.lock(), ann->friend_());
  ann->setFriend(nullptr);
  EXPECT_EQ(second.lock(), nullptr);
}

TEST(ChangeDictionary, EndsWhenItIsKnownInAnyWay) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  Weak<NSDictionary> weak;
  Weak<id> associated;
  NSDictionary kept;
  int number = 0;
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    EXPECT_FALSE(objc_getAssociatedObject(change, &number));
    if (++number == 1) weak = change;
    if (number == 2) {
      const NSObject value = NSObject::new_();
      associated = value;
      objc_setAssociatedObject(change, &number, value, OBJC_ASSOCIATION_RETAIN);
    }
    if (number == 3) kept = change;
  });
  addObserver(ann, recorder, "friend"_ns, kNew);
  ann->setFriend(bo);
  EXPECT_EQ(weak.lock(), nullptr);
  ann->setFriend(nullptr);
  EXPECT_EQ(associated.lock(), nullptr);
  ann->setFriend(bo);
  ann->setFriend(nullptr);
  EXPECT_EQ(kept[NSKeyValueChangeNewKey], bo);
  EXPECT_EQ(number, 4);
}

TEST(ChangeDictionary, OfAChangeInsideAnotherIsOneOfItsOwn) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::vector<std::string> told;
  const ChangeRecorder recorder = ChangeRecorder::new_();
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    const std::string before = textOfChange(change);
    const int now = cast<NSNumber>(change[NSKeyValueChangeNewKey])->intValue();
    if (now % 3 != 0) ann->setAge(now + 1);
    told.push_back(before);
    EXPECT_EQ(textOfChange(change), before);
  });
  addObserver(ann, recorder, "age"_ns, kNew);
  ann->setAge(1);
  ann->setAge(4);
  EXPECT_EQ(told, (std::vector<std::string>{"kind=1 new=3", "kind=1 new=2", "kind=1 new=1",
                                            "kind=1 new=6", "kind=1 new=5", "kind=1 new=4"}));
}

TEST(ChangeDictionary, IsSharedByThoseThatWantTheSame) {
  const WatchedPerson ann = WatchedPerson::new_();
  std::vector<NSDictionary> told;
  std::vector<ChangeRecorder> recorders;
  for (const NSUInteger options : {kNew, kNew | kOld, kNew, NSUInteger{0}, kOld}) {
    const ChangeRecorder recorder = ChangeRecorder::new_();
    recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
      told.push_back(change);
    });
    addObserver(ann, recorder, "age"_ns, options);
    recorders.push_back(recorder);
  }
  ann->setAge(1);
  std::string lines;
  for (const ChangeRecorder& recorder : recorders) lines += recorder->lines();
  EXPECT_EQ(lines,
            "age kind=1 new=1\nage kind=1 old=0 new=1\nage kind=1 new=1\nage kind=1\n"
            "age kind=1 old=0\n");
  EXPECT_EQ(told[0], told[2]);
}

}  // namespace
}  // namespace brindle
