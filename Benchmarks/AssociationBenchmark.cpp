// What reading a value that hangs on an object costs, beside a C++ virtual call in the same run.
#include <atomic>
#include <thread>

#include <Brindle/BDAssociatedValues.h>
#include <Brindle/Platform/NSObject.h>

#include "PeerRun.h"
#include "VirtualCall.h"

namespace brindle {
namespace {

constexpr AssociationKey<bool> kFlag;
constexpr AssociationKey<NSInteger> kCount;
constexpr AssociationKey<id> kValue;

template <class T>
void readValue(benchmark::State& state, id object, const AssociationKey<T>& key) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    T value = key.get(object);
    benchmark::DoNotOptimize(value);
  }
}

NSObject objectWithValues() {
  const NSObject object = NSObject::new_();
  kFlag.set(object, true);
  kCount.set(object, 1000);
  kValue.set(object, NSObject::new_());
  return object;
}

void flagOfObject(benchmark::State& state) { readValue(state, objectWithValues(), kFlag); }
void countOfObject(benchmark::State& state) { readValue(state, objectWithValues(), kCount); }
void valueOfObject(benchmark::State& state) { readValue(state, objectWithValues(), kValue); }
void nothingOfObject(benchmark::State& state) { readValue(state, NSObject::new_(), kFlag); }

void flagOfClass(benchmark::State& state) {
  kFlag.set(NSObject::class_(), true);
  readValue(state, NSObject::class_(), kFlag);
  kFlag.remove(NSObject::class_());
}

/// The same while another thread, on another CPU, reads another object's value.
void countBesideAnotherThread(benchmark::State& state) {
  cpu_set_t before;
  sched_getaffinity(0, sizeof before, &before);
  cpu_set_t all;
  CPU_ZERO(&all);
  for (std::size_t cpu = 0; cpu < CPU_SETSIZE; ++cpu) CPU_SET(cpu, &all);
  sched_setaffinity(0, sizeof all, &all);
  // On a line of its own: the loop below writes to this stack.
  struct alignas(128) {
    std::atomic<bool> now{false};
  } stop;
  std::thread other([&stop] {
    const NSObject object = objectWithValues();
    while (!stop.now) benchmark::DoNotOptimize(kCount.get(object));
  });
  readValue(state, objectWithValues(), kCount);
  stop.now = true;
  other.join();
  sched_setaffinity(0, sizeof before, &before);
}

void setFlag(benchmark::State& state) {
  const NSObject object = objectWithValues();
  bool value = false;
  for (auto _ : state) {
    kFlag.set(object, value);
    value = !value;
  }
}

BENCHMARK(bench::virtualCall)->Name("virtual call");
BENCHMARK(flagOfObject)->Name("associated flag of an object");
BENCHMARK(countOfObject)->Name("associated integer of an object");
BENCHMARK(valueOfObject)->Name("associated object of an object");
BENCHMARK(nothingOfObject)->Name("object without values");
BENCHMARK(flagOfClass)->Name("associated flag of a class");
BENCHMARK(countBesideAnotherThread)->Name("integer, beside another thread");
BENCHMARK(setFlag)->Name("set an associated flag");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {},
      {{"associated flag of an object", "virtual call", 10},
       {"associated integer of an object", "virtual call", 10},
       {"object without values", "virtual call", 5},
       {"associated flag of a class", "virtual call", 5},
       {"integer, beside another thread", "associated integer of an object", 1.3}});
}
