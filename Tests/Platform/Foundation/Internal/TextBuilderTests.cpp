#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextBuilder.h"

namespace brindle::internal {
namespace {

TextView narrow(std::string_view bytes) { return TextView::latin1(bytes); }
TextView wide(std::u16string_view units) { return TextView::utf16(units); }

TEST(TextBuilderTest, PutsPiecesTogether) {
  TextBuilder text;
  EXPECT_EQ(text.view(), narrow(""));
  text.append(narrow("caf"));
  text.append(u'\u00E9');
  text.append(3, u'.');
  text.append(narrow(""));
  EXPECT_EQ(text.view(), narrow("caf\xE9..."));
  EXPECT_TRUE(text.view().isNarrow());
}

TEST(TextBuilderTest, GrowsBeyondWhatNeedsNoMemory) {
  for (const std::size_t size : {191U, 192U, 193U, 1000U}) {
    TextBuilder pieces;
    TextBuilder units;
    std::string expected;
    for (std::size_t i = 0; i < size; ++i) {
      const char unit = static_cast<char>('a' + i % 26);
      pieces.append(narrow(std::string_view(&unit, 1)));
      units.append(static_cast<char16_t>(unit));
      expected += unit;
    }
    EXPECT_EQ(pieces.view(), narrow(expected));
    EXPECT_EQ(units.view(), narrow(expected));
    TextBuilder filled;
    filled.append(narrow("<"));
    filled.append(size, u'-');
    filled.append(narrow(">"));
    EXPECT_EQ(filled.view(), narrow("<" + std::string(size, '-') + ">"));
    TextBuilder atOnce;
    atOnce.append(narrow(expected));
    atOnce.append(narrow(expected));
    EXPECT_EQ(atOnce.view(), narrow(expected + expected));
  }
}

TEST(TextBuilderTest, TakesUnitsOfAnyWidth) {
  TextBuilder text;
  text.append(narrow("\xE9 "));
  text.append(wide(u"\u0119"));
  text.append(u'\u00E9');
  text.append(2, u'\u2026');
  text.append(narrow("!"));
  EXPECT_EQ(text.view(), wide(u"\u00E9 \u0119\u00E9\u2026\u2026!"));
  TextBuilder early;
  early.append(1, u'\u2026');
  EXPECT_EQ(early.view(), wide(u"\u2026"));
  TextBuilder latin;  // wide storage of units that need none
  latin.append(wide(u"\u00E9"));
  EXPECT_EQ(latin.view(), narrow("\xE9"));
}

}  // namespace
}  // namespace brindle::internal
