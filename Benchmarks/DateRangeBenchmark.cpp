// What the dates of "this month" cost in America/New_York, beside the same month step in other
// libraries: the start of an instant's month, and the start of the next.
#include <array>
#include <ctime>
#include <memory>

#include <absl/time/civil_time.h>
#include <absl/time/time.h>
#include <unicode/calendar.h>
#include <unicode/timezone.h>

#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSTimeZone.h>

#include "PeerRun.h"

namespace brindle {
namespace {

constexpr char kZone[] = "America/New_York";
constexpr std::size_t kInstants = 64;

// Instants from 2019 to 2026, in seconds since 1970.
constexpr std::int64_t instantAt(std::size_t i) {
  return 1546300800 + static_cast<std::int64_t>(i % kInstants) * 3944700;
}

BDDateRange thisMonth() { return BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisMonth); }

// The range with each of the instants as its anchor.
const std::array<BDDateRange, kInstants>& months() {
  static const auto& ranges = *[] {
    auto* made = new std::array<BDDateRange, kInstants>();
    for (std::size_t i = 0; i < kInstants; ++i) {
      (*made)[i] = thisMonth();
      (*made)[i]->setAnchor(
          NSDate::dateWithTimeIntervalSince1970(static_cast<double>(instantAt(i))));
    }
    return made;
  }();
  return ranges;
}

void startAndEnd(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const BDDateRange& range = months()[i++ % kInstants];
    benchmark::DoNotOptimize(range->start().record());
    benchmark::DoNotOptimize(range->end().record());
  }
}

void interval(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(months()[i++ % kInstants]->interval());
}

void intervalFromNow(benchmark::State& state) {
  const BDDateRange range = thisMonth();
  for (auto _ : state) benchmark::DoNotOptimize(range->interval());
}

// A subclass, or a method that somebody replaced, costs the messages.
void startByMessages(benchmark::State& state) {
  const BDDateRange range = months()[0];
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        range->add(range->offset(), range->offsetUnit(), range->_anchor()).record());
  }
}

void libcMonth(benchmark::State& state) {
  ::setenv("TZ", kZone, 1);
  ::tzset();
  std::size_t i = 0;
  for (auto _ : state) {
    const std::time_t instant = instantAt(i++);
    std::tm month{};
    ::localtime_r(&instant, &month);
    month.tm_mday = 1;
    month.tm_hour = month.tm_min = month.tm_sec = 0;
    month.tm_isdst = -1;
    std::tm next = month;
    ++next.tm_mon;
    benchmark::DoNotOptimize(std::mktime(&month));
    benchmark::DoNotOptimize(std::mktime(&next));
  }
}

void abslMonth(benchmark::State& state) {
  absl::TimeZone zone;
  absl::LoadTimeZone(kZone, &zone);
  std::size_t i = 0;
  for (auto _ : state) {
    const absl::CivilMonth month(absl::ToCivilSecond(absl::FromUnixSeconds(instantAt(i++)), zone));
    benchmark::DoNotOptimize(absl::FromCivil(month, zone));
    benchmark::DoNotOptimize(absl::FromCivil(month + 1, zone));
  }
}

void icuMonth(benchmark::State& state) {
  const icu::TimeZone* zone = icu::TimeZone::createTimeZone(kZone);
  std::size_t i = 0;
  for (auto _ : state) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(*zone, icu::Locale("en_US"), status));
    calendar->setTime(static_cast<double>(instantAt(i++)) * 1000, status);
    calendar->set(UCAL_DATE, 1);
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    benchmark::DoNotOptimize(calendar->getTime(status));
    calendar->add(UCAL_MONTH, 1, status);
    benchmark::DoNotOptimize(calendar->getTime(status));
  }
  delete zone;
}

BENCHMARK(startAndEnd)->Name("start and end");
BENCHMARK(interval)->Name("interval");
BENCHMARK(intervalFromNow)->Name("interval from now");
BENCHMARK(startByMessages)->Name("first date by messages");
BENCHMARK(libcMonth)->Name("libc month");
BENCHMARK(abslMonth)->Name("Abseil month");
BENCHMARK(icuMonth)->Name("ICU month");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  using namespace brindle;
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("America/New_York"_ns));
  return bench::runWithPeers(argc, argv, {"GNUstepDates"},
                             {{"start and end", "ICU month", 0.4},
                              {"start and end", "GNUstep month, calendar reused", 0.05},
                              {"start and end", "GNUstep month", 0.05},
                              {"interval", "libc month", 1.5},
                              {"interval", "Abseil month", 1.5}});
}
