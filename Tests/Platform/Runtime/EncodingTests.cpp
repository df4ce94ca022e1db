#include <Brindle/Platform/Encoding.h>

#include <cstdint>
#include <string>
#include <string_view>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSObject.h>
#include <gtest/gtest.h>

namespace brindle {
namespace {

struct Range {
  NSUInteger location, length;
};
struct Rect {
  Range x, y;
};
class Incomplete;
enum Plain { kPlain };
enum class Small : std::uint8_t { kSmall };
struct Tail {
  using VariadicTailTag = void;
};

}  // namespace
template <>
struct StructEncoding<Range> : FieldsEncoding<"_Range", NSUInteger, NSUInteger> {};
template <>
struct StructEncoding<Rect> : FieldsEncoding<"Rect", Range, Range> {};
namespace {

using detail::methodTypes;
using detail::wireTypes;

static_assert(methodTypes<NSUInteger, id>.view() == "Q24@0:8@16");
static_assert(methodTypes<void>.view() == "v16@0:8");

TEST(EncodingTest, Tour) {
  EXPECT_STREQ(typeEncoding<int>(), "i");
  EXPECT_STREQ(typeEncoding<id>(), "@");
  EXPECT_STREQ((methodTypes<id, NSUInteger, bool>.c_str()), "@28@0:8Q16c24");
}

TEST(EncodingTest, EveryType) {
  const struct {
    const char* found;
    const char* expected;
  } kTypes[] = {
      {typeEncoding<void>(), "v"},
      {typeEncoding<bool>(), "c"},
      {typeEncoding<BOOL>(), "c"},
      {typeEncoding<char>(), "c"},
      {typeEncoding<std::int8_t>(), "c"},
      {typeEncoding<std::uint8_t>(), "C"},
      {typeEncoding<std::int16_t>(), "s"},
      {typeEncoding<std::uint16_t>(), "S"},
      {typeEncoding<char16_t>(), "S"},
      {typeEncoding<std::int32_t>(), "i"},
      {typeEncoding<std::uint32_t>(), "I"},
      {typeEncoding<NSInteger>(), "q"},
      {typeEncoding<NSUInteger>(), "Q"},
      {typeEncoding<long long>(), "q"},
      {typeEncoding<float>(), "f"},
      {typeEncoding<double>(), "d"},
      {typeEncoding<long double>(), "D"},
      {typeEncoding<NSObject>(), "@"},
      {typeEncoding<std::nullptr_t>(), "@"},
      {typeEncoding<Class>(), "#"},
      {typeEncoding<ClassOf<NSObject>>(), "#"},
      {typeEncoding<SEL>(), ":"},
      {typeEncoding<IMP>(), "^?"},
      {typeEncoding<int (*)(double)>(), "^?"},
      {typeEncoding<Block<void()>>(), "@?"},
      {typeEncoding<BlockArg<void()>>(), "@?"},
      {typeEncoding<char*>(), "*"},
      {typeEncoding<const char*>(), "r*"},
      {typeEncoding<void*>(), "^v"},
      {typeEncoding<const void*>(), "r^v"},
      {typeEncoding<void**>(), "^^v"},
      {typeEncoding<int*>(), "^i"},
      {typeEncoding<const int*>(), "r^i"},
      {typeEncoding<bool*>(), "^c"},
      {typeEncoding<id*>(), "^@"},
      {typeEncoding<NSObject*>(), "^@"},
      {typeEncoding<Incomplete*>(), "^v"},
      {typeEncoding<std::string*>(), "^v"},
      {typeEncoding<Plain>(), "I"},
      {typeEncoding<Small>(), "C"},
      {typeEncoding<Range>(), "{_Range=QQ}"},
      {typeEncoding<Rect>(), "{Rect={_Range=QQ}{_Range=QQ}}"},
      {typeEncoding<Range*>(), "^{_Range=QQ}"},
      {typeEncoding<const Range&>(), "{_Range=QQ}"},
  };
  for (const auto& t : kTypes) EXPECT_STREQ(t.found, t.expected);
}

TEST(EncodingTest, OffsetsCountAsThePlatformCounts) {
  EXPECT_STREQ((methodTypes<void, bool, std::int16_t, int, double>.c_str()), "v36@0:8c16s20i24d28");
  EXPECT_STREQ((methodTypes<Rect, Range, id>.c_str()),
               "{Rect={_Range=QQ}{_Range=QQ}}40@0:8{_Range=QQ}16@32");
  EXPECT_STREQ((methodTypes<id, const char*, NSObject*>.c_str()), "@32@0:8r*16^@24");
  EXPECT_STREQ((methodTypes<void, id, Tail>.c_str()), "v24@0:8@16") << "a tail has no place";
  EXPECT_STREQ((detail::blockTypes<bool, id, NSUInteger>.c_str()), "c24@?0@8Q16");
}

TEST(EncodingTest, WireCodesForgetWhatDoesNotMatter) {
  EXPECT_EQ((wireTypes<id, Class, Block<void()>, NSObject>.view()), "@@@@");
  EXPECT_EQ((wireTypes<void, bool, BOOL, std::uint8_t>.view()), "vbbb");
  EXPECT_EQ((wireTypes<NSInteger, NSUInteger, long>.view()), "qqq");
  EXPECT_EQ((wireTypes<int, unsigned, Plain>.view()), "iii");
  EXPECT_EQ((wireTypes<SEL, const char*, void*, IMP>.view()), "pppp");
  EXPECT_EQ((wireTypes<float, double, long double>.view()), "fdD");
  EXPECT_EQ((wireTypes<void, NSObject*>.view()), "v&") << "an out-slot is no plain pointer";
  EXPECT_EQ((wireTypes<Rect, Range>.view()), "{{qq}{qq}}{qq}");
  EXPECT_EQ((wireTypes<void, id, Tail>.view()), "v@~");
}

}  // namespace
}  // namespace brindle
