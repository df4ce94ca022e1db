#include <Brindle/Platform/PlainBundle.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

using testing_bundles::text;

class PlainBundleTest : public testing_bundles::BundleTest {};

TEST_F(PlainBundleTest, WordsAreThoseThatAMessageAnswers) {
  file("Box.bundle/Localizable.strings", "day = Tag; empty = \"\";");
  const NSBundle box = NSBundle::bundleWithPath(NSString(path("Box.bundle")));
  ASSERT_TRUE(isPlainBundle(box));
  for (const NSString& key : {"day"_ns, "empty"_ns, "month"_ns, ""_ns}) {
    EXPECT_EQ(text(plainWord(box, key)), text(box->localizedStringForKey(key, ""_ns, nullptr)));
  }
  EXPECT_EQ(text(plainWord(box, "day"_ns)), "Tag");
  EXPECT_EQ(text(plainWord(box, "month"_ns)), "month");
}

TEST_F(PlainBundleTest, ABundleOfASubclassIsNotPlain) {
  const NSBundle box = NSBundle::bundleWithPath(NSString(path("")));
  EXPECT_TRUE(isPlainBundle(box));
  const Class sub = objc_allocateClassPair(NSBundle::class_(), "BundleThatIsNotPlain", 0);
  objc_registerClassPair(sub);
  object_setClass(box, sub);
  EXPECT_FALSE(isPlainBundle(box));
  object_setClass(box, NSBundle::class_());
}

TEST_F(PlainBundleTest, OnlyBundlesWhoseCodeStaysAreSettled) {
  EXPECT_EQ(settledBundle("org.example.Nowhere"_ns), nullptr);
  EXPECT_EQ(settledBundle(""_ns), nullptr);
  EXPECT_EQ(settledBundle(nullptr), nullptr);
  // Loaded while the program runs, it may be unloaded.
  info("Plug.plugin/Info.plist", {{"CFBundleIdentifier", "org.example.Settled"}});
  std::filesystem::copy_file(BRINDLE_PLAIN_LIBRARY, path("Plug.plugin/Plug"));
  const NSBundle plug = NSBundle::bundleWithPath(NSString(path("Plug.plugin")));
  ASSERT_TRUE(plug->load());
  ASSERT_EQ(NSBundle::bundleWithIdentifier("org.example.Settled"_ns), plug);
  EXPECT_EQ(settledBundle("org.example.Settled"_ns), nullptr);
}

}  // namespace
}  // namespace brindle
