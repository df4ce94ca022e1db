#include "Platform/Foundation/Internal/FileNames.h"

#include <algorithm>

#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

constexpr char16_t kEscape = 0xDC00;

// How many bytes the character has that the bytes begin with; 0 when they begin with none.
std::size_t characterLength(std::string_view bytes) {
  const auto first = static_cast<unsigned char>(bytes.front());
  const std::size_t length = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
  if (length < 2) return length;
  return length <= bytes.size() && textFromUtf8(bytes.substr(0, length)) ? length : 0;
}

bool isEscape(char16_t unit) { return unit >= kEscape + 0x80 && unit <= kEscape + 0xFF; }
bool isHighSurrogate(char16_t unit) { return (unit & 0xFC00U) == 0xD800U; }

}  // namespace

Text textFromFileName(std::string_view bytes) {
  if (auto text = textFromUtf8(bytes)) return *std::move(text);
  Text result;
  std::size_t good = 0;  // how many bytes before the present one are text
  const auto flush = [&](std::size_t end) {
    if (auto text = textFromUtf8(bytes.substr(end - good, good))) result.append(*text);
    good = 0;
  };
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t length = characterLength(bytes.substr(i));
    if (length == 0) {
      flush(i);
      result.append(static_cast<char16_t>(kEscape + static_cast<unsigned char>(bytes[i])));
    }
    good += length;
    i += std::max<std::size_t>(length, 1);
  }
  flush(bytes.size());
  return result;
}

std::optional<std::string> fileNameFromText(TextView text) {
  std::string bytes;
  std::size_t start = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == 0) return std::nullopt;
    if (!isEscape(text[i]) || (i > start && isHighSurrogate(text[i - 1]))) continue;
    bytes += utf8FromText(text.sub(start, i - start));
    bytes += static_cast<char>(text[i] - kEscape);
    start = i + 1;
  }
  bytes += utf8FromText(text.sub(start));
  return bytes;
}

}  // namespace brindle::internal
