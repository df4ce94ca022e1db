#include <Brindle/Platform/NSMutableString.h>

#include <gtest/gtest.h>

#include <random>
#include <string>

#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";

TEST(NSMutableStringTest, Tour) {
  const auto list = NSMutableString::string();
  list->appendFormat("%@\n"_ns, "caf\u00E9"_ns);
  list->insertString("* "_ns, 0);
  EXPECT_EQ(std::string(list), "* caf\u00E9\n");
  list->deleteCharactersInRange({6, 1});
  list->replaceCharactersInRange({0, 1}, "\u2022"_ns);
  EXPECT_EQ(std::string(list), "\u2022 caf\u00E9");
  EXPECT_EQ(list->replaceOccurrencesOfString("f"_ns, "ff"_ns, 0, {0, list->length()}), 1u);
  list->appendString(list);
  EXPECT_EQ(std::string(list), "\u2022 caff\u00E9\u2022 caff\u00E9");
  list->setString(""_ns);
  EXPECT_EQ(list->length(), 0u);
}

TEST(NSMutableStringTest, EveryWayIn) {
  EXPECT_EQ(std::string(NSMutableString::stringWithString("s"_ns)), "s");
  EXPECT_EQ(std::string(NSMutableString(std::string_view("v"))), "v");
  EXPECT_EQ(NSMutableString::stringWithCapacity(1000)->length(), 0u);
  EXPECT_EQ(NSMutableString::stringWithCapacity(~0ull)->length(), 0u);
  EXPECT_EQ(std::string(NSMutableString::alloc()->initWithString("i"_ns)), "i");
  EXPECT_EQ(std::string(NSMutableString::alloc()->initWithFormat("%d"_ns, 1)), "1");
  const auto made = NSMutableString::class_()->stringWithUTF8String("u");
  made->appendString("!"_ns);
  EXPECT_EQ(std::string(made), "u!");
}

TEST(NSMutableStringTest, CopiesStayAsTheyWere) {
  const auto text = NSMutableString::stringWithString("one"_ns);
  const NSString copy = uncheckedCast<NSString>(text)->copy();
  text->appendString(" two"_ns);
  EXPECT_EQ(std::string(copy), "one");
  EXPECT_FALSE(isa<NSMutableString>(copy));
  EXPECT_EQ(copy->copy(), copy);
}

TEST(NSMutableStringTest, HashFollowsTheText) {
  const auto text = NSMutableString::stringWithString("one"_ns);
  EXPECT_EQ(text->hash(), "one"_ns->hash());
  text->appendString("!"_ns);
  EXPECT_EQ(text->hash(), "one!"_ns->hash());
}

TEST(NSMutableStringTest, BeyondTheEndRaises) {
  for (const NSMutableString& text :
       {NSMutableString::stringWithString("abc"_ns),
        NSMutableString(uncheckedCast<NSMutableString>(ClientMutableString::with(u"abc")))}) {
    EXPECT_EQ(raisedBy([&] { text->insertString("x"_ns, 4); }), kRange);
    EXPECT_EQ(raisedBy([&] { text->deleteCharactersInRange({2, 2}); }), kRange);
    EXPECT_EQ(raisedBy([&] { text->deleteCharactersInRange({1, ~0ull}); }), kRange);
    EXPECT_EQ(raisedBy([&] {
                (void)text->replaceOccurrencesOfString("a"_ns, "b"_ns, 0, {0, 4});
              }),
              kRange);
    EXPECT_EQ(std::string(text), "abc");
  }
  const auto text = NSMutableString::stringWithString("abc"_ns);
  EXPECT_EQ(raisedBy([&] { text->replaceCharactersInRange({4, 0}, "x"_ns); }), kRange);
  EXPECT_EQ(std::string(text), "abc");
}

TEST(NSMutableStringTest, NilIsRefused) {
  const auto text = NSMutableString::stringWithString("abc"_ns);
  EXPECT_EQ(raisedBy([&] { text->appendString(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([&] { text->appendFormat(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([&] { text->insertString(nullptr, 0); }), kArgument);
  EXPECT_EQ(raisedBy([&] { text->setString(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([&] { text->replaceCharactersInRange({0, 1}, nullptr); }), kArgument);
  EXPECT_EQ(std::string(text), "abc");
}

TEST(NSMutableStringTest, ReplacesWithItself) {
  const auto text = NSMutableString::stringWithString("aba"_ns);
  EXPECT_EQ(text->replaceOccurrencesOfString("a"_ns, text, 0, {0, 3}), 2u);
  EXPECT_EQ(std::string(text), "abababa");
  text->replaceCharactersInRange({1, 1}, text);
  EXPECT_EQ(std::string(text), "aabababaababa");
}

TEST(NSMutableStringTest, AClientsStringTakesEveryChange) {
  const NSMutableString text = ClientMutableString::with(u"abc");
  text->appendString("d"_ns);
  text->appendFormat("%d"_ns, 5);
  text->insertString("\u4E2D"_ns, 0);
  text->deleteCharactersInRange({1, 1});
  EXPECT_EQ(text->replaceOccurrencesOfString("c"_ns, "CC"_ns, 0, {0, text->length()}), 1u);
  EXPECT_EQ(std::string(text), "\u4E2DbCCd5");
  text->setString("new"_ns);
  EXPECT_EQ(std::string(text), "new");
  EXPECT_EQ(std::string(uncheckedCast<NSString>(text)->copy()), "new");
}

// A string of another class, as when it is observed, is still changed and read rightly.
TEST(NSMutableStringTest, WorksWhenItsClassWasChanged) {
  const Class other = objc_allocateClassPair(NSMutableString::class_(), "OtherMutableString", 0);
  objc_registerClassPair(other);
  const auto text = NSMutableString::stringWithString("abc"_ns);
  object_setClass(text, other);
  text->appendString("d"_ns);
  text->insertString("\u4E2D"_ns, 0);
  EXPECT_EQ(std::string(text), "\u4E2Dabcd");
  EXPECT_TRUE(text->isEqual("\u4E2Dabcd"_ns));
}

// Against std::u16string, which is believed.
TEST(NSMutableStringTest, AgreesWithAModelOnRandomPrograms) {
  std::mt19937 random(13);
  const NSString pieces[] = {""_ns, "a"_ns, "bcd"_ns, "\u00FF"_ns, "\u4E2D\u6587"_ns};
  const std::u16string units[] = {u"", u"a", u"bcd", u"\u00FF", u"\u4E2D\u6587"};
  for (int round = 0; round < 200; ++round) {
    const auto text = NSMutableString::string();
    std::u16string model;
    for (int step = 0; step < 60; ++step) {
      const std::size_t piece = random() % 5;
      const std::size_t at = random() % (model.size() + 1);
      const std::size_t count = random() % (model.size() - at + 1);
      switch (random() % 4) {
        case 0:
          text->appendString(pieces[piece]);
          model += units[piece];
          break;
        case 1:
          text->insertString(pieces[piece], at);
          model.insert(at, units[piece]);
          break;
        case 2:
          text->deleteCharactersInRange({at, count});
          model.erase(at, count);
          break;
        default:
          text->replaceCharactersInRange({at, count}, pieces[piece]);
          model.replace(at, count, units[piece]);
      }
      const NSString expected = NSString::stringWithCharacters(model.data(), model.size());
      ASSERT_TRUE(text->isEqual(expected));
      ASSERT_EQ(text->hash(), expected->hash());
    }
  }
}

}  // namespace
}  // namespace brindle
