#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";
constexpr NSRange kNowhere{static_cast<NSUInteger>(NSNotFound), 0};

TEST(NSStringSearchingTest, Tour) {
  const NSString path = "/usr/lib/libusr.so"_ns;
  EXPECT_EQ(path->rangeOfString("usr"_ns), NSMakeRange(1, 3));
  EXPECT_EQ(path->rangeOfString("usr"_ns, NSBackwardsSearch), NSMakeRange(12, 3));
  EXPECT_EQ(path->rangeOfString("USR"_ns, NSCaseInsensitiveSearch), NSMakeRange(1, 3));
  EXPECT_EQ(path->rangeOfString("bin"_ns), kNowhere);
  EXPECT_TRUE(path->hasPrefix("/usr"_ns));
  EXPECT_TRUE(path->hasSuffix(".so"_ns));
  EXPECT_TRUE(path->containsString("lib/"_ns));
  EXPECT_EQ("apple"_ns->compare("banana"_ns), NSOrderedAscending);
  EXPECT_EQ("Apple"_ns->caseInsensitiveCompare("aPPLE"_ns), NSOrderedSame);
}

TEST(NSStringSearchingTest, Compares) {
  EXPECT_EQ("b"_ns->compare("a"_ns), NSOrderedDescending);
  EXPECT_EQ("a"_ns->compare(nullptr), NSOrderedDescending);
  EXPECT_EQ("file9"_ns->compare("file10"_ns, NSNumericSearch), NSOrderedAscending);
  EXPECT_EQ("caf\u00E9"_ns->compare("cafe\u0301"_ns), NSOrderedSame);
  EXPECT_NE("caf\u00E9"_ns->compare("cafe\u0301"_ns, NSLiteralSearch), NSOrderedSame);
  EXPECT_FALSE("caf\u00E9"_ns->isEqual("cafe\u0301"_ns));
  EXPECT_EQ("caf\u00E9"_ns->compare("cafe"_ns, NSDiacriticInsensitiveSearch), NSOrderedSame);
  EXPECT_EQ("a"_ns->compare("A"_ns, NSCaseInsensitiveSearch | NSForcedOrderingSearch),
            NSOrderedDescending);
  EXPECT_EQ("xxabcxx"_ns->compare("abc"_ns, 0, {2, 3}), NSOrderedSame);
  EXPECT_EQ(raisedBy([] { (void)"abc"_ns->compare("a"_ns, 0, {2, 2}); }), kRange);
  EXPECT_EQ(raisedBy([] { (void)"abc"_ns->compare("a"_ns, 1024); }), kArgument);
}

TEST(NSStringSearchingTest, ComparesInTheUsersLanguage) {
  EXPECT_EQ("a"_ns->localizedCompare("B"_ns), NSOrderedAscending);
  EXPECT_EQ("\u00F6"_ns->localizedCompare("z"_ns), NSOrderedAscending);
  EXPECT_EQ("a"_ns->localizedCaseInsensitiveCompare("A"_ns), NSOrderedSame);
  EXPECT_NE("a"_ns->localizedCompare("A"_ns), NSOrderedSame);
}

TEST(NSStringSearchingTest, NothingBeginsWithTheEmptyString) {
  EXPECT_FALSE("abc"_ns->hasPrefix(""_ns));
  EXPECT_FALSE("abc"_ns->hasSuffix(""_ns));
  EXPECT_FALSE("abc"_ns->containsString(""_ns));
  EXPECT_EQ("abc"_ns->rangeOfString(""_ns), kNowhere);
}

TEST(NSStringSearchingTest, PrefixesAreLiteral) {
  EXPECT_TRUE("cafe\u0301"_ns->hasPrefix("cafe"_ns));
  EXPECT_FALSE("Abc"_ns->hasPrefix("a"_ns));
  EXPECT_FALSE("ab"_ns->hasPrefix("abc"_ns));
  EXPECT_FALSE("abc"_ns->hasSuffix("ab"_ns));
}

TEST(NSStringSearchingTest, SearchesWithinARange) {
  const NSString text = "abcabc"_ns;
  EXPECT_EQ(text->rangeOfString("abc"_ns, 0, {1, 5}), NSMakeRange(3, 3));
  EXPECT_EQ(text->rangeOfString("abc"_ns, 0, {1, 4}), kNowhere);
  EXPECT_EQ(text->rangeOfString("bc"_ns, NSAnchoredSearch, {1, 5}), NSMakeRange(1, 2));
  EXPECT_EQ(text->rangeOfString("a"_ns, NSBackwardsSearch, {0, 3}), NSMakeRange(0, 1));
  EXPECT_EQ(text->rangeOfString("a"_ns, 0, {6, 0}), kNowhere);
  EXPECT_EQ(raisedBy([&] { (void)text->rangeOfString("a"_ns, 0, {6, 1}); }), kRange);
}

TEST(NSStringSearchingTest, NilIsRefused) {
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->rangeOfString(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->hasPrefix(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->hasSuffix(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->containsString(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->rangeOfCharacterFromSet(nullptr); }), kArgument);
}

TEST(NSStringSearchingTest, FindsCharactersOfASet) {
  const auto digits = NSCharacterSet::decimalDigitCharacterSet();
  EXPECT_EQ("ab12c3"_ns->rangeOfCharacterFromSet(digits), NSMakeRange(2, 1));
  EXPECT_EQ("ab12c3"_ns->rangeOfCharacterFromSet(digits, NSBackwardsSearch), NSMakeRange(5, 1));
  EXPECT_EQ("ab12c3"_ns->rangeOfCharacterFromSet(digits, NSAnchoredSearch), kNowhere);
  EXPECT_EQ("ab12c3"_ns->rangeOfCharacterFromSet(digits, 0, {3, 3}), NSMakeRange(3, 1));
  const auto smile = NSCharacterSet::characterSetWithCharactersInString("\U0001F600"_ns);
  EXPECT_EQ("a\U0001F600"_ns->rangeOfCharacterFromSet(smile), NSMakeRange(1, 2));
}

TEST(NSStringSearchingTest, AClientsStringIsSearchedAndSearchedFor) {
  const NSString text = ClientString::with(u"Hello \u4E16\u754C, hello");
  const NSString plain = "hello"_ns;
  EXPECT_EQ(text->rangeOfString(plain), NSMakeRange(10, 5));
  EXPECT_EQ(text->rangeOfString(plain, NSCaseInsensitiveSearch), NSMakeRange(0, 5));
  EXPECT_EQ("say \u4E16\u754C"_ns->rangeOfString(ClientString::with(u"\u4E16\u754C")),
            NSMakeRange(4, 2));
  EXPECT_EQ(text->compare("Hello"_ns, 0, {0, 5}), NSOrderedSame);
  EXPECT_TRUE(text->hasPrefix(ClientString::with(u"Hell")));
}

}  // namespace
}  // namespace brindle
