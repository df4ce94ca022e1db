#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <algorithm>

#include <Brindle/Platform/NSException.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

/// Runs the body whenever the recorder is told.
template <class Body>
void onChange(const ChangeRecorder& recorder, Body body) {
  recorder->onChange([body](const NSString&, const id&, const NSDictionary&, void*) { body(); });
}

TEST(ObservedChange, IsToldOnceForWhatAPathMeetsTwice) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(ann);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "friend.friend"_ns, kNew | kOld);
  ann->setFriend(nullptr);
  EXPECT_EQ(recorder->lines().substr(0, 22), "friend.friend kind=1 o");
  EXPECT_EQ(recorder->lines(), "");
}

TEST(ObservedChange, LeavesOutObserversThatAreRemovedMeanwhile) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  const ChangeRecorder second = ChangeRecorder::new_();
  addObserver(ann, first, "age"_ns, kNew | kPrior);
  addObserver(ann, second, "age"_ns, kNew);
  bool removed = false;
  onChange(first, [&] {
    if (std::exchange(removed, true)) return;
    removeObserver(ann, second, "age"_ns);
    removeObserver(ann, first, "age"_ns);
  });
  ann->setAge(1);
  EXPECT_EQ(first->lines(), "age kind=1 prior=1\n");
  EXPECT_EQ(second->lines(), "");
  EXPECT_EQ(ann->age(), 1);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(ObservedChange, DoesNotReachObserversThatAreAddedMeanwhile) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  std::vector<ChangeRecorder> more;
  addObserver(ann, first, "age"_ns, kNew);
  onChange(first, [&] {
    more.push_back(ChangeRecorder::new_());
    addObserver(ann, more.back(), "age"_ns, kNew);
  });
  for (int age = 1; age <= 40; ++age) ann->setAge(age);
  ASSERT_EQ(more.size(), 40U);
  for (std::size_t i = 0; i < more.size(); ++i) {
    const std::string lines = more[i]->lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), static_cast<long>(39 - i));
  }
}

TEST(ObservedChange, NeverTellsAnObserverThatDiedMeanwhile) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  ChangeRecorder second = ChangeRecorder::new_();
  const ChangeRecorder third = ChangeRecorder::new_();
  for (const ChangeRecorder& recorder : {first, second, third}) {
    addObserver(ann, recorder, "age"_ns, kNew);
  }
  onChange(first, [&] { second = nullptr; });
  ann->setAge(1);
  EXPECT_EQ(third->lines(), "age kind=1 new=1\n");
  // One that gives itself up lives until its call is over.
  ChangeRecorder last = ChangeRecorder::new_();
  addObserver(ann, last, "age"_ns, kNew);
  onChange(last, [&] { last = nullptr; });
  ann->setAge(2);
  EXPECT_FALSE(last);
  ann->setAge(3);
  EXPECT_EQ(third->lines(), "age kind=1 new=2\nage kind=1 new=3\n");
}

TEST(ObservedChange, KeepsWhatChangesUntilAllAreTold) {
  static_cast<void>(Mortal::ended());
  for (const NSUInteger options : {kNew, kNew | kPrior}) {
    Mortal object = Mortal::new_();
    object->setTag(4);
    const ChangeRecorder first = ChangeRecorder::new_();
    const ChangeRecorder second = ChangeRecorder::new_();
    addObserver(object, first, "tag"_ns, options);
    addObserver(object, second, "tag"_ns, kNew | kOld);
    onChange(first, [&] { object = nullptr; });
    object->setTag(5);
    EXPECT_EQ(second->lines(), "tag kind=1 old=4 new=5\n");
    EXPECT_EQ(Mortal::ended(), "5 ");
  }
}

TEST(ObservedChange, KeepsWhatIsChangedByHand) {
  static_cast<void>(Mortal::ended());
  Mortal object = Mortal::new_();
  object->setTag(6);
  const ChangeRecorder first = ChangeRecorder::new_();
  const ChangeRecorder second = ChangeRecorder::new_();
  addObserver(object, first, "held"_ns, kNew);
  addObserver(object, second, "held"_ns, kNew);
  onChange(first, [&] { object = nullptr; });
  willChangeValueForKey(object, "held"_ns);
  didChangeValueForKey(object, "held"_ns);
  EXPECT_EQ(second->lines(), "held kind=1 new=null\n");
  EXPECT_EQ(Mortal::ended(), "6 ");
}

TEST(ObservedChange, TellsAgainOfChangesThatObserversMake) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  const ChangeRecorder second = ChangeRecorder::new_();
  addObserver(ann, first, "age"_ns, kNew | kOld);
  addObserver(ann, second, "age"_ns, kNew | kOld);
  onChange(first, [&] {
    if (ann->age() < 3) ann->setAge(ann->age() + 1);
  });
  ann->setAge(1);
  EXPECT_EQ(first->lines(),
            "age kind=1 old=0 new=1\nage kind=1 old=1 new=2\nage kind=1 old=2 new=3\n");
  // The innermost change ends first.
  EXPECT_EQ(second->lines(),
            "age kind=1 old=2 new=3\nage kind=1 old=1 new=2\nage kind=1 old=0 new=1\n");
}

TEST(ObservedChange, EndsWithAnObserverThatRaises) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  const ChangeRecorder second = ChangeRecorder::new_();
  addObserver(ann, first, "age"_ns, kNew);
  addObserver(ann, second, "age"_ns, kNew);
  bool raise = true;
  onChange(first, [&] {
    if (raise) NSException::raise("Enough"_ns, "no more"_ns);
  });
  EXPECT_EQ(raised([&] { ann->setAge(1); }), "Enough: no more");
  EXPECT_EQ(ann->age(), 1);
  EXPECT_EQ(second->lines(), "");
  raise = false;
  ann->setAge(2);
  EXPECT_EQ(second->lines(), "age kind=1 new=2\n");
}

// The setter was lent the caller's only reference, and the caller lets go of it meanwhile.
TEST(ObservedChange, KeepsTheNewValueWhileAPriorObserverLetsGoOfIt) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  NSString name = NSString::stringWithFormat("name %d"_ns, 7);
  recorder->onChange(
      [&name](const NSString&, const id&, const NSDictionary&, void*) { name = nullptr; });
  addObserver(ann, recorder, "name"_ns, kPrior);
  ann->setName(name);
  EXPECT_FALSE(name);
  EXPECT_TRUE(ann->name()->isEqualToString("name 7"_ns));
  removeObserver(ann, recorder, "name"_ns);
}

TEST(ObservedChange, IsNotMadeWhenAPriorObserverRaises) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kPrior);
  onChange(recorder, [&] { NSException::raise("Never"_ns, "not so"_ns); });
  EXPECT_EQ(raised([&] { ann->setAge(1); }), "Never: not so");
  EXPECT_EQ(ann->age(), 0);
  EXPECT_EQ(recorder->lines(), "age kind=1 prior=1\n");
}

TEST(ObservedChange, IsNotToldWhenTheSetterRaises) {
  const Class cls = makeClass(WatchedPerson::class_());
  addMethod<"setAge:">(
      cls, [](const WatchedPerson&, int) { NSException::raise("Refused"_ns, "too old"_ns); });
  const auto ann = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kNew);
  EXPECT_EQ(raised([&] { ann->setAge(1); }), "Refused: too old");
  EXPECT_EQ(recorder->lines(), "");
}

TEST(ObservedChange, FindsMembersThatAreNotThere) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "items"_ns, kNew | kOld);
  EXPECT_NE(raised([&] { ann->removeItem(0); }).find("NSRangeException"), std::string::npos);
  EXPECT_EQ(recorder->lines(), "");
  // A nil collection has no members.
  addObserver(ann, recorder, "name"_ns, kNew | kOld);
  willChange(ann, NSKeyValueChangeReplacement, NSIndexSet::indexSetWithIndex(0), "name"_ns);
  didChange(ann, NSKeyValueChangeReplacement, NSIndexSet::indexSetWithIndex(0), "name"_ns);
  EXPECT_EQ(recorder->lines(), "name kind=4 old=null new=null at=[0,]\n");
}

TEST(ObservedChange, OfAPathIsASetting) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  ann->setFriend(bo);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "friend.items"_ns, kNew | kOld);
  bo->insertItem("a"_ns, 0);
  EXPECT_EQ(recorder->lines(), "friend.items kind=1 old=() new=(a,)\n");
}

}  // namespace
}  // namespace brindle
