#include <Brindle/Platform/NSMutableData.h>

#include <cstring>

#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(NSMutableDataTest, Grows) {
  const NSMutableData data = NSMutableData::data();
  data->appendBytes("abc", 3);
  data->appendData(NSData("de"));
  EXPECT_EQ(data->view(), "abcde");
  data->setLength(2);
  EXPECT_EQ(data->view(), "ab");
  data->increaseLengthBy(2);
  EXPECT_EQ(data->view(), std::string_view("ab\0\0", 4));
  std::memcpy(data->mutableBytes(), "wxyz", 4);
  EXPECT_EQ(data->view(), "wxyz");
  data->setData(NSData("new"));
  EXPECT_EQ(data->view(), "new");
}

TEST(NSMutableDataTest, ReplacesRanges) {
  const NSMutableData data = NSMutableData::dataWithBytes("abcdef", 6);
  data->replaceBytesInRange({1, 2}, "XYZ", 3);
  EXPECT_EQ(data->view(), "aXYZdef");
  data->replaceBytesInRange({7, 5}, "!", 1);
  EXPECT_EQ(data->view(), "aXYZdef!");
  data->replaceBytesInRange({0, 8}, "", 0);
  EXPECT_EQ(data->length(), 0U);
}

TEST(NSMutableDataTest, TakesItsOwnBytes) {
  const NSMutableData data = NSMutableData::dataWithBytes("abcdefghijklmnopqrstuvwxyz", 26);
  data->appendData(data);
  EXPECT_EQ(data->length(), 52U);
  data->replaceBytesInRange({0, 1}, data->bytes(), 26);
  EXPECT_EQ(data->view().substr(0, 27), "abcdefghijklmnopqrstuvwxyzb");
  data->setData(data);
  EXPECT_EQ(data->length(), 77U);
}

TEST(NSMutableDataTest, RefusesWhatCannotBe) {
  const NSMutableData data = NSMutableData::dataWithLength(3);
  EXPECT_EQ(raisedBy([&] { data->replaceBytesInRange({4, 0}, "x", 1); }), "NSRangeException");
  EXPECT_EQ(raisedBy([&] { data->setLength(~0UL); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([&] { data->increaseLengthBy(~0UL - 1); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { NSMutableData::dataWithLength(~0UL); }), "NSInvalidArgumentException");
  EXPECT_EQ(NSMutableData::dataWithCapacity(~0UL)->length(), 0U);
  EXPECT_EQ(data->length(), 3U);
}

TEST(NSMutableDataTest, CopiesAreIndependent) {
  const NSMutableData data = NSMutableData::dataWithBytes("ab", 2);
  const NSData copy = data->copy();
  const NSMutableData other = data->mutableCopy();
  data->appendBytes("c", 1);
  EXPECT_EQ(copy->view(), "ab");
  EXPECT_EQ(other->view(), "ab");
  EXPECT_FALSE(isa<NSMutableData>(copy));
}

}  // namespace
}  // namespace brindle
