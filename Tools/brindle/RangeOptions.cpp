#include "RangeOptions.h"

#include <charconv>
#include <cstdint>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

#include "Iso8601.h"

namespace tool {
namespace {

using namespace brindle;

constexpr double kDaySeconds = 86400;

constexpr RangeName kNames[] = {
    {BDNamedRangeAll, "all-time"},         {BDNamedRangeThisWeek, "this-week"},
    {BDNamedRangeThisMonth, "this-month"}, {BDNamedRangeThisQuarter, "this-quarter"},
    {BDNamedRangeThisYear, "this-year"},   {BDNamedRangeLastWeek, "last-week"},
    {BDNamedRangeLastMonth, "last-month"}, {BDNamedRangeLastQuarter, "last-quarter"},
    {BDNamedRangeLastYear, "last-year"},   {BDNamedRangePastWeek, "past-week"},
    {BDNamedRangePastMonth, "past-month"}, {BDNamedRangePastQuarter, "past-quarter"},
    {BDNamedRangePastYear, "past-year"},
};

constexpr std::string_view kUnits[] = {"day", "week", "month", "quarter", "year"};

BDTimeUnit unitFrom(std::string_view text) {
  for (std::size_t i = 0; i < std::size(kUnits); ++i) {
    const std::string_view unit = kUnits[i];
    if (text == unit ||
        (text.size() == unit.size() + 1 && text.starts_with(unit) && text.back() == 's')) {
      return static_cast<BDTimeUnit>(i);
    }
  }
  throw UsageError("'" + std::string(text) +
                   "' is no unit: day, week, month, quarter or year is wanted");
}

NSUInteger weekdayFrom(std::string_view text) {
  constexpr std::string_view kDays[] = {"sunday",   "monday", "tuesday", "wednesday",
                                        "thursday", "friday", "saturday"};
  for (NSUInteger i = 0; i < std::size(kDays); ++i) {
    if (text == kDays[i] || text == kDays[i].substr(0, 3) || text == std::to_string(i + 1)) {
      return i + 1;
    }
  }
  throw UsageError("'" + std::string(text) +
                   "' is no weekday: sunday (1) to saturday (7) is wanted");
}

/// A local time as an instant: the first of two; in a gap, as far behind its start as the text
/// says.
double instantOfLocal(double local) {
  const NSTimeZone zone = NSTimeZone::defaultTimeZone();
  const auto offsetAt = [&zone](double instant) {
    return static_cast<double>(
        zone->secondsFromGMTForDate(NSDate::dateWithTimeIntervalSince1970(instant)));
  };
  const double before = local - offsetAt(local - kDaySeconds);
  const double after = local - offsetAt(local + kDaySeconds);
  const bool afterHolds = after + offsetAt(after) == local;
  return before + offsetAt(before) == local || !afterHolds ? before : after;
}

}  // namespace

std::span<const RangeName> rangeNames() { return kNames; }

std::string_view nameOfRange(BDNamedRange range) {
  for (const RangeName& known : kNames) {
    if (known.range == range) return known.name;
  }
  return {};
}

Amount amountFrom(std::string_view what, std::string_view text) {
  const std::string_view whole = text;
  if (text.starts_with('+')) text.remove_prefix(1);
  std::int64_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error == std::errc::result_out_of_range) {
    throw UsageError("the number in '" + std::string(whole) + "' has more than 64 bits");
  }
  if (error != std::errc()) {
    throw UsageError(std::string(what) + " wants a number and a unit, such as '-1 week', not '" +
                     std::string(whole) + "'");
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  while (text.starts_with(' ')) text.remove_prefix(1);
  if (text.empty()) {
    throw UsageError(std::string(what) + " wants a unit behind the number: '" + std::string(whole) +
                     " days'");
  }
  return {count, unitFrom(text)};
}

std::string_view nameOfUnit(BDTimeUnit unit) { return kUnits[unit]; }

void applySettings(const Words& words) {
  if (const auto name = words.value("--zone")) {
    const NSTimeZone zone = NSTimeZone::timeZoneWithName(NSString(*name));
    if (!zone)
      throw UsageError("there is no time zone '" + std::string(*name) + "' on this system");
    NSTimeZone::setDefaultTimeZone(zone);
  }
  if (const auto day = words.value("--first-weekday")) {
    const NSCalendar calendar = NSCalendar::currentCalendar();
    calendar->setFirstWeekday(weekdayFrom(*day));
    NSCalendar::setCurrentCalendar(calendar);
  }
  if (const auto locale = words.value("--locale")) {
    if (locale->empty()) throw UsageError("--locale wants a language, such as pl or pt-BR");
    NSLocale::setPreferredLanguages({NSString(*locale)});
  }
}

NSDate anchorFrom(const Words& words) {
  const auto text = words.value("--anchor");
  if (!text || *text == "now") return nullptr;
  const auto parsed = parseIso(*text);
  if (!parsed) {
    throw UsageError("'" + std::string(*text) +
                     "' is no date: 2026-05-15 or 2026-05-15T13:45:00+02:00 is wanted");
  }
  const double utc =
      static_cast<double>(parsed->days) * kDaySeconds + static_cast<double>(parsed->seconds);
  if (parsed->offset) {
    return NSDate::dateWithTimeIntervalSince1970(utc - static_cast<double>(*parsed->offset));
  }
  return NSDate::dateWithTimeIntervalSince1970(instantOfLocal(utc));
}

bool describesRange(const Words& words) {
  return words.has("--unit") || words.has("--offset") || words.has("--length");
}

BDDateRange rangeFrom(const Words& words) {
  const BDTimeUnit unit = unitFrom(words.value("--unit").value_or("day"));
  // No offset is none of the anchor's unit, as in the named ranges.
  const auto offsetText = words.value("--offset");
  const Amount offset = offsetText ? amountFrom("--offset", *offsetText) : Amount{0, unit};
  const Amount length = amountFrom("--length", words.value("--length").value_or("0 days"));
  return BDDateRange::dateRangeWithAnchor(anchorFrom(words), unit, offset.count, offset.unit,
                                          length.count, length.unit);
}

}  // namespace tool
