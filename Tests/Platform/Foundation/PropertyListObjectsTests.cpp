#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

// The objects of a property list, as a bundle's information shows them.
class PropertyListObjectsTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSDictionary read(const std::string& name, const std::string& entries) const {
    file(name + "/Info.plist", "<plist><dict>" + entries + "</dict></plist>");
    return NSBundle::bundleWithPath(NSString(path(name)))->infoDictionary();
  }
};

TEST_F(PropertyListObjectsTest, Tour) {
  const NSDictionary all = read(
      "all",
      "<key>string</key><string>caf\u00E9</string><key>integer</key><integer>-5</integer>"
      "<key>large</key><integer>18446744073709551615</integer><key>real</key><real>2.5</real>"
      "<key>true</key><true/><key>date</key><date>2001-01-01T00:00:01Z</date>"
      "<key>data</key><data>AAEC</data><key>array</key><array><string>a</string><dict/></array>");
  ASSERT_TRUE(all);
  EXPECT_EQ(all->count(), 8u);
  EXPECT_TRUE(all["string"_ns]->isEqual("caf\u00E9"_ns));
  EXPECT_TRUE(all["integer"_ns]->isEqual(NSNumber(-5)));
  EXPECT_EQ(cast<NSNumber>(all["large"_ns])->unsignedLongLongValue(), 18446744073709551615ULL);
  EXPECT_TRUE(all["real"_ns]->isEqual(NSNumber(2.5)));
  EXPECT_EQ(all["true"_ns], NSNumber::numberWithBool(true));
  EXPECT_EQ(cast<NSDate>(all["date"_ns])->timeIntervalSinceReferenceDate(), 1);
  EXPECT_EQ(cast<NSData>(all["data"_ns])->length(), 3u);
  const auto array = cast<NSArray>(all["array"_ns]);
  EXPECT_TRUE(array[0]->isEqual("a"_ns));
  EXPECT_EQ(cast<NSDictionary>(array[1])->count(), 0u);
}

TEST_F(PropertyListObjectsTest, OfEqualKeysTheLastCounts) {
  const NSDictionary twice =
      read("twice", "<key>a</key><string>1</string><key>a</key><string>2</string>");
  EXPECT_EQ(twice->count(), 1u);
  EXPECT_TRUE(twice["a"_ns]->isEqual("2"_ns));
}

TEST_F(PropertyListObjectsTest, DeepNestingIsNotTooDeep) {
  std::string deep;
  for (int i = 0; i < 500; ++i) deep += "<array>";
  for (int i = 0; i < 500; ++i) deep += "</array>";
  EXPECT_TRUE(read("deep", "<key>a</key>" + deep));
  std::string deeper;
  for (int i = 0; i < 100'000; ++i) deeper += "<array>";
  EXPECT_FALSE(read("deeper", "<key>a</key>" + deeper));
}

}  // namespace
}  // namespace brindle
