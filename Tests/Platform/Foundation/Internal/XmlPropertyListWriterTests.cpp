#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/XmlPropertyList.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
using Index = PropertyList::Index;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

// What stands between the first lines and the last one.
std::string written(PropertyList& list, Index root) {
  list.setRoot(root);
  std::string error;
  const auto file = writeXmlPropertyList(list, error);
  if (!file) return error;
  EXPECT_TRUE(file->starts_with(kHead) && file->ends_with(kFoot)) << *file;
  return file->substr(kHead.size(), file->size() - kHead.size() - kFoot.size());
}

TEST(XmlPropertyListWriterTest, Tour) {
  PropertyList list;
  const Index numbers[] = {list.addInteger(-1), list.addReal(2.5), list.addUid(7)};
  const Index entries[] = {list.addString(ascii("a & b")),   list.addString(wide(u"\u4E2D")),
                           list.addString(ascii("numbers")), list.addArray(numbers),
                           list.addString(ascii("made")),    list.addDate(60.5),
                           list.addString(ascii("bytes")),   list.addData("\x00\x01\xFF"sv),
                           list.addString(ascii("on")),      list.addBoolean(true)};
  EXPECT_EQ(written(list, list.addDictionary(entries)),
            "<dict>\n"
            "\t<key>a &amp; b</key>\n"
            "\t<string>\xE4\xB8\xAD</string>\n"
            "\t<key>numbers</key>\n"
            "\t<array>\n"
            "\t\t<integer>-1</integer>\n"
            "\t\t<real>2.5</real>\n"
            "\t\t<dict>\n"
            "\t\t\t<key>CF$UID</key>\n"
            "\t\t\t<integer>7</integer>\n"
            "\t\t</dict>\n"
            "\t</array>\n"
            "\t<key>made</key>\n"
            "\t<date>2001-01-01T00:01:00Z</date>\n"
            "\t<key>bytes</key>\n"
            "\t<data>\n"
            "\tAAH/\n"
            "\t</data>\n"
            "\t<key>on</key>\n"
            "\t<true/>\n"
            "</dict>\n");
}

TEST(XmlPropertyListWriterTest, Leaves) {
  PropertyList list;
  const struct {
    Index node;
    std::string_view text;
  } cases[] = {
      {list.addBoolean(false), "<false/>\n"},
      {list.addInteger(INT64_MIN), "<integer>-9223372036854775808</integer>\n"},
      {list.addInteger({0, 1}), "<integer>18446744073709551616</integer>\n"},
      {list.addReal(-HUGE_VAL), "<real>-infinity</real>\n"},
      {list.addReal(std::nan("")), "<real>nan</real>\n"},
      {list.addDate(-0.5), "<date>2000-12-31T23:59:59Z</date>\n"},
      {list.addUid(UINT64_MAX),
       "<dict>\n\t<key>CF$UID</key>\n\t<integer>18446744073709551615</integer>\n</dict>\n"},
      {list.addData({}), "<data>\n</data>\n"},
      {list.addArray({}), "<array/>\n"},
      {list.addDictionary({}), "<dict/>\n"},
      {list.addString({}), "<string></string>\n"},
      {list.addString(ascii("<a> \"b\" ]]>")), "<string>&lt;a&gt; \"b\" ]]&gt;</string>\n"},
      {list.addString(ascii(" a\tb\nc\r")), "<string> a\tb\nc&#13;</string>\n"},
      {list.addString(ascii("\x7F\xE9")), "<string>\x7F\xC3\xA9</string>\n"},
      {list.addString(wide(u"\U0001F600\uFFFD")),
       "<string>\xF0\x9F\x98\x80\xEF\xBF\xBD</string>\n"},
  };
  for (const auto& [node, text] : cases) EXPECT_EQ(written(list, node), text);
}

TEST(XmlPropertyListWriterTest, WhatXmlCannotHold) {
  PropertyList list;
  const Index bad = list.addString(ascii("\x01"));
  const struct {
    Index node;
    std::string_view error;
  } cases[] = {
      {PropertyList::kNone, "there is no value"},
      {list.addNull(), "null cannot be written"},
      {list.addSet({}), "a set cannot be written"},
      {list.addDate(std::nan("")), "a date is too far away to be written"},
      {list.addDate(1e300), "a date is too far away to be written"},
      {bad, "a control character cannot be written"},
      {list.addString(ascii("a\0"sv)), "a control character cannot be written"},
      {list.addString(wide(u"\uFFFE")), "a control character cannot be written"},
      {list.addString(wide(u"\uFFFF")), "a control character cannot be written"},
      {list.addString(wide(u"\xD83D")), "half a character cannot be written"},
      {list.addString(wide(u"\xD83Dx")), "half a character cannot be written"},
      {list.addString(wide(u"\xD83D\xD83D\xDE00")), "half a character cannot be written"},
      {list.addString(wide(u"\xDE00\xD83D")), "half a character cannot be written"},
      {list.addArray(std::vector{list.addInteger(1), list.addNull()}), "null cannot be written"},
      {list.addDictionary(std::vector{bad, list.addInteger(1)}),
       "a control character cannot be written"},
  };
  for (const auto& [node, error] : cases) {
    EXPECT_EQ(written(list, node), "XML property list: " + std::string(error));
  }
}

TEST(XmlPropertyListWriterTest, LinesOfData) {
  // As many bytes as fill one line at each depth, and one more.
  for (std::size_t depth = 0; depth < 12; ++depth) {
    const std::size_t fits = (depth > 7 ? 16 : 76 - 8 * depth) / 4 * 3;
    for (const std::size_t size : {fits, fits + 1}) {
      PropertyList list;
      const std::string bytes(size, 'x');
      Index node = list.addData(bytes);
      for (std::size_t i = 0; i < depth; ++i) node = list.addArray({&node, 1});
      const std::string file = std::string(kHead) + written(list, node) + std::string(kFoot);
      const std::string line = "\n" + std::string(depth, '\t') + "eHh4";
      EXPECT_NE(file.find(line), std::string::npos) << file;
      EXPECT_EQ(file.find("=="), size == fits ? std::string::npos : file.find("eA==") + 2) << file;
      std::string error;
      const auto back = readXmlPropertyList(file, error);
      ASSERT_TRUE(back) << error;
      Index data = back->root();
      for (std::size_t i = 0; i < depth; ++i) data = back->elements(data)[0];
      EXPECT_EQ(back->data(data), bytes);
    }
  }
}

TEST(XmlPropertyListWriterTest, ADictionaryThatLooksLikeAUidComesBackAsOne) {
  PropertyList list;
  const Index entries[] = {list.addString(ascii("CF$UID")), list.addInteger(3)};
  const std::string file =
      std::string(kHead) + written(list, list.addDictionary(entries)) + std::string(kFoot);
  std::string error;
  const auto back = readXmlPropertyList(file, error);
  ASSERT_TRUE(back) << error;
  EXPECT_EQ(back->kind(back->root()), PropertyKind::uid);
}

TEST(XmlPropertyListWriterTest, WhatIsHeldTwiceIsWrittenTwice) {
  PropertyList list;
  const Index leaf = list.addInteger(1);
  const Index inner = list.addArray({&leaf, 1});
  EXPECT_EQ(written(list, list.addArray(std::vector{inner, inner})),
            "<array>\n"
            "\t<array>\n\t\t<integer>1</integer>\n\t</array>\n"
            "\t<array>\n\t\t<integer>1</integer>\n\t</array>\n"
            "</array>\n");
}

TEST(XmlPropertyListWriterTest, WhatIsHeldTooOftenIsRefused) {
  PropertyList list;
  Index node = list.addInteger(1);
  for (int i = 0; i < 64; ++i) node = list.addArray(std::vector{node, node});
  EXPECT_EQ(written(list, node),
            "XML property list: what is held many times would become too large");
}

TEST(XmlPropertyListWriterTest, AWideAndDeepDocumentIsNotTooLarge) {
  PropertyList list;
  const std::vector<Index> elements(40000, list.addBoolean(true));
  Index node = list.addArray(elements);
  for (std::size_t i = 1; i < PropertyList::kMaximalDepth; ++i) node = list.addArray({&node, 1});
  EXPECT_GT(written(list, node).size(), elements.size() * PropertyList::kMaximalDepth);
}

TEST(XmlPropertyListWriterTest, DepthCostsNoStack) {
  PropertyList list;
  Index node = list.addInteger(1);
  for (int i = 0; i < 5000; ++i) node = list.addArray({&node, 1});
  EXPECT_GT(written(list, node).size(), 5000U * 5000);
}

}  // namespace
}  // namespace brindle::internal
