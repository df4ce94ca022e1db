#include <Brindle/Platform/RelativePhrase.h>

#include "Platform/Foundation/Internal/RelativePhrases.h"

namespace brindle {

std::string relativePhrase(PhraseUnit unit, std::int64_t offset, std::string_view locale,
                           PhraseStyle style) {
  if (unit > PhraseUnit::year) return {};
  return internal::relativePhrase(locale, static_cast<internal::RelativeUnit>(unit), offset,
                                  style == PhraseStyle::everyday);
}

}  // namespace brindle
