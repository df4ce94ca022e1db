// What the units of BDDateRange share.
#pragma once

#include <Brindle/BDDateRange.h>

namespace brindle::internal {

// BDDateRangeCalculation.cpp
NSDate roundedAnchor(const BDDateRange& range);
NSDate addToDate(std::int64_t count, BDTimeUnit unit, const NSDate& date);
id calculateDateRange(const BDDateRange& range,
                      const Block<id(const NSDate&, const NSDate&)>& block);
NSDate startOfDateRange(const BDDateRange& range);
NSDate endOfDateRange(const BDDateRange& range);
/// Remembers the methods that the dates are worked out by. Called once, when the library is loaded.
void watchDateRangeMethods();

// BDDateRangeNames.cpp
BDDateRange dateRangeNamed(BDNamedRange name);
BDNamedRange nameOfDateRange(const BDDateRange& range);

// BDDateRangeDescriptions.cpp
NSString singularNameOfUnit(const Class& receiver, BDTimeUnit unit);
NSString pluralNameOfUnit(const Class& receiver, BDTimeUnit unit);
NSString descriptionOfOffset(const ClassOf<BDDateRange>& receiver, BDTimeUnit unit,
                             std::int64_t offset);

}  // namespace brindle::internal
