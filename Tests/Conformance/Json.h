// Just enough of JSON (RFC 8259) to read what the answers are written in.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle::conformance {

struct Json {
  enum class Kind { null, boolean, number, string, array, object };

  Kind kind = Kind::null;
  bool truth = false;
  std::string text = {};  // of a string; of a number as it stands
  std::vector<Json> items = {};
  std::vector<std::pair<std::string, Json>> members = {};

  /// The member of that name, or null.
  [[nodiscard]] const Json* find(std::string_view name) const {
    for (const auto& [key, value] : members) {
      if (key == name) return &value;
    }
    return nullptr;
  }
};

/// Throws std::runtime_error for what is no JSON.
Json readJson(std::string_view text);

}  // namespace brindle::conformance
