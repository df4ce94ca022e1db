#include "Platform/Foundation/Internal/Languages.h"

#include <algorithm>
#include <optional>

#include <unicode/locid.h>

namespace brindle::internal {
namespace {

struct Meaning {
  std::string_view name;
  std::string_view identifier;
};

// Languages by their English names, which folders had before there were codes. In any case.
constexpr Meaning kNames[] = {
    {"Afrikaans", "af"},
    {"Albanian", "sq"},
    {"Arabic", "ar"},
    {"Armenian", "hy"},
    {"Assamese", "as"},
    {"Aymara", "ay"},
    {"Azerbaijani", "az"},
    {"Basque", "eu"},
    {"Belarusian", "be"},
    {"Bengali", "bn"},
    {"Breton", "br"},
    {"Bulgarian", "bg"},
    {"Byelorussian", "be"},
    {"Catalan", "ca"},
    {"Chinese", "zh"},
    {"Chinese, Simplified", "zh-Hans"},
    {"Chinese, Traditional", "zh-Hant"},
    {"Chinese, Tradtional", "zh-Hant"},
    {"Croatian", "hr"},
    {"Czech", "cs"},
    {"Danish", "da"},
    {"Dutch", "nl"},
    {"English", "en"},
    {"Esperanto", "eo"},
    {"Estonian", "et"},
    {"Faroese", "fo"},
    {"Farsi", "fa"},
    {"Finnish", "fi"},
    {"Flemish", "nl-BE"},
    {"French", "fr"},
    {"Galician", "gl"},
    {"Gallegan", "gl"},
    {"Georgian", "ka"},
    {"German", "de"},
    {"Greek", "el"},
    {"Hebrew", "he"},
    {"Hindi", "hi"},
    {"Hungarian", "hu"},
    {"Icelandic", "is"},
    {"Indonesian", "id"},
    {"Irish", "ga"},
    {"Italian", "it"},
    {"Japanese", "ja"},
    {"Javanese", "jv"},
    {"Kalaallisut", "kl"},
    {"Kannada", "kn"},
    {"Khmer", "km"},
    {"Kirghiz", "ky"},
    {"Korean", "ko"},
    {"Kurdish", "ku"},
    {"Latvian", "lv"},
    {"Lithuanian", "lt"},
    {"Macedonian", "mk"},
    {"Malagasy", "mg"},
    {"Maltese", "mt"},
    {"Manx", "gv"},
    {"Marathi", "mr"},
    {"Moldavian", "mo"},
    {"Mongolian", "mn"},
    {"Nepali", "ne"},
    {"Norwegian", "no"},
    {"Oriya", "or"},
    {"Persian", "fa"},
    {"Polish", "pl"},
    {"Portuguese", "pt"},
    {"Punjabi", "pa"},
    {"Romanian", "ro"},
    {"Russian", "ru"},
    {"Sanskrit", "sa"},
    {"Serbian", "sr"},
    {"Simplified Chinese", "zh-Hans"},
    {"SimplifiedChinese", "zh-Hans"},
    {"Sindhi", "sd"},
    {"Sinhalese", "si"},
    {"Slovak", "sk"},
    {"Slovenian", "sl"},
    {"Somali", "so"},
    {"Spanish", "es"},
    {"Swahili", "sw"},
    {"Swedish", "sv"},
    {"Tagalog", "fil"},
    {"Tajiki", "tg"},
    {"Tamil", "ta"},
    {"Tatar", "tt"},
    {"Thai", "th"},
    {"Traditional Chinese", "zh-Hant"},
    {"TraditionalChinese", "zh-Hant"},
    {"Turkish", "tr"},
    {"Turkmen", "tk"},
    {"Ukrainian", "uk"},
    {"Urdu", "ur"},
    {"Vietnamese", "vi"},
    {"Welsh", "cy"},
    {"Yiddish", "yi"},
};

// Identifiers of old systems that are not to be taken apart.
constexpr Meaning kOldIdentifiers[] = {
    {"ar_?\?", "ar"},       {"az.Ar", "az-Arab"},    {"az.Cy", "az-Cyrl"},
    {"bn_?\?", "bn"},       {"bo_?\?", "bo"},        {"br_?\?", "br"},
    {"cy_?\?", "cy"},       {"el.El-P", "grc"},      {"en-ascii", "en_001"},
    {"en_?\?", "en_001"},   {"eo_?\?", "eo"},        {"es_?\?", "es_419"},
    {"es_XL", "es_419"},    {"fr_?\?", "fr_001"},    {"ga-dots", "ga-Latg"},
    {"gd_?\?", "gd"},       {"gv_?\?", "gv"},        {"jv.La", "jv"},
    {"jw.La", "jv"},        {"kl.La", "kl"},         {"kl.La_GL", "kl_GL"},
    {"nl-be", "nl-BE"},     {"nl-be_BE", "nl_BE"},   {"no-NO_NO", "nb-NO_NO"},
    {"pa_?\?", "pa"},       {"su.La", "su"},         {"yi.He", "yi"},
    {"zh-trad", "zh-Hant"}, {"zh.Ha-S", "zh-Hans"},  {"zh.Ha-S_CN", "zh_CN"},
    {"zh.Ha-T", "zh-Hant"}, {"zh.Ha-T_TW", "zh_TW"},
};

// Codes of languages that were replaced.
constexpr Meaning kOldCodes[] = {
    {"iw", "he"}, {"in", "id"}, {"ji", "yi"}, {"jw", "jv"}, {"tl", "fil"}};

bool isLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
char lower(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
char upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

std::string lowered(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), lower);
  return result;
}
std::string raised(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), upper);
  return result;
}

template <class Match>
std::optional<std::string_view> find(std::span<const Meaning> table, const Match& matches) {
  const auto row = std::find_if(table.begin(), table.end(),
                                [&](const Meaning& meaning) { return matches(meaning.name); });
  if (row == table.end()) return std::nullopt;
  return row->identifier;
}

std::optional<std::string_view> knownMeaning(std::string_view name) {
  const auto old = find(kOldIdentifiers, [name](std::string_view other) { return other == name; });
  if (old) return old;
  return find(kNames, [&](std::string_view other) { return lowered(other) == lowered(name); });
}

struct Tag {
  std::string language;
  std::string script;
  std::string region;
  std::string variants;  // each behind an underscore
};

bool all(std::string_view text, bool (*is)(char)) {
  return std::all_of(text.begin(), text.end(), is);
}

// Takes "ll[-Ssss][-RR][-variant...]" apart; either separator. Nothing when it has another form.
std::optional<Tag> parseTag(std::string_view name) {
  Tag tag;
  for (std::size_t place = 0, start = 0; start <= name.size(); ++place) {
    const std::size_t end = std::min(name.find_first_of("-_", start), name.size());
    const std::string_view part = name.substr(start, end - start);
    start = end + 1;
    if (place == 0) {
      if (part.size() < 2 || part.size() > 8 || !all(part, isLetter)) return std::nullopt;
      tag.language = lowered(part);
    } else if (part.size() == 4 && all(part, isLetter) && tag.script.empty() &&
               tag.region.empty() && tag.variants.empty()) {
      tag.script = upper(part[0]) + lowered(part.substr(1));
    } else if (tag.region.empty() && tag.variants.empty() &&
               ((part.size() == 2 && all(part, isLetter)) ||
                (part.size() == 3 && all(part, isDigit)))) {
      tag.region = raised(part);
    } else if (!part.empty() && part.size() <= 8 &&
               all(part, [](char c) { return isLetter(c) || isDigit(c); })) {
      tag.variants += "_" + raised(part);
    } else {
      return std::nullopt;
    }
  }
  const auto code = find(kOldCodes, [&](std::string_view old) { return old == tag.language; });
  if (code) tag.language = *code;
  return tag;
}

// A name as the C library's locales have it: "sr_RS.UTF-8@latin".
std::optional<Tag> parseName(std::string_view name) {
  const std::size_t at = std::min(name.find('@'), name.size());
  const std::string_view modifier = name.substr(at);
  name = name.substr(0, at);
  std::optional<Tag> tag = parseTag(name.substr(0, name.find('.')));
  if (!tag || !tag->script.empty()) return tag;
  if (modifier == "@latin") tag->script = "Latn";
  if (modifier == "@cyrillic") tag->script = "Cyrl";
  return tag;
}

// The tag with the script and region that most of its readers mean. One language has two codes.
Tag completed(const Tag& tag) {
  const std::string language = tag.language == "no" ? "nb" : tag.language;
  std::string name = language;
  for (const std::string& part : {tag.script, tag.region}) {
    if (!part.empty()) name += "_" + part;
  }
  icu::Locale locale(name.c_str());
  UErrorCode error = U_ZERO_ERROR;
  locale.addLikelySubtags(error);
  return {language, locale.getScript(), locale.getCountry(), ""};
}

std::optional<Tag> tagOf(std::string_view name) {
  return parseTag(canonicalLocaleIdentifier(name));
}

enum Rank { kSameRegion, kRegionAround, kNoRegion, kOtherRegion, kNotAtAll };

Rank rankOf(const Tag& wanted, const Tag& offered) {
  const Tag wantedFull = completed(wanted);
  const Tag offeredFull = completed(offered);
  if (wantedFull.language != offeredFull.language || wantedFull.script != offeredFull.script) {
    return kNotAtAll;
  }
  if (wanted.region == offered.region) return kSameRegion;
  if (offered.region.empty()) return kNoRegion;
  // The language of most of its readers is not that of the world around them.
  const bool isAround = isDigit(offered.region[0]);
  const std::string usual = completed({wanted.language, wanted.script, "", ""}).region;
  if (isAround && !wanted.region.empty() && wanted.region != usual) return kRegionAround;
  return kOtherRegion;
}

}  // namespace

bool isNoLanguage(std::string_view name) noexcept {
  name = name.substr(0, name.find_first_of(".@"));
  return name == "C" || name == "POSIX";
}

std::string canonicalLocaleIdentifier(std::string_view name) {
  if (const auto known = knownMeaning(name)) return std::string(*known);
  if (isNoLanguage(name)) return "en_US_POSIX";
  if (lowered(name) == "base") return std::string(name);
  const std::optional<Tag> tag = parseName(name);
  if (!tag) return std::string(name);
  std::string result = tag->language;
  if (!tag->script.empty()) result += "-" + tag->script;
  if (!tag->region.empty()) result += "_" + tag->region;
  return result + tag->variants;
}

std::string canonicalLanguage(std::string_view name) {
  std::string result = canonicalLocaleIdentifier(name);
  std::replace(result.begin(), result.end(), '_', '-');
  return result;
}

std::vector<std::size_t> translationsFor(std::string_view language,
                                         std::span<const std::string> translations) {
  const std::optional<Tag> wanted = tagOf(language);
  if (!wanted) return {};
  std::vector<std::pair<Rank, std::size_t>> ranked;
  for (std::size_t i = 0; i < translations.size(); ++i) {
    const std::optional<Tag> offered = tagOf(translations[i]);
    const Rank rank = offered ? rankOf(*wanted, *offered) : kNotAtAll;
    if (rank != kNotAtAll) ranked.emplace_back(rank, i);
  }
  std::sort(ranked.begin(), ranked.end());
  std::vector<std::size_t> result;
  for (const auto& [rank, index] : ranked) {
    if (rank == kOtherRegion && !result.empty()) break;
    result.push_back(index);
  }
  return result;
}

std::vector<std::size_t> preferredTranslations(std::span<const std::string> languages,
                                               std::span<const std::string> translations) {
  for (const std::string& language : languages) {
    std::vector<std::size_t> found = translationsFor(language, translations);
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace brindle::internal
