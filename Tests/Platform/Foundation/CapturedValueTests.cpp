#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <limits>

#include <Brindle/Platform/NSKeyValueCoding.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;

/// What an observer of `value` is told as new when the key of `cls` is changed by hand.
template <class Getter>
id captured(Getter getter, const NSString& key = "value"_ns) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"value">(cls, getter);
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  id value;
  recorder->onChange([&](const NSString&, const id&, const NSDictionary& change, void*) {
    value = change->objectForKey(NSKeyValueChangeNewKey);
  });
  addObserver(object, recorder, key, kNew);
  willChangeValueForKey(object, key);
  didChangeValueForKey(object, key);
  return value;
}

TEST(CapturedValue, IsWhatReadingByKeyAnswers) {
  EXPECT_TRUE(captured([](const NSObject&) { return 7; })->isEqual(NSNumber(7)));
  EXPECT_TRUE(captured([](const NSObject&) -> NSString { return "x"_ns; })->isEqual("x"_ns));
  EXPECT_EQ(captured([](const NSObject&) -> id { return nullptr; }), NSNull::null());
  EXPECT_EQ(captured([](const NSObject&) -> Class { return NSObject::class_(); }),
            NSObject::class_());
}

TEST(CapturedValue, KeepsEachNumberWhole) {
  const auto described = [](const id& value) { return std::string(value->description()); };
  EXPECT_EQ(described(captured([](const NSObject&) { return true; })), "1");
  EXPECT_EQ(described(captured([](const NSObject&) -> signed char { return -128; })), "-128");
  EXPECT_EQ(described(captured([](const NSObject&) -> unsigned char { return 255; })), "255");
  EXPECT_EQ(described(captured([](const NSObject&) -> short { return -32768; })), "-32768");
  EXPECT_EQ(described(captured([](const NSObject&) -> unsigned short { return 65535; })), "65535");
  EXPECT_EQ(described(captured([](const NSObject&) -> int { return -2147483647 - 1; })),
            "-2147483648");
  EXPECT_EQ(described(captured([](const NSObject&) -> unsigned { return 4294967295U; })),
            "4294967295");
  EXPECT_EQ(described(captured([](const NSObject&) -> long { return -5; })), "-5");
  EXPECT_EQ(described(captured([](const NSObject&) -> long long {
              return std::numeric_limits<long long>::min();
            })),
            "-9223372036854775808");
  EXPECT_EQ(
      described(captured([](const NSObject&) -> unsigned long long { return ~std::uint64_t{0}; })),
      "18446744073709551615");
  EXPECT_EQ(described(captured([](const NSObject&) -> float { return 0.5F; })), "0.5");
  EXPECT_EQ(described(captured([](const NSObject&) -> double { return -1e300; })), "-1e+300");
}

TEST(CapturedValue, BoxesStructures) {
  const id range = captured([](const NSObject&) { return NSRange{2, 3}; });
  ASSERT_TRUE(isa<NSValue>(range));
  EXPECT_EQ(cast<NSValue>(range)->rangeValue().length, 3U);
}

TEST(CapturedValue, ComesFromTheGettersInTheirOrder) {
  const Class cls = makeClass(NSObject::class_());
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const auto told = [&] {
    willChangeValueForKey(object, "value"_ns);
    didChangeValueForKey(object, "value"_ns);
    return recorder->lines();
  };
  addMethod<"isValue">(cls, [](const NSObject&) { return 3; });
  addObserver(object, recorder, "value"_ns, kNew);
  EXPECT_EQ(told(), "value kind=1 new=3\n");
  addMethod<"value">(cls, [](const NSObject&) { return 2; });
  EXPECT_EQ(told(), "value kind=1 new=2\n");
  addMethod<"getValue">(cls, [](const NSObject&) { return 1; });
  EXPECT_EQ(told(), "value kind=1 new=1\n");
  addMethod<"valueForKey:">(cls, [](const NSObject&, const NSString&) -> id { return "own"_ns; });
  EXPECT_EQ(told(), "value kind=1 new=own\n");
}

TEST(CapturedValue, PassesOverGettersWithArguments) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"valueForUndefinedKey:">(
      cls, [](const NSObject&, const NSString& key) -> id { return key; });
  const auto object = send<"new", NSObject>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(object, recorder, "other"_ns, kNew);
  willChangeValueForKey(object, "other"_ns);
  didChangeValueForKey(object, "other"_ns);
  EXPECT_EQ(recorder->lines(), "other kind=1 new=other\n");
}

TEST(CapturedValue, RaisesAsReadingByKeyDoes) {
  const NSObject object = NSObject::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(object, recorder, "nothing"_ns, kOld);
  EXPECT_NE(
      raised([&] { willChangeValueForKey(object, "nothing"_ns); }).find("NSUndefinedKeyException"),
      std::string::npos);
  didChangeValueForKey(object, "nothing"_ns);
  EXPECT_EQ(recorder->lines(), "");
  removeObserver(object, recorder, "nothing"_ns);
  addObserver(object, recorder, "nothing"_ns, 0);
  willChangeValueForKey(object, "nothing"_ns);
  didChangeValueForKey(object, "nothing"_ns);
  EXPECT_EQ(recorder->lines(), "nothing kind=1\n");
}

TEST(CapturedValue, LivesWhileTheDictionaryDoes) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"held">(cls,
                    [](const NSObject& self) { return objc_getAssociatedObject(self, "held"); });
  addMethod<"setHeld:">(cls, [](const NSObject& self, const id& value) {
    objc_setAssociatedObject(self, "held", value, OBJC_ASSOCIATION_RETAIN);
  });
  static_cast<void>(Mortal::ended());
  const int before = Mortal::living();
  {
    const auto object = send<"new", NSObject>(cls);
    send<"setHeld:">(object, Mortal::new_());
    const ChangeRecorder recorder = ChangeRecorder::new_();
    NSDictionary kept;
    recorder->onChange(
        [&](const NSString&, const id&, const NSDictionary& change, void*) { kept = change; });
    addObserver(object, recorder, "held"_ns, kOld);
    send<"setHeld:">(object, id());
    EXPECT_EQ(Mortal::living(), before + 1);
    EXPECT_TRUE(isa<Mortal>(kept->objectForKey(NSKeyValueChangeOldKey)));
    kept = nullptr;
    EXPECT_EQ(Mortal::living(), before);
  }
}

}  // namespace
}  // namespace brindle
