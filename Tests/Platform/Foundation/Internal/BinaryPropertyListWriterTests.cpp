#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/BinaryPropertyList.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
using Index = PropertyList::Index;

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

std::string written(PropertyList& list, Index root) {
  list.setRoot(root);
  return writeBinaryPropertyList(list);
}

// The only object of a file without its frame.
std::string_view objectOf(std::string_view file) {
  return file.substr(8, file.size() - 8 - 1 - 32);
}

unsigned offsetSizeOf(const std::string& file) {
  return static_cast<unsigned char>(file[file.size() - 26]);
}
unsigned referenceSizeOf(const std::string& file) {
  return static_cast<unsigned char>(file[file.size() - 25]);
}
std::uint64_t countOf(const std::string& file) {
  std::uint64_t count = 0;
  for (std::size_t i = file.size() - 24; i < file.size() - 16; ++i) {
    count = count << 8U | static_cast<unsigned char>(file[i]);
  }
  return count;
}

TEST(BinaryPropertyListWriterTest, Tour) {
  PropertyList list;
  const Index entries[] = {list.addString(ascii("k")), list.addInteger(1)};
  EXPECT_EQ(written(list, list.addDictionary(entries)),
            "bplist00"
            "\xD1\x01\x02"
            "\x51k"
            "\x10\x01"
            "\x08\x0B\x0D"
            "\0\0\0\0\0\0\x01\x01"
            "\0\0\0\0\0\0\0\x03"
            "\0\0\0\0\0\0\0\0"
            "\0\0\0\0\0\0\0\x0F"sv);
}

TEST(BinaryPropertyListWriterTest, Integers) {
  const struct {
    PropertyInteger value;
    std::string_view object;
  } cases[] = {
      {PropertyInteger::fromSigned(0), "\x10\x00"sv},
      {PropertyInteger::fromSigned(255), "\x10\xFF"sv},
      {PropertyInteger::fromSigned(256), "\x11\x01\x00"sv},
      {PropertyInteger::fromSigned(65535), "\x11\xFF\xFF"sv},
      {PropertyInteger::fromSigned(65536), "\x12\x00\x01\x00\x00"sv},
      {PropertyInteger::fromSigned(4294967295), "\x12\xFF\xFF\xFF\xFF"sv},
      {PropertyInteger::fromSigned(4294967296), "\x13\x00\x00\x00\x01\x00\x00\x00\x00"sv},
      {PropertyInteger::fromSigned(INT64_MAX), "\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv},
      {PropertyInteger::fromSigned(-1), "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv},
      {PropertyInteger::fromSigned(INT64_MIN), "\x13\x80\x00\x00\x00\x00\x00\x00\x00"sv},
      {PropertyInteger::fromUnsigned(UINT64_MAX),
       "\x14\x00\x00\x00\x00\x00\x00\x00\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv},
      {{1, INT64_MIN}, "\x14\x80\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x01"sv},
  };
  for (const auto& [value, object] : cases) {
    PropertyList list;
    EXPECT_EQ(objectOf(written(list, list.addInteger(value))), object) << value.asReal();
  }
}

TEST(BinaryPropertyListWriterTest, OtherLeaves) {
  PropertyList list;
  const struct {
    Index node;
    std::string_view object;
  } cases[] = {
      {list.addNull(), "\x00"sv},
      {list.addBoolean(false), "\x08"sv},
      {list.addBoolean(true), "\x09"sv},
      {list.addReal(0.1), "\x23\x3F\xB9\x99\x99\x99\x99\x99\x9A"sv},
      {list.addReal(-HUGE_VAL), "\x23\xFF\xF0\x00\x00\x00\x00\x00\x00"sv},
      {list.addDate(-0.75), "\x33\xBF\xE8\x00\x00\x00\x00\x00\x00"sv},
      {list.addData({}), "\x40"sv},
      {list.addData("\xFF\x00"sv), "\x42\xFF\x00"sv},
      {list.addData("0123456789abcde"),
       "\x4F\x10\x0F\x30\x31\x32\x33\x34\x35\x36\x37\x38\x39"
       "abcde"sv},
      {list.addString({}), "\x50"sv},
      {list.addString(ascii("a\x7F")),
       "\x52"
       "a\x7F"sv},
      {list.addString(wide(u"ab")),
       "\x52"
       "ab"sv},
      {list.addString(ascii("\x80")), "\x61\x00\x80"sv},
      {list.addString(wide(u"\U0001F600")), "\x62\xD8\x3D\xDE\x00"sv},
      {list.addString(wide(u"\xDE00")), "\x61\xDE\x00"sv},
      {list.addUid(0), "\x80\x00"sv},
      {list.addUid(255), "\x80\xFF"sv},
      {list.addUid(256), "\x81\x01\x00"sv},
      {list.addUid(65536), "\x83\x00\x01\x00\x00"sv},
      {list.addUid(4294967296), "\x87\x00\x00\x00\x01\x00\x00\x00\x00"sv},
      {list.addArray({}), "\xA0"sv},
      {list.addSet({}), "\xC0"sv},
      {list.addDictionary({}), "\xD0"sv},
  };
  for (const auto& [node, object] : cases) {
    EXPECT_EQ(objectOf(written(list, node)), object) << nameOf(list.kind(node)) << ' ' << node;
  }
}

TEST(BinaryPropertyListWriterTest, EqualLeavesBecomeOne) {
  PropertyList list;
  const Index elements[] = {list.addString(ascii("a")),
                            list.addString(wide(u"a")),
                            list.addData("a"),
                            list.addData("a"),
                            list.addInteger(1),
                            list.addInteger(1),
                            list.addUid(1),
                            list.addUid(1),
                            list.addReal(1),
                            list.addReal(1),
                            list.addDate(1),
                            list.addDate(1),
                            list.addBoolean(true),
                            list.addBoolean(true),
                            list.addNull(),
                            list.addNull()};
  EXPECT_EQ(countOf(written(list, list.addArray(elements))), 1 + std::size(elements) / 2);
}

TEST(BinaryPropertyListWriterTest, WhatDiffersStaysApart) {
  PropertyList list;
  const Index elements[] = {list.addReal(0),
                            list.addReal(-0.0),
                            list.addInteger(0),
                            list.addBoolean(true),
                            list.addBoolean(false),
                            list.addInteger(-1),
                            list.addInteger({UINT64_MAX, 0}),
                            list.addData("a"),
                            list.addString(ascii("a")),
                            list.addString(ascii("b"))};
  EXPECT_EQ(countOf(written(list, list.addArray(elements))), 1 + std::size(elements));
}

TEST(BinaryPropertyListWriterTest, ContainersAreSharedAsInTheDocumentAndNotWhenEqual) {
  PropertyList list;
  const Index leaf[] = {list.addInteger(1)};
  const Index first = list.addArray(leaf);
  const Index second = list.addArray(leaf);
  const std::string file = written(list, list.addArray(std::vector{first, second, first}));
  EXPECT_EQ(countOf(file), 4U);
  std::string error;
  const auto back = readBinaryPropertyList(file, error);
  ASSERT_TRUE(back) << error;
  const auto elements = back->elements(back->root());
  EXPECT_EQ(elements[0], elements[2]);
  EXPECT_NE(elements[0], elements[1]);
}

TEST(BinaryPropertyListWriterTest, LeavesOutWhatNothingLeadsTo) {
  PropertyList list;
  list.addString(ascii("lost"));
  EXPECT_EQ(objectOf(written(list, list.addInteger(1))), "\x10\x01");
}

TEST(BinaryPropertyListWriterTest, ReferencesAndOffsetsAreAsSmallAsTheyCan) {
  const struct {
    std::uint32_t objects;  // the array and its integers
    std::size_t data;       // bytes of the data that comes last
    unsigned referenceSize, offsetSize;
  } cases[] = {
      {2, 0, 1, 1},    {255, 0, 1, 2},   {256, 0, 1, 2},   {257, 0, 2, 2},     {10, 150, 1, 1},
      {10, 300, 1, 2}, {65536, 0, 2, 4}, {65537, 0, 4, 4}, {100, 64000, 1, 2}, {100, 66000, 1, 4},
  };
  for (const auto& row : cases) {
    PropertyList list;
    std::vector<Index> elements;
    for (std::uint32_t i = 0; i + 2 < row.objects; ++i) elements.push_back(list.addInteger(i));
    elements.push_back(list.addData(std::string(row.data, 'x')));
    const std::string file = written(list, list.addArray(elements));
    EXPECT_EQ(countOf(file), row.objects);
    EXPECT_EQ(referenceSizeOf(file), row.referenceSize) << row.objects;
    EXPECT_EQ(offsetSizeOf(file), row.offsetSize) << row.objects << ' ' << row.data;
    std::string error;
    const auto back = readBinaryPropertyList(file, error);
    ASSERT_TRUE(back) << error;
    const auto read = back->elements(back->root());
    ASSERT_EQ(read.size(), elements.size());
    for (std::uint32_t i = 0; i + 2 < row.objects; ++i) {
      ASSERT_EQ(back->integer(read[i]).asSigned(), i);
    }
    EXPECT_EQ(back->data(read.back()).size(), row.data);
  }
}

TEST(BinaryPropertyListWriterTest, DepthCostsNoStack) {
  PropertyList list;
  Index node = list.addNull();
  for (int i = 0; i < 100000; ++i) node = list.addArray({&node, 1});
  EXPECT_EQ(countOf(written(list, node)), 100001U);
}

TEST(BinaryPropertyListWriterTest, ContainersHeldOftenAreWrittenOnce) {
  PropertyList list;
  Index node = list.addNull();
  for (int i = 0; i < 64; ++i) node = list.addArray(std::vector{node, node});
  EXPECT_EQ(countOf(written(list, node)), 65U);
}

}  // namespace
}  // namespace brindle::internal
