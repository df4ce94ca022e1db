#include <Brindle/Platform/NSString.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";

TEST(NSStringTest, Tour) {
  const NSString name = "caf\u00E9"_ns;
  EXPECT_EQ(name->length(), 4u);
  EXPECT_EQ(name->characterAtIndex(3), u'\u00E9');

  const NSString line = NSString::stringWithFormat("%@ has %d items"_ns, name, 3);
  EXPECT_TRUE(line->isEqualToString("caf\u00E9 has 3 items"));
  EXPECT_EQ(std::string(line->substringFromIndex(5)), "has 3 items");
  EXPECT_EQ(line->rangeOfString("has"_ns), NSMakeRange(5, 3));

  std::ostringstream out;
  out << line << '|' << name->uppercaseString();
  EXPECT_EQ(out.str(), "caf\u00E9 has 3 items|CAF\u00C9");
}

TEST(NSStringTest, MadeFromAnything) {
  const std::string standard = "standard";
  EXPECT_EQ(std::string(NSString(standard)), "standard");
  EXPECT_EQ(std::string(NSString(std::string_view("vi\0ew", 5))), std::string("vi\0ew", 5));
  EXPECT_EQ(std::string(NSString("bad \xFF")), "bad \uFFFD");
  EXPECT_EQ(std::string(NSString::string()), "");
  EXPECT_EQ(std::string(NSString::stringWithString("s"_ns)), "s");
  EXPECT_EQ(std::string(NSString::stringWithCharacters(u"\u4E2D!", 2)), "\u4E2D!");
  EXPECT_EQ(std::string(NSString::alloc()->init()), "");
  EXPECT_EQ(std::string(NSString::alloc()->initWithString("i"_ns)), "i");
  EXPECT_EQ(std::string(NSString::alloc()->initWithCharacters(u"\u00E9\u4E2D", 2)), "\u00E9\u4E2D");
  EXPECT_FALSE(NSString(static_cast<const char*>(nullptr)));
  EXPECT_EQ(raisedBy([] { NSString::stringWithString(nullptr); }), kArgument);
}

TEST(NSStringTest, NilAnswersZero) {
  const NSString nil;
  EXPECT_EQ(nil->length(), 0u);
  EXPECT_EQ(nil->intValue(), 0);
  EXPECT_EQ(nil->UTF8String(), nullptr);
  EXPECT_FALSE(nil->isEqualToString(nil));
  EXPECT_FALSE(nil->substringFromIndex(3));
  EXPECT_EQ(std::string(nil), "");
  std::ostringstream out;
  out << nil;
  EXPECT_EQ(out.str(), "(null)");
}

TEST(NSStringTest, PartsBeyondTheEndRaise) {
  for (const NSString& text : {"abc"_ns, NSString(ClientString::with(u"abc"))}) {
    EXPECT_EQ(std::string(text->substringFromIndex(3)), "");
    EXPECT_EQ(std::string(text->substringToIndex(3)), "abc");
    EXPECT_EQ(std::string(text->substringWithRange({1, 2})), "bc");
    EXPECT_EQ(std::string(text->substringWithRange({3, 0})), "");
    EXPECT_EQ(raisedBy([&] { (void)text->substringFromIndex(4); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)text->substringToIndex(4); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)text->substringWithRange({2, 2}); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)text->substringWithRange({4, 0}); }), kRange);
    EXPECT_EQ(raisedBy([&] { (void)text->substringWithRange({1, ~0ull}); }), kRange);
    unichar buffer[4] = {};
    EXPECT_EQ(raisedBy([&] { text->getCharacters(buffer, {1, 3}); }), kRange);
    text->getCharacters(buffer, {1, 2});
    EXPECT_EQ(std::u16string(buffer), u"bc");
  }
  EXPECT_EQ(raisedBy([] { (void)"abc"_ns->characterAtIndex(3); }), kRange);
  EXPECT_EQ(raisedBy([] { (void)""_ns->characterAtIndex(0); }), kRange);
}

TEST(NSStringTest, EqualWhateverTheStorage) {
  const NSString strings[] = {"\u00E9t\u00E9"_ns,
                              NSString("\u00E9t\u00E9"),
                              NSString::stringWithCharacters(u"\u00E9t\u00E9", 3),
                              NSMutableString(std::string_view("\u00E9t\u00E9")),
                              ClientString::with(u"\u00E9t\u00E9"),
                              ClientMutableString::with(u"\u00E9t\u00E9")};
  for (const NSString& a : strings) {
    for (const NSString& b : strings) {
      EXPECT_TRUE(a->isEqual(b));
      EXPECT_TRUE(a->isEqualToString(b));
      EXPECT_EQ(a->hash(), b->hash());
      EXPECT_EQ(a->compare(b), NSOrderedSame);
    }
    EXPECT_FALSE(a->isEqual("\u00E9te"_ns));
    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_FALSE(a->isEqual(NSObject::new_()));
  }
}

TEST(NSStringTest, HashesAsKeys) {
  std::unordered_set<id, NSObjectHash, NSObjectEqual> set;
  for (int i = 0; i < 1000; ++i) set.insert(NSString::stringWithFormat("key %d"_ns, i % 100));
  EXPECT_EQ(set.size(), 100u);
  EXPECT_TRUE(set.contains("key 42"_ns));
}

TEST(NSStringTest, CopiesOfImmutableStringsAreThemselves) {
  const NSString text = NSString("abc");
  EXPECT_EQ(text->copy(), text);
  EXPECT_EQ("abc"_ns->copy(), "abc"_ns);
  EXPECT_EQ(text->description(), text);
  const auto changing = cast<NSMutableString>(text->mutableCopy());
  changing->appendString("d"_ns);
  EXPECT_EQ(std::string(text), "abc");
  EXPECT_EQ(std::string(changing), "abcd");
}

TEST(NSStringTest, ASubclassThatOverridesNothingHoldsText) {
  const Class plain = objc_allocateClassPair(NSString::class_(), "PlainSubclassOfString", 0);
  objc_registerClassPair(plain);
  const auto made = ClassOf<NSString>(plain)->stringWithFormat("%d %@"_ns, 1, "\u4E2D"_ns);
  EXPECT_EQ(classOf(made), plain);
  EXPECT_EQ(std::string(made), "1 \u4E2D");
  EXPECT_TRUE(made->isEqual("1 \u4E2D"_ns));
  EXPECT_EQ(std::string(made->substringFromIndex(2)), "\u4E2D");
  EXPECT_STREQ(made->UTF8String(), "1 \u4E2D");
}

TEST(NSStringTest, InitialisingAgainReplacesTheText) {
  const auto string = NSString::alloc()->initWithString("first"_ns);
  (void)string->hash();
  EXPECT_STREQ(string->UTF8String(), "first");
  (void)string->initWithCharacters(u"\u4E2D", 1);
  EXPECT_STREQ(string->UTF8String(), "\u4E2D");
  EXPECT_EQ(string->hash(), "\u4E2D"_ns->hash());
}

TEST(NSStringTest, ManyThreadsAskAtOnce) {
  const NSString text = NSString("\u4E2D\u6587 text");
  std::vector<std::thread> threads;
  std::vector<std::string> answers(8);
  for (std::string& answer : answers) {
    threads.emplace_back([&answer, text] {
      for (int i = 0; i < 200; ++i) answer = text->UTF8String() + std::to_string(text->hash());
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& answer : answers) EXPECT_EQ(answer, answers[0]);
}

TEST(NSStringTest, OrdinaryObjectsDescribeThemselves) {
  const NSObject object = NSObject::new_();
  std::ostringstream pointer;
  pointer << static_cast<const void*>(object.record());
  EXPECT_EQ(std::string(object->description()), "<NSObject: " + pointer.str() + ">");
  EXPECT_TRUE(object->debugDescription()->isEqual(object->description()));
  std::ostringstream out;
  out << object << NSString::class_();
  EXPECT_EQ(out.str(), "<NSObject: " + pointer.str() + ">NSString");
}

}  // namespace
}  // namespace brindle
