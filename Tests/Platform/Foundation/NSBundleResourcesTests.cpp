#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/NSMutableString.h>

#include "Tests/Platform/Foundation/BundleTesting.h"

namespace brindle {
namespace {

using testing_bundles::text;

class NSBundleResourcesTest : public testing_bundles::BundleTest {
 protected:
  [[nodiscard]] NSBundle bundle(const std::string& name) const {
    return NSBundle::bundleWithPath(NSString(path(name)));
  }
  // The word for a key of the default table.
  [[nodiscard]] std::string word(const std::string& name, const NSString& key) const {
    return text(bundle(name)->localizedStringForKey(key, nullptr, nullptr));
  }
};

TEST_F(NSBundleResourcesTest, Tour) {
  file("App/Resources/de.lproj/Localizable.strings", "\"disk full\" = \"Platte voll\";");
  file("App/Resources/de.lproj/Help.txt");
  file("App/Resources/logo.png");
  const NSBundle app = bundle("App");
  EXPECT_EQ(text(app->localizedStringForKey("disk full"_ns, nullptr, nullptr)), "Platte voll");
  EXPECT_EQ(inside(app->pathForResource("Help"_ns, "txt"_ns)), "App/Resources/de.lproj/Help.txt");
  EXPECT_EQ(inside(app->pathForResource("logo.png"_ns, nullptr)), "App/Resources/logo.png");
  EXPECT_EQ(inside(app->pathsForResourcesOfType("txt"_ns, nullptr)),
            "App/Resources/de.lproj/Help.txt");
}

TEST_F(NSBundleResourcesTest, WordsThatAreMissing) {
  file("W/de.lproj/Localizable.strings", "empty = \"\"; key = Wort;");
  const NSBundle w = bundle("W");
  const struct {
    NSString key;
    NSString value;
    const char* word;
  } kCases[] = {
      {"key"_ns, nullptr, "Wort"},    {"key"_ns, "value"_ns, "Wort"},
      {"empty"_ns, "value"_ns, ""},   {"other"_ns, nullptr, "other"},
      {"other"_ns, ""_ns, "other"},   {"other"_ns, "value"_ns, "value"},
      {nullptr, "value"_ns, "value"}, {nullptr, nullptr, ""},
      {""_ns, nullptr, ""},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(text(w->localizedStringForKey(row.key, row.value, nullptr)), row.word)
        << text(row.key) << ", " << text(row.value);
  }
  EXPECT_EQ(text(w->localizedStringForKey("key"_ns, nullptr, "NoSuchTable"_ns)), "key");
  EXPECT_EQ(text(w->localizedStringForKey("key"_ns, nullptr, ""_ns)), "Wort");
  EXPECT_EQ(text(w->localizedStringForKey("key"_ns, nullptr, "Localizable"_ns)), "Wort");
}

TEST_F(NSBundleResourcesTest, AMutableKeyIsNotWhatIsAnswered) {
  folder("M");
  const NSMutableString key = NSMutableString::stringWithString("key"_ns);
  const NSString word = bundle("M")->localizedStringForKey(key, nullptr, nullptr);
  key->appendString("s"_ns);
  EXPECT_EQ(text(word), "key");
}

TEST_F(NSBundleResourcesTest, WordsComeFromTheNearestTranslation) {
  info("T/Info.plist", {{"CFBundleDevelopmentRegion", "fr"}});
  file("T/pt-BR.lproj/Localizable.strings", "a = \"a br\";");
  file("T/pt.lproj/Localizable.strings", "a = \"a pt\"; b = \"b pt\";");
  file("T/fr.lproj/Localizable.strings", "a = \"a fr\"; b = \"b fr\"; c = \"c fr\";");
  file("T/Base.lproj/Localizable.strings", "c = \"c base\"; d = \"d base\";");
  file("T/Localizable.strings", "a = \"a of all\"; e = \"e of all\";");
  NSLocale::setPreferredLanguages({"pt-BR"_ns});
  EXPECT_EQ(word("T", "a"_ns), "a br");
  EXPECT_EQ(word("T", "b"_ns), "b pt");
  EXPECT_EQ(word("T", "c"_ns), "c fr");
  EXPECT_EQ(word("T", "d"_ns), "d base");
  EXPECT_EQ(word("T", "e"_ns), "e of all");
  EXPECT_EQ(word("T", "f"_ns), "f");
  NSLocale::setPreferredLanguages({"ja"_ns});
  EXPECT_EQ(word("T", "a"_ns), "a fr");
}

TEST_F(NSBundleResourcesTest, ALanguageFolderHasItsTablesDirectlyInIt) {
  file("L/de.lproj/Localizable.strings", "key = Wort;");
  file("L/de.lproj/Menu.strings", "key = Eintrag;");
  EXPECT_EQ(word("L/de.lproj", "key"_ns), "Wort");
  EXPECT_EQ(text(bundle("L/de.lproj")->localizedStringForKey("key"_ns, nullptr, "Menu"_ns)),
            "Eintrag");
}

TEST_F(NSBundleResourcesTest, ABrokenTableIsNone) {
  file("B/de.lproj/Localizable.strings", "key = Wort");
  file("B/en.lproj/Localizable.strings", "key = word;");
  EXPECT_EQ(word("B", "key"_ns), "word");
}

TEST_F(NSBundleResourcesTest, ATableIsReadOnce) {
  file("O/de.lproj/Localizable.strings", "key = erstes;");
  EXPECT_EQ(word("O", "key"_ns), "erstes");
  file("O/de.lproj/Localizable.strings", "key = zweites;");
  EXPECT_EQ(word("O", "key"_ns), "erstes");
}

TEST_F(NSBundleResourcesTest, FilesInTheOrderOfTheLanguages) {
  file("R/Resources/all.txt");
  file("R/Resources/de.lproj/all.txt");
  file("R/Resources/de.lproj/some.txt");
  file("R/Resources/en.lproj/some.txt");
  file("R/Resources/en.lproj/rest.txt");
  file("R/Resources/fr.lproj/french.txt");
  file("R/Resources/Help/all.txt");
  file("R/Resources/de.lproj/Help/own.txt");
  folder("R/Resources/Folder.type");
  const NSBundle r = bundle("R");
  const struct {
    NSString name;
    NSString type;
    NSString folder;
    const char* path;
  } kCases[] = {
      {"all"_ns, "txt"_ns, nullptr, "R/Resources/all.txt"},
      {"all"_ns, ".txt"_ns, nullptr, "R/Resources/all.txt"},
      {"some"_ns, "txt"_ns, nullptr, "R/Resources/de.lproj/some.txt"},
      {"rest.txt"_ns, ""_ns, nullptr, "R/Resources/en.lproj/rest.txt"},
      {"french"_ns, "txt"_ns, nullptr, "nil"},
      {"none"_ns, "txt"_ns, nullptr, "nil"},
      {"Folder"_ns, "type"_ns, nullptr, "R/Resources/Folder.type"},
      {nullptr, "txt"_ns, nullptr, "R/Resources/all.txt"},
      {nullptr, nullptr, nullptr, "nil"},
      {"all"_ns, "txt"_ns, "Help"_ns, "R/Resources/Help/all.txt"},
      {"own"_ns, "txt"_ns, "Help"_ns, "R/Resources/de.lproj/Help/own.txt"},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(inside(r->pathForResource(row.name, row.type, row.folder)), row.path);
  }
  EXPECT_EQ(inside(r->pathForResource("some"_ns, "txt"_ns, nullptr, "English"_ns)),
            "R/Resources/en.lproj/some.txt");
  EXPECT_EQ(inside(r->pathForResource("some"_ns, "txt"_ns, nullptr, "ja"_ns)), "nil");
  EXPECT_EQ(inside(r->pathsForResourcesOfType("txt"_ns, nullptr)),
            "R/Resources/all.txt R/Resources/de.lproj/some.txt R/Resources/en.lproj/rest.txt");
  EXPECT_EQ(inside(r->pathsForResourcesOfType("txt"_ns, "Help"_ns)),
            "R/Resources/Help/all.txt R/Resources/de.lproj/Help/own.txt");
  EXPECT_EQ(inside(r->pathsForResourcesOfType("txt"_ns, nullptr, "fr"_ns)),
            "R/Resources/all.txt R/Resources/fr.lproj/french.txt");
  EXPECT_EQ(inside(r->pathsForResourcesOfType(nullptr, nullptr)),
            "R/Resources/Folder.type R/Resources/Help R/Resources/all.txt "
            "R/Resources/de.lproj/some.txt R/Resources/en.lproj/rest.txt");
  EXPECT_EQ(r->pathsForResourcesOfType("none"_ns, nullptr)->count(), 0u);
}

}  // namespace
}  // namespace brindle
