#include "Platform/Foundation/Internal/TextCompare.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle::internal {
namespace {

constexpr std::size_t kNone = std::u16string_view::npos;
constexpr char16_t kFirstNonAscii = 0x80;

TextFolding foldingFor(TextOptions options) noexcept {
  return {!options.literal, options.caseInsensitive,
          options.diacriticInsensitive && !options.literal};
}

int sign(std::strong_ordering order) noexcept { return order < 0 ? -1 : order > 0 ? 1 : 0; }

struct DigitRun {
  std::size_t start;  // of the first digit that counts
  std::size_t end;
};

DigitRun digitRun(TextView text, std::size_t position) noexcept {
  std::size_t end = position;
  while (end < text.size() && isAsciiDigit(text[end])) ++end;
  while (position < end && text[position] == '0') ++position;
  return {position, end};
}

int compareNumeric(TextView a, TextView b) noexcept {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (isAsciiDigit(a[i]) && isAsciiDigit(b[j])) {
      const DigitRun left = digitRun(a, i);
      const DigitRun right = digitRun(b, j);
      const std::size_t count = left.end - left.start;
      if (count != right.end - right.start) return count < right.end - right.start ? -1 : 1;
      const auto order = a.sub(left.start, count) <=> b.sub(right.start, count);
      if (order != 0) return sign(order);
      i = left.end;
      j = right.end;
    } else {
      if (a[i] != b[j]) return a[i] < b[j] ? -1 : 1;
      ++i;
      ++j;
    }
  }
  return sign(a.size() - i <=> b.size() - j);
}

int compareUnits(TextView a, TextView b, bool numeric) noexcept {
  return numeric ? compareNumeric(a, b) : sign(a <=> b);
}

// Both ASCII: what folding would answer, without making copies.
int compareIgnoringAsciiCase(std::string_view a, std::string_view b) noexcept {
  const std::size_t shared = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < shared; ++i) {
    const char16_t x = asciiLower(static_cast<unsigned char>(a[i]));
    const char16_t y = asciiLower(static_cast<unsigned char>(b[i]));
    if (x != y) return x < y ? -1 : 1;
  }
  return sign(a.size() <=> b.size());
}

int compareFolded(TextView a, TextView b, TextOptions options) {
  const TextFolding folding = foldingFor(options);
  if (a.isNarrow() && b.isNarrow() && a.isAscii() && b.isAscii()) {
    if (!options.caseInsensitive) return compareUnits(a, b, options.numeric);
    if (!options.numeric) return compareIgnoringAsciiCase(a.bytes(), b.bytes());
  }
  if (folding.isNone()) return compareUnits(a, b, options.numeric);
  const std::u16string left = foldedText(a, folding);
  const std::u16string right = foldedText(b, folding);
  return compareUnits(TextView::utf16(left), TextView::utf16(right), options.numeric);
}

std::optional<TextRange> matchFound(std::size_t location, std::size_t length) noexcept {
  if (location == kNone) return std::nullopt;
  return TextRange{location, length};
}

template <class View>
std::optional<TextRange> findUnits(View text, View needle, TextOptions options) noexcept {
  if (needle.size() > text.size()) return std::nullopt;
  const std::size_t last = text.size() - needle.size();
  if (options.anchored) {
    const std::size_t at = options.backwards ? last : 0;
    return matchFound(text.substr(at, needle.size()) == needle ? at : kNone, needle.size());
  }
  if (options.backwards) return matchFound(text.rfind(needle), needle.size());
  if constexpr (sizeof(text[0]) == 1) {
    const void* found = ::memmem(text.data(), text.size(), needle.data(), needle.size());
    if (found == nullptr) return std::nullopt;
    return TextRange{static_cast<std::size_t>(static_cast<const char*>(found) - text.data()),
                     needle.size()};
  } else {
    return matchFound(text.find(needle), needle.size());
  }
}

std::optional<TextRange> findLiteral(TextView text, TextView needle, TextOptions options) {
  if (text.isNarrow()) {
    if (needle.isNarrow()) return findUnits(text.bytes(), needle.bytes(), options);
    if (!needle.fitsLatin1()) return std::nullopt;
    const Text narrow(needle);
    return findUnits(text.bytes(), narrow.view().bytes(), options);
  }
  if (!needle.isNarrow()) return findUnits(text.units(), needle.units(), options);
  return findUnits(text.units(), std::u16string_view(needle.toUtf16()), options);
}

// Finds a folded needle in text that is folded as far as each attempt needs it.
class FoldedSearch {
 public:
  FoldedSearch(TextView text, TextView needle, TextOptions options)
      : text_(text), folding_(foldingFor(options)), needle_(foldedText(needle, folding_)) {}

  // A needle of marks alone folds to nothing when marks do not count.
  [[nodiscard]] bool isHopeless() const noexcept { return needle_.empty(); }

  std::optional<TextRange> first() {
    for (std::size_t at = 0; at < text_.size(); at = pieceEnd(at)) {
      if (const std::size_t end = matchEnd(at); end != kNone) return TextRange{at, end - at};
    }
    return std::nullopt;
  }

  std::optional<TextRange> last(bool anchored) {
    for (std::size_t at = text_.size(); at-- > 0;) {
      if (!isFoldingPieceStart(text_, at, folding_)) continue;
      const std::size_t end = matchEnd(at);
      if (end != kNone && (!anchored || end == text_.size())) return TextRange{at, end - at};
    }
    return std::nullopt;
  }

  std::optional<TextRange> atStart() {
    const std::size_t end = matchEnd(0);
    return end == kNone ? std::nullopt : std::optional(TextRange{0, end});
  }

 private:
  // Where the match that begins with the piece at `position` ends.
  std::size_t matchEnd(std::size_t position) {
    if (position >= text_.size() || isMismatch(text_[position])) return kNone;
    std::size_t matched = 0;
    while (position < text_.size() && matched < needle_.size()) {
      const std::size_t end = pieceEnd(position);
      if (end == position + 1 && text_[position] < kFirstNonAscii) {
        if (foldedAscii(text_[position]) != needle_[matched]) return kNone;
        ++matched;
      } else {
        folded_.clear();
        appendFolded(folded_, text_.sub(position, end - position), folding_);
        if (needle_.compare(matched, folded_.size(), folded_) != 0) return kNone;
        matched += folded_.size();
      }
      position = end;
    }
    return matched == needle_.size() ? position : kNone;
  }

  // Narrow text has no marks.
  [[nodiscard]] std::size_t pieceEnd(std::size_t position) const {
    return text_.isNarrow() ? position + 1 : foldingPieceEnd(text_, position, folding_);
  }

  [[nodiscard]] char16_t foldedAscii(char16_t unit) const noexcept {
    return folding_.caseInsensitive ? asciiLower(unit) : unit;
  }

  // Most positions are settled by one ASCII unit, whatever follows it.
  [[nodiscard]] bool isMismatch(char16_t unit) const noexcept {
    return unit < kFirstNonAscii && foldedAscii(unit) != needle_[0];
  }

  TextView text_;
  TextFolding folding_;
  std::u16string needle_;
  std::u16string folded_;
};

}  // namespace

int compareText(TextView a, TextView b, TextOptions options) {
  const int order = compareFolded(a, b, options);
  return order == 0 && options.forcedOrdering ? sign(a <=> b) : order;
}

std::optional<TextRange> findText(TextView text, TextView needle, TextOptions options) {
  if (needle.empty()) return std::nullopt;
  const TextFolding folding = foldingFor(options);
  // Below U+0100 there are no marks, and no two texts are equivalent.
  const bool unitsDecide = !folding.caseInsensitive && !folding.diacriticInsensitive &&
                           (!folding.canonical || (text.isNarrow() && needle.isNarrow()));
  if (unitsDecide) return findLiteral(text, needle, options);
  FoldedSearch search(text, needle, options);
  if (search.isHopeless()) return std::nullopt;
  if (options.backwards) return search.last(options.anchored);
  return options.anchored ? search.atStart() : search.first();
}

std::size_t replaceMatches(Text& text, TextRange range, TextView needle, TextView replacement,
                           TextOptions options) {
  const TextView all = text;
  const std::size_t rangeEnd = range.end();
  std::vector<TextRange> matches;
  while (const auto match = findText(all.sub(range), needle, options)) {
    matches.push_back({range.location + match->location, match->length});
    if (options.backwards) {
      range.length = match->location;
    } else {
      range = {matches.back().end(), rangeEnd - matches.back().end()};
    }
  }
  if (matches.empty()) return 0;
  if (options.backwards) std::reverse(matches.begin(), matches.end());
  Text result;
  std::size_t copied = 0;
  for (const TextRange match : matches) {
    result.append(all.sub(copied, match.location - copied));
    result.append(replacement);
    copied = match.end();
  }
  result.append(all.sub(copied));
  text = std::move(result);
  return matches.size();
}

}  // namespace brindle::internal
