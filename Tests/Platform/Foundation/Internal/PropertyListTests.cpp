#include "Platform/Foundation/Internal/PropertyList.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle::internal {
namespace {

using Index = PropertyList::Index;

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

std::vector<Index> listed(std::span<const Index> indexes) {
  return {indexes.begin(), indexes.end()};
}

TEST(PropertyListTest, Tour) {
  PropertyList list;
  const Index numbers[] = {list.addInteger(1), list.addReal(2.5)};
  const Index entries[] = {list.addString(ascii("numbers")), list.addArray(numbers),
                           list.addString(ascii("on")), list.addBoolean(true)};
  list.setRoot(list.addDictionary(entries));

  const Index found = list.find(list.root(), ascii("numbers"));
  ASSERT_EQ(list.kind(found), PropertyKind::array);
  EXPECT_EQ(list.integer(list.elements(found)[0]).asSigned(), 1);
  EXPECT_EQ(list.real(list.elements(found)[1]), 2.5);
  EXPECT_TRUE(list.boolean(list.find(list.root(), ascii("on"))));
  EXPECT_EQ(list.find(list.root(), ascii("off")), PropertyList::kNone);
}

TEST(PropertyListTest, EmptyDocument) {
  const PropertyList list;
  EXPECT_EQ(list.root(), PropertyList::kNone);
  EXPECT_EQ(list.size(), 0U);
  EXPECT_EQ(list.find(list.root(), ascii("a")), PropertyList::kNone);
}

TEST(PropertyListTest, EachKindHasAName) {
  const struct {
    PropertyKind kind;
    std::string_view name;
  } cases[] = {
      {PropertyKind::null, "null"},
      {PropertyKind::boolean, "a boolean"},
      {PropertyKind::integer, "an integer"},
      {PropertyKind::real, "a real"},
      {PropertyKind::date, "a date"},
      {PropertyKind::string, "a string"},
      {PropertyKind::data, "data"},
      {PropertyKind::array, "an array"},
      {PropertyKind::dictionary, "a dictionary"},
      {PropertyKind::set, "a set"},
      {PropertyKind::uid, "a UID"},
  };
  for (const auto& [kind, name] : cases) EXPECT_EQ(nameOf(kind), name);
}

TEST(PropertyListTest, Leaves) {
  PropertyList list;
  EXPECT_EQ(list.kind(list.addNull()), PropertyKind::null);
  EXPECT_FALSE(list.boolean(list.addBoolean(false)));
  EXPECT_EQ(list.date(list.addDate(-0.25)), -0.25);
  EXPECT_EQ(list.uid(list.addUid(UINT64_MAX)), UINT64_MAX);
  EXPECT_EQ(list.data(list.addData({"a\0b", 3})), std::string_view("a\0b", 3));
  EXPECT_EQ(list.data(list.addData({})), "");
  EXPECT_EQ(list.string(list.addString({})), ascii(""));
  EXPECT_EQ(list.string(list.addString(ascii("\xE9"))), wide(u"\u00E9"));
  EXPECT_EQ(list.string(list.addString(wide(u"\u4E2D\xD800"))), wide(u"\u4E2D\xD800"));
  for (Index i = 0; i < list.size(); ++i) EXPECT_TRUE(list.children(i).empty()) << i;
}

TEST(PropertyListTest, Integers) {
  const struct {
    PropertyInteger integer;
    bool negative, fitsSigned, fitsUnsigned;
    double real;
  } cases[] = {
      {PropertyInteger::fromSigned(0), false, true, true, 0},
      {PropertyInteger::fromSigned(-1), true, true, false, -1},
      {PropertyInteger::fromSigned(INT64_MIN), true, true, false, -0x1p63},
      {PropertyInteger::fromSigned(INT64_MAX), false, true, true, 0x1p63},
      {PropertyInteger::fromUnsigned(std::uint64_t{1} << 63U), false, false, true, 0x1p63},
      {PropertyInteger::fromUnsigned(UINT64_MAX), false, false, true, 0x1p64},
      {{0, 1}, false, false, false, 0x1p64},
      {{INT64_MAX, -1}, true, false, false, -0x1p63},
      {{0, INT64_MIN}, true, false, false, -0x1p127},
      {{UINT64_MAX, INT64_MAX}, false, false, false, 0x1p127},
  };
  for (const auto& row : cases) {
    EXPECT_EQ(row.integer.isNegative(), row.negative) << row.real;
    EXPECT_EQ(row.integer.fitsSigned(), row.fitsSigned) << row.real;
    EXPECT_EQ(row.integer.fitsUnsigned(), row.fitsUnsigned) << row.real;
    EXPECT_EQ(row.integer.asReal(), row.real);
  }
}

TEST(PropertyListTest, ChildrenAreKeysThenValues) {
  PropertyList list;
  const Index key = list.addString(ascii("k"));
  const Index other = list.addString(ascii("l"));
  const Index one = list.addInteger(1);
  const Index two = list.addInteger(2);
  const Index entries[] = {key, one, other, two};
  const Index dictionary = list.addDictionary(entries);
  const Index set = list.addSet(std::vector{two, one, two});
  EXPECT_EQ(listed(list.keys(dictionary)), (std::vector{key, other}));
  EXPECT_EQ(listed(list.values(dictionary)), (std::vector{one, two}));
  EXPECT_EQ(listed(list.children(dictionary)), (std::vector{key, other, one, two}));
  EXPECT_EQ(listed(list.elements(set)), (std::vector{two, one, two}));
  EXPECT_EQ(listed(list.children(set)), (std::vector{two, one, two}));
  EXPECT_TRUE(list.elements(list.addArray({})).empty());
  EXPECT_TRUE(list.keys(list.addDictionary({})).empty());
}

TEST(PropertyListTest, FindsTheLastOfEqualKeys) {
  PropertyList list;
  const Index entries[] = {list.addString(ascii("k")), list.addInteger(1),
                           list.addString(wide(u"k")), list.addInteger(2)};
  const Index dictionary = list.addDictionary(entries);
  EXPECT_EQ(list.integer(list.find(dictionary, ascii("k"))).asSigned(), 2);
  EXPECT_EQ(list.find(entries[1], ascii("k")), PropertyList::kNone) << "no dictionary";
}

TEST(PropertyListTest, LentContentIsNotCopiedAndOtherIs) {
  std::string bytes = "abc";
  PropertyList list;
  const Index lent = list.addLentData(bytes);
  const Index kept = list.addData(bytes);
  const Index lentText = list.addLentString(ascii(bytes));
  const Index keptText = list.addString(ascii(bytes));
  bytes[0] = 'x';
  EXPECT_EQ(list.data(lent), "xbc");
  EXPECT_EQ(list.data(kept), "abc");
  EXPECT_EQ(list.string(lentText), ascii("xbc"));
  EXPECT_EQ(list.string(keptText), ascii("abc"));
}

TEST(PropertyListTest, KeepsContentOfAllSizes) {
  PropertyList list;
  std::vector<std::string> expected;
  list.reserve(3000);
  for (std::size_t size = 0; size < 3000; ++size) {
    expected.emplace_back(size, static_cast<char>('a' + size % 26));
    if (size % 2 == 0) {
      list.addData(expected.back());
    } else {
      list.addString(wide(ascii(expected.back()).toUtf16()));
    }
  }
  for (Index i = 0; i < list.size(); ++i) {
    if (i % 2 == 0) {
      ASSERT_EQ(list.data(i), expected[i]);
    } else {
      ASSERT_EQ(list.string(i), ascii(expected[i]));
    }
  }
}

TEST(PropertyListTest, MovingLeavesAnEmptyDocument) {
  PropertyList first;
  first.setRoot(first.addString(ascii("first")));
  PropertyList second(std::move(first));
  EXPECT_EQ(first.root(), PropertyList::kNone);  // NOLINT(bugprone-use-after-move)
  EXPECT_EQ(first.size(), 0U);
  first.setRoot(first.addString(ascii("other")));  // does not write into what was given away
  EXPECT_EQ(second.string(second.root()), ascii("first"));
  second = std::move(first);
  EXPECT_EQ(second.string(second.root()), ascii("other"));
}

}  // namespace
}  // namespace brindle::internal
