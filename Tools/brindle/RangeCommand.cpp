// `brindle range` and `brindle recognise`.
#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

#include "Command.h"
#include "Iso8601.h"
#include "Json.h"
#include "RangeOptions.h"

namespace tool {
namespace {

using namespace brindle;

constexpr std::string_view kRangeHelp =
    R"(usage: brindle range NAME [SETTINGS]
       brindle range --all [SETTINGS]
       brindle range [--anchor DATE] [--unit UNIT] [--offset AMOUNT] [--length AMOUNT] [SETTINGS]

Prints a range of dates. Its end is not part of it: it is where the next one starts.

  NAME             all-time, this-week, this-month, this-quarter, this-year, last-week, ...,
                   past-week (the seven days before today), ..., past-year
  --all            every named range, as a table
  --anchor DATE    the moment the range is relative to: 2026-05-15, 2026-05-15T13:45,
                   2026-05-15T13:45:00Z, or now (the default). Also for named ranges.
  --unit UNIT      the anchor is rounded down to the start of its day (the default), week, month,
                   quarter or year
  --offset AMOUNT  from there to the first date, such as "-1 week" or 3months; 0 of --unit by default
  --length AMOUNT  from the first date to the second; 0 days by default

Settings:
  --zone ZONE      a zone of the system, such as Europe/Paris; the environment's by default
  --first-weekday DAY
                   sunday to saturday, or 1 to 7; the environment's by default
  --locale LOCALE  the language of the phrase, such as pl or pt-BR; the environment's by default
  --json           one JSON object (with --all, an array): name, start, end, interval, startSeconds
                   and endSeconds (since 1970), phrase

Intervals are written as in ISO 8601: in UTC where the zone had an offset with seconds. Dates before
15 October 1582 are counted in the Julian calendar, but ISO 8601 writes them in the Gregorian one.
The phrase tells the offset alone: how far the first date lies from the rounded anchor.
)";

constexpr std::string_view kRecogniseHelp =
    R"(usage: brindle recognise [--anchor DATE] [--unit UNIT] [--offset AMOUNT] [--length AMOUNT] [--json]

Prints the name of the named range that has exactly these parts, and ends with 0; prints "none" and
ends with 1 when there is none. A range with an anchor is never a named one.
`brindle range --help` explains the parts.
)";

constexpr Option kRangeOptions[] = {kAnchorOption, kUnitOption, kOffsetOption,
                                    kLengthOption, kZoneOption, kFirstWeekdayOption,
                                    kLocaleOption, kJsonOption, {"--all", false}};
constexpr Option kRecogniseOptions[] = {kAnchorOption, kUnitOption, kOffsetOption, kLengthOption,
                                        kJsonOption};

/// A range as it is printed.
struct Row {
  std::string name;
  std::string start;
  std::string end;
  std::string interval;
  std::int64_t startSeconds;
  std::int64_t endSeconds;
  std::string phrase;
};

std::int64_t secondsOf(std::chrono::sys_time<std::chrono::milliseconds> time) {
  return std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
}

std::int64_t offsetAt(std::int64_t seconds) {
  return NSTimeZone::defaultTimeZone()->secondsFromGMTForDate(
      NSDate::dateWithTimeIntervalSince1970(static_cast<double>(seconds)));
}

Row rowOf(std::string name, const BDDateRange& range) {
  const BDDateInterval both = range->interval();
  const std::int64_t start = secondsOf(both.start);
  const std::int64_t end = secondsOf(both.end);
  const std::int64_t startOffset = offsetAt(start);
  const std::int64_t endOffset = offsetAt(end);
  return {std::move(name),
          isoDate(start, startOffset),
          isoDate(end, endOffset),
          isoInstant(start, startOffset) + "/" + isoInstant(end, endOffset),
          start,
          end,
          std::string(BDDateRange::descriptionForUnit(range->offsetUnit(), range->offset()))};
}

void printJson(const Row& row, std::string_view indent) {
  std::cout << indent << "{\"name\": " << (row.name.empty() ? "null" : jsonString(row.name))
            << ", \"start\": " << jsonString(row.start) << ", \"end\": " << jsonString(row.end)
            << ", \"interval\": " << jsonString(row.interval)
            << ", \"startSeconds\": " << row.startSeconds << ", \"endSeconds\": " << row.endSeconds
            << ", \"phrase\": " << jsonString(row.phrase) << "}";
}

void printOne(const Row& row, bool json) {
  if (json) {
    printJson(row, "");
    std::cout << '\n';
    return;
  }
  if (!row.name.empty()) std::cout << "name      " << row.name << '\n';
  std::cout << "start     " << row.start << "\nend       " << row.end << "\ninterval  "
            << row.interval << "\nphrase    " << row.phrase << '\n';
}

void printTable(const std::vector<Row>& rows, bool json) {
  if (json) {
    std::cout << "[\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
      printJson(rows[i], "  ");
      std::cout << (i + 1 < rows.size() ? ",\n" : "\n");
    }
    std::cout << "]\n";
    return;
  }
  std::size_t widest = 0;
  for (const Row& row : rows) widest = std::max(widest, row.interval.size());
  const int width = static_cast<int>(widest) + 2;
  std::cout << std::left << std::setw(14) << "name" << std::setw(13) << "start" << std::setw(15)
            << "end" << std::setw(width) << "interval"
            << "phrase\n";
  for (const Row& row : rows) {
    std::cout << std::setw(14) << row.name << std::setw(13) << row.start << std::setw(15) << row.end
              << std::setw(width) << row.interval << row.phrase << '\n';
  }
}

BDDateRange namedRange(std::string_view name, const NSDate& anchor) {
  for (const RangeName& known : rangeNames()) {
    if (known.name != name) continue;
    const BDDateRange range = BDDateRange::dateRangeWithNamedRange(known.range);
    range->setAnchor(anchor);
    return range;
  }
  throw UsageError("there is no range '" + std::string(name) + "'");
}

int runRange(std::span<const std::string_view> given) {
  const Words words(given, kRangeOptions);
  const bool parts = describesRange(words);
  const bool all = words.has("--all");
  if (words.rest().size() > 1) {
    throw UsageError("one name at a time: what is '" + std::string(words.rest()[1]) + "'?");
  }
  if ((parts ? 1U : 0U) + (all ? 1U : 0U) + words.rest().size() != 1 &&
      !(words.rest().empty() && !all && words.has("--anchor"))) {
    throw UsageError("a name, --all, or the parts of a range are wanted, and only one of them");
  }
  applySettings(words);
  const bool json = words.has("--json");
  const NSDate anchor = anchorFrom(words);
  if (all) {
    // One moment for the whole table, so that its rows agree also at midnight.
    const NSDate moment = anchor ? anchor : NSDate::date();
    std::vector<Row> rows;
    for (const RangeName& known : rangeNames()) {
      rows.push_back(rowOf(std::string(known.name), namedRange(known.name, moment)));
    }
    printTable(rows, json);
  } else if (!words.rest().empty()) {
    const std::string_view name = words.rest().front();
    printOne(rowOf(std::string(name), namedRange(name, anchor)), json);
  } else {
    const BDDateRange range = rangeFrom(words);
    printOne(rowOf(std::string(nameOfRange(BDDateRange::namedRangeFrom(range))), range), json);
  }
  return kDone;
}

int runRecognise(std::span<const std::string_view> given) {
  const Words words(given, kRecogniseOptions);
  if (!words.rest().empty()) {
    throw UsageError("what is '" + std::string(words.rest().front()) + "'?");
  }
  const std::string_view name = nameOfRange(BDDateRange::namedRangeFrom(rangeFrom(words)));
  if (words.has("--json")) {
    std::cout << "{\"name\": " << (name.empty() ? "null" : jsonString(name)) << "}\n";
  } else {
    std::cout << (name.empty() ? "none" : name) << '\n';
  }
  return name.empty() ? kNoAnswer : kDone;
}

}  // namespace

const Command kRangeCommand{"range", "ranges of dates: this month, the past week, any other",
                            kRangeHelp, runRange};
const Command kRecogniseCommand{"recognise", "the name of a range described by its parts",
                                kRecogniseHelp, runRecognise};

}  // namespace tool
