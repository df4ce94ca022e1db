#include "Platform/Foundation/Internal/CharacterSet.h"

#include <unicode/uset.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

namespace brindle::internal {
namespace {

constexpr char32_t kLast = 0x10FFFF;

const char16_t* patternOf(CharacterClass characters) {
  switch (characters) {
    case CharacterClass::whitespace:
      return u"[[:Zs:]\\u0009]";
    case CharacterClass::whitespaceAndNewline:
      return u"[[:Z:]\\u0009-\\u000D\\u0085]";
    case CharacterClass::newline:
      return u"[\\u000A-\\u000D\\u0085\\u2028\\u2029]";
    case CharacterClass::decimalDigit:
      return u"[:Nd:]";
    case CharacterClass::letter:
      return u"[[:L:][:M:]]";
    case CharacterClass::lowercaseLetter:
      return u"[:Ll:]";
    case CharacterClass::uppercaseLetter:
      return u"[[:Lu:][:Lt:]]";
    case CharacterClass::alphanumeric:
      return u"[[:L:][:M:][:N:]]";
    case CharacterClass::punctuation:
      return u"[:P:]";
    case CharacterClass::symbol:
      return u"[:S:]";
    case CharacterClass::control:
      return u"[[:Cc:][:Cf:]]";
  }
  return u"[]";
}

struct SetCloser {
  void operator()(USet* set) const noexcept { uset_close(set); }
};

// The character that begins, or ends, at a place in a text, and how many units it has.
struct Character {
  char32_t value;
  std::size_t size;
};

Character characterAt(TextView text, std::size_t start) noexcept {
  const char16_t unit = text[start];
  if (U16_IS_LEAD(unit) && start + 1 < text.size() && U16_IS_TRAIL(text[start + 1])) {
    return {static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, text[start + 1])), 2};
  }
  return {unit, 1};
}

Character characterBefore(TextView text, std::size_t end) noexcept {
  const char16_t unit = text[end - 1];
  if (U16_IS_TRAIL(unit) && end >= 2 && U16_IS_LEAD(text[end - 2])) {
    return {static_cast<char32_t>(U16_GET_SUPPLEMENTARY(text[end - 2], unit)), 2};
  }
  return {unit, 1};
}

}  // namespace

CharacterSet::CharacterSet(std::vector<Range> ranges) {
  std::erase_if(ranges, [](Range r) { return r.first > r.last || r.first > kLast; });
  std::sort(ranges.begin(), ranges.end(), [](Range a, Range b) { return a.first < b.first; });
  for (const Range range : ranges) {
    const char32_t last = std::min(range.last, kLast);
    if (!ranges_.empty() && range.first <= ranges_.back().last + 1) {
      ranges_.back().last = std::max(ranges_.back().last, last);
    } else {
      ranges_.push_back({range.first, last});
    }
  }
  for (char32_t c = 0; c < kAscii; ++c) ascii_[c] = containsInRanges(c);
}

CharacterSet CharacterSet::of(TextView text) {
  std::vector<Range> ranges;
  for (std::size_t i = 0; i < text.size();) {
    const Character character = characterAt(text, i);
    ranges.push_back({character.value, character.value});
    i += character.size;
  }
  return CharacterSet(std::move(ranges));
}

CharacterSet CharacterSet::of(CharacterClass characters) {
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<USet, SetCloser> set(uset_openPattern(patternOf(characters), -1, &error));
  if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
  std::vector<Range> ranges;
  const std::int32_t count = uset_getItemCount(set.get());
  for (std::int32_t i = 0; i < count; ++i) {
    UChar32 first = 0;
    UChar32 last = 0;
    uset_getItem(set.get(), i, &first, &last, nullptr, 0, &error);
    ranges.push_back({static_cast<char32_t>(first), static_cast<char32_t>(last)});
  }
  return CharacterSet(std::move(ranges));
}

CharacterSet CharacterSet::inverted() const {
  std::vector<Range> ranges;
  char32_t next = 0;
  for (const Range range : ranges_) {
    if (range.first > next) ranges.push_back({next, range.first - 1});
    next = range.last + 1;
  }
  if (next <= kLast) ranges.push_back({next, kLast});
  return CharacterSet(std::move(ranges));
}

const CharacterSet::Range* CharacterSet::rangeFrom(char32_t character) const noexcept {
  const auto after =
      std::upper_bound(ranges_.begin(), ranges_.end(), character,
                       [](char32_t c, const Range& range) { return c < range.first; });
  return after == ranges_.begin() ? nullptr : &*std::prev(after);
}

bool CharacterSet::containsInRanges(char32_t character) const noexcept {
  const Range* range = rangeFrom(character);
  return range != nullptr && character <= range->last;
}

bool CharacterSet::isSupersetOf(const CharacterSet& other) const noexcept {
  return std::all_of(other.ranges_.begin(), other.ranges_.end(), [this](Range wanted) {
    const Range* range = rangeFrom(wanted.first);
    return range != nullptr && wanted.last <= range->last;
  });
}

std::size_t CharacterSet::hash() const noexcept {
  std::size_t hash = ranges_.size();
  for (const Range range : ranges_) {
    hash = (hash ^ (std::size_t{range.first} << 21 | range.last)) * 0x9E3779B97F4A7C15u;
  }
  return hash ^ hash >> 32;
}

std::optional<TextRange> CharacterSet::find(TextView text, bool backwards, bool anchored) const {
  if (backwards) {
    for (std::size_t end = text.size(); end > 0;) {
      const Character character = characterBefore(text, end);
      end -= character.size;
      if (contains(character.value)) return TextRange{end, character.size};
      if (anchored) break;
    }
    return std::nullopt;
  }
  for (std::size_t i = 0; i < text.size();) {
    const Character character = characterAt(text, i);
    if (contains(character.value)) return TextRange{i, character.size};
    if (anchored) break;
    i += character.size;
  }
  return std::nullopt;
}

std::size_t CharacterSet::span(TextView text) const {
  std::size_t end = 0;
  while (end < text.size()) {
    const Character character = characterAt(text, end);
    if (!contains(character.value)) break;
    end += character.size;
  }
  return end;
}

TextRange CharacterSet::trimmed(TextView text) const {
  const std::size_t start = span(text);
  std::size_t end = text.size();
  while (end > start) {
    const Character character = characterBefore(text, end);
    if (!contains(character.value)) break;
    end -= character.size;
  }
  return {start, end - start};
}

}  // namespace brindle::internal
