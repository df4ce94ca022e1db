// Just enough JSON to write (RFC 8259).
#pragma once

#include <string>
#include <string_view>

namespace tool {

/// A text as a JSON string, quotes included. UTF-8 is passed through.
inline std::string jsonString(std::string_view text) {
  std::string json = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        json += "\\\"";
        break;
      case '\\':
        json += "\\\\";
        break;
      case '\n':
        json += "\\n";
        break;
      case '\t':
        json += "\\t";
        break;
      case '\r':
        json += "\\r";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          constexpr std::string_view kDigits = "0123456789abcdef";
          json += "\\u00";
          json += kDigits[static_cast<unsigned char>(c) >> 4U];
          json += kDigits[static_cast<unsigned char>(c) & 0xFU];
        } else {
          json += c;
        }
    }
  }
  return json + "\"";
}

}  // namespace tool
