#include <Brindle/Platform/NSBundle.h>

#include <dlfcn.h>

#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

using testing_bundles::text;

// Copies of a library that does nothing stand for the code of bundles.
class NSBundleCodeTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSBundle bundle(const std::string& name) const {
    return NSBundle::bundleWithPath(NSString(path(name)));
  }
  // A copy of a library that does nothing.
  void code(const std::string& name) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    std::filesystem::copy_file(BRINDLE_PLAIN_LIBRARY, path(name));
  }
  [[nodiscard]] std::string found(const NSString& identifier) const {
    return inside(NSBundle::bundleWithIdentifier(identifier)->bundlePath());
  }
};

TEST_F(NSBundleCodeTest, Tour) {
  info("Box.plugin/Info.plist", {{"CFBundleIdentifier", "org.example.Tour"}});
  code("Box.plugin/Box");
  const NSBundle box = bundle("Box.plugin");
  EXPECT_FALSE(box->isLoaded());
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.example.Tour"_ns));
  EXPECT_TRUE(box->load());
  EXPECT_TRUE(box->isLoaded());
  EXPECT_TRUE(box->load());
  EXPECT_EQ(NSBundle::bundleWithIdentifier("org.example.Tour"_ns), box);
  EXPECT_EQ(text(box), "NSBundle <" + path("Box.plugin") + "> (loaded)");
}

TEST_F(NSBundleCodeTest, TheMainBundle) {
  const NSBundle main = NSBundle::mainBundle();
  EXPECT_TRUE(std::filesystem::equivalent(std::string(main->executablePath()), "/proc/self/exe"));
  EXPECT_EQ(std::string(main->bundlePath()),
            std::filesystem::canonical("/proc/self/exe").parent_path().string());
  EXPECT_TRUE(main->isLoaded());
  EXPECT_TRUE(main->load());
  EXPECT_TRUE(NSBundle::allBundles()->containsObject(main));
}

TEST_F(NSBundleCodeTest, IdentifiersOfLoadedCodeInEveryLayout) {
  const struct {
    const char* info;
    const char* code;
    const char* link;  // to the code
    const char* found;
  } kCases[] = {
      {"a/A.app/Contents/Info.plist", "a/A.app/Contents/Linux/A", nullptr, "a/A.app"},
      {"b/B.framework/Versions/1/Resources/Info.plist", "b/B.framework/Versions/1/B",
       "b/B.framework/B", "b/B.framework"},
      {"c/C.framework/Info.plist", "c/C.framework/C", nullptr, "c/C.framework"},
      {"d/D/Info.plist", "d/D/D.so", nullptr, "d/D"},
      // The framework beside its library, whose executable is a link to that.
      {"e/E.framework/Resources/Info.plist", "e/libE.so.1.2", "e/E.framework/E", "e/E.framework"},
      // Code that is not the bundle's executable is not its code.
      {"f/F.plugin/Info.plist", "f/F.plugin/Other", nullptr, "nil"},
  };
  for (const auto& row : kCases) {
    info(row.info, {{"CFBundleIdentifier", row.info}});
    code(row.code);
    if (row.link != nullptr) link(row.link, path(row.code));
    ASSERT_NE(::dlopen(path(row.code).c_str(), RTLD_LAZY | RTLD_LOCAL), nullptr) << ::dlerror();
    EXPECT_EQ(found(NSString(row.info)), row.found);
  }
  EXPECT_TRUE(NSBundle::allFrameworks()->containsObject(bundle("b/B.framework")));
  EXPECT_FALSE(NSBundle::allBundles()->containsObject(bundle("b/B.framework")));
  EXPECT_TRUE(NSBundle::allBundles()->containsObject(bundle("a/A.app")));
}

TEST_F(NSBundleCodeTest, BundlesThatWereMerelyMadeAreNotKnown) {
  info("Made.bundle/Info.plist", {{"CFBundleIdentifier", "org.example.Made"}});
  EXPECT_EQ(text(bundle("Made.bundle")->bundleIdentifier()), "org.example.Made");
  EXPECT_FALSE(NSBundle::bundleWithIdentifier("org.example.Made"_ns));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(""_ns));
  EXPECT_FALSE(NSBundle::bundleWithIdentifier(nullptr));
}

TEST_F(NSBundleCodeTest, UnloadedCodeIsForgotten) {
  info("Gone.plugin/Info.plist", {{"CFBundleIdentifier", "org.example.Gone"}});
  code("Gone.plugin/Gone");
  for (int i = 0; i < 2; ++i) {
    void* handle = ::dlopen(path("Gone.plugin/Gone").c_str(), RTLD_LAZY | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << ::dlerror();
    EXPECT_EQ(found("org.example.Gone"_ns), "Gone.plugin");
    ASSERT_EQ(::dlclose(handle), 0);
    EXPECT_EQ(found("org.example.Gone"_ns), "nil");
    EXPECT_FALSE(bundle("Gone.plugin")->isLoaded());
  }
}

TEST_F(NSBundleCodeTest, CodeThatCannotBeLoaded) {
  info("None.plugin/Info.plist", {{"CFBundleIdentifier", "org.example.None"}});
  NSError error = nullptr;
  EXPECT_FALSE(bundle("None.plugin")->loadAndReturnError(&error));
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  EXPECT_EQ(text(error->localizedDescription()),
            "the bundle " + path("None.plugin") + " has no executable");

  file("Text.plugin/Text", "no code");
  EXPECT_FALSE(bundle("Text.plugin")->loadAndReturnError(&error));
  EXPECT_EQ(text(error->domain()), "NSCocoaErrorDomain");
  EXPECT_EQ(error->code(), NSExecutableLoadError);
  EXPECT_NE(text(error->localizedDescription()).find(path("Text.plugin/Text")), std::string::npos);
  EXPECT_FALSE(bundle("Text.plugin")->load());
  EXPECT_FALSE(bundle("Text.plugin")->isLoaded());
  EXPECT_FALSE(bundle("Text.plugin")->principalClass());
}

TEST_F(NSBundleCodeTest, ClassesBelongToTheBundleOfTheirCode) {
  const NSBundle main = NSBundle::mainBundle();
  EXPECT_EQ(NSBundle::bundleForClass(NSString::class_()), main);  // of a library without a bundle
  EXPECT_EQ(NSBundle::bundleForClass(nullptr), main);
  const Class made = objc_allocateClassPair(NSObject::class_(), "MadeForBundles", 0);
  objc_registerClassPair(made);
  EXPECT_EQ(NSBundle::bundleForClass(made), main);
  EXPECT_EQ(main->classNamed("MadeForBundles"_ns), made);
  EXPECT_FALSE(main->classNamed("NoSuchClassAnywhere"_ns));
  EXPECT_FALSE(main->classNamed(nullptr));
  EXPECT_FALSE(main->principalClass());
}

}  // namespace
}  // namespace brindle
