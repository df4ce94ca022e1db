// Phrases for how far away something is, without objects.
#include <Brindle/Platform/RelativePhrase.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

using namespace brindle;

TEST(RelativePhrase, Tour) {
  EXPECT_EQ(relativePhrase(PhraseUnit::week, -3, "pl"), "3 tygodnie temu");
  EXPECT_EQ(relativePhrase(PhraseUnit::week, -5, "pl"), "5 tygodni temu");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, 1, "en"), "tomorrow");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, 1, "en", PhraseStyle::numeric), "in 1 day");
}

TEST(RelativePhrase, EveryUnitByItsName) {
  const struct {
    PhraseUnit unit;
    const char* phrase;
  } kRows[] = {
      {PhraseUnit::second, "1 second ago"},   {PhraseUnit::minute, "1 minute ago"},
      {PhraseUnit::hour, "1 hour ago"},       {PhraseUnit::day, "1 day ago"},
      {PhraseUnit::week, "1 week ago"},       {PhraseUnit::month, "1 month ago"},
      {PhraseUnit::quarter, "1 quarter ago"}, {PhraseUnit::year, "1 year ago"},
  };
  for (const auto& row : kRows) {
    EXPECT_EQ(relativePhrase(row.unit, -1, "en", PhraseStyle::numeric), row.phrase);
  }
}

TEST(RelativePhrase, WordsWhereTheLanguageHasThem) {
  EXPECT_EQ(relativePhrase(PhraseUnit::day, -2, "de"), "vorgestern");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, -2, "en"), "2 days ago");
  EXPECT_EQ(relativePhrase(PhraseUnit::quarter, -1, "en"), "last quarter");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, 0, "en"), "today");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, 0, "en", PhraseStyle::numeric), "in 0 days");
}

TEST(RelativePhrase, EveryOffsetIsExact) {
  EXPECT_EQ(relativePhrase(PhraseUnit::day, INT64_MIN, "en"), "9,223,372,036,854,775,808 days ago");
  EXPECT_EQ(relativePhrase(PhraseUnit::day, INT64_MAX, "en"), "in 9,223,372,036,854,775,807 days");
}

TEST(RelativePhrase, AUnitThatIsNoneHasNoPhrase) {
  EXPECT_EQ(relativePhrase(static_cast<PhraseUnit>(8), 1, "en"), "");
  EXPECT_EQ(relativePhrase(static_cast<PhraseUnit>(255), 1, "en"), "");
}
