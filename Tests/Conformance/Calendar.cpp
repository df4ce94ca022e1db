#include <cmath>
#include <cstdlib>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

#include "Tests/Conformance/Report.h"
#include "Tests/Conformance/Table.h"

namespace brindle::conformance {
namespace {

/// A subclass's dates are worked out message by message.
class MessageRange : public Interface<MessageRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<MessageRange> classPair;
};
constexpr ClassDefinition kDefinition{.name = "MessageRange"};

}  // namespace

constinit ClassPair<MessageRange> MessageRange::classPair{kDefinition};

namespace {

enum Column {
  kZone = 1,
  kAnchor,
  kFirstWeekday,
  kUnit,
  kOffset,
  kOffsetUnit,
  kLength,
  kLengthUnit,
  kStart,
  kEnd,
  kFlags = 13,
  kFirstInstants = 14
};

long long number(const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); }
BDTimeUnit unit(const std::string& text) { return static_cast<BDTimeUnit>(number(text)); }

struct Ends {
  long long start;
  long long end;
};

// Where a day has no midnight it begins with its first instant, which stands in a column of its
// own.
Ends expectedEnds(const Row& row) {
  const std::string& other = row[kFirstInstants];
  if (row[kFlags] == "gap" && other.find(',') != std::string::npos) {
    return {number(other), number(other.substr(other.find(',') + 1))};
  }
  return {number(row[kStart]), number(row[kEnd])};
}

template <class Range>
std::string compare(const Row& row, const Ends& expected) {
  const NSDate anchor =
      NSDate::dateWithTimeIntervalSince1970(static_cast<double>(number(row[kAnchor])));
  const BDDateRange range = Range::class_()->dateRangeWithAnchor(
      anchor, unit(row[kUnit]), number(row[kOffset]), unit(row[kOffsetUnit]), number(row[kLength]),
      unit(row[kLengthUnit]));
  const BDDateInterval interval = range->interval();
  const Ends found{std::llround(range->start()->timeIntervalSince1970()),
                   std::llround(range->end()->timeIntervalSince1970())};
  using std::chrono::floor;
  using std::chrono::seconds;
  const Ends both{floor<seconds>(interval.start).time_since_epoch().count(),
                  floor<seconds>(interval.end).time_since_epoch().count()};
  for (const Ends& ends : {found, both}) {
    if (ends.start != expected.start || ends.end != expected.end) {
      return row[kZone] + " " + row[kFlags] + ": " + std::to_string(ends.start) + " to " +
             std::to_string(ends.end) + " instead of " + std::to_string(expected.start) + " to " +
             std::to_string(expected.end);
    }
  }
  return "";
}

std::string check(const Row& row) {
  const NSTimeZone zone = NSTimeZone::timeZoneWithName(NSString(row[kZone]));
  if (!zone) return "no zone " + row[kZone];
  NSTimeZone::setDefaultTimeZone(zone);
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  calendar->setFirstWeekday(static_cast<NSUInteger>(number(row[kFirstWeekday])));
  NSCalendar::setCurrentCalendar(calendar);
  const Ends expected = expectedEnds(row);
  std::string complaint = compare<BDDateRange>(row, expected);
  if (complaint.empty()) complaint = compare<MessageRange>(row, expected);
  return complaint;
}

}  // namespace

void checkCalendar(const std::string& folder, Report& report) {
  for (const Row& row : readTable(folder + "/calendar.tsv")) {
    report.note("calendar " + row[0], row.size() > kFirstInstants ? check(row) : "too few columns");
  }
  NSCalendar::setCurrentCalendar(nullptr);
  NSTimeZone::setDefaultTimeZone(nullptr);
  report.close("calendar.tsv");
}

}  // namespace brindle::conformance
