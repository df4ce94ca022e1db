#include <Brindle/Platform/NSKeyValueCoding.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNull.h>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string text(const id& object) { return std::string(object->description()); }

// The address of an object as it stands in reasons.
std::string addressOf(const id& object) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%p", static_cast<void*>(object.record()));
  return buffer;
}

TEST(NSKeyValueCodingTest, Tour) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  const Owner bo = Owner::with("Bo"_ns, 1, ann);
  EXPECT_EQ(text(valueForKey(ann, "name"_ns)), "Ann");
  EXPECT_EQ(valueForKey<NSNumber>(ann, "coins"_ns)->intValue(), 7);
  setValue(ann, NSNumber(12), "coins"_ns);
  EXPECT_EQ(text(valueForKeyPath(bo, "friend.coins"_ns)), "12");
  setValueForKeyPath(bo, "Anna"_ns, "friend.name"_ns);
  EXPECT_EQ(text(valueForKeyPath(ann, "name"_ns)), "Anna");
  EXPECT_EQ(text(valueForKeyPath(ann, "name.length"_ns)), "4");

  const NSDictionary values = dictionaryWithValuesForKeys(ann, NSArray{"coins"_ns, "friend"_ns});
  EXPECT_TRUE(
      values->isEqual(NSDictionary{{"coins"_ns, NSNumber(12)}, {"friend"_ns, NSNull::null()}}));
  setValuesForKeysWithDictionary(
      bo, NSDictionary{{"coins"_ns, NSNumber(3)}, {"friend"_ns, NSNull::null()}});
  EXPECT_EQ(text(valueForKey(bo, "coins"_ns)), "3");
  EXPECT_FALSE(valueForKey(bo, "friend"_ns));
}

TEST(NSKeyValueCodingTest, NilAnswersNil) {
  EXPECT_FALSE(valueForKey(nullptr, "name"_ns));
  EXPECT_FALSE(valueForKeyPath(Owner::with("Ann"_ns, 7), "friend.friend.name"_ns));
  setValueForKeyPath(Owner::with("Ann"_ns, 7), "x"_ns, "friend.friend.name"_ns);
  EXPECT_FALSE(mutableArrayValueForKeyPath(Owner::with("Ann"_ns, 7), "friend.items"_ns));
  EXPECT_EQ(
      raised([] { valueForKey<NSNumber>(Owner::with("Ann"_ns, 7), "name"_ns); }).substr(0, 27),
      "NSInvalidArgumentException:");
}

TEST(NSKeyValueCodingTest, UnknownKeysRaiseWithTheObjectAndTheKey) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  const std::string head = "NSUndefinedKeyException: [<TestedOwner " + addressOf(ann) + "> ";
  const char* const kKeys[] = {
      "age",       "",   "a.b",   "@",       "@count", "na me",           "setName:",
      "Ünbekannt", "%@", "name:", "release", "retain", "\xF0\x9F\x98\x80"};
  for (const char* const key : kKeys) {
    EXPECT_EQ(raised([&] { valueForKey(ann, key); }),
              head +
                  "valueForUndefinedKey:]: this class is not key value coding-compliant for the "
                  "key " +
                  key + ".");
    EXPECT_EQ(raised([&] { setValue(ann, "x"_ns, key); }),
              head +
                  "setValue:forUndefinedKey:]: this class is not key value coding-compliant for "
                  "the key " +
                  key + ".");
  }
  try {
    valueForKey(ann, "age"_ns);
    ADD_FAILURE();
  } catch (const RaisedException& raised) {
    const NSDictionary info = raised.exception()->userInfo();
    EXPECT_EQ(info[NSTargetObjectUserInfoKey], ann);
    EXPECT_EQ(text(info[NSUnknownUserInfoKey]), "age");
  }
}

TEST(NSKeyValueCodingTest, KeysWithZeroUnitsAndLongKeysAreUnknown) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  const NSString zero(std::string("name\0x", 6));
  EXPECT_NE(raised([&] { valueForKey(ann, zero); }).find("not key value coding-compliant"),
            std::string::npos);
  EXPECT_NE(raised([&] { valueForKey(ann, std::string(1000000, 'x')); }).find("for the key xxx"),
            std::string::npos);
}

TEST(NSKeyValueCodingTest, NilKeysRaise) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  EXPECT_EQ(raised([&] { valueForKey(ann, nullptr); }),
            "NSInvalidArgumentException: -[TestedOwner valueForKey:]: nil key");
  EXPECT_EQ(raised([&] { setValue(ann, ann, nullptr); }),
            "NSInvalidArgumentException: -[TestedOwner setValue:forKey:]: nil key");
  EXPECT_EQ(raised([&] { valueForKeyPath(ann, nullptr); }),
            "NSInvalidArgumentException: -[TestedOwner valueForKeyPath:]: nil key");
  EXPECT_EQ(raised([&] { mutableSetValueForKey(ann, nullptr); }),
            "NSInvalidArgumentException: -[TestedOwner mutableSetValueForKey:]: nil key");
  EXPECT_EQ(raised([&] {
              valueForKey(NSDictionary{{"a"_ns, "b"_ns}}, nullptr);
            }),
            "NSInvalidArgumentException: -[NSDictionary valueForKey:]: nil key");
  EXPECT_EQ(raised([&] { valueForKey(NSArray{"a"_ns}, nullptr); }),
            "NSInvalidArgumentException: -[NSArray valueForKey:]: nil key");
}

TEST(NSKeyValueCodingTest, BrokenPathsAreUnknownKeys) {
  const Owner ann = Owner::with("Ann"_ns, 7, Owner::with("Bo"_ns, 1));
  for (const char* const path : {"friend..name", ".friend", "friend.", ".", "..", ""}) {
    EXPECT_NE(raised([&] { valueForKeyPath(ann, path); }).find("compliant for the key ."),
              std::string::npos)
        << path;
  }
}

TEST(NSKeyValueCodingTest, LongPathsDoNotNest) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  setValue(ann, ann, "friend"_ns);
  std::string path;
  for (int i = 0; i < 50000; ++i) path += "friend.";
  EXPECT_EQ(text(valueForKeyPath(ann, path + "name")), "Ann");
  setValueForKeyPath(ann, "Bo"_ns, path + "name");
  EXPECT_EQ(text(valueForKey(ann, "name"_ns)), "Bo");
  setValue(ann, nullptr, "friend"_ns);
}

TEST(NSKeyValueCodingTest, NilForANumberRaises) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  EXPECT_EQ(raised([&] { setValue(ann, nullptr, "coins"_ns); }),
            "NSInvalidArgumentException: [<TestedOwner " + addressOf(ann) +
                "> setNilValueForKey:]: could not set nil as the value for the key coins.");
  setValue(ann, nullptr, "name"_ns);
  EXPECT_FALSE(valueForKey(ann, "name"_ns));
}

TEST(NSKeyValueCodingTest, ClassesMayAnswerUnknownKeysAndNilThemselves) {
  const Class cls = makeClass(Owner::class_());
  addMethod<"valueForUndefinedKey:">(
      cls, [](const Owner&, const NSString& key) -> id { return key->uppercaseString(); });
  addMethod<"setValue:forUndefinedKey:">(
      cls, [](const Owner& self, const id& value, const NSString& key) {
        setValue(self, key->stringByAppendingFormat("=%@"_ns, value), "name"_ns);
      });
  addMethod<"setNilValueForKey:">(
      cls, [](const Owner& self, const NSString& key) { setValue(self, NSNumber(-1), key); });
  const auto object = send<"new", id>(cls);
  EXPECT_EQ(text(valueForKey(object, "age"_ns)), "AGE");
  setValue(object, NSNumber(4), "age"_ns);
  EXPECT_EQ(text(valueForKey(object, "name"_ns)), "age=4");
  setValue(object, nullptr, "coins"_ns);
  EXPECT_EQ(text(valueForKey(object, "coins"_ns)), "-1");
}

TEST(NSKeyValueCodingTest, ValuesAreValidatedByTheObject) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  id value = "bo"_ns;
  NSError error = nullptr;
  EXPECT_TRUE(validateValue(ann, &value, "name"_ns, &error));
  EXPECT_EQ(text(value), "Bo");
  EXPECT_FALSE(error);
  value = ""_ns;
  EXPECT_FALSE(validateValue(ann, &value, "name"_ns, nullptr));
  EXPECT_FALSE(
      validateValueForKeyPath(Owner::with("Bo"_ns, 1, ann), &value, "friend.name"_ns, &error));
  EXPECT_EQ(text(error->domain()), "names");
  EXPECT_TRUE(validateValue(ann, &value, "coins"_ns, &error));
  EXPECT_TRUE(validateValueForKeyPath(ann, &value, "friend.name"_ns, &error));
}

TEST(NSKeyValueCodingTest, AnExchangedAccessorTakesEffectAtOnce) {
  const Class cls = makeClass(Owner::class_());
  const auto object = send<"new", id>(cls);
  setValue(object, "ann"_ns, "name"_ns);
  EXPECT_EQ(text(valueForKey(object, "name"_ns)), "ann");
  addMethod<"name">(cls, [](const Owner&) { return "other"_ns; });
  EXPECT_EQ(text(valueForKey(object, "name"_ns)), "other");
  addMethod<"getName">(cls, [](const Owner&) { return 5; });
  EXPECT_EQ(text(valueForKey(object, "name"_ns)), "5");
  addMethod<"age">(cls, [](const Owner&) { return 1.5; });
  EXPECT_EQ(text(valueForKey(object, "age"_ns)), "1.5");
}

TEST(NSKeyValueCodingTest, AskingRegistersNoSelectors) {
  const std::string key = uniqueName("hostile");
  EXPECT_NE(raised([&] { valueForKey(Owner::with("Ann"_ns, 7), key); }), "");
  EXPECT_NE(raised([&] { setValue(Owner::with("Ann"_ns, 7), nullptr, key); }), "");
  EXPECT_EQ(sel_findName(key), nullptr);
  EXPECT_EQ(sel_findName("setH" + key.substr(1) + ":"), nullptr);
  EXPECT_EQ(sel_findName("countOfH" + key.substr(1)), nullptr);
}

TEST(NSKeyValueCodingTest, ManyThreadsAskWhileMethodsChange) {
  const Class cls = makeClass(Owner::class_());
  const Owner ann = Owner::with("Ann"_ns, 7);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 2000; ++i) {
        EXPECT_EQ(valueForKey<NSNumber>(ann, "coins"_ns)->intValue(), 7);
        EXPECT_EQ(valueForKeyPath<NSNumber>(ann, "name.length"_ns)->intValue(), 3);
      }
    });
  }
  for (int i = 0; i < 200; ++i) {
    const TypedImplementation code = implementation([](const NSObject&) { return 1; });
    class_replaceMethod(cls, selector<"coins">(), code.implementation, code.types);
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace brindle
