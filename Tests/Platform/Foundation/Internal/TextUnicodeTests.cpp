#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle::internal {
namespace {

Text text(std::string_view utf8) { return textFromUtf8Replacing(utf8); }
std::string upper(std::string_view s) { return utf8FromText(uppercaseText(text(s))); }
std::string lower(std::string_view s) { return utf8FromText(lowercaseText(text(s))); }
std::string capitalized(std::string_view s) { return utf8FromText(capitalizedText(text(s))); }

TEST(TextUnicodeTest, Tour) {
  EXPECT_EQ(upper("stra\u00DFe"), "STRASSE");
  EXPECT_EQ(lower("\u00C5NGSTR\u00D6M"), "\u00E5ngstr\u00F6m");
  EXPECT_EQ(capitalized("the QUICK  brown\tfox"), "The Quick  Brown\tFox");
  EXPECT_EQ(foldedText(text("STRASSE"), {.caseInsensitive = true}),
            foldedText(text("stra\u00DFe"), {.caseInsensitive = true}));
  EXPECT_LT(compareInLocale(text("a"), text("B"), "en_US", false), 0);
}

TEST(TextUnicodeTest, CaseBelongsToNoLanguage) {
  EXPECT_EQ(upper("i"), "I");
  EXPECT_EQ(lower("I"), "i");
  EXPECT_EQ(lower("\u0391\u03A3"), "\u03B1\u03C2");  // the sigma at a word's end
  EXPECT_EQ(upper("\u00FF"), "\u0178");              // leaves Latin-1
  EXPECT_EQ(upper("\U00010428"), "\U00010400");
  EXPECT_EQ(upper(""), "");
  EXPECT_EQ(upper("az{`AZ@["), "AZ{`AZ@[");
  EXPECT_EQ(lower("az{`AZ@["), "az{`az@[");
}

TEST(TextUnicodeTest, WordsEndAtWhiteSpaceOnly) {
  EXPECT_EQ(capitalized("hello-WORLD"), "Hello-world");
  EXPECT_EQ(capitalized(" o'neill \n x"), " O'neill \n X");
  EXPECT_EQ(capitalized("\u01C6ep \u00E9TE"), "\u01C5ep \u00C9te");
  EXPECT_EQ(capitalized(""), "");
}

TEST(TextUnicodeTest, CaseOfLoneSurrogates) {
  EXPECT_EQ(uppercaseText(TextView::utf16(u"a\xD800z")).view(), TextView::utf16(u"A\xD800Z"));
}

TEST(TextUnicodeTest, PiecesAreCharactersWithTheirMarks) {
  const TextView view = TextView::utf16(u"ae\u0301\u0323\U0001F600\u0301b");
  const std::size_t ends[] = {1, 4, 4, 4, 7, 7, 7, 8};
  for (const std::size_t start : {0u, 1u, 4u, 7u}) {
    EXPECT_EQ(foldingPieceEnd(view, start, {}), ends[start]) << start;
    EXPECT_TRUE(isFoldingPieceStart(view, start, {})) << start;
  }
  for (const std::size_t inside : {2u, 3u, 5u, 6u}) {
    EXPECT_FALSE(isFoldingPieceStart(view, inside, {})) << inside;
  }
  const TextFolding literal{.canonical = false, .caseInsensitive = true};
  EXPECT_EQ(foldingPieceEnd(view, 1, literal), 2u);
  EXPECT_EQ(foldingPieceEnd(view, 4, literal), 6u);
  EXPECT_TRUE(isFoldingPieceStart(view, 2, literal));
  EXPECT_FALSE(isFoldingPieceStart(view, 5, literal));
}

TEST(TextUnicodeTest, FoldsPiecesLikeTheWhole) {
  const Text sample = text("\u00C9t\u0065\u0301 \u212B \uAC01 \u1E69 \u0130 \u00DF\u4E2D");
  for (const bool canonical : {false, true}) {
    for (const bool caseInsensitive : {false, true}) {
      const TextFolding folding{canonical, caseInsensitive, false};
      std::u16string pieces;
      for (std::size_t at = 0; at < sample.size();) {
        const std::size_t end = foldingPieceEnd(sample, at, folding);
        appendFolded(pieces, sample.view().sub(at, end - at), folding);
        at = end;
      }
      EXPECT_EQ(pieces, foldedText(sample, folding));
    }
  }
}

TEST(TextUnicodeTest, LanguagesOrderDifferently) {
  const Text zebra = text("z");
  const Text umlaut = text("\u00F6");
  EXPECT_LT(compareInLocale(umlaut, zebra, "de_DE", false), 0);
  EXPECT_GT(compareInLocale(umlaut, zebra, "sv_SE", false), 0);
  EXPECT_LT(compareInLocale(umlaut, zebra, "", false), 0);
  EXPECT_LT(compareInLocale(umlaut, zebra, "xx_XX no such language", false), 0);
  EXPECT_NE(compareInLocale(text("a"), text("A"), "en", false), 0);
  EXPECT_EQ(compareInLocale(text("a"), text("A"), "en", true), 0);
}

TEST(TextUnicodeTest, WhiteSpace) {
  for (const char32_t c : {U' ', U'\t', U'\n', U'\r', U'\u0085', U'\u00A0', U'\u2003', U'\u2028'}) {
    EXPECT_TRUE(isWhiteSpace(c)) << static_cast<unsigned>(c);
  }
  for (const char32_t c : {U'\0', U'\x08', U'\x1F', U'a', U'\u200B', U'\U0001F600'}) {
    EXPECT_FALSE(isWhiteSpace(c)) << static_cast<unsigned>(c);
  }
}

}  // namespace
}  // namespace brindle::internal
