#pragma once

// Languages by their names: what identifiers and folder names mean, and which of the translations
// at hand suits best. The unit that asks ICU which script and region a language has when nobody
// says.

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::internal {

/// The canonical form of a locale's name: "English" is "en", "zh_hans" is "zh-Hans", "pt-br" is
/// "pt_BR", "iw" is "he", "de_DE.UTF-8@euro" is "de_DE". A script stands behind a hyphen, a region
/// behind an underscore. "C" and "POSIX" are "en_US_POSIX". What is no locale's name stays as it
/// is.
std::string canonicalLocaleIdentifier(std::string_view name);

/// The same as a language: with hyphens only, such as "pt-BR" and "zh-Hans-CN".
std::string canonicalLanguage(std::string_view name);

/// Whether the name of a locale is that of no language: "C" or "POSIX", whatever their encoding.
bool isNoLanguage(std::string_view name) noexcept;

/// Which of the translations (by their names) speak the language, by index, best first: the same
/// region, a region around it, no region. A translation for another region counts when there is no
/// other; one in another script never does.
std::vector<std::size_t> translationsFor(std::string_view language,
                                         std::span<const std::string> translations);

/// The translations for the first of the languages that there are any for; empty when there are
/// none for all of them.
std::vector<std::size_t> preferredTranslations(std::span<const std::string> languages,
                                               std::span<const std::string> translations);

}  // namespace brindle::internal
