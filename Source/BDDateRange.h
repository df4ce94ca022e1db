// Date ranges relative to a moment: this week, last quarter, the seven days before today.
//
// A range is not two fixed dates but the recipe for them: an anchor (a date, or none for "now"), an
// offset and a length, each counted in calendar units. The anchor is rounded down to the start of
// its unit, the offset leads to the first date, the length from there to the second; `start` and
// `end` are the earlier and the later of the two, both at the start of a day. `end` is exclusive.
//
//   BDDateRange month = BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisMonth);
//   std::cout << month->start() << " to " << month->end() << '\n';
//
// Rounding uses the user's calendar, zone and first weekday (see NSCalendar::currentCalendar),
// adding a Gregorian calendar in the same zone; fields carry leniently, so 31 January plus one
// month is 2 or 3 March. Where a day has no local midnight it starts with its first instant, where
// it has two with the first of them. Dates before 15 October 1582 are counted in the Julian
// calendar.
//
// A range is a mutable value. Reading one from several threads is safe while none changes it; only
// `anchor` may be read while another thread sets it.
#pragma once

#include <chrono>
#include <cstdint>

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSCoder.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSSet.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

/// A calendar unit. The numbers stand in archives and never change.
enum BDTimeUnit : std::int32_t {
  BDTimeUnitDay = 0,
  BDTimeUnitWeek = 1,  // 7 days; as an anchor unit it starts at the first weekday
  BDTimeUnitMonth = 2,
  BDTimeUnitQuarter = 3,  // 3 months; January, April, July, October
  BDTimeUnitYear = 4,
};

/// An everyday period, as an integer that a user interface can store.
enum BDNamedRange : std::int32_t {
  BDNamedRangeAll = 0,
  BDNamedRangeThisWeek = 16,
  BDNamedRangeThisMonth = 17,
  BDNamedRangeThisQuarter = 18,
  BDNamedRangeThisYear = 19,
  BDNamedRangeLastWeek = 32,
  BDNamedRangeLastMonth = 33,
  BDNamedRangeLastQuarter = 34,
  BDNamedRangeLastYear = 35,
  BDNamedRangePastWeek = 48,  // the seven days before today
  BDNamedRangePastMonth = 49,
  BDNamedRangePastQuarter = 50,
  BDNamedRangePastYear = 51,
  BDNamedRangeNone = 255,  // not a named range
};

/// Both ends of a range, worked out from one reading of "now". Half-open: `end` is not part of it.
/// Milliseconds reach every date a range can have; dates lie on whole seconds.
/// Compare with other milliseconds or coarser: the nanoseconds of a system clock do not reach every
/// date, and overflow.
struct BDDateInterval {
  std::chrono::sys_time<std::chrono::milliseconds> start;
  std::chrono::sys_time<std::chrono::milliseconds> end;

  /// Whether the time is in the range: `interval.contains(std::chrono::system_clock::now())`.
  template <class Duration>
  [[nodiscard]] bool contains(std::chrono::sys_time<Duration> time) const {
    const auto cut = std::chrono::floor<std::chrono::milliseconds>(time);
    return start <= cut && cut < end;
  }
};

class BDDateRange : public Interface<BDDateRange, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_EXPORT static ClassPair<BDDateRange> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// A range of the receiving class, in days, from the start of the anchor's day.
    Self dateRangeWithAnchor(const NSDate& anchor, std::int64_t offset, std::int64_t length) const {
      return send<"dateRangeWithAnchor:offset:length:", Self>(*this, anchor, offset, length);
    }
    /// A range of the receiving class. Units are not checked here.
    Self dateRangeWithAnchor(const NSDate& anchor, BDTimeUnit anchorUnit, std::int64_t offset,
                             BDTimeUnit offsetUnit, std::int64_t length,
                             BDTimeUnit lengthUnit) const {
      return send<"dateRangeWithAnchor:unit:offset:unit:length:unit:", Self>(
          *this, anchor, anchorUnit, offset, offsetUnit, length, lengthUnit);
    }
    /// The keys that `start` depends on: all six properties.
    NSSet keyPathsForValuesAffectingStart() const {
      return send<"keyPathsForValuesAffectingStart", NSSet>(*this);
    }
    /// What the class answers for `start`.
    NSSet keyPathsForValuesAffectingEnd() const {
      return send<"keyPathsForValuesAffectingEnd", NSSet>(*this);
    }
    /// A plain BDDateRange, whatever the receiving class; nil for BDNamedRangeNone. Raises
    /// BDInvalidArgumentException for a number that is no named range.
    BDDateRange dateRangeWithNamedRange(BDNamedRange range) const {
      return send<"dateRangeWithNamedRange:", BDDateRange>(*this, range);
    }
    /// The named range that has exactly these six values, else BDNamedRangeNone; also for nil.
    BDNamedRange namedRangeFrom(const BDDateRange& range) const {
      return send<"namedRangeFrom:", BDNamedRange>(*this, range);
    }
    /// The word for one of a unit, and for any other count, in the user's language: "day", "days".
    /// They are the forms that descriptionForUnit:offset: needs behind a number. Looked up at each
    /// call in the library's own bundle; the English word where there is no other. Raise
    /// BDInternalInconsistencyException for a number that is no unit.
    NSString nameForSingularUnit(BDTimeUnit unit) const {
      return send<"nameForSingularUnit:", NSString>(*this, unit);
    }
    NSString nameForPluralUnit(BDTimeUnit unit) const {
      return send<"nameForPluralUnit:", NSString>(*this, unit);
    }
    /// How far away something is, in the user's language: "3 weeks ago", "1 day from now", "this
    /// quarter". The unit's word is asked of the receiving class. The number is the absolute value
    /// of the offset's low 32 bits (-2147483648 stays negative), the direction that of the whole
    /// offset. One plural serves all numbers; relativePhrase in <Brindle/BDRelativePhrases.h>
    /// knows each language's own. Raises as the words do.
    NSString descriptionForUnit(BDTimeUnit unit, std::int64_t offset) const {
      return send<"descriptionForUnit:offset:", NSString>(*this, unit, offset);
    }
  };

  // The same, sent to BDDateRange itself.
  static BDDateRange dateRangeWithAnchor(const NSDate& anchor, std::int64_t offset,
                                         std::int64_t length) {
    return class_()->dateRangeWithAnchor(anchor, offset, length);
  }
  static BDDateRange dateRangeWithAnchor(const NSDate& anchor, BDTimeUnit anchorUnit,
                                         std::int64_t offset, BDTimeUnit offsetUnit,
                                         std::int64_t length, BDTimeUnit lengthUnit) {
    return class_()->dateRangeWithAnchor(anchor, anchorUnit, offset, offsetUnit, length,
                                         lengthUnit);
  }
  static BDDateRange dateRangeWithNamedRange(BDNamedRange range) {
    return class_()->dateRangeWithNamedRange(range);
  }
  static BDNamedRange namedRangeFrom(const BDDateRange& range) {
    return class_()->namedRangeFrom(range);
  }
  static NSString nameForSingularUnit(BDTimeUnit unit) {
    return class_()->nameForSingularUnit(unit);
  }
  static NSString nameForPluralUnit(BDTimeUnit unit) { return class_()->nameForPluralUnit(unit); }
  static NSString descriptionForUnit(BDTimeUnit unit, std::int64_t offset) {
    return class_()->descriptionForUnit(unit, offset);
  }

  /// The moment the range is relative to; nil means now, read anew at each evaluation. Atomic.
  NSDate anchor() const { return send<"anchor", NSDate>(*this); }
  void setAnchor(const NSDate& anchor) const { send<"setAnchor:">(*this, anchor); }
  /// How far the first date lies from the rounded anchor, in `offsetUnit`s; negative is earlier.
  std::int64_t offset() const { return send<"offset", std::int64_t>(*this); }
  void setOffset(std::int64_t offset) const { send<"setOffset:">(*this, offset); }
  /// How far the second date lies from the first, in `lengthUnit`s; may be negative.
  std::int64_t length() const { return send<"length", std::int64_t>(*this); }
  void setLength(std::int64_t length) const { send<"setLength:">(*this, length); }
  /// The units. Any number is stored; an invalid anchor unit raises when the range is evaluated, an
  /// invalid offset or length unit adds nothing.
  BDTimeUnit anchorUnit() const { return send<"anchorUnit", BDTimeUnit>(*this); }
  void setAnchorUnit(BDTimeUnit unit) const { send<"setAnchorUnit:">(*this, unit); }
  BDTimeUnit offsetUnit() const { return send<"offsetUnit", BDTimeUnit>(*this); }
  void setOffsetUnit(BDTimeUnit unit) const { send<"setOffsetUnit:">(*this, unit); }
  BDTimeUnit lengthUnit() const { return send<"lengthUnit", BDTimeUnit>(*this); }
  void setLengthUnit(BDTimeUnit unit) const { send<"setLengthUnit:">(*this, unit); }

  /// The earlier and the later date of the range, worked out at each call. Raise
  /// BDInternalInconsistencyException when the anchor unit is invalid.
  NSDate start() const { return send<"start", NSDate>(*this); }
  NSDate end() const { return send<"end", NSDate>(*this); }

  /// Calls the block with the first and the second date, in that order whichever is earlier, and
  /// answers what it answers.
  id calculate(const BlockArg<id(const NSDate&, const NSDate&)>& block) const {
    return send<"calculate:", id>(*this, block);
  }
  /// The date moved by `count` units and rounded down to the start of its day. An invalid unit
  /// moves nothing; counts wrap in 64 bits. A year below 0 gives the fields year 0, month 0, day 0:
  /// 30 November 2 BC in the Julian calendar.
  NSDate add(std::int64_t count, BDTimeUnit unit, const NSDate& date) const {
    return send<"add:in:to:", NSDate>(*this, count, unit, date);
  }
  /// The anchor, or now, rounded down to the start of its unit in the user's calendar.
  NSDate _anchor() const { return send<"_anchor", NSDate>(*this); }  // NOLINT: the platform's name

  /// Both ends from one reading of now: what a program should use that wants both. Where a subclass
  /// or a swizzle has its own `start` or `end`, what they answer.
  BRINDLE_EXPORT BDDateInterval interval() const;

  /// Whether all six values are equal; ranges of the same dates built differently are not.
  bool isEqualToDateRange(const BDDateRange& other) const {
    return send<"isEqualToDateRange:", bool>(*this, other);
  }
};

}  // namespace brindle
