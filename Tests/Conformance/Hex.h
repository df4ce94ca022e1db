// How the answers write bytes.
#pragma once

#include <string>
#include <string_view>

namespace brindle::conformance {

/// Two lower-case digits a byte.
inline std::string hexOf(std::string_view bytes) {
  std::string text;
  constexpr char kDigits[] = "0123456789abcdef";
  for (const char c : bytes) {
    text += kDigits[static_cast<unsigned char>(c) >> 4U];
    text += kDigits[static_cast<unsigned char>(c) & 15U];
  }
  return text;
}

}  // namespace brindle::conformance
