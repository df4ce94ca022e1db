// The words of the units, and phrases such as "3 weeks ago". Every word is looked up at each call.
#include <cstdint>
#include <iterator>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>

#include "Source/Internal/DateRange.h"
#include "Source/Internal/LocalizedWords.h"

namespace brindle::internal {
namespace {

/// The keys of a unit's words, which are the English words.
struct UnitWords {
  NSString singular;
  NSString plural;
  NSString zeroOffset;
};

constinit const UnitWords kWords[] = {
    {"day"_ns, "days"_ns, "today"_ns},          {"week"_ns, "weeks"_ns, "this week"_ns},
    {"month"_ns, "months"_ns, "this month"_ns}, {"quarter"_ns, "quarters"_ns, "this quarter"_ns},
    {"year"_ns, "years"_ns, "this year"_ns},
};

const UnitWords& wordsOf(BDTimeUnit unit) {
  const auto index = static_cast<std::uint32_t>(unit);
  if (index >= std::size(kWords)) {
    NSException::raise(BDInternalInconsistencyException, "Invalid time unit."_ns);
  }
  return kWords[index];
}

/// The absolute value of the low half. The least number has none and stays as it is.
std::int32_t countOf(std::int64_t offset) {
  const auto low = static_cast<std::uint32_t>(offset);
  const bool isNegative = static_cast<std::int32_t>(low) < 0;
  return static_cast<std::int32_t>(isNegative ? 0U - low : low);
}

}  // namespace

NSString singularNameOfUnit(const Class& receiver, BDTimeUnit unit) {
  return localizedString(receiver, wordsOf(unit).singular);
}

NSString pluralNameOfUnit(const Class& receiver, BDTimeUnit unit) {
  return localizedString(receiver, wordsOf(unit).plural);
}

NSString descriptionOfOffset(const ClassOf<BDDateRange>& receiver, BDTimeUnit unit,
                             std::int64_t offset) {
  const std::int32_t count = countOf(offset);
  if (count == 0) return localizedString(receiver, wordsOf(unit).zeroOffset);
  // Asked of the receiver, so that a subclass has its own words.
  const NSString word =
      count == 1 ? receiver->nameForSingularUnit(unit) : receiver->nameForPluralUnit(unit);
  const NSString direction = localizedString(receiver, offset > 0 ? "from now"_ns : "ago"_ns);
  const NSString format = localizedString(receiver, "%i %@ %@"_ns);
  return NSString::stringWithFormat(format, count, word, direction);
}

}  // namespace brindle::internal
