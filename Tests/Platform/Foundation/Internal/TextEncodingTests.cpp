#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;

TextView wide(std::u16string_view units) { return TextView::utf16(units); }

TEST(TextEncodingTest, Tour) {
  const Text text = textFromUtf8("h\xC3\xA9llo \xE2\x82\xAC \xF0\x9F\x98\x80").value();
  EXPECT_EQ(text.view(), wide(u"h\u00E9llo \u20AC \U0001F600"));
  EXPECT_EQ(utf8FromText(text), "h\xC3\xA9llo \xE2\x82\xAC \xF0\x9F\x98\x80");

  EXPECT_EQ(encodeText(text, TextEncoding::latin1), std::nullopt);
  EXPECT_EQ(encodeText(text, TextEncoding::latin1, true), "h\xE9llo ? ?");
  EXPECT_EQ(decodeText("\xFE\xFF\x20\xAC", TextEncoding::utf16).value().view(), wide(u"\u20AC"));
}

TEST(TextEncodingTest, EveryCharacterComesBack) {
  for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x3000 || (c > 0xD700 && c < 0xE010) ? 1 : 97) {
    if (c >= 0xD800 && c < 0xE000) continue;
    std::u16string units;
    if (c < 0x10000) {
      units.push_back(static_cast<char16_t>(c));
    } else {
      units.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
    }
    const std::string bytes = utf8FromText(wide(units));
    const auto back = textFromUtf8(bytes);
    ASSERT_TRUE(back) << std::hex << static_cast<unsigned>(c);
    ASSERT_EQ(back->view(), wide(units)) << std::hex << static_cast<unsigned>(c);
  }
}

TEST(TextEncodingTest, StorageFollowsTheCharacters) {
  EXPECT_TRUE(textFromUtf8("\xC3\xBF")->view().isNarrow());
  EXPECT_FALSE(textFromUtf8("\xC4\x80")->view().isNarrow());
}

TEST(TextEncodingTest, InvalidUtf8) {
  const struct {
    std::string_view bytes;
    std::u16string_view replaced;
  } cases[] = {
      {"\x80", u"\uFFFD"},                                // nothing begins with it
      {"a\xC0\x80", u"a\uFFFD\uFFFD"},                    // overlong
      {"\xC1\xBF", u"\uFFFD\uFFFD"},                      // overlong
      {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // above the last character
      {"\xF5", u"\uFFFD"},
      {"\xFF\xFE", u"\uFFFD\uFFFD"},
      {"\xE2\x82", u"\uFFFD"},  // cut off: one for the whole start
      {"\xF0\x9F\x98z", u"\uFFFDz"},
      {"\xE2\xE2\x82\xAC", u"\uFFFD\u20AC"},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(textFromUtf8(c.bytes));
    EXPECT_FALSE(decodeText(c.bytes, TextEncoding::utf8));
    EXPECT_EQ(textFromUtf8Replacing(c.bytes).view(), wide(c.replaced));
  }
}

TEST(TextEncodingTest, LoneSurrogatesLeaveAsReplacementCharacters) {
  EXPECT_EQ(utf8FromText(wide(u"a\xD83D")), "a\xEF\xBF\xBD");
  EXPECT_EQ(utf8FromText(wide(u"\xDE00\xD83D")), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(encodeText(wide(u"\xD83D"), TextEncoding::utf16BigEndian), "\xFF\xFD");
  EXPECT_EQ(encodeText(wide(u"\xD83D"), TextEncoding::ascii), std::nullopt);
}

TEST(TextEncodingTest, Utf16MarkDecidesTheOrder) {
  const auto decode = [](std::string_view bytes, TextEncoding encoding) {
    return decodeText(bytes, encoding)->view().toUtf16();
  };
  EXPECT_EQ(decode("\xFF\xFE\x41\x00"sv, TextEncoding::utf16), u"A");
  EXPECT_EQ(decode("\xFE\xFF\x00\x41"sv, TextEncoding::utf16), u"A");
  EXPECT_EQ(decode("\x41\x00"sv, TextEncoding::utf16LittleEndian), u"A");
  EXPECT_EQ(decode("\x00\x41"sv, TextEncoding::utf16BigEndian), u"A");
  EXPECT_EQ(decode("\xFE\xFF"sv, TextEncoding::utf16), u"");
  EXPECT_EQ(decode("\xFE\xFF"sv, TextEncoding::utf16BigEndian), u"\uFEFF");
  EXPECT_FALSE(decodeText("\x41\x00\x42"sv, TextEncoding::utf16));

  EXPECT_EQ(encodeText(wide(u"A\u20AC"), TextEncoding::utf16BigEndian), "\x00\x41\x20\xAC"sv);
  EXPECT_EQ(encodeText(wide(u"A\u20AC"), TextEncoding::utf16LittleEndian), "\x41\x00\xAC\x20"sv);
  const std::string marked = encodeText(wide(u"A"), TextEncoding::utf16).value();
  EXPECT_EQ(decode(marked, TextEncoding::utf16), u"A");
  EXPECT_EQ(marked.size(), 4u);
}

TEST(TextEncodingTest, OneByteEncodings) {
  EXPECT_FALSE(decodeText("\x80", TextEncoding::ascii));
  EXPECT_EQ(decodeText("\x80", TextEncoding::latin1)->view(), wide(u"\x80"));
  EXPECT_EQ(encodeText(wide(u"\x80"), TextEncoding::latin1), "\x80");
  EXPECT_EQ(encodeText(wide(u"\x80"), TextEncoding::ascii, true), "?");
  EXPECT_EQ(encodeText(wide(u"A\0B"sv), TextEncoding::ascii), "A\0B"sv);
}

TEST(TextEncodingTest, AMarkInFrontOfUtf8IsNoPartOfTheText) {
  EXPECT_EQ(decodeText("\xEF\xBB\xBF"
                       "a",
                       TextEncoding::utf8)
                ->view(),
            wide(u"a"));
  EXPECT_EQ(textFromUtf8("\xEF\xBB\xBF")->view(), wide(u"\uFEFF"));
}

TEST(TextEncodingTest, CutCharacters) {
  EXPECT_EQ(withoutCutCharacter(""), "");
  EXPECT_EQ(withoutCutCharacter("a"), "a");
  EXPECT_EQ(withoutCutCharacter("a\xC3\xA9"), "a\xC3\xA9");
  EXPECT_EQ(withoutCutCharacter("a\xC3"), "a");
  EXPECT_EQ(withoutCutCharacter("\xE2\x82"), "");
  EXPECT_EQ(withoutCutCharacter("a\xF0\x9F\x98"), "a");
  EXPECT_EQ(withoutCutCharacter("\x80\x80\x80\x80"), "\x80\x80\x80\x80");
}

}  // namespace
}  // namespace brindle::internal
