// The named ranges: one table, read in both directions.
#include <algorithm>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>

#include "Source/Internal/DateRange.h"

namespace brindle::internal {
namespace {

struct NamedRange {
  BDNamedRange name;
  BDTimeUnit anchorUnit;
  std::int64_t offset;
  BDTimeUnit offsetUnit;
  std::int64_t length;
  BDTimeUnit lengthUnit;
};

constexpr NamedRange thisOne(BDNamedRange name, BDTimeUnit unit) {
  return {name, unit, 0, unit, 1, unit};
}
constexpr NamedRange lastOne(BDNamedRange name, BDTimeUnit unit) {
  return {name, unit, -1, unit, 1, unit};
}
constexpr NamedRange pastOne(BDNamedRange name, BDTimeUnit unit) {
  return {name, BDTimeUnitDay, -1, unit, 1, unit};
}

// In the order in which a range is compared with them.
constexpr NamedRange kNamedRanges[] = {
    {BDNamedRangeAll, BDTimeUnitDay, -100000, BDTimeUnitYear, 200000, BDTimeUnitYear},
    thisOne(BDNamedRangeThisWeek, BDTimeUnitWeek),
    thisOne(BDNamedRangeThisMonth, BDTimeUnitMonth),
    thisOne(BDNamedRangeThisQuarter, BDTimeUnitQuarter),
    thisOne(BDNamedRangeThisYear, BDTimeUnitYear),
    lastOne(BDNamedRangeLastWeek, BDTimeUnitWeek),
    lastOne(BDNamedRangeLastMonth, BDTimeUnitMonth),
    lastOne(BDNamedRangeLastQuarter, BDTimeUnitQuarter),
    lastOne(BDNamedRangeLastYear, BDTimeUnitYear),
    pastOne(BDNamedRangePastWeek, BDTimeUnitWeek),
    pastOne(BDNamedRangePastMonth, BDTimeUnitMonth),
    pastOne(BDNamedRangePastQuarter, BDTimeUnitQuarter),
    pastOne(BDNamedRangePastYear, BDTimeUnitYear),
};

}  // namespace

BDDateRange dateRangeNamed(BDNamedRange name) {
  if (name == BDNamedRangeNone) return nullptr;
  const auto* row = std::find_if(std::begin(kNamedRanges), std::end(kNamedRanges),
                                 [name](const NamedRange& r) { return r.name == name; });
  if (row == std::end(kNamedRanges)) {
    NSException::raise(BDInvalidArgumentException, "Invalid named range %i"_ns,
                       static_cast<std::int32_t>(name));
  }
  return BDDateRange::dateRangeWithAnchor(nullptr, row->anchorUnit, row->offset, row->offsetUnit,
                                          row->length, row->lengthUnit);
}

BDNamedRange nameOfDateRange(const BDDateRange& range) {
  // Nil answers zero for everything, which is no row.
  if (range->anchor()) return BDNamedRangeNone;
  const BDTimeUnit anchorUnit = range->anchorUnit();
  const std::int64_t offset = range->offset();
  const BDTimeUnit offsetUnit = range->offsetUnit();
  const std::int64_t length = range->length();
  const BDTimeUnit lengthUnit = range->lengthUnit();
  for (const NamedRange& row : kNamedRanges) {
    if (anchorUnit == row.anchorUnit && offset == row.offset && offsetUnit == row.offsetUnit &&
        length == row.length && lengthUnit == row.lengthUnit) {
      return row.name;
    }
  }
  return BDNamedRangeNone;
}

}  // namespace brindle::internal
