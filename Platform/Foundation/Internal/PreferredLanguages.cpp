#include "Platform/Foundation/Internal/PreferredLanguages.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <utility>

#include "Platform/Foundation/Internal/Languages.h"

namespace brindle::internal {
namespace {

struct State {
  std::mutex mutex;
  std::optional<std::vector<std::string>> names;
};
State& state() {
  static State& state = *new State;  // for the life of the process
  return state;
}

std::atomic<unsigned long> generation{1};

}  // namespace

std::vector<std::string> environmentLanguages() {
  std::string_view locale;
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value == 0) continue;
    locale = value;
    break;
  }
  std::vector<std::string> languages;
  if (locale.empty() || isNoLanguage(locale)) return languages;
  const char* list = std::getenv("LANGUAGE");
  std::string names = list == nullptr ? "" : std::string(list) + ":";
  names += locale;
  for (std::size_t start = 0; start <= names.size();) {
    const std::size_t end = std::min(names.find(':', start), names.size());
    const std::string_view name = std::string_view(names).substr(start, end - start);
    start = end + 1;
    if (name.empty() || isNoLanguage(name)) continue;
    std::string language = canonicalLanguage(name);
    if (std::find(languages.begin(), languages.end(), language) == languages.end()) {
      languages.push_back(std::move(language));
    }
  }
  return languages;
}

PreferredLanguages preferredLanguages() {
  const std::lock_guard lock(state().mutex);
  if (!state().names) state().names = environmentLanguages();
  return {*state().names, generation.load()};
}

void setPreferredLanguages(std::optional<std::vector<std::string>> names) {
  const std::lock_guard lock(state().mutex);
  state().names = std::move(names);
  generation.fetch_add(1);
}

unsigned long languageGeneration() noexcept { return generation.load(std::memory_order_acquire); }

}  // namespace brindle::internal
