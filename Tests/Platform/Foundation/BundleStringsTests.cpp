#include <thread>
#include <vector>

#include <Brindle/Platform/NSBundle.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

using testing_bundles::text;

// The tables of words, as bundles show them.
class BundleStringsTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSBundle bundle(const std::string& name) const {
    return NSBundle::bundleWithPath(NSString(path(name)));
  }
};

TEST_F(BundleStringsTest, Tour) {
  file("A/de.lproj/Localizable.strings", "a = eins;");
  file("A/de.lproj/Other.strings", "a = zwei;");
  const NSBundle a = bundle("A");
  EXPECT_EQ(text(a->localizedStringForKey("a"_ns, nullptr, nullptr)), "eins");
  EXPECT_EQ(text(a->localizedStringForKey("a"_ns, nullptr, "Other"_ns)), "zwei");
  EXPECT_EQ(text(a->localizedStringForKey("a"_ns, nullptr, NSString(std::string("Other")))),
            "zwei");
}

TEST_F(BundleStringsTest, EveryKeyOfALargeTableIsFound) {
  std::string table;
  for (int i = 0; i < 3000; ++i) {
    table += "\"key " + std::to_string(i) + "\" = \"Wort " + std::to_string(i) + "\";\n";
  }
  file("L/de.lproj/Localizable.strings", table + "\"\u00E9\u4E2D\" = \"\U0001F600\";");
  const NSBundle large = bundle("L");
  for (int i = 0; i < 3000; ++i) {
    const NSString key("key " + std::to_string(i));
    ASSERT_EQ(text(large->localizedStringForKey(key, nullptr, nullptr)),
              "Wort " + std::to_string(i));
  }
  EXPECT_EQ(text(large->localizedStringForKey("\u00E9\u4E2D"_ns, nullptr, nullptr)), "\U0001F600");
  EXPECT_EQ(text(large->localizedStringForKey("key 3000"_ns, nullptr, nullptr)), "key 3000");
}

TEST_F(BundleStringsTest, OfEqualKeysInOneFileTheLastCounts) {
  file("E/de.lproj/Localizable.strings", "a = 1; b = 2; a = 3;");
  EXPECT_EQ(text(bundle("E")->localizedStringForKey("a"_ns, nullptr, nullptr)), "3");
}

TEST_F(BundleStringsTest, AChangeOfLanguagesIsFollowed) {
  file("C/de.lproj/Localizable.strings", "a = deutsch;");
  file("C/fr.lproj/Localizable.strings", "a = \"fran\u00E7ais\";");
  const NSBundle c = bundle("C");
  const NSString german = c->localizedStringForKey("a"_ns, nullptr, nullptr);
  NSLocale::setPreferredLanguages({"fr"_ns});
  EXPECT_EQ(text(c->localizedStringForKey("a"_ns, nullptr, nullptr)), "fran\u00E7ais");
  EXPECT_EQ(text(german), "deutsch");
}

TEST_F(BundleStringsTest, ManyThreadsLookUpWhileLanguagesChange) {
  file("T/de.lproj/Localizable.strings", "a = deutsch;");
  file("T/fr.lproj/Localizable.strings", "a = franz;");
  const NSBundle bundle_ = bundle("T");
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&bundle_] {
      for (int round = 0; round < 500; ++round) {
        const std::string word = text(bundle_->localizedStringForKey("a"_ns, nullptr, nullptr));
        ASSERT_TRUE(word == "deutsch" || word == "franz") << word;
      }
    });
  }
  for (int round = 0; round < 20; ++round) {
    NSLocale::setPreferredLanguages(round % 2 == 0 ? NSArray{"fr"_ns} : NSArray{"de"_ns});
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace brindle
