#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/FormatParser.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

using Piece = FormatParser::Piece;

std::string field(const FormatField& f) {
  switch (f.kind) {
    case FormatField::Kind::none:
      return "";
    case FormatField::Kind::fixed:
      return std::to_string(f.value);
    case FormatField::Kind::argument:
      return "*" + std::to_string(f.value);
  }
  return "";
}

// Text as it is, a conversion as {argument flags width .precision letter}.
std::string parsed(std::string_view format) {
  const Text text = textFromUtf8Replacing(format);
  FormatParser parser(text);
  std::string out;
  for (;;) {
    const Piece piece = parser.next();
    if (piece == Piece::end) return out;
    if (piece == Piece::text) {
      out += utf8FromText(parser.text());
      continue;
    }
    const FormatSpecification& spec = parser.specification();
    out += "{";
    out +=
        spec.argument == FormatSpecification::kNoArgument ? "none" : std::to_string(spec.argument);
    out += spec.leftAligned ? "-" : "";
    out += spec.plus ? "+" : "";
    out += spec.space ? "_" : "";
    out += spec.alternate ? "#" : "";
    out += spec.zero ? "0" : "";
    out += " " + field(spec.width) + "." + field(spec.precision) + " " + spec.conversion + "}";
  }
}

TEST(FormatParserTest, Tour) {
  EXPECT_EQ(parsed("%@ has %d%%"), "{0 . @} has {1 . d}%");
  EXPECT_EQ(parsed("%2$@ %1$@"), "{1 . @} {0 . @}");
  EXPECT_EQ(parsed("[%-+ #08.3f]"), "[{0-+_#0 8.3 f}]");
  EXPECT_EQ(parsed("%*.*f"), "{2 *0.*1 f}");
}

TEST(FormatParserTest, PositionsAndFields) {
  EXPECT_EQ(parsed("%3$*1$.*2$d"), "{2 *0.*1 d}");
  EXPECT_EQ(parsed("%05d"), "{00 5. d}");
  EXPECT_EQ(parsed("%.f"), "{0 .0 f}");
  EXPECT_EQ(parsed("%'d"), "{0 . d}");
  EXPECT_EQ(parsed("%1$d %d"), "{0 . d} {0 . d}");
  EXPECT_EQ(parsed("%0$d"), "{none . d}");
  EXPECT_EQ(parsed("%99999999999999999999d"), "{0 16384. d}");
  EXPECT_EQ(parsed("%.99999999999999999999d"), "{0 .16384 d}");
  EXPECT_EQ(parsed("%99999999999999999999$d"), "{999999999 . d}");
}

TEST(FormatParserTest, Lengths) {
  const struct {
    const char* format;
    FormatLength length;
  } cases[] = {
      {"%d", FormatLength::none}, {"%hd", FormatLength::h},   {"%hhd", FormatLength::hh},
      {"%ld", FormatLength::l},   {"%lld", FormatLength::ll}, {"%qd", FormatLength::q},
      {"%Lf", FormatLength::L},   {"%zd", FormatLength::z},   {"%td", FormatLength::t},
      {"%jd", FormatLength::j},
  };
  for (const auto& c : cases) {
    FormatParser parser(TextView::latin1(c.format));
    ASSERT_EQ(parser.next(), Piece::conversion) << c.format;
    EXPECT_EQ(parser.specification().length, c.length) << c.format;
  }
}

TEST(FormatParserTest, WhatIsNoConversionStaysAsWritten) {
  for (const char* format : {"%", "100%", "%y", "%5", "%-", "%.", "%l", "%hhhd", "%1$", "%\u4E2D",
                             "%*", "a%!b", "%.-3d"}) {
    EXPECT_EQ(parsed(format), format);
  }
  EXPECT_EQ(parsed("%*y%d"), "%*y{0 . d}");  // and takes no argument
  EXPECT_EQ(parsed("%5%"), "%");
  EXPECT_EQ(parsed(""), "");
  EXPECT_EQ(parsed("%n%d"), "{0 . n}{1 . d}");
}

TEST(FormatParserTest, RandomFormatsEnd) {
  std::mt19937 random(11);
  constexpr std::string_view kAlphabet = "%%%%$*.0123456789-+ #'hlqLztjdiuxXocCsSfeEgGaAp@nz";
  for (int round = 0; round < 20000; ++round) {
    std::string format;
    for (std::size_t i = random() % 24; i > 0; --i) {
      format.push_back(kAlphabet[random() % kAlphabet.size()]);
    }
    FormatParser parser(TextView::latin1(format));
    std::size_t pieces = 0;
    while (parser.next() != Piece::end) ASSERT_LE(++pieces, format.size()) << format;
  }
}

}  // namespace
}  // namespace brindle::internal
