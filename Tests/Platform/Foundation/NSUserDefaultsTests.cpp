#include <Brindle/Platform/NSUserDefaults.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

TEST(NSUserDefaultsTest, Tour) {
  const NSUserDefaults settings = NSUserDefaults::new_();
  settings->registerDefaults({{"fontSize"_ns, NSNumber(11)}, {"font"_ns, "Serif"_ns}});
  EXPECT_EQ(settings->integerForKey("fontSize"_ns), 11);
  settings->setObject(NSNumber(14), "fontSize"_ns);
  settings->setBool(true, "bold"_ns);
  EXPECT_EQ(settings->integerForKey("fontSize"_ns), 14);
  EXPECT_TRUE(settings->boolForKey("bold"_ns));
  EXPECT_EQ(std::string(settings->stringForKey("font"_ns)), "Serif");
  settings->removeObjectForKey("fontSize"_ns);
  EXPECT_EQ(settings->integerForKey("fontSize"_ns), 11);
  EXPECT_EQ(settings->dictionaryRepresentation()->count(), 3U);
}

TEST(NSUserDefaultsTest, ValuesAreReadAsWhatIsWanted) {
  const NSUserDefaults settings = NSUserDefaults::new_();
  settings->setObject("12.5"_ns, "text"_ns);
  settings->setObject("YES"_ns, "yes"_ns);
  settings->setDouble(2.5, "real"_ns);
  settings->setInteger(7, "whole"_ns);
  settings->setObject(NSArray::array(), "list"_ns);
  EXPECT_EQ(settings->integerForKey("text"_ns), 12);
  EXPECT_EQ(settings->doubleForKey("text"_ns), 12.5);
  EXPECT_TRUE(settings->boolForKey("yes"_ns));
  EXPECT_EQ(settings->doubleForKey("real"_ns), 2.5);
  EXPECT_EQ(settings->integerForKey("real"_ns), 2);
  EXPECT_EQ(std::string(settings->stringForKey("whole"_ns)), "7");
  for (const NSString& key : {"list"_ns, "missing"_ns}) {
    EXPECT_EQ(settings->stringForKey(key), nullptr) << key;
    EXPECT_EQ(settings->integerForKey(key), 0) << key;
    EXPECT_EQ(settings->doubleForKey(key), 0) << key;
    EXPECT_FALSE(settings->boolForKey(key)) << key;
  }
  EXPECT_EQ(settings->objectForKey(nullptr), nullptr);
}

TEST(NSUserDefaultsTest, NilRemovesAndANilKeyRaises) {
  const NSUserDefaults settings = NSUserDefaults::new_();
  settings->setObject("x"_ns, "a"_ns);
  settings->setObject(nullptr, "a"_ns);
  EXPECT_EQ(settings->objectForKey("a"_ns), nullptr);
  EXPECT_EQ(raisedBy([&] { settings->setObject("x"_ns, nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([&] { settings->removeObjectForKey(nullptr); }), "NSInvalidArgumentException");
}

TEST(NSUserDefaultsTest, TheStandardOnesAreOneObject) {
  const NSUserDefaults standard = NSUserDefaults::standardUserDefaults();
  EXPECT_EQ(NSUserDefaults::standardUserDefaults(), standard);
  EXPECT_EQ(standard->objectForKey("AppleLanguages"_ns), nullptr);
}

TEST(NSUserDefaultsTest, ManyThreads) {
  const NSUserDefaults settings = NSUserDefaults::new_();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&settings, i] {
      for (int k = 0; k < 100; ++k) {
        settings->setInteger(k, NSString::stringWithFormat("%d %d"_ns, i, k));
        (void)settings->integerForKey("0 0"_ns);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(settings->dictionaryRepresentation()->count(), 400U);
}

}  // namespace
}  // namespace brindle
