// Order and search. Unless `literal` is asked for, canonically equivalent characters are equal: a
// letter with its accent in one unit is equal to the letter and the accent in two, and a letter
// alone is not found where an accent follows it.
#pragma once

#include <optional>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

struct TextOptions {
  bool caseInsensitive = false;
  bool literal = false;               // Unit by unit.
  bool backwards = false;             // The last match instead of the first.
  bool anchored = false;              // Only at the start; only at the end when backwards.
  bool numeric = false;               // Runs of ASCII digits by value; for comparing only.
  bool diacriticInsensitive = false;  // Marks do not count; not together with `literal`.
  bool forcedOrdering = false;        // Texts that differ in any unit are never equal.
};

/// -1, 0 or 1: whether `a` comes before `b`, equals it or comes after it, in no language's order.
int compareText(TextView a, TextView b, TextOptions options = {});

/// Where `needle` is in `text`; nothing when it is not, or when it is empty. The match may be of
/// another length than the needle.
std::optional<TextRange> findText(TextView text, TextView needle, TextOptions options = {});

/// `text` with every match in `range` replaced, from the start on, or from the end when backwards.
/// Answers how many there were.
std::size_t replaceMatches(Text& text, TextRange range, TextView needle, TextView replacement,
                           TextOptions options = {});

}  // namespace brindle::internal
