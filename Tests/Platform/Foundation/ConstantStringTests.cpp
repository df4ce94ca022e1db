#include <Brindle/Platform/ConstantString.h>

#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSString.h>

namespace brindle {

extern const NSString kExportedConstant;
constinit const NSString kExportedConstant = "BDExportedConstant"_ns;

namespace {

TEST(ConstantStringTest, Tour) {
  const NSString& text = "text"_ns;
  EXPECT_EQ(text, "text"_ns);  // the very same object
  EXPECT_EQ(text->length(), 4u);
  EXPECT_EQ(std::string(kExportedConstant), "BDExportedConstant");
  EXPECT_TRUE(isa<NSString>(text));
}

TEST(ConstantStringTest, AnyCharacters) {
  EXPECT_EQ(""_ns->length(), 0u);
  EXPECT_EQ("\u00FF"_ns->length(), 1u);
  EXPECT_EQ("\u0100"_ns->characterAtIndex(0), u'\u0100');
  EXPECT_EQ("\u20AC\U0001F600"_ns->length(), 3u);
  EXPECT_EQ("\u20AC\U0001F600"_ns->characterAtIndex(1), 0xD83D);
  EXPECT_EQ("\u20AC\U0001F600"_ns->characterAtIndex(2), 0xDE00);
  EXPECT_EQ("a\0b"_ns->length(), 3u);
  EXPECT_STREQ("\u20AC\U0001F600"_ns->UTF8String(), "\u20AC\U0001F600");
  EXPECT_STREQ("\u00FF"_ns->UTF8String(), "\u00FF");
}

TEST(ConstantStringTest, LivesForEver) {
  for (int i = 0; i < 100; ++i) {
    send<"release">("kept"_ns);
    const NSString copied = "kept"_ns;
  }
  EXPECT_EQ(std::string("kept"_ns), "kept");
}

TEST(ConstantStringTest, DecodedWhileTheProgramIsCompiled) {
  static_assert(detail::literalText<"\u00E9">.size() == 2);
  static_assert(sizeof(detail::literalText<"\u00E9">[0]) == 1);
  static_assert(detail::literalText<"\u4E2D">[0] == u'\u4E2D');
  static_assert(detail::literalText<"\U0001F600">[1] == u'\xDE00');
}

}  // namespace
}  // namespace brindle
