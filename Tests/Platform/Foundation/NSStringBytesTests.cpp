#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include <Brindle/Platform/AutoreleasePool.h>
#if __has_include(<Brindle/Platform/NSData.h>)
#include <Brindle/Platform/NSData.h>
#define HAVE_DATA 1
#endif
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

using namespace std::string_view_literals;

const char* const kArgument = "NSInvalidArgumentException";

#ifdef HAVE_DATA
std::string bytesOf(const NSData& data) {
  return std::string(static_cast<const char*>(data->bytes()), data->length());
}
#endif

TEST(NSStringBytesTest, Tour) {
  const NSString text = NSString::stringWithUTF8String("caf\u00E9");
  EXPECT_STREQ(text->UTF8String(), "caf\u00E9");
  EXPECT_STREQ(text->cStringUsingEncoding(NSISOLatin1StringEncoding), "caf\xE9");
  EXPECT_EQ(text->cStringUsingEncoding(NSASCIIStringEncoding), nullptr);
  EXPECT_EQ(text->lengthOfBytesUsingEncoding(NSUTF8StringEncoding), 5u);
  EXPECT_FALSE(NSString::stringWithUTF8String("bad \xFF"));
#ifdef HAVE_DATA
  const NSData data = text->dataUsingEncoding(NSUTF16BigEndianStringEncoding);
  EXPECT_EQ(bytesOf(data), "\0c\0a\0f\0\xE9"sv);
  EXPECT_TRUE(NSString::alloc()->initWithData(data, NSUTF16BigEndianStringEncoding)->isEqual(text));
#endif
}

TEST(NSStringBytesTest, UTF8LivesAsLongAsTheString) {
  for (const char* bytes : {"plain", "caf\u00E9", "\u4E2D\u6587"}) {
    const NSString text = NSString(bytes);
    const char* first = text->UTF8String();
    EXPECT_STREQ(first, bytes);
    EXPECT_EQ(text->UTF8String(), first);
  }
}

TEST(NSStringBytesTest, UTF8OfAChangingStringLivesAsLongAsThePool) {
  AutoreleasePool pool;
  const NSMutableString text(std::string_view("before"));
  const char* before = text->UTF8String();
  text->setString("after, and longer than any storage that was there before"_ns);
  EXPECT_STREQ(before, "before");
  const NSString client = ClientString::with(u"\u4E2D");
  EXPECT_STREQ(client->UTF8String(), "\u4E2D");
}

TEST(NSStringBytesTest, Encodings) {
  const struct {
    NSStringEncoding encoding;
    std::string_view bytes;
  } cases[] = {
      {NSUTF8StringEncoding, "\xC3\xA9"sv},
      {NSISOLatin1StringEncoding, "\xE9"sv},
      {NSUTF16BigEndianStringEncoding, "\0\xE9"sv},
      {NSUTF16LittleEndianStringEncoding, "\xE9\0"sv},
      {NSUTF16StringEncoding, "\xFE\xFF\0\xE9"sv},
      {NSUTF16StringEncoding, "\xFF\xFE\xE9\0"sv},
      {NSUTF8StringEncoding, "\xEF\xBB\xBF\xC3\xA9"sv},
  };
  for (const auto& c : cases) {
    const auto text = NSString::alloc()->initWithBytes(c.bytes.data(), c.bytes.size(), c.encoding);
    EXPECT_EQ(std::string(text), "\u00E9") << c.encoding << ' ' << c.bytes.size();
  }
  EXPECT_FALSE(NSString::alloc()->initWithBytes("\x80", 1, NSASCIIStringEncoding));
  EXPECT_FALSE(NSString::alloc()->initWithBytes("a\0b", 3, NSUTF16StringEncoding));
  EXPECT_FALSE(NSString::alloc()->initWithBytes("a", 1, 4711));
  EXPECT_EQ(NSString::alloc()->initWithBytes("", 0, NSUTF8StringEncoding)->length(), 0u);
  EXPECT_EQ(NSString::defaultCStringEncoding(), NSUTF8StringEncoding);
}

TEST(NSStringBytesTest, CStrings) {
  EXPECT_EQ(std::string(NSString::stringWithCString("\xE9", NSISOLatin1StringEncoding)), "\u00E9");
  EXPECT_FALSE(NSString::stringWithCString("\xE9", NSASCIIStringEncoding));
  EXPECT_EQ(std::string(NSString::alloc()->initWithCString("a", NSASCIIStringEncoding)), "a");
  EXPECT_EQ(std::string(NSString::alloc()->initWithUTF8String("\u4E2D")), "\u4E2D");
  EXPECT_FALSE(NSString::alloc()->initWithUTF8String("\xFF"));
  EXPECT_EQ(raisedBy([] { (void)NSString::stringWithUTF8String(nullptr); }), kArgument);
  EXPECT_EQ(raisedBy([] { (void)NSString::alloc()->initWithUTF8String(nullptr); }), kArgument);
  const char* wide = "A"_ns->cStringUsingEncoding(NSUTF16BigEndianStringEncoding);
  EXPECT_EQ(std::string_view(wide, 2), "\0A"sv);
}

TEST(NSStringBytesTest, WhatCannotBeEncoded) {
  EXPECT_FALSE("\u4E2D"_ns->canBeConvertedToEncoding(NSISOLatin1StringEncoding));
  EXPECT_TRUE("\u4E2D"_ns->canBeConvertedToEncoding(NSUTF8StringEncoding));
  EXPECT_EQ("\u4E2D"_ns->lengthOfBytesUsingEncoding(NSASCIIStringEncoding), 0u);
  EXPECT_FALSE("a"_ns->canBeConvertedToEncoding(4711));
#ifdef HAVE_DATA
  EXPECT_FALSE("a\u4E2D"_ns->dataUsingEncoding(NSASCIIStringEncoding));
  EXPECT_EQ(bytesOf("a\u4E2D"_ns->dataUsingEncoding(NSASCIIStringEncoding, true)), "a?");
  EXPECT_EQ(""_ns->dataUsingEncoding(NSASCIIStringEncoding)->length(), 0u);
  EXPECT_FALSE(NSString::alloc()->initWithData(nullptr, NSUTF8StringEncoding));
#endif
}

TEST(NSStringBytesTest, LoneSurrogatesLeaveAsReplacementCharacters) {
  const NSString half = NSString::stringWithCharacters(u"a\xD83D", 2);
  EXPECT_EQ(half->length(), 2u);
  EXPECT_EQ(half->characterAtIndex(1), 0xD83D);
  EXPECT_STREQ(half->UTF8String(), "a\uFFFD");
}

}  // namespace
}  // namespace brindle
