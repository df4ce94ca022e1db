#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#if __has_include(<Brindle/Platform/NSArray.h>)
#include <Brindle/Platform/NSArray.h>
#define HAVE_ARRAY 1
#endif
#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

const char* const kRange = "NSRangeException";
const char* const kArgument = "NSInvalidArgumentException";

#ifdef HAVE_ARRAY
std::vector<std::string> strings(const NSArray& array) {
  std::vector<std::string> result;
  for (const id& object : array) result.emplace_back(cast<NSString>(object));
  return result;
}
#endif

TEST(NSStringTransformingTest, Tour) {
  const NSString text =
      "  One, two  "_ns->stringByTrimmingCharactersInSet(NSCharacterSet::whitespaceCharacterSet());
  EXPECT_EQ(std::string(text), "One, two");
  EXPECT_EQ(std::string(text->stringByAppendingString("!"_ns)), "One, two!");
  EXPECT_EQ(std::string(text->stringByReplacingOccurrencesOfString("o"_ns, "0"_ns)), "One, tw0");
  EXPECT_EQ(std::string(text->capitalizedString()), "One, Two");
  EXPECT_EQ("42 apples"_ns->integerValue(), 42);
#ifdef HAVE_ARRAY
  EXPECT_EQ(strings(text->componentsSeparatedByString(", "_ns)),
            (std::vector<std::string>{"One", "two"}));
#endif
}

TEST(NSStringTransformingTest, Case) {
  EXPECT_EQ(std::string("stra\u00DFe"_ns->uppercaseString()), "STRASSE");
  EXPECT_EQ(std::string("\u00C9T\u00C9"_ns->lowercaseString()), "\u00E9t\u00E9");
  EXPECT_EQ(std::string("hello-WORLD again"_ns->capitalizedString()), "Hello-world Again");
}

TEST(NSStringTransformingTest, Replaces) {
  const NSString text = "aXaXa"_ns;
  EXPECT_EQ(std::string(text->stringByReplacingOccurrencesOfString(
                "x"_ns, "\u4E2D"_ns, NSCaseInsensitiveSearch, {0, 3})),
            "a\u4E2DaXa");
  EXPECT_EQ(text->stringByReplacingOccurrencesOfString("q"_ns, "z"_ns), text);
  EXPECT_EQ(std::string(text->stringByReplacingCharactersInRange({1, 3}, ""_ns)), "aa");
  EXPECT_EQ(raisedBy([&] {
              (void)text->stringByReplacingCharactersInRange({1, 9}, ""_ns);
            }),
            kRange);
  EXPECT_EQ(raisedBy([&] { (void)text->stringByReplacingOccurrencesOfString("a"_ns, nullptr); }),
            kArgument);
  EXPECT_EQ(raisedBy([&] { (void)text->stringByReplacingOccurrencesOfString(nullptr, "a"_ns); }),
            kArgument);
  EXPECT_EQ(raisedBy([&] { (void)text->stringByAppendingString(nullptr); }), kArgument);
}

TEST(NSStringTransformingTest, TrimsBothEnds) {
  const auto white = NSCharacterSet::whitespaceAndNewlineCharacterSet();
  EXPECT_EQ(std::string("\n\t a b \u2003\n"_ns->stringByTrimmingCharactersInSet(white)), "a b");
  EXPECT_EQ(std::string(" \n "_ns->stringByTrimmingCharactersInSet(white)), "");
  EXPECT_EQ(std::string(""_ns->stringByTrimmingCharactersInSet(white)), "");
  const auto smile = NSCharacterSet::characterSetWithCharactersInString("\U0001F600"_ns);
  EXPECT_EQ(std::string("\U0001F600a\U0001F600"_ns->stringByTrimmingCharactersInSet(smile)), "a");
}

#ifdef HAVE_ARRAY
TEST(NSStringTransformingTest, SplitsAtEverySeparator) {
  using Pieces = std::vector<std::string>;
  const auto split = [](const NSString& text, const NSString& separator) {
    return strings(text->componentsSeparatedByString(separator));
  };
  EXPECT_EQ(split("a&&b&"_ns, "&"_ns), (Pieces{"a", "", "b", ""}));
  EXPECT_EQ(split(""_ns, "&"_ns), (Pieces{""}));
  EXPECT_EQ(split("&"_ns, "&"_ns), (Pieces{"", ""}));
  EXPECT_EQ(split("abc"_ns, ""_ns), (Pieces{"abc"}));
  EXPECT_EQ(split("aaa"_ns, "aa"_ns), (Pieces{"", "a"}));
  EXPECT_EQ(split("a\u4E2Db"_ns, "\u4E2D"_ns), (Pieces{"a", "b"}));
  EXPECT_EQ(split(ClientString::with(u"a b"), " "_ns), (Pieces{"a", "b"}));
  EXPECT_EQ(strings("a, b"_ns->componentsSeparatedByCharactersInSet(
                NSCharacterSet::characterSetWithCharactersInString(", "_ns))),
            (Pieces{"a", "", "b"}));
  EXPECT_EQ(raisedBy([] { (void)"a"_ns->componentsSeparatedByString(nullptr); }), kArgument);
}
#endif

TEST(NSStringTransformingTest, Numbers) {
  EXPECT_EQ("  -42abc"_ns->longLongValue(), -42);
  EXPECT_EQ("2147483648"_ns->intValue(), std::numeric_limits<int>::max());
  EXPECT_EQ("-99999999999999999999"_ns->integerValue(), std::numeric_limits<NSInteger>::min());
  EXPECT_EQ("abc"_ns->intValue(), 0);
  EXPECT_EQ("1.5e3x"_ns->doubleValue(), 1500);
  EXPECT_EQ("1,5"_ns->doubleValue(), 1);
  EXPECT_EQ("1e400"_ns->doubleValue(), HUGE_VAL);
  EXPECT_EQ("0.1"_ns->floatValue(), 0.1f);
  EXPECT_TRUE("yes"_ns->boolValue());
  EXPECT_TRUE("-007"_ns->boolValue());
  EXPECT_FALSE("no"_ns->boolValue());
  EXPECT_EQ(NSString(ClientString::with(u"17"))->intValue(), 17);
}

}  // namespace
}  // namespace brindle
