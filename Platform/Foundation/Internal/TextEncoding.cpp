#include "Platform/Foundation/Internal/TextEncoding.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

namespace brindle::internal {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kInvalid = 0xFFFFFFFF;
constexpr bool kHostIsBigEndian = std::endian::native == std::endian::big;

struct ByteRange {
  unsigned char low;
  unsigned char high;
};

// How many bytes follow a first byte, or -1 for what begins no character.
int followers(unsigned char first) noexcept {
  if (first < 0x80) return 0;
  if (first < 0xC2) return -1;
  if (first < 0xE0) return 1;
  if (first < 0xF0) return 2;
  return first < 0xF5 ? 3 : -1;
}

// The second byte's range keeps out overlong forms, surrogates and what is above U+10FFFF.
ByteRange secondByte(unsigned char first) noexcept {
  switch (first) {
    case 0xE0:
      return {0xA0, 0xBF};
    case 0xED:
      return {0x80, 0x9F};
    case 0xF0:
      return {0x90, 0xBF};
    case 0xF4:
      return {0x80, 0x8F};
    default:
      return {0x80, 0xBF};
  }
}

// Reads one character, or the longest start of one (kInvalid, at least one byte).
char32_t nextUtf8(const unsigned char*& at, const unsigned char* end) noexcept {
  const unsigned char first = *at++;
  const int more = followers(first);
  if (more == 0) return first;
  if (more < 0) return kInvalid;
  char32_t character = first & (0x3Fu >> more);
  ByteRange range = secondByte(first);
  for (int i = 0; i < more; ++i) {
    if (at == end || *at < range.low || *at > range.high) return kInvalid;
    character = (character << 6) | (*at++ & 0x3Fu);
    range = {0x80, 0xBF};
  }
  return character;
}

// Calls `emit` for every character of UTF-8; false at a mistake unless mistakes are replaced.
template <class Emit>
bool forEachCharacter(std::string_view bytes, OnInvalid onInvalid, const Emit& emit) {
  const auto* at = reinterpret_cast<const unsigned char*>(bytes.data());
  const auto* const end = at + bytes.size();
  while (at != end) {
    char32_t character = nextUtf8(at, end);
    if (character == kInvalid) {
      if (onInvalid == OnInvalid::refuse) return false;
      character = kReplacement;
    }
    emit(character);
  }
  return true;
}

constexpr bool isLead(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xD800; }
constexpr bool isTrail(char32_t unit) noexcept { return (unit & 0xFFFFFC00) == 0xDC00; }

// Calls `emit` for every character of UTF-16, U+FFFD for lone surrogates.
template <class Unit, class Emit>
void forEachCharacter(std::span<const Unit> units, const Emit& emit) {
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    if (isLead(character) && i + 1 < units.size() && isTrail(units[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10) + (units[++i] - 0xDC00u);
    } else if (isLead(character) || isTrail(character)) {
      character = kReplacement;
    }
    emit(character);
  }
}

constexpr std::size_t utf8Size(char32_t character) noexcept {
  if (character < 0x80) return 1;
  if (character < 0x800) return 2;
  return character < 0x10000 ? 3 : 4;
}

void writeUtf8(char*& target, char32_t character) noexcept {
  const auto put = [&target](char32_t byte) { *target++ = static_cast<char>(byte); };
  const std::size_t size = utf8Size(character);
  if (size == 1) return put(character);
  put((0xF00u >> size & 0xFF) | character >> (6 * (size - 1)));
  for (std::size_t left = size - 1; left-- > 0;) put(0x80 | (character >> (6 * left) & 0x3F));
}

std::optional<Text> decodeUtf16(std::string_view bytes, bool bigEndian) {
  if (bytes.size() % 2 != 0) return std::nullopt;
  std::u16string units(bytes.size() / 2, u'\0');
  std::memcpy(units.data(), bytes.data(), bytes.size());
  if (bigEndian != kHostIsBigEndian) {
    for (char16_t& unit : units) unit = static_cast<char16_t>(unit << 8 | unit >> 8);
  }
  return Text::utf16(std::move(units));
}

std::string encodeUtf16(TextView text, bool bigEndian, bool mark) {
  std::u16string units;
  units.reserve(text.size() + 1);
  if (mark) units.push_back(0xFEFF);
  text.visit([&units](auto from) {
    forEachCharacter(from, [&units](char32_t character) {
      if (character < 0x10000) return units.push_back(static_cast<char16_t>(character));
      units.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
    });
  });
  if (bigEndian != kHostIsBigEndian) {
    for (char16_t& unit : units) unit = static_cast<char16_t>(unit << 8 | unit >> 8);
  }
  return std::string(reinterpret_cast<const char*>(units.data()), 2 * units.size());
}

std::optional<std::string> encodeBytes(TextView text, char32_t limit, bool lossy) {
  std::string bytes;
  bytes.reserve(text.size());
  bool whole = true;
  text.visit([&](auto units) {
    forEachCharacter(units, [&](char32_t character) {
      whole = whole && character < limit;
      bytes.push_back(character < limit ? static_cast<char>(character) : '?');
    });
  });
  if (!whole && !lossy) return std::nullopt;
  return bytes;
}

}  // namespace

std::optional<Text> textFromUtf8(std::string_view bytes, OnInvalid onInvalid) {
  if (TextView::latin1(bytes).isAscii()) return Text::latin1(std::string(bytes));
  // Counted first: the storage is as large as the text, not as the bytes allow.
  std::size_t count = 0;
  char32_t all = 0;
  const bool valid = forEachCharacter(bytes, onInvalid, [&](char32_t character) {
    count += character < 0x10000 ? 1 : 2;
    all |= character;
  });
  if (!valid) return std::nullopt;
  if (all < 256) {
    std::string narrow;
    narrow.reserve(count);
    forEachCharacter(bytes, onInvalid, [&narrow](char32_t character) {
      narrow.push_back(static_cast<char>(character));
    });
    return Text::latin1(std::move(narrow));
  }
  std::u16string wide;
  wide.reserve(count);
  forEachCharacter(bytes, onInvalid, [&wide](char32_t character) {
    if (character < 0x10000) return wide.push_back(static_cast<char16_t>(character));
    wide.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
    wide.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
  });
  return Text::utf16(std::move(wide));
}

Text textFromUtf8Replacing(std::string_view bytes) {
  return *textFromUtf8(bytes, OnInvalid::replace);
}

std::optional<Text> decodeText(std::string_view bytes, TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::ascii:
      if (!TextView::latin1(bytes).isAscii()) return std::nullopt;
      return Text::latin1(std::string(bytes));
    case TextEncoding::utf8:
      if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
      return textFromUtf8(bytes);
    case TextEncoding::latin1:
      return Text::latin1(std::string(bytes));
    case TextEncoding::utf16:
      if (bytes.starts_with("\xFE\xFF")) return decodeUtf16(bytes.substr(2), true);
      if (bytes.starts_with("\xFF\xFE")) return decodeUtf16(bytes.substr(2), false);
      return decodeUtf16(bytes, kHostIsBigEndian);
    case TextEncoding::utf16BigEndian:
      return decodeUtf16(bytes, true);
    case TextEncoding::utf16LittleEndian:
      return decodeUtf16(bytes, false);
  }
  return std::nullopt;
}

std::string_view withoutCutCharacter(std::string_view bytes) noexcept {
  for (std::size_t back = 1; back <= 3 && back <= bytes.size(); ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if ((byte & 0xC0) == 0x80) continue;
    const bool isCut = followers(byte) >= static_cast<int>(back);
    return isCut ? bytes.substr(0, bytes.size() - back) : bytes;
  }
  return bytes;
}

std::string utf8FromText(TextView text) {
  if (text.isNarrow() && text.isAscii()) return std::string(text.bytes());
  std::size_t size = 0;
  text.visit([&size](auto units) {
    forEachCharacter(units, [&size](char32_t character) { size += utf8Size(character); });
  });
  std::string bytes(size, '\0');
  char* target = bytes.data();
  text.visit([&target](auto units) {
    forEachCharacter(units, [&target](char32_t character) { writeUtf8(target, character); });
  });
  return bytes;
}

std::optional<std::string> encodeText(TextView text, TextEncoding encoding, bool lossy) {
  switch (encoding) {
    case TextEncoding::ascii:
      return encodeBytes(text, 0x80, lossy);
    case TextEncoding::utf8:
      return utf8FromText(text);
    case TextEncoding::latin1:
      return encodeBytes(text, 0x100, lossy);
    case TextEncoding::utf16:
      return encodeUtf16(text, kHostIsBigEndian, true);
    case TextEncoding::utf16BigEndian:
      return encodeUtf16(text, true, false);
    case TextEncoding::utf16LittleEndian:
      return encodeUtf16(text, false, false);
  }
  return std::nullopt;
}

}  // namespace brindle::internal
