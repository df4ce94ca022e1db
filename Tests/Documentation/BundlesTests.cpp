// The examples of Documentation/Bundles.md.
#include <Brindle/BDBundleAdditions.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

class BundlesExample : public testing_bundles::BundleTest {};

TEST_F(BundlesExample, Words) {
  file("Mail.app/Contents/Resources/de.lproj/Localizable.strings",
       "\"new message\" = \"Neue Nachricht\";");
  file("Mail.app/Contents/Resources/de.lproj/Help.html");
  const NSString path(this->path("Mail.app"));
  // [example: bundles-words]
  const NSBundle mail = NSBundle::bundleWithPath(path);
  const NSString title = mail->localizedStringForKey("new message"_ns, nullptr, nullptr);
  const NSString help = mail->pathForResource("Help"_ns, "html"_ns);
  // [end]
  EXPECT_EQ(std::string(title), "Neue Nachricht");
  EXPECT_EQ(inside(help), "Mail.app/Contents/Resources/de.lproj/Help.html");
}

TEST(BundlesExampleOfIdentifiers, Search) {
  // [example: bundles-search]
  bool loaded = false;
  const NSBundle own = bundleWithIdentifier(NSBundle::class_(), "org.brindle.Brindle"_ns, &loaded);
  const NSString called = name(own);  // Brindle
  // [end]
  EXPECT_TRUE(loaded);
  EXPECT_EQ(std::string(called), "Brindle");
}

}  // namespace
}  // namespace brindle
