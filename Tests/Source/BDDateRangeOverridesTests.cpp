// What clients may change in ranges: methods that are replaced, overridden, asked in a stated
// order.
#include <Brindle/BDDateRange.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Source/DateRangeTesting.h"

using namespace brindle;

namespace {

constexpr int kMonday = 2;
constexpr NSUInteger kTuesday = 3;

Class metaOf(Class cls) { return object_getClass(cls); }

/// A method with another implementation, to the end of the scope.
class Replacement {
 public:
  Replacement(Class cls, SEL selector, const TypedImplementation& body)
      : method_(class_getInstanceMethod(cls, selector)),
        previous_(method_setImplementation(method_, body.implementation)) {}
  ~Replacement() { method_setImplementation(method_, previous_); }
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

 private:
  Method method_;
  IMP previous_;
};

/// All that a range answers of its dates.
struct Answers {
  NSDate start;
  NSDate end;
  BDDateInterval interval;

  explicit Answers(const BDDateRange& range)
      : start(range->start()), end(range->end()), interval(range->interval()) {}

  /// "2024-05-14 2024-05-16", when `interval` says the same.
  [[nodiscard]] std::string text() const {
    const auto differs = [](const NSDate& date, const auto& time) {
      return static_cast<double>(time.time_since_epoch().count()) !=
             date->timeIntervalSince1970() * 1000;
    };
    std::string days = fieldsOfDate(start).substr(0, 10) + " " + fieldsOfDate(end).substr(0, 10);
    if (differs(start, interval.start) || differs(end, interval.end)) days += " interval differs";
    return days;
  }
};

/// The second day of a Wednesday's week, two days long.
BDDateRange someRange() {
  return BDDateRange::dateRangeWithAnchor(dateOf(2024, 5, 15, 13, 45), BDTimeUnitWeek, 1,
                                          BDTimeUnitDay, 2, BDTimeUnitDay);
}

struct Case {
  Class cls;
  SEL selector;
  TypedImplementation body;
  const char* expected;
};

/// What `someRange` answers with one method of BDDateRange changed.
std::vector<Case> ownMethods() {
  const Class cls = BDDateRange::class_();
  using Dates = Block<id(const NSDate&, const NSDate&)>;
  return {
      {cls, selector<"anchor">(),
       implementation([](const BDDateRange&) -> NSDate { return dateOf(2020, 6, 17); }),
       "2020-06-16 2020-06-18"},
      {cls, selector<"offset">(),
       implementation([](const BDDateRange&) -> std::int64_t { return 3; }),
       "2024-05-16 2024-05-18"},
      {cls, selector<"length">(),
       implementation([](const BDDateRange&) -> std::int64_t { return -1; }),
       "2024-05-13 2024-05-14"},
      {cls, selector<"anchorUnit">(),
       implementation([](const BDDateRange&) { return BDTimeUnitMonth; }), "2024-05-02 2024-05-04"},
      {cls, selector<"offsetUnit">(),
       implementation([](const BDDateRange&) { return BDTimeUnitYear; }), "2025-05-13 2025-05-15"},
      {cls, selector<"lengthUnit">(),
       implementation([](const BDDateRange&) { return BDTimeUnitYear; }), "2024-05-14 2026-05-14"},
      {cls, selector<"_anchor">(),
       implementation([](const BDDateRange&) -> NSDate { return dateOf(1999, 12, 31); }),
       "2000-01-01 2000-01-03"},
      {cls, selector<"add:in:to:">(),
       implementation([](const BDDateRange&, std::int64_t count, BDTimeUnit,
                         const NSDate&) -> NSDate { return dateOf(2010, 1, count); }),
       "2010-01-01 2010-01-02"},
      {cls, selector<"calculate:">(),
       implementation([](const BDDateRange&, const Dates& block) -> id {
         return block(dateOf(2001, 1, 2), dateOf(2001, 1, 1));
       }),
       "2001-01-01 2001-01-02"},
      {cls, selector<"calculate:">(),
       implementation([](const BDDateRange&, const Dates&) -> id { return dateOf(2002, 2, 2); }),
       "2002-02-02 2002-02-02"},
      {cls, selector<"start">(),
       implementation([](const BDDateRange&) -> NSDate { return dateOf(1990, 1, 1); }),
       "1990-01-01 2024-05-16"},
      {cls, selector<"end">(),
       implementation([](const BDDateRange&) -> NSDate { return dateOf(2090, 1, 1); }),
       "2024-05-14 2090-01-01"},
  };
}

/// The same for the platform's classes.
std::vector<Case> platformMethods() {
  const Class calendar = NSCalendar::class_();
  const Class parts = NSDateComponents::class_();
  return {
      {metaOf(calendar), selector<"currentCalendar">(),
       implementation([](const Class&) -> NSCalendar {
         const NSCalendar own =
             NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
         own->setFirstWeekday(kTuesday);
         return own;
       }),
       "2024-05-15 2024-05-17"},
      {calendar, selector<"firstWeekday">(),
       implementation([](const NSCalendar&) -> NSUInteger { return kTuesday; }),
       "2024-05-15 2024-05-17"},
      {calendar, selector<"components:fromDate:">(),
       implementation([](const NSCalendar&, NSCalendarUnit, const NSDate&) {
         NSDateComponents thursday = NSDateComponents::alloc()->init();
         thursday->setYear(2000);
         thursday->setMonth(2);
         thursday->setDay(10);
         thursday->setWeekday(5);
         return thursday;
       }),
       "2000-02-11 2000-02-12"},
      {calendar, selector<"dateFromComponents:">(),
       implementation([](const NSCalendar&, const NSDateComponents&) {
         return NSDate::dateWithTimeIntervalSinceReferenceDate(0);
       }),
       "2001-01-01 2001-01-01"},
      {parts, selector<"setDay:">(), implementation([](const NSDateComponents&, NSInteger) {}),
       "2024-05-01 2024-05-01"},
      {parts, selector<"year">(),
       implementation([](const NSDateComponents&) -> NSInteger { return 2000; }),
       "2000-05-14 2000-05-16"},
      {parts, selector<"weekday">(),
       implementation([](const NSDateComponents&) -> NSInteger { return kMonday; }),
       "2024-05-16 2024-05-18"},
      {NSDate::class_(), selector<"timeIntervalSince1970">(),
       implementation([](const NSDate&) -> NSTimeInterval { return 0; }), "1970-01-02 1970-01-03"},
      {NSDate::class_(), selector<"earlierDate:">(),
       implementation([](const NSDate&, const NSDate& other) -> NSDate { return other; }),
       "2024-05-16 2024-05-16"},
      {NSDate::class_(), selector<"laterDate:">(),
       implementation([](const NSDate& self, const NSDate&) -> NSDate { return self; }),
       "2024-05-14 2024-05-14"},
  };
}

}  // namespace

// Ranges take the short way to their dates until the first method is replaced, and never again
// after it. So that each replacement is the first one, each is made in a process of its own.
template <class Body>
void inOwnProcess(Body body) {
  EXPECT_EXIT(
      {
        body();
        std::fflush(stdout);
        std::_Exit(testing::Test::HasFailure() ? 1 : 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST(BDDateRangeOverrides, AReplacedMethodActsUntilItIsPutBack) {
  const DateSettings settings("Europe/Berlin", kMonday);
  const BDDateRange range = someRange();
  std::vector<Case> cases = ownMethods();
  for (const Case& c : platformMethods()) cases.push_back(c);
  for (const Case& c : cases) {
    SCOPED_TRACE(sel_getName(c.selector));
    inOwnProcess([&] {
      EXPECT_EQ(Answers(range).text(), "2024-05-14 2024-05-16");
      const Answers changed = [&] {
        const Replacement replacement(c.cls, c.selector, c.body);
        return Answers(range);
      }();
      EXPECT_EQ(changed.text(), c.expected);
      EXPECT_EQ(Answers(range).text(), "2024-05-14 2024-05-16");
    });
  }
}

TEST(BDDateRangeOverrides, AMethodOfASubclassActs) {
  const DateSettings settings("Europe/Berlin", kMonday);
  int number = 0;
  for (const Case& c : ownMethods()) {
    SCOPED_TRACE(sel_getName(c.selector));
    const std::string name = "RangeWithOwnMethod" + std::to_string(number++);
    const Class cls = objc_allocateClassPair(BDDateRange::class_(), name.c_str(), 0);
    class_addMethod(cls, c.selector, c.body.implementation, c.body.types);
    objc_registerClassPair(cls);
    const BDDateRange range = someRange();
    EXPECT_EQ(Answers(range).text(), "2024-05-14 2024-05-16");
    object_setClass(range, cls);
    EXPECT_EQ(Answers(range).text(), c.expected);
  }
}

TEST(BDDateRangeOverrides, NowIsReadByAMessageAtEachCall) {
  const DateSettings settings("Europe/Berlin", kMonday);
  inOwnProcess([] {
    static int day = 1;
    const BDDateRange today = BDDateRange::dateRangeWithAnchor(nullptr, 0, 1);
    const Replacement now(
        metaOf(NSDate::class_()), selector<"date">(),
        implementation([](const Class&) { return dateOf(2024, 5, day++, 23, 59); }));
    EXPECT_EQ(fieldsOfDate(today->start()), "2024-05-01 00:00:00");
    EXPECT_EQ(fieldsOfDate(today->end()), "2024-05-03 00:00:00");
    // Once for both ends.
    const BDDateInterval both = today->interval();
    EXPECT_EQ(both.end - both.start, std::chrono::hours(24));
    EXPECT_EQ(day, 4);
  });
}

TEST(BDDateRangeOverrides, IntervalsHoldAnyDate) {
  const Class cls = objc_allocateClassPair(BDDateRange::class_(), "RangeWithoutEnds", 0);
  const auto start = implementation([](const BDDateRange&) {
    return NSDate::dateWithTimeIntervalSinceReferenceDate(std::nan(""));
  });
  const auto end = implementation(
      [](const BDDateRange&) { return NSDate::dateWithTimeIntervalSinceReferenceDate(HUGE_VAL); });
  class_addMethod(cls, selector<"start">(), start.implementation, start.types);
  class_addMethod(cls, selector<"end">(), end.implementation, end.types);
  objc_registerClassPair(cls);
  const BDDateRange range = someRange();
  object_setClass(range, cls);
  EXPECT_EQ(range->interval().start.time_since_epoch().count(), 0);
  EXPECT_EQ(range->interval().end.time_since_epoch().count(), 9000000000000000000);
}

// --- The order in which a range asks and sets ----------------------------------------------------

/// A range that notes what it is asked for.
class AskedRange : public Interface<AskedRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<AskedRange> classPair;
};

namespace {

std::string asked;

template <FixedString Name, class R>
constexpr MethodDefinition noting() {
  return method<Name>([](const AskedRange& self) -> R {
    asked += std::string(sel_getName(selector<Name>())) + " ";
    return sendSuper<AskedRange, Name, R>(self);
  });
}

constexpr MethodDefinition kAskedMethods[] = {
    noting<"anchor", NSDate>(),         noting<"offset", std::int64_t>(),
    noting<"length", std::int64_t>(),   noting<"anchorUnit", BDTimeUnit>(),
    noting<"offsetUnit", BDTimeUnit>(), noting<"lengthUnit", BDTimeUnit>(),
};
constexpr ClassDefinition kAskedDefinition{.name = "AskedRange", .methods = kAskedMethods};

}  // namespace

constinit ClassPair<AskedRange> AskedRange::classPair{kAskedDefinition};

TEST(BDDateRangeOverrides, CopyingAsksForTheValuesInOrder) {
  const AskedRange range = AskedRange::alloc()->init();
  asked.clear();
  const id copy = send<"copy", id>(range);
  EXPECT_EQ(asked, "anchor offset length anchorUnit offsetUnit lengthUnit ");
}

TEST(BDDateRangeOverrides, EqualityStopsAtTheFirstDifference) {
  const NSDate date = NSDate::date();
  const BDTimeUnit day = BDTimeUnitDay;
  const BDTimeUnit week = BDTimeUnitWeek;
  const AskedRange range = AskedRange::class_()->dateRangeWithAnchor(date, day, 1, day, 2, day);
  const std::pair<BDDateRange, const char*> cases[] = {
      {range, ""},
      {BDDateRange::dateRangeWithAnchor(nullptr, week, 9, week, 9, week), "anchor "},
      {BDDateRange::dateRangeWithAnchor(date, week, 9, week, 9, week), "anchor offset "},
      {BDDateRange::dateRangeWithAnchor(date, week, 1, week, 9, week), "anchor offset length "},
      {BDDateRange::dateRangeWithAnchor(date, week, 1, week, 2, week),
       "anchor offset length anchorUnit "},
      {BDDateRange::dateRangeWithAnchor(date, day, 1, week, 2, week),
       "anchor offset length anchorUnit offsetUnit "},
      {BDDateRange::dateRangeWithAnchor(date, day, 1, day, 2, week),
       "anchor offset length anchorUnit offsetUnit lengthUnit "},
  };
  for (const auto& [other, expected] : cases) {
    asked.clear();
    EXPECT_EQ(range->isEqualToDateRange(other), other == range);
    EXPECT_EQ(asked, expected);
  }
}

TEST(BDDateRangeOverrides, NamedRangesAreMadeByTheConstructor) {
  inOwnProcess([] {
    const Replacement replacement(
        metaOf(BDDateRange::class_()),
        selector<"dateRangeWithAnchor:unit:offset:unit:length:unit:">(),
        implementation([](const ClassOf<BDDateRange>&, const NSDate&, BDTimeUnit, std::int64_t,
                          BDTimeUnit, std::int64_t, BDTimeUnit) -> BDDateRange {
          return BDDateRange::dateRangeWithAnchor(nullptr, 77, 88);
        }));
    EXPECT_EQ(BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisWeek)->offset(), 77);
    EXPECT_EQ(AskedRange::class_()->dateRangeWithNamedRange(BDNamedRangeAll)->length(), 88);
  });
}
