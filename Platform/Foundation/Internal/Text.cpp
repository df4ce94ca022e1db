#include "Platform/Foundation/Internal/Text.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace brindle::internal {
namespace {

constexpr std::uint64_t kAsciiMask8 = 0x8080808080808080u;
constexpr std::uint64_t kAsciiMask16 = 0xFF80FF80FF80FF80u;
constexpr std::uint64_t kLatin1Mask16 = 0xFF00FF00FF00FF00u;

// Whether no unit has a bit of the mask, eight bytes at a time.
template <class Unit>
bool hasNone(std::span<const Unit> units, std::uint64_t mask) noexcept {
  constexpr std::size_t kStep = 8 / sizeof(Unit);
  std::size_t i = 0;
  for (; i + kStep <= units.size(); i += kStep) {
    std::uint64_t word;
    std::memcpy(&word, units.data() + i, 8);
    if ((word & mask) != 0) return false;
  }
  for (; i < units.size(); ++i) {
    if ((units[i] & static_cast<Unit>(mask)) != 0) return false;
  }
  return true;
}

__extension__ using Wide = unsigned __int128;

std::uint64_t mix(std::uint64_t a, std::uint64_t b) noexcept {
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

// Up to eight units that are known to be below 256, as the bytes of a word: the same word for
// both storages.
template <class Unit>
std::uint64_t loadNarrow(const Unit* units, std::size_t count) noexcept {
  std::uint64_t word = 0;
  if constexpr (sizeof(Unit) == 1 && std::endian::native == std::endian::little) {
    std::memcpy(&word, units, count);
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      word |= static_cast<std::uint64_t>(units[i] & 0xFF) << (8 * i);
    }
  }
  return word;
}

template <class Unit>
std::uint64_t hashNarrow(const Unit* units, std::size_t count, std::uint64_t seed) noexcept {
  constexpr std::uint64_t kFirst = 0xA0761D6478BD642Fu;
  constexpr std::uint64_t kSecond = 0xE7037ED1A0B428DBu;
  seed ^= kFirst ^ count;
  std::size_t left = count;
  for (; left > 16; left -= 16, units += 16) {
    seed = mix(loadNarrow(units, 8) ^ kSecond, loadNarrow(units + 8, 8) ^ seed);
  }
  const std::size_t head = std::min<std::size_t>(left, 8);
  const std::uint64_t a = loadNarrow(units, head);
  const std::uint64_t b = loadNarrow(units + head, left - head);
  return mix(kSecond ^ count, mix(a ^ kSecond, b ^ seed));
}

}  // namespace

void TextView::copyTo(char16_t* target) const noexcept {
  visit([target](auto units) { std::copy(units.begin(), units.end(), target); });
}

std::u16string TextView::toUtf16() const {
  return visit([](auto units) { return std::u16string(units.begin(), units.end()); });
}

bool TextView::isAscii() const noexcept {
  return visit([](auto units) {
    return hasNone(units, sizeof(units[0]) == 1 ? kAsciiMask8 : kAsciiMask16);
  });
}

bool TextView::fitsLatin1() const noexcept {
  return narrow_ || hasNone(std::span<const char16_t>(units_), kLatin1Mask16);
}

std::size_t TextView::hash() const noexcept {
  if (narrow_) {
    return hashNarrow(reinterpret_cast<const unsigned char*>(bytes_.data()), bytes_.size(), 0);
  }
  if (fitsLatin1()) return hashNarrow(units_.data(), units_.size(), 0);
  constexpr std::uint64_t kWideSeed = 0x8EBC6AF09C88C6E3u;
  return hashNarrow(reinterpret_cast<const unsigned char*>(units_.data()), 2 * units_.size(),
                    kWideSeed);
}

bool TextView::haveEqualUnits(TextView a, TextView b) noexcept {
  if (!a.narrow_ && !b.narrow_) return a.units_ == b.units_;
  return a.visit([b](auto left) {
    return b.visit([left](auto right) {
      return std::equal(left.begin(), left.end(), right.begin(), right.end());
    });
  });
}

std::strong_ordering operator<=>(TextView a, TextView b) noexcept {
  return a.visit([b](auto left) {
    return b.visit([left](auto right) {
      return std::lexicographical_compare_three_way(
          left.begin(), left.end(), right.begin(), right.end(),
          [](char16_t x, char16_t y) -> std::strong_ordering { return x <=> y; });
    });
  });
}

Text::Text(TextView text) {
  if (text.isNarrow()) {
    storage_.emplace<std::string>(text.bytes());
  } else if (text.fitsLatin1()) {
    storage_.emplace<std::string>(text.units().begin(), text.units().end());
  } else {
    storage_.emplace<std::u16string>(text.units());
  }
}

Text Text::latin1(std::string bytes) noexcept {
  Text text;
  text.storage_ = std::move(bytes);
  return text;
}

Text Text::utf16(std::u16string units) {
  if (TextView::utf16(units).fitsLatin1()) return Text(TextView::utf16(units));
  Text text;
  text.storage_ = std::move(units);
  return text;
}

void Text::reserve(std::size_t count) {
  std::visit([count](auto& storage) { storage.reserve(count); }, storage_);
}

void Text::append(char16_t unit) { append(1, unit); }

void Text::append(std::size_t count, char16_t unit) {
  auto* bytes = std::get_if<std::string>(&storage_);
  if (bytes != nullptr && unit < 256) {
    bytes->append(count, static_cast<char>(unit));
  } else {
    widen(count).append(count, unit);
  }
}

void Text::replace(TextRange range, TextView text) {
  if (auto* bytes = std::get_if<std::string>(&storage_)) {
    if (text.isNarrow()) {
      bytes->replace(range.location, range.length, text.bytes());
      return;
    }
    if (text.fitsLatin1()) {
      replace(range, Text(text));
      return;
    }
  }
  // A part of this text has this text's width, so what is widened here is never `text` itself.
  std::u16string& units = widen(text.size());
  if (!text.isNarrow()) {
    units.replace(range.location, range.length, text.units());
    return;
  }
  const auto first = units.begin() + static_cast<std::ptrdiff_t>(range.location);
  const auto* from = reinterpret_cast<const unsigned char*>(text.bytes().data());
  units.replace(first, first + static_cast<std::ptrdiff_t>(range.length), from, from + text.size());
}

std::u16string& Text::widen(std::size_t room) {
  if (auto* units = std::get_if<std::u16string>(&storage_)) return *units;
  const TextView old = view();
  std::u16string wide;
  wide.reserve(old.size() + room);
  wide.resize(old.size());
  old.copyTo(wide.data());
  return storage_.emplace<std::u16string>(std::move(wide));
}

}  // namespace brindle::internal
