#include <Brindle/BDUserDefaultsAdditions.h>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include <Brindle/Platform/NSMutableString.h>

namespace brindle {
namespace {

std::string text(const NSString& string) { return string ? std::string(string) : "(nil)"; }

// Without a slash at its end, as paths have none that were put together.
std::string databaseHome() {
  const passwd* record = ::getpwuid(::getuid());
  return record == nullptr ? "(nil)" : record->pw_dir;
}

TEST(BDUserDefaultsAdditionsTest, Tour) {
  const std::string home = databaseHome();
  EXPECT_EQ(text(userHomePath(NSUserDefaults::standardUserDefaults())), home);
  EXPECT_EQ(text(stringByExpandingTildeInPathUsingUserHomePath("~"_ns)), home);
  EXPECT_EQ(text(stringByExpandingTildeInPathUsingUserHomePath("~/Letters"_ns)), home + "/Letters");
}

TEST(BDUserDefaultsAdditionsTest, TheEnvironmentHasNoSay) {
  const char* before = std::getenv("HOME");
  const std::string kept = before == nullptr ? "" : before;
  ::setenv("HOME", "/elsewhere", 1);
  EXPECT_EQ(text(userHomePath(NSUserDefaults::new_())), databaseHome());
  EXPECT_EQ(text(stringByExpandingTildeInPathUsingUserHomePath("~"_ns)), databaseHome());
  if (before == nullptr) {
    ::unsetenv("HOME");
  } else {
    ::setenv("HOME", kept.c_str(), 1);
  }
}

TEST(BDUserDefaultsAdditionsTest, OtherStringsAreAnsweredThemselves) {
  for (const NSString& path : {""_ns, "/a/~"_ns, " ~"_ns, "a"_ns}) {
    EXPECT_EQ(stringByExpandingTildeInPathUsingUserHomePath(path), path);
  }
  const NSMutableString changing = cast<NSMutableString>(NSMutableString::string());
  EXPECT_EQ(stringByExpandingTildeInPathUsingUserHomePath(changing), changing);
  EXPECT_EQ(stringByExpandingTildeInPathUsingUserHomePath(nullptr), nullptr);
  EXPECT_EQ(userHomePath(nullptr), nullptr);
}

TEST(BDUserDefaultsAdditionsTest, ATildeWithANameIsAFolderOfTheHome) {
  EXPECT_EQ(text(stringByExpandingTildeInPathUsingUserHomePath("~ann/x"_ns)),
            databaseHome() + "/ann/x");
  EXPECT_EQ(text(stringByExpandingTildeInPathUsingUserHomePath("~//x/"_ns)), databaseHome() + "/x");
}

}  // namespace
}  // namespace brindle
