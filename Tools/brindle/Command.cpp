#include "Command.h"

#include <algorithm>

namespace tool {
namespace {

// A negative number is a value, not an option.
bool isOption(std::string_view word) { return word.size() > 2 && word.starts_with("--"); }

}  // namespace

Words::Words(std::span<const std::string_view> words, std::span<const Option> options) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string_view word = words[i];
    if (word == "--") {
      rest_.insert(rest_.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
      return;
    }
    if (!isOption(word)) {
      rest_.push_back(word);
      continue;
    }
    const std::size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const auto option = std::find_if(options.begin(), options.end(),
                                     [name](const Option& o) { return o.name == name; });
    if (option == options.end()) throw UsageError("unknown option " + std::string(name));
    if (has(name)) throw UsageError(std::string(name) + " is given twice");
    if (!option->takesValue) {
      if (equals != std::string_view::npos) throw UsageError(std::string(name) + " takes no value");
      given_.push_back({name, {}});
    } else if (equals != std::string_view::npos) {
      given_.push_back({name, word.substr(equals + 1)});
    } else if (i + 1 < words.size() && !isOption(words[i + 1])) {
      given_.push_back({name, words[++i]});
    } else {
      throw UsageError(std::string(name) + " needs a value");
    }
  }
}

bool Words::has(std::string_view option) const { return value(option).has_value(); }

std::optional<std::string_view> Words::value(std::string_view option) const {
  for (const Given& given : given_) {
    if (given.name == option) return given.value;
  }
  return std::nullopt;
}

}  // namespace tool
