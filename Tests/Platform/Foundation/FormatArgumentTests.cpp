#include <Brindle/Platform/FormatArgument.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle {
namespace {

using Kind = FormatArgument::Kind;

TEST(FormatArgumentTest, Tour) {
  const FormatArgument arguments[] = {1, 2u, 3.0, "four", std::string_view("five"), nullptr};
  EXPECT_EQ(arguments[0].integer(), 1u);
  EXPECT_EQ(arguments[1].kind(), Kind::unsignedInteger);
  EXPECT_EQ(arguments[2].real(), 3.0);
  EXPECT_EQ(arguments[3].kind(), Kind::cString);
  EXPECT_EQ(arguments[4].size(), 4u);
  EXPECT_EQ(arguments[5].pointer(), nullptr);
}

TEST(FormatArgumentTest, IntegersKeepSignAndValue) {
  enum Plain { kPlain = 3 };
  enum class Small : std::int8_t { minus = -1 };
  EXPECT_EQ(FormatArgument(std::int8_t{-1}).integer(), ~0ull);
  EXPECT_EQ(FormatArgument(std::uint8_t{255}).integer(), 255u);
  EXPECT_EQ(FormatArgument(Small::minus).kind(), Kind::signedInteger);
  EXPECT_EQ(FormatArgument(Small::minus).integer(), ~0ull);
  EXPECT_EQ(FormatArgument(kPlain).integer(), 3u);
  EXPECT_EQ(FormatArgument(true).integer(), 1u);
  EXPECT_EQ(FormatArgument(u'\u4E2D').integer(), 0x4E2Du);
}

TEST(FormatArgumentTest, EveryKind) {
  int target = 0;
  const std::string string = "abc";
  EXPECT_EQ(FormatArgument(1.5f).kind(), Kind::floating);
  EXPECT_EQ(FormatArgument(1.5L).real(), 1.5);
  EXPECT_EQ(FormatArgument(string).kind(), Kind::bytes);
  EXPECT_EQ(FormatArgument(std::u16string_view(u"ab")).size(), 2u);
  EXPECT_EQ(FormatArgument(&target).kind(), Kind::pointer);
  EXPECT_EQ(FormatArgument(&target).pointer(), &target);
  EXPECT_EQ(FormatArgument::object(&target).kind(), Kind::object);
}

}  // namespace
}  // namespace brindle
