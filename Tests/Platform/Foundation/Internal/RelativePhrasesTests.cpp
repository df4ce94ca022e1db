#include "Platform/Foundation/Internal/RelativePhrases.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace brindle::internal {
namespace {

using enum RelativeUnit;

std::string numeric(std::string_view locale, RelativeUnit unit, std::int64_t offset) {
  return relativePhrase(locale, unit, offset, false);
}
std::string everyday(std::string_view locale, RelativeUnit unit, std::int64_t offset) {
  return relativePhrase(locale, unit, offset, true);
}

TEST(RelativePhrasesTest, Tour) {
  EXPECT_EQ(numeric("en", week, -3), "3 weeks ago");
  EXPECT_EQ(everyday("en", day, -1), "yesterday");
  EXPECT_EQ(numeric("pl", week, -3), "3 tygodnie temu");
  EXPECT_EQ(numeric("pl", week, -5), "5 tygodni temu");
  EXPECT_EQ(everyday("de_AT", month, 1), "nächsten Monat");
}

TEST(RelativePhrasesTest, EveryUnit) {
  const char* expected[] = {"in 2 seconds", "in 2 minutes", "in 2 hours",    "in 2 days",
                            "in 2 weeks",   "in 2 months",  "in 2 quarters", "in 2 years"};
  std::vector<std::string> phrases;
  for (const RelativeUnit unit : {second, minute, hour, day, week, month, quarter, year}) {
    phrases.push_back(everyday("en", unit, 2));
  }
  EXPECT_EQ(phrases, std::vector<std::string>(std::begin(expected), std::end(expected)));
}

TEST(RelativePhrasesTest, ZeroIsAWordOrACount) {
  EXPECT_EQ(everyday("en", day, 0), "today");
  EXPECT_EQ(everyday("en", second, 0), "now");
  EXPECT_EQ(numeric("en", day, 0), "in 0 days");
}

TEST(RelativePhrasesTest, PluralFormsAreTheLanguages) {
  EXPECT_EQ(numeric("ru", week, -1), "1 неделю назад");
  EXPECT_EQ(numeric("ru", week, -2), "2 недели назад");
  EXPECT_EQ(numeric("ru", week, -11), "11 недель назад");
  EXPECT_EQ(numeric("ru", week, -21), "21 неделю назад");
  EXPECT_EQ(numeric("cs", day, -5), "před 5 dny");
  EXPECT_EQ(numeric("cs", day, 5), "za 5 dní");
  EXPECT_EQ(everyday("he", day, -2), "שלשום");
}

TEST(RelativePhrasesTest, LocalesInEverySpelling) {
  for (const char* name : {"pt_BR", "pt-BR", "pt-br", "pt_BR.UTF-8"}) {
    EXPECT_EQ(numeric(name, month, 3), "em 3 meses") << name;
  }
  EXPECT_EQ(numeric("zh-Hant", week, 3), "3 週後");
  EXPECT_EQ(numeric("zh_TW", week, 3), "3 週後");
  EXPECT_EQ(numeric("iw", week, 3), numeric("he", week, 3));
  EXPECT_EQ(numeric("de@calendar=buddhist", week, 3), "in 3 Wochen");
}

TEST(RelativePhrasesTest, ALanguageThatNobodyKnowsIsEnglish) {
  for (const std::string& name :
       {std::string(), std::string("xx"), std::string("not a locale"), std::string(10000, 'd'),
        std::string("de\0x", 4), std::string("@@@"), std::string("\xff\xfe")}) {
    EXPECT_EQ(numeric(name, week, 3), "in 3 weeks") << name.substr(0, 20);
  }
}

TEST(RelativePhrasesTest, GreatNumbersAreExact) {
  EXPECT_EQ(numeric("en", day, 9007199254740993), "in 9,007,199,254,740,993 days");
  EXPECT_EQ(numeric("en", day, -9007199254740993), "9,007,199,254,740,993 days ago");
  EXPECT_EQ(everyday("en", day, INT64_MAX), "in 9,223,372,036,854,775,807 days");
  EXPECT_EQ(numeric("en", day, INT64_MIN), "9,223,372,036,854,775,808 days ago");
  EXPECT_EQ(numeric("de", week, INT64_MIN), "vor 9.223.372.036.854.775.808 Wochen");
  // The plural form follows the last digits: one (…1), few (…2) and many (…0).
  EXPECT_NE(numeric("ru", week, 9007199254741001).find("001 неделю"), std::string::npos);
  EXPECT_NE(numeric("ru", week, 9007199254741002).find("002 недели"), std::string::npos);
  EXPECT_NE(numeric("ru", week, 9007199254741010).find("010 недель"), std::string::npos);
  EXPECT_NE(numeric("fa", day, INT64_MIN).find("۸۰۸"), std::string::npos);
  EXPECT_EQ(numeric("en", day, 9007199254740992), "in 9,007,199,254,740,992 days");
}

TEST(RelativePhrasesTest, ThreadsHaveTheirOwnLanguage) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 100; ++n) {
        EXPECT_EQ(numeric((i + n) % 2 == 0 ? "de" : "fr", day, 3),
                  (i + n) % 2 == 0 ? "in 3 Tagen" : "dans 3 jours");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace brindle::internal
