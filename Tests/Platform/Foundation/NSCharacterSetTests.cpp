#include <Brindle/Platform/NSCharacterSet.h>

#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(NSCharacterSetTest, Tour) {
  const auto vowels = NSCharacterSet::characterSetWithCharactersInString("aeiou"_ns);
  EXPECT_TRUE(vowels->characterIsMember(u'e'));
  EXPECT_FALSE(vowels->characterIsMember(u'x'));
  EXPECT_TRUE(vowels->invertedSet()->characterIsMember(u'x'));
  EXPECT_TRUE(NSCharacterSet::letterCharacterSet()->isSupersetOfSet(vowels));
  EXPECT_TRUE(NSCharacterSet::whitespaceCharacterSet()->characterIsMember(u' '));
}

TEST(NSCharacterSetTest, SharedSets) {
  const struct {
    NSCharacterSet set;
    char32_t in;
    char32_t out;
  } cases[] = {
      {NSCharacterSet::whitespaceCharacterSet(), U'\t', U'\n'},
      {NSCharacterSet::whitespaceAndNewlineCharacterSet(), U'\u2028', U'x'},
      {NSCharacterSet::newlineCharacterSet(), U'\r', U' '},
      {NSCharacterSet::decimalDigitCharacterSet(), U'\u0663', U'\u00B2'},
      {NSCharacterSet::letterCharacterSet(), U'\u4E2D', U'1'},
      {NSCharacterSet::lowercaseLetterCharacterSet(), U'\u00E9', U'\u00C9'},
      {NSCharacterSet::uppercaseLetterCharacterSet(), U'\u01C5', U'a'},
      {NSCharacterSet::alphanumericCharacterSet(), U'\u00B2', U'-'},
      {NSCharacterSet::punctuationCharacterSet(), U'\u2026', U'+'},
      {NSCharacterSet::symbolCharacterSet(), U'\u20AC', U'.'},
      {NSCharacterSet::controlCharacterSet(), U'\x1F', U' '},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(c.set->longCharacterIsMember(c.in)) << static_cast<unsigned>(c.in);
    EXPECT_FALSE(c.set->longCharacterIsMember(c.out)) << static_cast<unsigned>(c.out);
  }
  EXPECT_EQ(NSCharacterSet::symbolCharacterSet(), NSCharacterSet::symbolCharacterSet());
}

TEST(NSCharacterSetTest, EqualByMembers) {
  const auto a = NSCharacterSet::characterSetWithCharactersInString("cab"_ns);
  const auto b = NSCharacterSet::characterSetWithRange({U'a', 3});
  EXPECT_TRUE(a->isEqual(b));
  EXPECT_EQ(a->hash(), b->hash());
  EXPECT_FALSE(a->isEqual(b->invertedSet()));
  EXPECT_TRUE(a->isEqual(b->invertedSet()->invertedSet()));
  EXPECT_FALSE(a->isEqual("abc"_ns));
  EXPECT_EQ(a->copy(), a);
}

TEST(NSCharacterSetTest, BeyondTheLastCharacter) {
  const auto all = NSCharacterSet::characterSetWithRange({0, ~0ull});
  EXPECT_TRUE(all->longCharacterIsMember(0x10FFFF));
  EXPECT_FALSE(all->longCharacterIsMember(0x110000));
  const auto none = NSCharacterSet::characterSetWithRange({0x110000, 5});
  EXPECT_TRUE(none->isEqual(all->invertedSet()));
  EXPECT_TRUE(none->isEqual(NSCharacterSet::characterSetWithRange({5, 0})));
  EXPECT_EQ(raisedBy([] { (void)NSCharacterSet::characterSetWithCharactersInString(nullptr); }),
            "NSInvalidArgumentException");
}

}  // namespace
}  // namespace brindle
