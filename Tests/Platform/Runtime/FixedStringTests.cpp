#include <Brindle/Platform/FixedString.h>

#include <gtest/gtest.h>

namespace brindle {
namespace {

template <FixedString S>
constexpr std::size_t sizeOf() {
  return S.size();
}

static_assert(sizeOf<"">() == 0 && sizeOf<"abc:">() == 4);
static_assert((FixedString("ab") + FixedString("") + FixedString("c")).view() == "abc");
static_assert(detail::decimal<0>().view() == "0");
static_assert(detail::decimal<9>().view() == "9" && detail::decimal<10>().view() == "10");
static_assert(detail::decimal<18446744073709551615U>().view() == "18446744073709551615");

TEST(FixedStringTest, Tour) {
  constexpr FixedString text = FixedString("frame") + detail::decimal<24>();
  EXPECT_STREQ(text.c_str(), "frame24");
  EXPECT_EQ(text.view().size(), text.size());
}

}  // namespace
}  // namespace brindle
