// What "3 weeks ago" costs with its three words looked up anew, beside ICU's relative formatter
// made once, and our own phrase over it.
#include <unicode/reldatefmt.h>

#include <Brindle/BDDateRange.h>
#include <Brindle/BDRelativePhrases.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>

#include "PeerRun.h"

namespace brindle {
namespace {

// Offsets of one and two digits, in both directions.
constexpr std::int64_t offsetAt(std::size_t i) {
  const auto count = static_cast<std::int64_t>(i % 20) + 2;
  return i % 2 == 0 ? count : -count;
}

void description(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        BDDateRange::descriptionForUnit(BDTimeUnitWeek, offsetAt(i++)).record());
  }
}

void noOffset(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(BDDateRange::descriptionForUnit(BDTimeUnitWeek, 0).record());
  }
}

void phrase(benchmark::State& state) {
  const NSLocale english = NSLocale::alloc()->initWithLocaleIdentifier("en"_ns);
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(relativePhrase(BDTimeUnitWeek, offsetAt(i++), english));
  }
}

void icuPhrase(benchmark::State& state) {
  UErrorCode error = U_ZERO_ERROR;
  const icu::RelativeDateTimeFormatter formatter(icu::Locale("en"), error);
  std::size_t i = 0;
  for (auto _ : state) {
    icu::UnicodeString text;
    formatter.formatNumeric(static_cast<double>(offsetAt(i++)), UDAT_REL_UNIT_WEEK, text, error);
    benchmark::DoNotOptimize(text.getBuffer());
  }
}

BENCHMARK(description)->Name("description");
BENCHMARK(noOffset)->Name("description without offset");
BENCHMARK(phrase)->Name("relative phrase");
BENCHMARK(icuPhrase)->Name("ICU relative formatter");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  using namespace brindle;
  NSLocale::setPreferredLanguages({"en"_ns});
  return bench::runWithPeers(argc, argv, {}, {{"description", "ICU relative formatter", 0.5}});
}
