#include "Platform/Foundation/Internal/Languages.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace brindle::internal {
namespace {

using Names = std::vector<std::string>;

// The names of the translations that suit, joined.
std::string chosen(const Names& languages, const Names& translations) {
  std::string result;
  for (const std::size_t i : preferredTranslations(languages, translations)) {
    result += (result.empty() ? "" : " ") + translations[i];
  }
  return result;
}

TEST(LanguagesTest, Tour) {
  EXPECT_EQ(canonicalLocaleIdentifier("English"), "en");
  EXPECT_EQ(canonicalLocaleIdentifier("pt-br"), "pt_BR");
  EXPECT_EQ(canonicalLanguage("pt_BR.UTF-8"), "pt-BR");
  EXPECT_EQ(chosen({"pt-BR", "de"}, {"de", "en", "pt"}), "pt");
}

TEST(LanguagesTest, CanonicalIdentifiers) {
  const struct {
    std::string_view name;
    std::string_view canonical;
  } kCases[] = {
      {"", ""},
      {"en", "en"},
      {"EN", "en"},
      {"en-us", "en_US"},
      {"english", "en"},
      {"German", "de"},
      {"Chinese, Simplified", "zh-Hans"},
      {"TraditionalChinese", "zh-Hant"},
      {"zh-Hans", "zh-Hans"},
      {"zh_hant_tw", "zh-Hant_TW"},
      {"zh_TW", "zh_TW"},
      {"es-419", "es_419"},
      {"iw", "he"},
      {"iw_IL", "he_IL"},
      {"in", "id"},
      {"tl", "fil"},
      {"no", "no"},
      {"ca_ES_valencia", "ca_ES_VALENCIA"},
      {"Base", "Base"},
      {"C", "en_US_POSIX"},
      {"C.UTF-8", "en_US_POSIX"},
      {"POSIX", "en_US_POSIX"},
      {"de_DE.UTF-8@euro", "de_DE"},
      {"sr_RS@latin", "sr-Latn_RS"},
      {"x", "x"},
      {"no language", "no language"},
      {"en-", "en-"},
      {"../../etc", "../../etc"},
      {"zh.Ha-S", "zh-Hans"},
  };
  for (const auto& [name, canonical] : kCases) {
    EXPECT_EQ(canonicalLocaleIdentifier(name), canonical) << name;
  }
}

TEST(LanguagesTest, WhichTranslationSuits) {
  const struct {
    Names languages;
    Names translations;
    std::string_view chosen;
  } kCases[] = {
      {{}, {"en"}, ""},
      {{"de"}, {}, ""},
      {{"de"}, {"en", "fr"}, ""},
      {{"de", "fr"}, {"en", "fr"}, "fr"},
      {{"pt-BR"}, {"pt", "pt-BR", "en"}, "pt-BR pt"},
      {{"pt-BR"}, {"pt_BR"}, "pt_BR"},
      {{"pt-PT"}, {"pt", "pt-BR"}, "pt"},
      {{"pt-PT"}, {"pt-BR", "en"}, "pt-BR"},
      {{"en-GB"}, {"English", "en"}, "English en"},
      {{"es-MX"}, {"es", "es-419"}, "es-419 es"},
      {{"es-ES"}, {"es-419", "es"}, "es"},
      {{"zh-TW"}, {"zh-Hans", "zh-Hant"}, "zh-Hant"},
      {{"zh-CN"}, {"zh-Hant", "zh-Hans"}, "zh-Hans"},
      {{"zh-TW"}, {"zh-Hans", "en"}, ""},
      {{"zh-Hant"}, {"zh_TW"}, "zh_TW"},
      {{"sr-Latn"}, {"sr"}, ""},
      {{"no"}, {"nb"}, "nb"},
      {{"nb-NO"}, {"no"}, "no"},
      {{"he"}, {"iw"}, "iw"},
      {{"de"}, {"Base", "Shared", "de"}, "de"},
      {{"not a language"}, {"not a language"}, ""},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(chosen(row.languages, row.translations), row.chosen)
        << (row.languages.empty() ? "" : row.languages[0]);
  }
}

}  // namespace
}  // namespace brindle::internal
