#include <gtest/gtest.h>

#include <string>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string joined(const id& object) {
  if (isa<NSArray>(object)) {
    return std::string(cast<NSArray>(object)->componentsJoinedByString(" "_ns));
  }
  return std::string(object->description());
}

NSArray owners() {
  const Owner ann = Owner::with("Ann"_ns, 7);
  return {ann, Owner::with("Bo"_ns, 2, ann), Owner::with("Cy"_ns, 7, ann)};
}

TEST(NSKeyValueOperatorsTest, Tour) {
  const struct {
    const char* path;
    const char* value;
  } kCases[] = {
      {"@count", "3"},
      {"@sum.coins", "16"},
      {"@min.coins", "2"},
      {"@max.coins", "7"},
      {"@max.name", "Cy"},
      {"@unionOfObjects.coins", "7 2 7"},
      {"@distinctUnionOfObjects.coins", "7 2"},
      {"@sum.name.length", "7"},
      {"@count.doubleValue", "3"},
      {"name.@count", "3"},
      {"coins.@max.self", "7"},
      {"@distinctUnionOfObjects.name.@count", nullptr},
  };
  for (const auto& [path, value] : kCases) {
    if (value == nullptr)
      EXPECT_NE(raised([p = path] { valueForKeyPath(owners(), p); }), "");
    else
      EXPECT_EQ(joined(valueForKeyPath(owners(), path)), value) << path;
  }
  EXPECT_DOUBLE_EQ(valueForKeyPath<NSNumber>(owners(), "@avg.coins"_ns)->doubleValue(), 16.0 / 3);
}

TEST(NSKeyValueOperatorsTest, OfNothing) {
  EXPECT_EQ(joined(valueForKeyPath(NSArray::array(), "@sum.coins"_ns)), "0");
  EXPECT_EQ(joined(valueForKeyPath(NSArray::array(), "@avg.coins"_ns)), "0");
  EXPECT_EQ(joined(valueForKeyPath(NSArray::array(), "@count"_ns)), "0");
  EXPECT_FALSE(valueForKeyPath(NSArray::array(), "@min.coins"_ns));
  EXPECT_FALSE(valueForKeyPath(NSArray::array(), "@max.coins"_ns));
  EXPECT_EQ(joined(valueForKeyPath(NSArray::array(), "@unionOfObjects.coins"_ns)), "");
}

TEST(NSKeyValueOperatorsTest, NilCountsAsZeroAndIsNeitherLeastNorGreatest) {
  const NSArray some = owners();
  EXPECT_EQ(joined(valueForKeyPath(some, "@sum.friend.coins"_ns)), "14");
  EXPECT_DOUBLE_EQ(valueForKeyPath<NSNumber>(some, "@avg.friend.coins"_ns)->doubleValue(),
                   14.0 / 3);
  EXPECT_EQ(joined(valueForKeyPath(some, "@min.friend.coins"_ns)), "7");
  EXPECT_EQ(raised([&] { valueForKeyPath(some, "@unionOfObjects.friend"_ns); }),
            "NSInvalidArgumentException: -[NSArray valueForKeyPath:]: @unionOfObjects of a value "
            "that is nil");
}

TEST(NSKeyValueOperatorsTest, SumsAreExact) {
  const auto sum = [](const NSArray& numbers) {
    return joined(valueForKeyPath(numbers, "@sum.self"_ns));
  };
  EXPECT_EQ(sum({NSNumber(9007199254740993LL), NSNumber(1)}), "9007199254740994");
  EXPECT_EQ(sum({NSNumber(INT64_MAX), NSNumber(1)}), "9223372036854775808");
  EXPECT_EQ(sum({NSNumber(UINT64_MAX), NSNumber(-1)}), "18446744073709551614");
  EXPECT_EQ(sum({NSNumber(1), NSNumber(0.5)}), "1.5");
  EXPECT_EQ(sum({"2.5"_ns, NSNumber(1)}), "3.5");
  EXPECT_EQ(sum({NSNumber(true), NSNumber(true)}), "2");
}

TEST(NSKeyValueOperatorsTest, CollectionsOfCollectionsAreUnited) {
  const NSArray rows = {NSArray{"a"_ns, "b"_ns}, NSArray{"b"_ns, "cc"_ns}};
  EXPECT_EQ(joined(valueForKeyPath(rows, "@unionOfArrays.self"_ns)), "a b b cc");
  EXPECT_EQ(joined(valueForKeyPath(rows, "@distinctUnionOfArrays.self"_ns)), "a b cc");
  EXPECT_EQ(joined(valueForKeyPath(rows, "@distinctUnionOfArrays.length"_ns)), "1 2");
  const NSSet groups = {NSSet{"a"_ns, "b"_ns}, NSSet{"b"_ns, "cc"_ns}};
  EXPECT_TRUE(valueForKeyPath(groups, "@distinctUnionOfSets.self"_ns)
                  ->isEqual(NSSet{"a"_ns, "b"_ns, "cc"_ns}));
  EXPECT_EQ(raised([&] { valueForKeyPath(NSArray{"a"_ns}, "@unionOfArrays.self"_ns); }),
            "NSInvalidArgumentException: -[NSArray valueForKeyPath:]: @unionOfArrays of a member "
            "that is no collection");
}

TEST(NSKeyValueOperatorsTest, SetsHaveThemToo) {
  const NSSet numbers = {NSNumber(1), NSNumber(2), NSNumber(4)};
  EXPECT_EQ(joined(valueForKeyPath(numbers, "@sum.self"_ns)), "7");
  EXPECT_EQ(joined(valueForKeyPath(numbers, "@max.self"_ns)), "4");
  EXPECT_TRUE(valueForKeyPath(numbers, "@distinctUnionOfObjects.self"_ns)->isEqual(numbers));
  EXPECT_NE(raised([&] {
              valueForKeyPath(numbers, "@unionOfObjects.self"_ns);
            }).find("NSUndefinedKeyException"),
            std::string::npos);
}

TEST(NSKeyValueOperatorsTest, AnOperatorWithoutItsPathRaises) {
  for (const char* const name : {"@sum", "@avg", "@min", "@max", "@unionOfObjects",
                                 "@distinctUnionOfObjects", "@unionOfArrays"}) {
    EXPECT_EQ(raised([&] { valueForKeyPath(owners(), name); }),
              "NSInvalidArgumentException: -[NSArray valueForKeyPath:]: " + std::string(name) +
                  " needs a key path");
    EXPECT_EQ(raised([&] { valueForKey(owners(), name); }),
              "NSInvalidArgumentException: -[NSArray valueForKey:]: " + std::string(name) +
                  " needs a key path");
  }
}

}  // namespace
}  // namespace brindle
