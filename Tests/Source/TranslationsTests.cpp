// The library's translations beside CLDR's, which the system's ICU carries: where a phrase of one
// count, one word and one direction can say what the language says, it does. Where it cannot, or
// should not, the difference stands here; a difference that is none any more fails too.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <Brindle/BDRelativePhrases.h>
#include <Brindle/Platform/NSString.h>

using namespace brindle;

namespace {

using Words = std::map<std::string, std::string>;

constexpr BDTimeUnit kUnits[] = {BDTimeUnitDay, BDTimeUnitWeek, BDTimeUnitMonth, BDTimeUnitQuarter,
                                 BDTimeUnitYear};
constexpr const char* kNames[] = {"day", "week", "month", "quarter", "year"};

/// One difference: a language, and a direction, a unit or a key of the table.
using Difference = std::pair<std::string, std::string>;
using Differences = std::set<Difference>;

// Other words for a direction. Where CLDR puts one direction before the number and the other one
// behind it, one format cannot do both: the table keeps the place of one, and has words for the
// other that the language uses there. Behind each what CLDR says.
const Differences kDirections = {
    {"ar", "from now"},  // "within"; here "after"
    {"cs", "ago"},       // před 5 dny
    {"cs", "from now"},  // za 5 dní
    {"da", "ago"},       // for 5 dage siden
    {"da", "from now"},  // om 5 dage
    {"en", "from now"},  // in 5 days
    {"fa", "from now"},  // another word for most units; here that of days
    {"fi", "from now"},  // 5 päivän päästä
    {"hi", "from now"},  // "in"; here "after"
    {"id", "from now"},  // dalam 5 hari
    {"it", "from now"},  // tra 5 giorni
    {"nb", "ago"},       // for 5 døgn siden
    {"nb", "from now"},  // om 5 døgn
    {"nl", "from now"},  // over 5 dagen
    {"pl", "from now"},  // za 5 dni
    {"ru", "from now"},  // через 5 дней
    {"sv", "ago"},       // för 5 dagar sedan
    {"sv", "from now"},  // om 5 dagar
    {"th", "ago"},       // another word for days, weeks and months; here that of years
    {"th", "from now"},  // before the number
    {"uk", "from now"},  // через 5 днів
    {"vi", "from now"},  // sau 5 ngày nữa
};

// Other words for a unit.
const Differences kWords = {
    {"cs ago", "day"},           {"cs ago", "days"},
    {"cs ago", "week"},          {"cs ago", "weeks"},
    {"cs ago", "months"},  // instrumental; here genitive for both
    {"fi from now", "days"},     {"fi from now", "week"},
    {"fi from now", "weeks"},    {"fi from now", "month"},
    {"fi from now", "months"},   {"fi from now", "quarter"},
    {"fi from now", "quarters"}, {"fi from now", "year"},
    {"fi from now", "years"},     // genitive; here the case of "ago" for both
    {"hi from now", "quarters"},  // oblique plural; here the form of the other units
    {"nb ago", "day"},           {"nb ago", "days"},
    {"nb from now", "day"},      {"nb from now", "days"},  // døgn, 24 hours; here calendar days
};

// One of something is a word there, or stands before the number.
const std::set<std::string> kOnes = {"ar", "he"};

// Other words for no offset.
const Differences kZeroOffsets = {
    {"ar", "this year"},   // "the current year"; here as the other units
    {"el", "this month"},  // "the current month" as a title; here as an adverb
    {"el", "this quarter"}, {"el", "this week"},
    {"fa", "this quarter"},  // "the current quarter"; here as the other units
    {"ru", "this quarter"},  // "in the current quarter"; here as the other units
    {"vi", "today"},         // with a capital letter
};

// Less than half of the counts to 100 have this plural: in Arabic 11 to 99 have another one, but
// people rather count 3 to 10 of something.
const std::set<std::string> kRarePlurals = {"ar"};

std::vector<std::string> languages() {
  std::vector<std::string> names;
  const std::filesystem::path root(std::getenv("BRINDLE_SOURCE_DIR"));
  for (const auto& entry : std::filesystem::directory_iterator(root / "Resources")) {
    if (entry.path().extension() == ".lproj") names.push_back(entry.path().stem().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

Words wordsOf(const std::string& language) {
  const std::filesystem::path root(std::getenv("BRINDLE_SOURCE_DIR"));
  std::ifstream file(root / "Resources" / (language + ".lproj") / "Localizable.strings");
  const std::regex pair("^\"(.*)\" = \"(.*)\";$");
  Words words;
  std::smatch match;
  for (std::string line; std::getline(file, line);) {
    if (std::regex_match(line, match, pair)) words[match[1]] = match[2];
  }
  return words;
}

/// CLDR's locale for the folder.
NSLocale localeOf(const std::string& language) {
  return NSLocale::alloc()->initWithLocaleIdentifier(
      NSString(language == "pt" ? "pt_PT" : language));
}

/// With ASCII digits, without spaces, and without the small mark that Persian may write between a
/// noun and what belongs to it.
std::string plain(std::string text) {
  const auto replaceAll = [&text](const std::string& old, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos;) {
      text.replace(at, old.size(), with);
    }
  };
  for (std::string digit : {"\u0660", "\u06F0"}) {
    for (int value = 0; value < 10; ++value, ++digit.back())
      replaceAll(digit, std::to_string(value));
  }
  for (const char* mark : {" ", "\u00A0", "\u0654"}) replaceAll(mark, "");
  return text;
}

std::string zeroKey(std::size_t unit) {
  return unit == 0 ? "today" : "this " + std::string(kNames[unit]);
}

std::string keyOf(std::size_t unit, int count) {
  return std::string(kNames[unit]) + (count == 1 ? "" : "s");
}

/// What the tables make of it.
std::string phrase(const Words& words, std::size_t unit, int count, const std::string& direction) {
  return std::string(NSString::stringWithFormat(NSString(words.at("%i %@ %@")), count,
                                                NSString(words.at(keyOf(unit, count))),
                                                NSString(words.at(direction))));
}

/// What CLDR says.
std::string customary(const std::string& language, std::size_t unit, int count,
                      const std::string& direction) {
  return relativePhrase(kUnits[unit], direction == "ago" ? -count : count, localeOf(language),
                        PhraseStyle::numeric);
}

bool contains(const std::string& text, const std::string& part) {
  return plain(text).find(plain(part)) != std::string::npos;
}

void expectAllNeeded(const Differences& listed, const Differences& found) {
  for (const Difference& difference : listed) {
    EXPECT_TRUE(found.contains(difference))
        << difference.first << ", " << difference.second << " is listed, but does not differ";
  }
}

}  // namespace

TEST(Translations, Tour) {
  const Words german = wordsOf("de");
  EXPECT_EQ(phrase(german, 1, 3, "ago"), "vor 3 Wochen");
  EXPECT_EQ(phrase(german, 0, 3, "from now"), customary("de", 0, 3, "from now"));
  EXPECT_EQ(languages().size(), 29U);
}

TEST(Translations, PhrasesAreTheCustomaryOnes) {
  Differences found;
  for (const std::string& language : languages()) {
    const Words words = wordsOf(language);
    for (std::size_t unit = 0; unit < std::size(kUnits); ++unit) {
      for (const int count : {1, 5}) {
        for (const std::string direction : {"from now", "ago"}) {
          if (count == 1 && kOnes.contains(language)) continue;
          const std::string ours = phrase(words, unit, count, direction);
          const std::string theirs = customary(language, unit, count, direction);
          if (plain(ours) == plain(theirs)) continue;
          const Difference difference = {language, direction};
          EXPECT_TRUE(kDirections.contains(difference))
              << language << ": " << ours << ", " << theirs;
          found.insert(difference);
        }
      }
    }
  }
  expectAllNeeded(kDirections, found);
}

TEST(Translations, WordsAreTheCustomaryOnes) {
  Differences found;
  for (const std::string& language : languages()) {
    const Words words = wordsOf(language);
    for (std::size_t unit = 0; unit < std::size(kUnits); ++unit) {
      for (const int count : {1, 5}) {
        for (const std::string direction : {"from now", "ago"}) {
          const std::string theirs = customary(language, unit, count, direction);
          const std::string key = keyOf(unit, count);
          if (contains(theirs, words.at(key))) continue;
          const Difference difference = {language + " " + direction, key};
          EXPECT_TRUE(kWords.contains(difference) || (count == 1 && kOnes.contains(language)))
              << language << ": " << words.at(key) << ", " << theirs;
          found.insert(difference);
        }
      }
    }
  }
  expectAllNeeded(kWords, found);
}

TEST(Translations, NoOffsetIsTheCustomaryPhrase) {
  Differences found;
  for (const std::string& language : languages()) {
    const Words words = wordsOf(language);
    for (std::size_t unit = 0; unit < std::size(kUnits); ++unit) {
      const std::string& ours = words.at(zeroKey(unit));
      const std::string theirs = relativePhrase(kUnits[unit], 0, localeOf(language));
      if (plain(ours) == plain(theirs)) continue;
      const Difference difference = {language, zeroKey(unit)};
      EXPECT_TRUE(kZeroOffsets.contains(difference)) << language << ": " << ours << ", " << theirs;
      found.insert(difference);
    }
  }
  expectAllNeeded(kZeroOffsets, found);
}

TEST(Translations, ThePluralFitsMostCounts) {
  constexpr int kHighest = 100;
  for (const std::string& language : languages()) {
    const Words words = wordsOf(language);
    for (std::size_t unit = 0; unit < std::size(kUnits); ++unit) {
      int fitting = 0;
      for (int count = 2; count <= kHighest; ++count) {
        const std::string& word = words.at(keyOf(unit, count));
        const bool fits = contains(customary(language, unit, count, "ago"), word) ||
                          contains(customary(language, unit, count, "from now"), word);
        fitting += fits ? 1 : 0;
      }
      const bool isListed =
          kRarePlurals.contains(language) || kWords.contains({language + " ago", keyOf(unit, 2)});
      EXPECT_TRUE(fitting > kHighest / 2 || isListed)
          << language << ": " << words.at(keyOf(unit, 2)) << " fits " << fitting;
    }
  }
}
