#include "Platform/Foundation/Internal/TextUnicode.h"

#include <unicode/casemap.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace brindle::internal {
namespace {

// No piece and no mark lies below this: such units fold one by one.
constexpr char16_t kFirstMark = 0x300;

// ICU counts in 32 bits.
std::int32_t icuLength(std::size_t length) {
  if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
    throw std::length_error("text too long");
  }
  return static_cast<std::int32_t>(length);
}

// Calls an ICU function (target, capacity, error) -> length again with the room that it asks for.
template <class Function>
std::u16string icuResult(std::size_t expected, const Function& function) {
  std::u16string result(expected, u'\0');
  for (;;) {
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = function(result.data(), icuLength(result.size()), &error);
    if (error == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    if (U_FAILURE(error) && error != U_BUFFER_OVERFLOW_ERROR) {
      throw std::runtime_error(u_errorName(error));
    }
    result.resize(static_cast<std::size_t>(length));
    if (U_SUCCESS(error)) return result;
  }
}

const UNormalizer2* decomposer() {
  static const UNormalizer2* const shared = [] {
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* found = unorm2_getNFDInstance(&error);
    return U_SUCCESS(error) ? found : throw std::runtime_error(u_errorName(error));
  }();
  return shared;
}

std::u16string decomposed(std::u16string_view text) {
  return icuResult(text.size() + 8, [text](char16_t* target, std::int32_t room, UErrorCode* error) {
    return unorm2_normalize(decomposer(), text.data(), icuLength(text.size()), target, room, error);
  });
}

std::u16string caseFolded(std::u16string_view text) {
  return icuResult(text.size() + 8, [text](char16_t* target, std::int32_t room, UErrorCode* error) {
    return u_strFoldCase(target, room, text.data(), icuLength(text.size()), U_FOLD_CASE_DEFAULT,
                         error);
  });
}

std::u16string withoutMarks(std::u16string_view text) {
  std::u16string kept;
  for (std::size_t i = 0; i < text.size();) {
    const std::size_t start = i;
    UChar32 character;
    U16_NEXT(text.data(), i, text.size(), character);
    if (u_charType(character) != U_NON_SPACING_MARK) kept.append(text, start, i - start);
  }
  return kept;
}

// Most letters without case fold to themselves: not worth a call that makes strings.
bool foldsToItself(std::u16string_view text, TextFolding folding) {
  if (text.size() != 1 || !unorm2_isInert(decomposer(), text[0])) return false;
  return !folding.caseInsensitive || !u_hasBinaryProperty(text[0], UCHAR_CHANGES_WHEN_CASEFOLDED);
}

std::u16string fold(std::u16string_view text, TextFolding folding) {
  if (foldsToItself(text, folding)) return std::u16string(text);
  std::u16string folded(text);
  if (folding.canonical || folding.diacriticInsensitive) folded = decomposed(folded);
  if (folding.caseInsensitive) {
    folded = caseFolded(folded);
    if (folding.canonical || folding.diacriticInsensitive) folded = decomposed(folded);
  }
  return folding.diacriticInsensitive ? withoutMarks(folded) : folded;
}

char32_t characterAt(TextView text, std::size_t position, std::size_t& end) noexcept {
  const char16_t unit = text[position];
  end = position + 1;
  if (U16_IS_LEAD(unit) && end < text.size() && U16_IS_TRAIL(text[end])) {
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, text[end++]));
  }
  return unit;
}

template <class Map>
Text mapAscii(TextView text, const Map& map) {
  std::string bytes(text.bytes());
  for (char& byte : bytes) byte = static_cast<char>(map(static_cast<char16_t>(byte)));
  return Text::latin1(std::move(bytes));
}

using CaseFunction = std::int32_t (*)(char16_t*, std::int32_t, const char16_t*, std::int32_t,
                                      const char*, UErrorCode*);

Text mapCase(TextView text, CaseFunction function) {
  const std::u16string units = text.toUtf16();
  return Text::utf16(
      icuResult(units.size(), [&](char16_t* target, std::int32_t room, UErrorCode* error) {
        return function(target, room, units.data(), icuLength(units.size()), "", error);
      }));
}

std::u16string titleCased(std::u16string_view word) {
  return icuResult(word.size(), [word](char16_t* target, std::int32_t room, UErrorCode* error) {
    return icu::CaseMap::toTitle("", U_TITLECASE_WHOLE_STRING, nullptr, word.data(),
                                 icuLength(word.size()), target, room, nullptr, *error);
  });
}

struct CollatorCloser {
  void operator()(UCollator* collator) const noexcept { ucol_close(collator); }
};

// Opening one costs far more than comparing, and mostly one language is asked for.
UCollator* collatorFor(const std::string& locale, bool caseInsensitive) {
  struct Kept {
    std::string locale;
    bool caseInsensitive = false;
    std::unique_ptr<UCollator, CollatorCloser> collator;
  };
  thread_local Kept kept;
  if (kept.collator && kept.locale == locale && kept.caseInsensitive == caseInsensitive) {
    return kept.collator.get();
  }
  UErrorCode error = U_ZERO_ERROR;
  // An empty name would mean the host's language.
  std::unique_ptr<UCollator, CollatorCloser> collator(
      ucol_open(locale.empty() ? "root" : locale.c_str(), &error));
  if (U_FAILURE(error)) throw std::runtime_error(u_errorName(error));
  ucol_setStrength(collator.get(), caseInsensitive ? UCOL_SECONDARY : UCOL_TERTIARY);
  kept = {locale, caseInsensitive, std::move(collator)};
  return kept.collator.get();
}

}  // namespace

std::size_t foldingPieceEnd(TextView text, std::size_t position, TextFolding folding) {
  std::size_t end;
  const char32_t first = characterAt(text, position, end);
  if (!folding.canonical && !folding.diacriticInsensitive) return end;
  if (first < kFirstMark && (end == text.size() || text[end] < kFirstMark)) return end;
  while (end < text.size()) {
    std::size_t next;
    const auto character = static_cast<UChar32>(characterAt(text, end, next));
    if (unorm2_hasBoundaryBefore(decomposer(), character)) break;
    end = next;
  }
  return end;
}

bool isFoldingPieceStart(TextView text, std::size_t position, TextFolding folding) {
  const char16_t unit = text[position];
  if (position == 0 || unit < kFirstMark) return true;
  if (U16_IS_TRAIL(unit) && U16_IS_LEAD(text[position - 1])) return false;
  if (!folding.canonical && !folding.diacriticInsensitive) return true;
  std::size_t end;
  const auto character = static_cast<UChar32>(characterAt(text, position, end));
  return unorm2_hasBoundaryBefore(decomposer(), character) != 0;
}

void appendFolded(std::u16string& target, TextView pieces, TextFolding folding) {
  if (pieces.isAscii()) {
    pieces.visit([&](auto units) {
      for (const char16_t unit : units) {
        target.push_back(folding.caseInsensitive ? asciiLower(unit) : unit);
      }
    });
  } else if (pieces.isNarrow()) {
    target += fold(pieces.toUtf16(), folding);
  } else {
    target += fold(pieces.units(), folding);
  }
}

std::u16string foldedText(TextView text, TextFolding folding) {
  std::u16string folded;
  folded.reserve(text.size());
  appendFolded(folded, text, folding);
  return folded;
}

Text uppercaseText(TextView text) {
  if (text.isNarrow() && text.isAscii()) return mapAscii(text, asciiUpper);
  return mapCase(text, u_strToUpper);
}

Text lowercaseText(TextView text) {
  if (text.isNarrow() && text.isAscii()) return mapAscii(text, asciiLower);
  return mapCase(text, u_strToLower);
}

Text capitalizedText(TextView text) {
  const std::u16string units = text.toUtf16();
  const std::u16string_view all = units;
  std::u16string result;
  result.reserve(all.size());
  for (std::size_t i = 0; i < all.size();) {
    const bool space = isWhiteSpace(all[i]);
    const std::size_t start = i;
    while (i < all.size() && isWhiteSpace(all[i]) == space) ++i;
    const std::u16string_view part = all.substr(start, i - start);
    result += space ? std::u16string(part) : titleCased(part);
  }
  return Text::utf16(std::move(result));
}

int compareInLocale(TextView a, TextView b, const std::string& locale, bool caseInsensitive) {
  const std::u16string left = a.toUtf16();
  const std::u16string right = b.toUtf16();
  return ucol_strcoll(collatorFor(locale, caseInsensitive), left.data(), icuLength(left.size()),
                      right.data(), icuLength(right.size()));
}

bool isWhiteSpace(char32_t character) noexcept {
  if (character < 128) return character == ' ' || (character >= 9 && character <= 13);
  return u_isUWhiteSpace(static_cast<UChar32>(character)) != 0;
}

}  // namespace brindle::internal
