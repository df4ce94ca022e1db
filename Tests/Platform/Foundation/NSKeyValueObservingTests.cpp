#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"

namespace brindle {
namespace {

/// What the body raises, as text; empty when it raises nothing.
template <class Body>
std::string raised(Body body) {
  try {
    body();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "";
}

Class subclass(Class superclass, const char* name) {
  const Class cls = objc_allocateClassPair(superclass, name, 0);
  objc_registerClassPair(cls);
  return cls;
}

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kInitial = NSKeyValueObservingOptionInitial;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

TEST(KeyValueObserving, TellsOfChanges) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kNew | kOld);
  ann->setAge(30);
  ann->setAge(31);
  EXPECT_EQ(recorder->lines(), "age kind=1 old=0 new=30\nage kind=1 old=30 new=31\n");
  removeObserver(ann, recorder, "age"_ns);
  ann->setAge(32);
  EXPECT_EQ(recorder->lines(), "");
}

TEST(KeyValueObserving, TellsWhatTheOptionsAskFor) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const auto told = [&](NSUInteger options) {
    ann->setAge(1);
    addObserver(ann, recorder, "age"_ns, options);
    ann->setAge(2);
    removeObserver(ann, recorder, "age"_ns);
    return recorder->lines();
  };
  EXPECT_EQ(told(0), "age kind=1\n");
  EXPECT_EQ(told(kNew), "age kind=1 new=2\n");
  EXPECT_EQ(told(kOld), "age kind=1 old=1\n");
  EXPECT_EQ(told(kInitial), "age kind=1\nage kind=1\n");
  EXPECT_EQ(told(kInitial | kNew | kOld), "age kind=1 new=1\nage kind=1 old=1 new=2\n");
  EXPECT_EQ(told(kPrior), "age kind=1 prior=1\nage kind=1\n");
  EXPECT_EQ(told(kPrior | kNew | kOld), "age kind=1 old=1 prior=1\nage kind=1 old=1 new=2\n");
  EXPECT_EQ(told(kNew | 0xFFFFFFFF80000000), "age kind=1 new=2\n");
}

TEST(KeyValueObserving, HandsOverObjectKeyPathAndContext) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  int context = 0;
  int calls = 0;
  recorder->onChange(
      [&](const NSString& keyPath, const id& object, const NSDictionary& change, void* given) {
        ++calls;
        EXPECT_TRUE(keyPath->isEqual("name"_ns));
        EXPECT_EQ(object, ann);
        EXPECT_EQ(given, &context);
        EXPECT_EQ(change->count(), 3U);
        EXPECT_TRUE(change->objectForKey("new"_ns)->isEqual("Ann"_ns));
        EXPECT_TRUE(change->objectForKey("old"_ns)->isEqual(NSNull::null()));
        EXPECT_EQ(change->objectForKey("other"_ns), nullptr);
        EXPECT_TRUE(isa<NSDictionary>(change));
        EXPECT_EQ(change->allKeys()->count(), 3U);
        EXPECT_EQ(change->mutableCopy()->count(), 3U);
        EXPECT_TRUE(change->isEqual(NSDictionary{
            {"kind"_ns, NSNumber(1)}, {"old"_ns, NSNull::null()}, {"new"_ns, "Ann"_ns}}));
      });
  addObserver(ann, recorder, "name"_ns, kNew | kOld, &context);
  ann->setName("Ann"_ns);
  EXPECT_EQ(calls, 1);
  removeObserver(ann, recorder, "name"_ns, &context);
}

TEST(KeyValueObserving, KeepsWhatADictionarySaid) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  NSDictionary kept;
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    if (!kept) kept = change;
  });
  addObserver(ann, recorder, "age"_ns, kNew | kOld);
  ann->setAge(1);
  ann->setAge(2);
  EXPECT_EQ(textOfChange(kept), "kind=1 old=0 new=1");
}

TEST(KeyValueObserving, ObservesPropertiesOfAllTypes) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  for (const NSString& key :
       {"tall"_ns, "height"_ns, "weight"_ns, "small"_ns, "large"_ns, "secret"_ns, "friend"_ns}) {
    addObserver(ann, recorder, key, kNew);
  }
  ann->setTall(true);
  ann->setHeight(1.5);
  ann->setWeight(0.5F);
  ann->setSmall(-3);
  ann->setLarge(~NSUInteger{0});
  ann->setSecretly(7);
  ann->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(),
            "tall kind=1 new=1\nheight kind=1 new=1.5\nweight kind=1 new=0.5\n"
            "small kind=1 new=-3\nlarge kind=1 new=18446744073709551615\n"
            "secret kind=1 new=7\nfriend kind=1 new=null\n");
  EXPECT_TRUE(ann->isTall());
  EXPECT_EQ(ann->height(), 1.5);
  EXPECT_EQ(ann->weight(), 0.5F);
}

TEST(KeyValueObserving, ObservesStructures) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "span"_ns, 0);
  ann->setSpan({2, 3});
  EXPECT_EQ(recorder->lines(), "span kind=1\n");
  EXPECT_EQ(ann->span().location, 2U);
  EXPECT_EQ(ann->span().length, 3U);
}

TEST(KeyValueObserving, HidesTheObservingClass) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  EXPECT_STREQ(class_getName(object_getClass(ann)), "WatchedPerson");
  addObserver(ann, recorder, "age"_ns, 0);
  addObserver(ann, recorder, "name"_ns, 0);
  EXPECT_STREQ(class_getName(object_getClass(ann)), "NSKVONotifying_WatchedPerson");
  EXPECT_EQ(classOf(ann), WatchedPerson::class_());
  EXPECT_EQ(ann->superclass(), NSObject::class_());
  EXPECT_TRUE(ann->isMemberOfClass(WatchedPerson::class_()));
  EXPECT_TRUE(isa<WatchedPerson>(ann));
  removeObserver(ann, recorder, "age"_ns);
  EXPECT_STREQ(class_getName(object_getClass(ann)), "NSKVONotifying_WatchedPerson");
  removeObserver(ann, recorder, "name"_ns);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(KeyValueObserving, FollowsReplacedObjects) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  const WatchedPerson cy = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "friend.friend.age"_ns, kNew | kOld);
  ann->setFriend(bo);
  EXPECT_EQ(recorder->lines(), "friend.friend.age kind=1 old=null new=null\n");
  bo->setFriend(cy);
  EXPECT_EQ(recorder->lines(), "friend.friend.age kind=1 old=null new=0\n");
  cy->setAge(5);
  EXPECT_EQ(recorder->lines(), "friend.friend.age kind=1 old=0 new=5\n");
  const WatchedPerson di = WatchedPerson::new_();
  di->setFriend(ann);
  ann->setFriend(di);
  EXPECT_EQ(recorder->lines(), "friend.friend.age kind=1 old=5 new=0\n");
  cy->setAge(6);
  bo->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(), "");
  EXPECT_EQ(object_getClass(cy), WatchedPerson::class_());
  ann->setAge(9);
  EXPECT_EQ(recorder->lines(), "friend.friend.age kind=1 old=0 new=9\n");
  removeObserver(ann, recorder, "friend.friend.age"_ns);
  ann->setFriend(nullptr);
  di->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(), "");
  for (const WatchedPerson& person : {ann, bo, cy, di}) {
    EXPECT_EQ(object_getClass(person), WatchedPerson::class_());
  }
}

TEST(KeyValueObserving, FollowsDependentKeys) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  ann->setName("Ann"_ns);
  ann->setSurname("Lee"_ns);
  addObserver(ann, recorder, "fullName"_ns, kNew | kOld | kPrior);
  ann->setName("Eve"_ns);
  EXPECT_EQ(recorder->lines(),
            "fullName kind=1 old=Ann Lee prior=1\nfullName kind=1 old=Ann Lee new=Eve Lee\n");
  removeObserver(ann, recorder, "fullName"_ns);
  const WatchedPerson bo = WatchedPerson::new_();
  bo->setFriend(ann);
  addObserver(bo, recorder, "friend.fullName"_ns, kNew);
  ann->setSurname("Moe"_ns);
  EXPECT_EQ(recorder->lines(), "friend.fullName kind=1 new=Eve Moe\n");
}

TEST(KeyValueObserving, LeavesManualKeysToTheirClass) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  EXPECT_FALSE(automaticallyNotifiesObserversForKey(WatchedPerson::class_(), "manual"_ns));
  EXPECT_TRUE(automaticallyNotifiesObserversForKey(WatchedPerson::class_(), "age"_ns));
  addObserver(ann, recorder, "manual"_ns, kNew | kOld);
  ann->setManual(1);
  EXPECT_EQ(recorder->lines(), "");
  willChangeValueForKey(ann, "manual"_ns);
  ann->setManual(2);
  didChangeValueForKey(ann, "manual"_ns);
  EXPECT_EQ(recorder->lines(), "manual kind=1 old=1 new=2\n");
}

TEST(KeyValueObserving, NestsChangesToldByHand) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "manual"_ns, kNew | kOld);
  addObserver(ann, recorder, "age"_ns, kNew | kOld);
  willChangeValueForKey(ann, "manual"_ns);
  willChangeValueForKey(ann, "age"_ns);
  ann->setManual(1);
  ann->setAge(2);
  EXPECT_EQ(recorder->lines(), "age kind=1 old=0 new=2\n");
  didChangeValueForKey(ann, "age"_ns);
  didChangeValueForKey(ann, "manual"_ns);
  EXPECT_EQ(recorder->lines(), "age kind=1 old=0 new=2\nmanual kind=1 old=0 new=1\n");
  didChangeValueForKey(ann, "manual"_ns);
  EXPECT_EQ(recorder->lines(), "");
}

TEST(KeyValueObserving, TellsOfChangesAtIndexes) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "items"_ns, kNew | kOld);
  ann->setItems(NSArray{"a"_ns, "b"_ns});
  EXPECT_EQ(recorder->lines(), "items kind=1 old=() new=(a,b,)\n");
  ann->insertItem("c"_ns, 1);
  EXPECT_EQ(recorder->lines(), "items kind=2 new=(c,) at=[1,]\n");
  ann->insertItems(NSArray{"x"_ns, "y"_ns}, NSIndexSet::indexSetWithIndexesInRange({0, 2}));
  EXPECT_EQ(recorder->lines(), "items kind=2 new=(x,y,) at=[0,1,]\n");
  ann->removeItem(0);
  EXPECT_EQ(recorder->lines(), "items kind=3 old=(x,) at=[0,]\n");
  ann->removeItems(NSIndexSet::indexSetWithIndexesInRange({0, 2}));
  EXPECT_EQ(recorder->lines(), "items kind=3 old=(y,a,) at=[0,1,]\n");
  ann->replaceItem(1, "B"_ns);
  EXPECT_EQ(recorder->lines(), "items kind=4 old=(b,) new=(B,) at=[1,]\n");
  ann->replaceItems(NSIndexSet::indexSetWithIndex(0), NSArray{"C"_ns});
  EXPECT_EQ(recorder->lines(), "items kind=4 old=(c,) new=(C,) at=[0,]\n");
}

TEST(KeyValueObserving, TellsOfChangesOfSets) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "tags"_ns, kNew | kOld);
  ann->addTag("a"_ns);
  EXPECT_EQ(recorder->lines(), "tags kind=2 new={a,}\n");
  ann->addTags(NSSet{"a"_ns, "b"_ns, "c"_ns});
  EXPECT_EQ(recorder->lines(), "tags kind=2 new={b,c,}\n");
  ann->removeTag("b"_ns);
  EXPECT_EQ(recorder->lines(), "tags kind=3 old={b,}\n");
  ann->removeTags(NSSet{"b"_ns, "c"_ns});
  EXPECT_EQ(recorder->lines(), "tags kind=3 old={c,}\n");
  ann->setTags(NSSet{"p"_ns, "q"_ns});
  EXPECT_EQ(recorder->lines(), "tags kind=1 old={a,} new={p,q,}\n");
  ann->intersectTags(NSSet{"q"_ns});
  EXPECT_EQ(recorder->lines(), "tags kind=3 old={p,}\n");
  willChangeValueForKey(ann, "tags"_ns, NSKeyValueSetSetMutation, NSSet{"q"_ns, "r"_ns});
  didChangeValueForKey(ann, "tags"_ns, NSKeyValueSetSetMutation, NSSet{"q"_ns, "r"_ns});
  EXPECT_EQ(recorder->lines(), "tags kind=4 old={} new={r,}\n");
}

TEST(KeyValueObserving, RemovesTheLatestRegistration) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  int a = 0;
  int b = 0;
  addObserver(ann, recorder, "age"_ns, 0, &a);
  addObserver(ann, recorder, "age"_ns, kNew, &b);
  removeObserver(ann, recorder, "age"_ns);
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "age kind=1\n");
  addObserver(ann, recorder, "age"_ns, kNew, &b);
  removeObserver(ann, recorder, "age"_ns, &a);
  ann->setAge(2);
  EXPECT_EQ(recorder->lines(), "age kind=1 new=2\n");
  removeObserver(ann, recorder, "age"_ns, &b);
  ann->setAge(3);
  EXPECT_EQ(recorder->lines(), "");
}

std::string addressOf(const id& object) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", static_cast<const void*>(object.record()));
  return text;
}

TEST(KeyValueObserving, RaisesForWhatIsNotRegistered) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const std::string text = "NSRangeException: Cannot remove an observer <ChangeRecorder " +
                           addressOf(recorder) + "> for the key path \"age\" from <WatchedPerson " +
                           addressOf(ann) + "> because it is not registered as an observer.";
  EXPECT_EQ(raised([&] { removeObserver(ann, recorder, "age"_ns); }), text);
  int context = 0;
  addObserver(ann, recorder, "age"_ns, 0, &context);
  EXPECT_EQ(raised([&] { removeObserver(ann, recorder, "age"_ns, nullptr); }), text);
  removeObserver(ann, recorder, "age"_ns);
  EXPECT_EQ(raised([&] { removeObserver(ann, recorder, "age"_ns); }), text);
  EXPECT_EQ(
      raised([&] { addObserver(ann, recorder, nullptr, 0); }),
      "NSInvalidArgumentException: -[WatchedPerson addObserver:forKeyPath:options:context:]: nil "
      "key path");
}

TEST(KeyValueObserving, RaisesInObserversThatDoNotExpectIt) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  addObserver(ann, bo, "age"_ns, kNew);
  EXPECT_EQ(raised([&] { ann->setAge(1); }),
            "NSInternalInconsistencyException: <WatchedPerson: " + addressOf(bo) +
                ">: An -observeValueForKeyPath:ofObject:change:context: message was received but "
                "not handled.\nKey path: age\nObserved object: <WatchedPerson: " +
                addressOf(ann) + ">\nChange: {\n    kind = 1;\n    new = 1;\n}\nContext: 0x0");
  EXPECT_EQ(ann->age(), 1);
}

TEST(KeyValueObserving, RefusesCollections) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const NSArray array = {"a"_ns};
  const NSSet set = {"a"_ns};
  EXPECT_EQ(raised([&] { addObserver(array, recorder, "count"_ns, 0); }),
            "NSInvalidArgumentException: [<NSArray " + addressOf(array) +
                "> addObserver:forKeyPath:options:context:] is not supported. Key path: count");
  EXPECT_EQ(raised([&] { removeObserver(id(set), recorder, "count"_ns); }),
            "NSInvalidArgumentException: [<NSSet " + addressOf(set) +
                "> removeObserver:forKeyPath:] is not supported. Key path: count");
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setItems(array);
  EXPECT_NE(raised([&] { addObserver(ann, recorder, "items.age"_ns, 0); }), "");
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(KeyValueObserving, ObservesMembersAtIndexes) {
  const WatchedPerson ann = WatchedPerson::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  const WatchedPerson cy = WatchedPerson::new_();
  const NSArray all = {ann, bo, cy};
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const NSIndexSet last = NSIndexSet::indexSetWithIndexesInRange({1, 2});
  addObserver(all, recorder, last, "age"_ns, kNew);
  for (const id& person : all) uncheckedCast<WatchedPerson>(person)->setAge(4);
  EXPECT_EQ(recorder->lines(), "age kind=1 new=4\nage kind=1 new=4\n");
  EXPECT_NE(
      raised([&] {
        removeObserver(all, recorder, NSIndexSet::indexSetWithIndexesInRange({1, 3}), "age"_ns);
      }),
      "");
  removeObserver(all, recorder, last, "age"_ns);
  for (const WatchedPerson& person : {ann, bo, cy}) {
    EXPECT_EQ(object_getClass(person), WatchedPerson::class_());
  }
}

TEST(KeyValueObserving, FindsSettersThatAreSwizzledMeanwhile) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kNew);
  Method method = class_getInstanceMethod(WatchedPerson::class_(), selector<"setAge:">());
  const IMP previous =
      method_setImplementation(method, implementation([](const WatchedPerson& self, int age) {
                                         send<"setSmall:">(self, static_cast<short>(age));
                                       }).implementation);
  ann->setAge(8);
  method_setImplementation(method, previous);
  EXPECT_EQ(ann->small(), 8);
  EXPECT_EQ(recorder->lines(), "age kind=1 new=0\n");
}

TEST(KeyValueObserving, NeverTellsTheDead) {
  const WatchedPerson ann = WatchedPerson::new_();
  {
    const ChangeRecorder recorder = ChangeRecorder::new_();
    addObserver(ann, recorder, "age"_ns, kNew);
    addObserver(ann, recorder, "friend.age"_ns, kNew);
  }
  ann->setAge(1);
  ann->setFriend(WatchedPerson::new_());
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(KeyValueObserving, ForgetsWhatIsObservedWhenItGoes) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const WatchedPerson bo = WatchedPerson::new_();
  {
    const WatchedPerson ann = WatchedPerson::new_();
    ann->setFriend(bo);
    addObserver(ann, recorder, "friend.age"_ns, kNew);
    EXPECT_NE(object_getClass(bo), WatchedPerson::class_());
  }
  bo->setAge(1);
  EXPECT_EQ(recorder->lines(), "");
  EXPECT_EQ(object_getClass(bo), WatchedPerson::class_());
}

TEST(KeyValueObserving, LetsObserversChangeWhileTheyAreTold) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder first = ChangeRecorder::new_();
  const ChangeRecorder second = ChangeRecorder::new_();
  const ChangeRecorder third = ChangeRecorder::new_();
  addObserver(ann, first, "age"_ns, kNew);
  addObserver(ann, second, "age"_ns, kNew);
  bool done = false;
  first->onChange([&](const NSString&, const id&, const NSDictionary&, void*) {
    if (done) return;
    done = true;
    removeObserver(ann, second, "age"_ns);
    addObserver(ann, third, "age"_ns, kNew);
  });
  ann->setAge(1);
  EXPECT_EQ(second->lines(), "");
  EXPECT_EQ(third->lines(), "");
  ann->setAge(2);
  EXPECT_EQ(second->lines(), "");
  EXPECT_EQ(third->lines(), "age kind=1 new=2\n");
}

TEST(KeyValueObserving, LeavesObjectsOfAnotherClassAlone) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kNew);
  const Class other = subclass(WatchedPerson::class_(), "AnotherPerson");
  object_setClass(ann, other);
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "");
  removeObserver(ann, recorder, "age"_ns);
  EXPECT_EQ(object_getClass(ann), other);
}

TEST(KeyValueObserving, MergesDependentKeysOfSuperclasses) {
  const Class sub = subclass(WatchedPerson::class_(), "AgedPerson");
  const auto more = implementation([](const Class&) -> NSSet { return NSSet{"age"_ns}; });
  class_addMethod(Class(sub.record()->other), selector<"keyPathsForValuesAffectingFullName">(),
                  more.implementation, more.types);
  const NSSet paths = keyPathsForValuesAffectingValueForKey(sub, "fullName"_ns);
  EXPECT_TRUE(paths->isEqual(NSSet{"name"_ns, "surname"_ns, "age"_ns}));
}

}  // namespace
}  // namespace brindle
