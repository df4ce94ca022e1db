#include <Brindle/Platform/NSBundle.h>

#include <sys/stat.h>

#include <thread>
#include <vector>

#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

using testing_bundles::text;
using testing_bundles::words;

class NSBundleTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSBundle bundle(const std::string& name) const {
    return NSBundle::bundleWithPath(NSString(path(name)));
  }
};

TEST_F(NSBundleTest, Tour) {
  info("Notes.app/Contents/Info.plist", {{"CFBundleIdentifier", "org.example.Notes"},
                                         {"CFBundleName", "Notes"},
                                         {"CFBundleExecutable", "notes"}});
  file("Notes.app/Contents/Linux/notes");
  file("Notes.app/Contents/Resources/logo.png");
  file("Notes.app/Contents/Resources/de.lproj/Localizable.strings", "\"full\" = \"voll\";");

  const NSBundle notes = bundle("Notes.app");
  EXPECT_EQ(text(notes->bundleIdentifier()), "org.example.Notes");
  EXPECT_EQ(text(notes->objectForInfoDictionaryKey("CFBundleName"_ns)), "Notes");
  EXPECT_EQ(inside(notes->executablePath()), "Notes.app/Contents/Linux/notes");
  EXPECT_EQ(inside(notes->pathForResource("logo"_ns, "png"_ns)),
            "Notes.app/Contents/Resources/logo.png");
  EXPECT_EQ(text(notes->localizedStringForKey("full"_ns, nullptr, nullptr)), "voll");
  EXPECT_EQ(text(notes), "NSBundle <" + path("Notes.app") + "> (not yet loaded)");
}

TEST_F(NSBundleTest, AnyFolderIsABundleAndNothingElse) {
  folder("empty");
  file("file");
  link("nowhere", "gone");
  link("round", "round");
  link("link", "empty");
  const NSBundle empty = bundle("empty");
  ASSERT_TRUE(empty);
  EXPECT_EQ(inside(empty->resourcePath()), "empty");
  EXPECT_FALSE(empty->infoDictionary());
  EXPECT_FALSE(empty->bundleIdentifier());
  EXPECT_FALSE(empty->executablePath());
  EXPECT_EQ(inside(empty->privateFrameworksPath()), "empty/Frameworks");
  EXPECT_EQ(inside(empty->builtInPlugInsPath()), "empty/PlugIns");
  EXPECT_EQ(inside(empty->sharedFrameworksPath()), "empty/SharedFrameworks");
  EXPECT_EQ(inside(empty->sharedSupportPath()), "empty/SharedSupport");
  EXPECT_FALSE(empty->load());

  for (const char* name : {"file", "nowhere", "round", "gone", "file/x"}) {
    EXPECT_FALSE(bundle(name)) << name;
  }
  EXPECT_FALSE(NSBundle::bundleWithPath(nullptr));
  EXPECT_FALSE(NSBundle::bundleWithPath(""_ns));
  EXPECT_FALSE(NSBundle::alloc()->initWithPath(NSString(path("gone"))));
  EXPECT_EQ(inside(bundle("link")->bundlePath()), "link");
}

TEST_F(NSBundleTest, OneObjectForEachPath) {
  folder("a/b");
  const NSBundle a = bundle("a");
  EXPECT_EQ(bundle("a/"), a);
  EXPECT_EQ(bundle("a//."), a);
  EXPECT_EQ(bundle("a/b/.."), a);
  EXPECT_EQ(NSBundle::alloc()->initWithPath(NSString(path("a"))), a);
  EXPECT_NE(bundle("a/b"), a);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(path("a"));
  EXPECT_EQ(NSBundle::bundleWithPath("."_ns), a);
  EXPECT_EQ(NSBundle::bundleWithPath("b"_ns), bundle("a/b"));
  std::filesystem::current_path(before);
  const NSBundle main = NSBundle::mainBundle();
  EXPECT_EQ(NSBundle::bundleWithPath(main->bundlePath()), main);
}

TEST_F(NSBundleTest, FrameworksWithVersions) {
  info("Box.framework/Versions/A/Resources/Info.plist",
       {{"CFBundleExecutable", "Box"}, {"CFBundleIdentifier", "org.example.Box"}});
  file("Box.framework/Versions/A/Box");
  folder("Box.framework/Versions/A/PlugIns");
  link("Box.framework/Versions/Current", "A");
  // Without the links at the top, and then with them.
  const NSBundle box = bundle("Box.framework");
  EXPECT_EQ(text(box->bundleIdentifier()), "org.example.Box");
  EXPECT_EQ(inside(box->resourcePath()), "Box.framework/Versions/Current/Resources");
  EXPECT_EQ(inside(box->executablePath()), "Box.framework/Versions/Current/Box");
  EXPECT_EQ(inside(box->builtInPlugInsPath()), "Box.framework/Versions/Current/PlugIns");
  EXPECT_EQ(inside(box->privateFrameworksPath()), "Box.framework/Frameworks");

  std::filesystem::rename(path("Box.framework"), path("Same.framework"));
  link("Same.framework/Resources", "Versions/Current/Resources");
  link("Same.framework/Box", "Versions/Current/Box");
  const NSBundle same = bundle("Same.framework");
  EXPECT_EQ(inside(same->resourcePath()), "Same.framework/Resources");
  EXPECT_EQ(inside(same->executablePath()), "Same.framework/Box");
}

TEST_F(NSBundleTest, OtherLayouts) {
  const struct {
    const char* info;
    const char* executable;
    const char* resources;
  } kCases[] = {
      {"Flat.framework/Info.plist", "Flat.framework/Flat", "Flat.framework"},
      {"Flat2.framework/Resources/Info.plist", "Flat2.framework/Flat2",
       "Flat2.framework/Resources"},
      {"NoLink.framework/Versions/7/Resources/Info.plist", "NoLink.framework/Versions/7/NoLink",
       "NoLink.framework/Versions/7/Resources"},
      {"Plain.framework/Versions/7/Info.plist", "Plain.framework/Versions/7/Plain",
       "Plain.framework/Versions/7"},
      {"Tool.bundle/Contents/Info.plist", "Tool.bundle/Contents/Linux/Tool",
       "Tool.bundle/Contents/Resources"},
      {"Other.plugin/Contents/Info.plist", "Other.plugin/Contents/Code/Other",
       "Other.plugin/Contents/Resources"},
      {"Bare.plugin/Info.plist", "Bare.plugin/libBare.so", "Bare.plugin"},
      {"Bare2.plugin/Resources/Info.plist", "Bare2.plugin/Bare2.so", "Bare2.plugin/Resources"},
      {"Versioned.plugin/Versions/B/Resources/Info.plist", "Versioned.plugin/Versions/B/Versioned",
       "Versioned.plugin/Versions/B/Resources"},
  };
  for (const auto& row : kCases) {
    info(row.info, {{"CFBundleIdentifier", row.info}});
    file(row.executable);
    const std::string name = row.info;
    const NSBundle made = bundle(name.substr(0, name.find('/')));
    EXPECT_EQ(text(made->bundleIdentifier()), name);
    EXPECT_EQ(inside(made->executablePath()), row.executable);
    EXPECT_EQ(inside(made->resourcePath()), row.resources);
  }
}

TEST_F(NSBundleTest, BrokenBundlesAnswerNil) {
  const struct {
    const char* name;
    std::string bytes;
  } kCases[] = {
      {"Empty", ""},
      {"Text", "no property list"},
      {"Cut", "<plist><dict><key>CFBundleIdentifier</key><str"},
      {"Array", "<plist><array><string>a</string></array></plist>"},
      {"Binary", "bplist00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
  };
  for (const auto& [name, bytes] : kCases) {
    file(std::string(name) + "/Info.plist", bytes);
    const NSBundle made = bundle(name);
    EXPECT_FALSE(made->infoDictionary()) << name;
    EXPECT_FALSE(made->objectForInfoDictionaryKey("CFBundleName"_ns)) << name;
    EXPECT_EQ(words(made->localizations()), "") << name;
  }
  // Values of other kinds than they ought to be, and names that lead elsewhere.
  file("Kinds/Info.plist",
       "<plist><dict><key>CFBundleIdentifier</key><integer>5</integer><key>CFBundleExecutable</key>"
       "<array/><key>CFBundleDevelopmentRegion</key><true/></dict></plist>");
  const NSBundle kinds = bundle("Kinds");
  EXPECT_FALSE(kinds->bundleIdentifier());
  EXPECT_EQ(text(kinds->objectForInfoDictionaryKey("CFBundleIdentifier"_ns)), "5");
  EXPECT_FALSE(kinds->executablePath());
  EXPECT_EQ(text(kinds->developmentLocalization()), "en");
  file("secret");
  info("Leads/Info.plist", {{"CFBundleExecutable", "../secret"}});
  EXPECT_FALSE(bundle("Leads")->executablePath());
  folder("Pipe");
  ASSERT_EQ(::mkfifo(path("Pipe/Info.plist").c_str(), 0600), 0);
  EXPECT_FALSE(bundle("Pipe")->infoDictionary());
  link("Loop/Info.plist", "Info.plist");
  link("Loop/Resources", "../Loop");
  EXPECT_FALSE(bundle("Loop")->infoDictionary());
  link("Turn/Contents", ".");
  EXPECT_EQ(inside(bundle("Turn")->resourcePath()), "Turn/Contents/Resources");
}

TEST_F(NSBundleTest, AnInfoFileIsReadOnce) {
  info("Once/Info.plist", {{"CFBundleName", "first"}});
  const NSBundle once = bundle("Once");
  EXPECT_EQ(text(once->objectForInfoDictionaryKey("CFBundleName"_ns)), "first");
  info("Once/Info.plist", {{"CFBundleName", "second"}});
  EXPECT_EQ(text(bundle("Once")->objectForInfoDictionaryKey("CFBundleName"_ns)), "first");
}

TEST_F(NSBundleTest, ValuesInTheUsersLanguageArePreferred) {
  info("Names/Info.plist", {{"CFBundleName", "Mail"}, {"CFBundleVersion", "3"}});
  file("Names/de.lproj/InfoPlist.strings", "CFBundleName = Post;");
  const NSBundle names = bundle("Names");
  EXPECT_EQ(text(names->objectForInfoDictionaryKey("CFBundleName"_ns)), "Post");
  EXPECT_EQ(text(names->objectForInfoDictionaryKey("CFBundleVersion"_ns)), "3");
  EXPECT_EQ(text(names->infoDictionary()->objectForKey("CFBundleName"_ns)), "Mail");
  EXPECT_FALSE(names->objectForInfoDictionaryKey(nullptr));
}

TEST_F(NSBundleTest, Localizations) {
  for (const char* name : {"en", "pt", "pt-BR", "Base", "German"}) {
    folder(std::string("Words/Resources/") + name + ".lproj");
  }
  const NSBundle many = bundle("Words");
  EXPECT_EQ(words(many->localizations()), "Base German en pt pt-BR");
  const struct {
    NSArray languages;
    const char* preferred;
  } kCases[] = {
      {{"de"_ns}, "German"},    {{"de-AT"_ns, "en"_ns}, "German"}, {{"pt-BR"_ns}, "pt-BR pt"},
      {{"pt-PT"_ns}, "pt"},     {{"fr"_ns, "pt"_ns}, "pt"},        {{"fr"_ns}, "en"},
      {NSArray::array(), "en"},
  };
  for (const auto& row : kCases) {
    NSLocale::setPreferredLanguages(row.languages);
    EXPECT_EQ(words(many->preferredLocalizations()), row.preferred) << text(row.languages);
  }
  info("French/Info.plist", {{"CFBundleDevelopmentRegion", "French"}});
  folder("French/fr.lproj");
  folder("French/nl.lproj");
  EXPECT_EQ(words(bundle("French")->preferredLocalizations()), "fr");
  folder("Dutch/nl.lproj");
  EXPECT_EQ(words(bundle("Dutch")->preferredLocalizations()), "nl");
  EXPECT_EQ(text(bundle("French")->developmentLocalization()), "French");
}

TEST_F(NSBundleTest, ManyThreadsFindTheSame) {
  info("Shared/Info.plist", {{"CFBundleName", "name"}});
  file("Shared/de.lproj/Localizable.strings", "key = Wort;");
  std::vector<NSBundle> found(8);
  std::vector<std::thread> threads;
  for (NSBundle& slot : found) {
    threads.emplace_back([this, &slot] {
      const NSBundle shared = bundle("Shared");
      const bool right = text(shared->objectForInfoDictionaryKey("CFBundleName"_ns)) == "name" &&
                         text(shared->localizedStringForKey("key"_ns, nullptr, nullptr)) == "Wort";
      if (right) slot = shared;
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const NSBundle& one : found) EXPECT_EQ(one, bundle("Shared"));
}

}  // namespace
}  // namespace brindle
