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
