#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Pair {
  double x;
  double y;
};
struct Mixed {
  double x;
  std::int64_t n;
};
struct Large {
  double a;
  double b;
  double c;
  double d;
};
struct Small {
  short a;
  short b;
};

}  // namespace

template <>
struct StructEncoding<Pair> : FieldsEncoding<"Pair", double, double> {};
template <>
struct StructEncoding<Mixed> : FieldsEncoding<"Mixed", double, std::int64_t> {};
template <>
struct StructEncoding<Large> : FieldsEncoding<"Large", double, double, double, double> {};
template <>
struct StructEncoding<Small> : FieldsEncoding<"Small", short, short> {};

namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;

template <class T>
T& stored() {
  static T value{};
  return value;
}

/// Sets a property of the type while it is observed; whether the observer was told and the setter
/// was given the value.
template <class T>
bool tells(T value, bool reading = true) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"value">(cls, [](const NSObject&) { return stored<T>(); });
  addMethod<"setValue:">(cls, [](const NSObject&, T given) { stored<T>() = given; });
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  bool told = false;
  stored<T>() = T{};
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    told = std::memcmp(&stored<T>(), &value, sizeof value) == 0 &&
           (!reading || (change->objectForKey(NSKeyValueChangeNewKey) &&
                         change->objectForKey(NSKeyValueChangeOldKey)));
  });
  addObserver(object, recorder, "value"_ns, reading ? kNew | kOld : 0);
  send<"setValue:">(object, value);
  removeObserver(object, recorder, "value"_ns);
  return told && object_getClass(object) == cls;
}

TEST(ObservingClasses, HaveSettersOfEachScalarType) {
  EXPECT_TRUE(tells(true));
  EXPECT_TRUE(tells<signed char>(-3));
  EXPECT_TRUE(tells<unsigned char>(200));
  EXPECT_TRUE(tells<short>(-300));
  EXPECT_TRUE(tells<unsigned short>(60000));
  EXPECT_TRUE(tells<int>(-70000));
  EXPECT_TRUE(tells<unsigned>(4000000000U));
  EXPECT_TRUE(tells<long>(-5000000000));
  EXPECT_TRUE(tells<unsigned long>(~0UL));
  EXPECT_TRUE(tells<long long>(-6));
  EXPECT_TRUE(tells<unsigned long long>(7));
  EXPECT_TRUE(tells<float>(1.5F));
  EXPECT_TRUE(tells<double>(-2.5));
}

TEST(ObservingClasses, HaveSettersOfStructures) {
  EXPECT_TRUE(tells(NSRange{3, 4}));
  EXPECT_TRUE(tells(Pair{1, 2}));
  EXPECT_TRUE(tells(Mixed{1, 2}));
  EXPECT_TRUE(tells(Large{1, 2, 3, 4}));
  EXPECT_TRUE(tells(Small{1, 2}));
}

TEST(ObservingClasses, HaveSettersOfPointersThatAreNotRead) {
  int place = 0;
  EXPECT_TRUE(tells<int*>(&place, false));
  EXPECT_TRUE(tells<const char*>("text", false));
  EXPECT_TRUE(tells<SEL>(selector<"value">(), false));
}

TEST(ObservingClasses, KeepWhatSettersAnswer) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"setValue:">(cls, [](const NSObject&, int value) { return value * 2.0; });
  addMethod<"setOther:">(cls, [](const NSObject&, int value) {
    return Large{0, 1, 2, value * 3.0};
  });
  addMethod<"setName:">(cls, [](const NSObject&, const NSString& name) -> NSString {
    return name->stringByAppendingString("!"_ns);
  });
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  for (const NSString& key : {"value"_ns, "other"_ns, "name"_ns}) {
    addObserver(object, recorder, key, 0);
  }
  EXPECT_EQ((send<"setValue:", double>(object, 4)), 8.0);
  EXPECT_EQ((send<"setOther:", Large>(object, 4)).d, 12.0);
  EXPECT_TRUE((send<"setName:", NSString>(object, "so"_ns))->isEqual("so!"_ns));
  EXPECT_EQ(recorder->lines(), "value kind=1\nother kind=1\nname kind=1\n");
}

TEST(ObservingClasses, TakeMethodsOfOtherShapesForNoSetters) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"setValue:">(cls, [](const NSObject&, int) {});
  addMethod<"insertObject:inValueAtIndex:">(cls, [](const NSObject&, int, int) {});
  addMethod<"addValueObject:">(cls, [](const NSObject&, int) {});
  addMethod<"removeValueObject:">(cls, [](const NSObject&, int) {});
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(object, recorder, "value"_ns, 0);
  send<"insertObject:inValueAtIndex:">(object, 1, 2);
  send<"addValueObject:">(object, 1);
  send<"removeValueObject:">(object, 1);
  EXPECT_EQ(recorder->lines(), "");
  send<"setValue:">(object, 1);
  EXPECT_EQ(recorder->lines(), "value kind=1\n");
}

TEST(ObservingClasses, TellOfSetsOnlyWhereMembersCanBeAddedAndRemoved) {
  const auto told = [](bool one, bool many, bool removing) {
    const Class cls = makeClass(NSObject::class_());
    if (one) addMethod<"addTagsObject:">(cls, [](const NSObject&, const id&) {});
    if (many) addMethod<"addTags:">(cls, [](const NSObject&, const NSSet&) {});
    if (removing) addMethod<"removeTags:">(cls, [](const NSObject&, const NSSet&) {});
    addMethod<"intersectTags:">(cls, [](const NSObject&, const NSSet&) {});
    const auto object = send<"new", NSObject>(cls);
    const ChangeRecorder recorder = ChangeRecorder::new_();
    addObserver(object, recorder, "tags"_ns, 0);
    if (one) send<"addTagsObject:">(object, id("a"_ns));
    if (many) send<"addTags:">(object, NSSet{"a"_ns});
    if (removing) send<"removeTags:">(object, NSSet{"a"_ns});
    send<"intersectTags:">(object, NSSet{"a"_ns});
    const std::string lines = recorder->lines();
    return std::count(lines.begin(), lines.end(), '\n');
  };
  EXPECT_EQ(told(true, false, false), 0);
  EXPECT_EQ(told(true, true, false), 0);
  EXPECT_EQ(told(false, false, true), 0);
  EXPECT_EQ(told(true, false, true), 3);
  EXPECT_EQ(told(false, true, true), 3);
  EXPECT_EQ(told(true, true, true), 4);
}

TEST(ObservingClasses, FindSettersThatCameLater) {
  const Class cls = makeClass(WatchedPerson::class_());
  const auto ann = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "later"_ns, 0);
  EXPECT_EQ(object_getClass(ann), cls);
  addMethod<"setLater:">(cls, [](const WatchedPerson&, int) {});
  send<"setLater:">(ann, 1);
  EXPECT_EQ(recorder->lines(), "");
  addObserver(ann, recorder, "later"_ns, 0);
  send<"setLater:">(ann, 2);
  EXPECT_EQ(recorder->lines(), "later kind=1\nlater kind=1\n");
}

TEST(ObservingClasses, TellOnceForASetterThatCallsSuper) {
  const Class cls = makeClass(WatchedPerson::class_());
  addMethod<"setAge:">(cls, [](const WatchedPerson& self, int age) {
    callImplementation<void>(
        class_getMethodImplementation(WatchedPerson::class_(), selector<"setAge:">()), self,
        selector<"setAge:">(), age + 1);
  });
  const auto ann = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, kNew | kOld);
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "age kind=1 old=0 new=2\n");
}

TEST(ObservingClasses, AreOneForAllObjectsOfAClass) {
  const Class cls = makeClass(WatchedPerson::class_());
  const auto ann = send<"new", WatchedPerson>(cls);
  const auto bo = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, 0);
  addObserver(bo, recorder, "name"_ns, 0);
  EXPECT_EQ(object_getClass(ann), object_getClass(bo));
  // The setter tells, but of this object nobody wants to know.
  ann->setName("Ann"_ns);
  EXPECT_EQ(recorder->lines(), "");
  EXPECT_EQ(std::string(class_getName(object_getClass(ann))),
            std::string("NSKVONotifying_") + class_getName(cls));
  // Objects made by way of it are of the class behind it, as far as anybody can tell.
  const auto cy = send<"new", WatchedPerson>(object_getClass(ann));
  cy->setAge(3);
  EXPECT_EQ(classOf(cy), cls);
}

TEST(ObservingClasses, MergeDependentKeysAlongTheSuperclasses) {
  const Class middle = makeClass(WatchedPerson::class_());
  const Class last = makeClass(middle);
  addMethod<"keyPathsForValuesAffectingFullName">(Class(middle.record()->other),
                                                  [](const Class&) { return NSSet{"age"_ns}; });
  addMethod<"keyPathsForValuesAffectingFullName">(
      Class(last.record()->other), [](const Class&) { return NSSet{"friend.age"_ns}; });
  const auto ann = send<"new", WatchedPerson>(last);
  const WatchedPerson bo = WatchedPerson::new_();
  ann->setFriend(bo);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "fullName"_ns, 0);
  ann->setName("A"_ns);
  ann->setSurname("B"_ns);
  ann->setAge(1);
  bo->setAge(1);
  ann->setFriend(nullptr);
  std::string all;
  for (int i = 0; i < 5; ++i) all += "fullName kind=1\n";
  EXPECT_EQ(recorder->lines(), all);
  bo->setAge(2);
  EXPECT_EQ(recorder->lines(), "");
}

TEST(ObservingClasses, DependOnThemselvesWithoutEnd) {
  const Class cls = makeClass(WatchedPerson::class_());
  addMethod<"keyPathsForValuesAffectingAge">(Class(cls.record()->other),
                                             [](const Class&) { return NSSet{"height"_ns}; });
  addMethod<"keyPathsForValuesAffectingHeight">(Class(cls.record()->other),
                                                [](const Class&) { return NSSet{"age"_ns}; });
  const auto ann = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "age"_ns, 0);
  ann->setHeight(2);
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "age kind=1\nage kind=1\n");
  removeObserver(ann, recorder, "age"_ns);
  EXPECT_EQ(object_getClass(ann), cls);
}

}  // namespace
}  // namespace brindle
