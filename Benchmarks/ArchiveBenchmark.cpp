// What a keyed archive of a date range costs, beside GNUstep's keyed archiver: an object with five
// integers and a date, to bytes and back.
#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSNumber.h>

#include "PeerRun.h"

namespace brindle {
namespace {

BDDateRange range() {
  return BDDateRange::dateRangeWithAnchor(NSDate::dateWithTimeIntervalSince1970(1700000000.125),
                                          BDTimeUnitWeek, -5, BDTimeUnitMonth, 7,
                                          BDTimeUnitQuarter);
}

NSDictionary dictionary() {
  return {{"anchor"_ns, NSDate::dateWithTimeIntervalSince1970(1700000000.125)},
          {"offset"_ns, NSNumber(-5)},
          {"length"_ns, NSNumber(7)},
          {"anchorUnit"_ns, NSNumber(1)},
          {"offsetUnit"_ns, NSNumber(2)},
          {"lengthUnit"_ns, NSNumber(3)}};
}

void archive(benchmark::State& state, const id& object) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSKeyedArchiver::archivedDataWithRootObject(object).record());
  }
}

void unarchive(benchmark::State& state, const id& object) {
  const NSData data = NSKeyedArchiver::archivedDataWithRootObject(object);
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSKeyedUnarchiver::unarchiveObjectWithData(data).record());
  }
}

BENCHMARK_CAPTURE(archive, range, range())->Name("archive a range");
BENCHMARK_CAPTURE(unarchive, range, range())->Name("unarchive a range");
BENCHMARK_CAPTURE(archive, dictionary, dictionary())->Name("archive a dictionary");
BENCHMARK_CAPTURE(unarchive, dictionary, dictionary())->Name("unarchive a dictionary");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {"GNUstepArchive"},
      {{"archive a range", "GNUstep archive of a range", 0.08},
       {"unarchive a range", "GNUstep unarchive of a range", 0.2},
       {"archive a dictionary", "GNUstep archive of a dictionary", 0.08},
       {"unarchive a dictionary", "GNUstep unarchive of a dictionary", 0.2}});
}
