#include <Brindle/Platform/NSLocale.h>

#include <cstdlib>

#include <gtest/gtest.h>

using namespace brindle;

TEST(NSLocale, Tour) {
  const NSLocale locale = NSLocale::alloc()->initWithLocaleIdentifier("de_DE"_ns);
  EXPECT_EQ(std::string(locale->localeIdentifier()), "de_DE");
  EXPECT_TRUE(locale->isEqual(NSLocale::alloc()->initWithLocaleIdentifier("de_DE"_ns)));
  EXPECT_FALSE(locale->isEqual(NSLocale::systemLocale()));
  EXPECT_EQ(std::string(NSLocale::systemLocale()->localeIdentifier()), "");
}

TEST(NSLocale, TheUsersComesFromTheEnvironment) {
  const std::string before = std::getenv("LC_ALL") != nullptr ? std::getenv("LC_ALL") : "";
  setenv("LC_ALL", "pt_BR.UTF-8", 1);
  EXPECT_EQ(std::string(NSLocale::currentLocale()->localeIdentifier()), "pt_BR");
  setenv("LC_ALL", "C", 1);
  EXPECT_EQ(std::string(NSLocale::currentLocale()->localeIdentifier()), "en_US_POSIX");
  setenv("LC_ALL", before.c_str(), 1);
}

TEST(NSLocale, NeedsAnIdentifier) {
  EXPECT_ANY_THROW(NSLocale::alloc()->initWithLocaleIdentifier(nullptr));
}

TEST(NSLocale, CanonicalIdentifiers) {
  const auto canonical = [](const NSString& name) {
    return std::string(NSLocale::canonicalLocaleIdentifierFromString(name));
  };
  EXPECT_EQ(canonical("English"_ns), "en");
  EXPECT_EQ(canonical("pt-BR"_ns), "pt_BR");
  EXPECT_EQ(canonical("zh-Hans"_ns), "zh-Hans");
  EXPECT_EQ(canonical("iw"_ns), "he");
  EXPECT_EQ(canonical("no such language"_ns), "no such language");
  EXPECT_FALSE(NSLocale::canonicalLocaleIdentifierFromString(nullptr));
  EXPECT_EQ(std::string(NSLocale::canonicalLanguageIdentifierFromString("zh_Hant_TW"_ns)),
            "zh-Hant-TW");
  EXPECT_FALSE(NSLocale::canonicalLanguageIdentifierFromString(nullptr));
}

TEST(NSLocale, ThePreferredLanguagesMayBeSet) {
  NSLocale::setPreferredLanguages({"German"_ns, "pt_BR"_ns});
  const NSArray languages = NSLocale::preferredLanguages();
  EXPECT_TRUE(languages->isEqual(NSArray{"de"_ns, "pt-BR"_ns}));
  EXPECT_ANY_THROW(NSLocale::setPreferredLanguages({NSLocale::systemLocale()}));
  EXPECT_TRUE(NSLocale::preferredLanguages()->isEqual(languages));
  NSLocale::setPreferredLanguages(nullptr);
  EXPECT_TRUE(NSLocale::preferredLanguages());
}
