#include <Brindle/BDBundleAdditions.h>

#include <dlfcn.h>
#include <link.h>

#include <thread>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {

// A class of bundles with answers of its own.
class OwnBundle : public Interface<OwnBundle, NSBundle> {
 public:
  using Interface::Interface;
  static ClassPair<OwnBundle> classPair;
};

namespace {

using testing_bundles::text;

bool slotWasNull = false;

constexpr MethodDefinition kOwnMethods[] = {
    classMethod<"bundleWithIdentifier:">(
        [](const Class&, const NSString&) { return NSBundle::mainBundle(); }),
    classMethod<"bundleWithIdentifier:loaded:">(
        [](const Class& self, const NSString& identifier, bool* loaded) {
          slotWasNull = loaded == nullptr;
          return sendSuper<OwnBundle, "bundleWithIdentifier:loaded:", NSBundle>(self, identifier,
                                                                                loaded);
        }),
    method<"name">([](const OwnBundle&) -> NSString { return "own name"_ns; }),
};
constexpr ClassDefinition kOwnDefinition{.name = "OwnBundle", .methods = kOwnMethods};

}  // namespace

constinit ClassPair<OwnBundle> OwnBundle::classPair{kOwnDefinition};

namespace {

// What is found by walking is in Tests/Programs/BundleSearch.cpp: it takes an application.
class BDBundleAdditionsTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSBundle bundle(const std::string& name) const {
    return NSBundle::bundleWithPath(NSString(path(name)));
  }
};

TEST_F(BDBundleAdditionsTest, Tour) {
  bool loaded = false;
  const NSBundle own = bundleWithIdentifier(NSBundle::class_(), "org.brindle.Brindle"_ns, &loaded);
  ASSERT_TRUE(own);
  EXPECT_TRUE(loaded);
  EXPECT_EQ(text(name(own)), "Brindle");
  EXPECT_EQ(text(version(own)), text(own->objectForInfoDictionaryKey("CFBundleVersion"_ns)));
  EXPECT_EQ(frameworkBundleWithIdentifier(NSBundle::class_(), "org.brindle.Brindle"_ns), own);
  EXPECT_TRUE(text(applicationSupportDirectory(own)).ends_with("/Brindle"));
}

TEST_F(BDBundleAdditionsTest, TheLibrarysOwnBundleIsBesideIt) {
  const NSBundle own = NSBundle::bundleWithIdentifier("org.brindle.Brindle"_ns);
  void* handle = ::dlopen("libBrindle.so.0", RTLD_LAZY | RTLD_NOLOAD);
  const link_map* map = nullptr;
  ASSERT_EQ(::dlinfo(handle, RTLD_DI_LINKMAP, &map), 0);
  const std::filesystem::path library = std::filesystem::canonical(map->l_name);
  EXPECT_EQ(text(own->bundlePath()), (library.parent_path() / "Brindle.framework").string());
  EXPECT_EQ(std::filesystem::canonical(std::string(own->executablePath())), library);
  EXPECT_TRUE(own->isLoaded());
}

TEST_F(BDBundleAdditionsTest, AnUnknownIdentifierLeavesTheSlotAlone) {
  for (const bool before : {false, true}) {
    bool loaded = before;
    EXPECT_FALSE(bundleWithIdentifier(NSBundle::class_(), "org.example.None"_ns, &loaded));
    EXPECT_EQ(loaded, before);
    EXPECT_FALSE(bundleWithIdentifier(NSBundle::class_(), nullptr, &loaded));
    EXPECT_EQ(loaded, before);
  }
  EXPECT_FALSE(bundleWithIdentifier(NSBundle::class_(), "org.example.None"_ns, nullptr));
  EXPECT_FALSE(frameworkBundleWithIdentifier(NSBundle::class_(), "org.example.None"_ns));
}

TEST_F(BDBundleAdditionsTest, OverridesTakeEffectWhereTheyAreAsked) {
  const ClassOf<NSBundle> own(OwnBundle::class_());
  bool loaded = false;
  // What is loaded is asked of NSBundle, whoever receives the message.
  EXPECT_FALSE(bundleWithIdentifier(own, "org.example.None"_ns, &loaded));
  EXPECT_FALSE(slotWasNull);
  EXPECT_TRUE(frameworkBundleWithIdentifier(own, "org.brindle.Brindle"_ns));
  EXPECT_TRUE(slotWasNull);

  ::setenv("XDG_DATA_HOME", path("data").c_str(), 1);
  folder("nameless");
  const NSBundle made =
      send<"bundleWithPath:", NSBundle>(OwnBundle::class_(), NSString(path("nameless")));
  EXPECT_EQ(inside(applicationSupportDirectory(made)), "data/own name");
  EXPECT_EQ(inside(applicationSupportDirectoryEnsuringExistence(made)), "data/own name");
  ::unsetenv("XDG_DATA_HOME");
}

// Once the search was made, who holds the class's lock keeps nobody waiting.
TEST_F(BDBundleAdditionsTest, LaterCallsTakeNoLock) {
  const ClassOf<NSBundle> bundles = NSBundle::class_();
  EXPECT_FALSE(frameworkBundleWithIdentifier(bundles, "org.example.None"_ns));
  const Synchronized held(bundles);
  std::thread([&bundles] {
    EXPECT_TRUE(frameworkBundleWithIdentifier(bundles, "org.brindle.Brindle"_ns));
  }).join();
}

TEST_F(BDBundleAdditionsTest, Names) {
  const struct {
    const char* folder;
    std::map<std::string, std::string> entries;
    const char* name;
  } kCases[] = {
      {"a",
       {{"CFBundleDisplayName", "d"}, {"CFBundleName", "n"}, {"CFBundleExecutable", "e"}},
       "d"},
      {"b", {{"CFBundleName", "n"}, {"CFBundleExecutable", "e"}}, "n"},
      {"c", {{"CFBundleExecutable", "e"}}, "e"},
      {"d", {{"CFBundleIdentifier", "i"}}, "nil"},
  };
  for (const auto& row : kCases) {
    info(std::string(row.folder) + "/Info.plist", row.entries);
    EXPECT_EQ(text(name(bundle(row.folder))), row.name) << row.folder;
  }
  info("e/Info.plist", {{"CFBundleName", "Mail"}, {"CFBundleVersion", "7.1"}});
  file("e/de.lproj/InfoPlist.strings", "CFBundleDisplayName = Post;");
  EXPECT_EQ(text(name(bundle("e"))), "Post");
  EXPECT_EQ(text(version(bundle("e"))), "7.1");
  EXPECT_FALSE(version(bundle("d")));
  folder("f");
  EXPECT_FALSE(name(bundle("f")));
}

TEST_F(BDBundleAdditionsTest, SupportFolders) {
  ::setenv("XDG_DATA_HOME", path("data").c_str(), 1);
  info("Mail.app/Contents/Info.plist", {{"CFBundleName", "Mail"}});
  const NSBundle mail = bundle("Mail.app");
  EXPECT_EQ(inside(applicationSupportDirectory(mail)), "data/Mail");
  EXPECT_FALSE(std::filesystem::exists(path("data")));
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(inside(applicationSupportDirectoryEnsuringExistence(mail)), "data/Mail");
    EXPECT_TRUE(std::filesystem::is_directory(path("data/Mail")));
  }
  // Where it cannot be made, the path is answered all the same.
  file("blocked");
  ::setenv("XDG_DATA_HOME", path("blocked").c_str(), 1);
  EXPECT_EQ(inside(applicationSupportDirectoryEnsuringExistence(mail)), "blocked/Mail");
  EXPECT_FALSE(std::filesystem::exists(path("blocked/Mail")));
  ::unsetenv("XDG_DATA_HOME");

  folder("nameless");
  EXPECT_FALSE(applicationSupportDirectory(bundle("nameless")));
  EXPECT_FALSE(applicationSupportDirectoryEnsuringExistence(bundle("nameless")));
}

TEST_F(BDBundleAdditionsTest, FrameworksBesideTheExecutable) {
  const auto alternative = [this](const std::string& name) {
    return inside(alternativePrivateFrameworksPath(bundle(name)));
  };
  file("A.framework/Versions/1/A");
  link("A.framework/Versions/Current", "1");
  link("A.framework/A", "Versions/Current/A");
  EXPECT_EQ(alternative("A.framework"), "A.framework/Versions/Current/Frameworks");
  file("B.framework/B");
  EXPECT_EQ(alternative("B.framework"), "B.framework/Frameworks");
  file("elsewhere/C");
  link("C.framework/C", path("elsewhere/C"));
  EXPECT_EQ(alternative("C.framework"), "elsewhere/Frameworks");
  // Only the first link counts.
  link("elsewhere/D", "deeper/D");
  file("elsewhere/deeper/D");
  link("D.framework/D", "../elsewhere/D");
  EXPECT_EQ(alternative("D.framework"), "D.framework/../elsewhere/Frameworks");
  folder("E.framework");
  EXPECT_EQ(alternative("E.framework"), "nil");
  file("F.app/Contents/Linux/F");
  EXPECT_EQ(alternative("F.app"), "nil");
  file("G.bundle/G");
  EXPECT_EQ(alternative("G.bundle"), "nil");
}

}  // namespace
}  // namespace brindle
