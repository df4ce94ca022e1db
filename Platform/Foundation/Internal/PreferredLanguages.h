#pragma once

// The languages that the user reads, best first: what the program says, otherwise what the
// environment said when it was first asked. Any thread.

#include <optional>
#include <string>
#include <vector>

namespace brindle::internal {

/// The languages that the environment names now: those of LANGUAGE, unless the locale is C, then
/// that of LC_ALL, LC_MESSAGES or LANG, the first that is not empty. None for C.
std::vector<std::string> environmentLanguages();

struct PreferredLanguages {
  std::vector<std::string> names;
  unsigned long generation;  // another one whenever the names may be others
};
PreferredLanguages preferredLanguages();

/// Nothing goes back to the environment, as it is then.
void setPreferredLanguages(std::optional<std::vector<std::string>> names);

/// The generation of the present languages.
unsigned long languageGeneration() noexcept;

}  // namespace brindle::internal
