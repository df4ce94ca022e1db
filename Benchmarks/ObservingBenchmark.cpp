// What observing costs: changes that nobody, one or ten observers are told of, registering and
// removing, and collections whose members are observed. Beside GNUstep, GObject and Qt in the same
// run.
#include <string>
#include <vector>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/Observation.h>

#include "PeerRun.h"

namespace brindle {
namespace {

class BenchModel : public Interface<BenchModel, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<BenchModel> classPair;
  void setNumber(int number) const { send<"setNumber:">(*this, number); }
  void setParts(const NSArray& parts) const { send<"setParts:">(*this, parts); }
};
struct ModelFields {
  int number = 0;
  Field<NSArray> parts;
};
constexpr MethodDefinition kSetNumber = method<"setNumber:">(
    [](const NSObject& self, int n) { fieldsOf<ModelFields>(self).number = n; });
constexpr MethodDefinition kModelMethods[] = {
    method<"number">([](const BenchModel& self) { return fieldsOf<ModelFields>(self).number; }),
    kSetNumber,
    method<"parts">(
        [](const BenchModel& self) -> NSArray { return fieldsOf<ModelFields>(self).parts; }),
    method<"setParts:">([](const BenchModel& self, const NSArray& parts) {
      fieldsOf<ModelFields>(self).parts = parts;
    }),
};
constexpr ClassDefinition kModelDefinition{
    .name = "BenchModel", .methods = kModelMethods, .fields = fieldsDefinition<ModelFields>()};

/// The same code in a class that is never observed.
class BenchPlain : public Interface<BenchPlain, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<BenchPlain> classPair;
};
constexpr MethodDefinition kPlainMethods[] = {kSetNumber};
constexpr ClassDefinition kPlainDefinition{
    .name = "BenchPlain", .methods = kPlainMethods, .fields = fieldsDefinition<ModelFields>()};

class BenchWatcher : public Interface<BenchWatcher, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<BenchWatcher> classPair;
};
constexpr MethodDefinition kWatcherMethods[] = {
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const BenchWatcher&, const NSString&, const id&, const NSDictionary& change, void*) {
          benchmark::DoNotOptimize(change.record());
        }),
};
constexpr ClassDefinition kWatcherDefinition{.name = "BenchWatcher", .methods = kWatcherMethods};

}  // namespace

constinit ClassPair<BenchModel> BenchModel::classPair{kModelDefinition};
constinit ClassPair<BenchPlain> BenchPlain::classPair{kPlainDefinition};
constinit ClassPair<BenchWatcher> BenchWatcher::classPair{kWatcherDefinition};

namespace {

constexpr NSUInteger kBoth = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld;

// One loop for all of them.
[[gnu::noinline]] void change(benchmark::State& state, id object) {
  int number = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    send<"setNumber:">(object, ++number);
  }
}

void changeNeverObserved(benchmark::State& state) { change(state, BenchPlain::new_()); }

void changeObservedElsewhere(benchmark::State& state) {
  const BenchModel other = BenchModel::new_();
  const BenchWatcher watcher = BenchWatcher::new_();
  addObserver(other, watcher, "number"_ns, kBoth);
  const BenchModel model = BenchModel::new_();
  addObserver(model, watcher, "number"_ns, kBoth);
  removeObserver(model, watcher, "number"_ns);
  change(state, model);
  removeObserver(other, watcher, "number"_ns);
}

void changeWithObservers(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  std::vector<BenchWatcher> watchers;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    watchers.push_back(BenchWatcher::new_());
    addObserver(model, watchers.back(), "number"_ns, kBoth);
  }
  change(state, model);
}

void changeWithBlocks(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  const NSObject observer = NSObject::new_();
  std::vector<Block<void()>> stops;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    stops.push_back(addObserver(model, observer, "number"_ns, kBoth, [](const NSDictionary& told) {
      benchmark::DoNotOptimize(told.record());
    }));
  }
  change(state, model);
  for (const Block<void()>& stop : stops) stop();
}

void changeWithValues(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  std::vector<Observation> watching;
  std::int64_t sum = 0;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    watching.push_back(observe<int>(model, "number"_ns, [&sum](int, int now) { sum += now; }));
  }
  change(state, model);
  benchmark::DoNotOptimize(sum);
}

void registerAndRemove(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  const BenchWatcher watcher = BenchWatcher::new_();
  for (auto _ : state) {
    addObserver(model, watcher, "number"_ns, kBoth);
    removeObserver(model, watcher, "number"_ns);
  }
}

void registerAndRemoveValues(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  for (auto _ : state) observe<int>(model, "number"_ns, [](int, int) {}).reset();
}

void registerAndRemoveBlock(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  const NSObject observer = NSObject::new_();
  const Block<void(const NSDictionary&)> block = [](const NSDictionary&) {};
  for (auto _ : state) addObserver(model, observer, "number"_ns, kBoth, block)();
}

constexpr NSUInteger kParts = 10000;

NSArray manyParts(NSUInteger count) {
  std::vector<id> parts;
  for (NSUInteger i = 0; i < count; ++i) parts.emplace_back(BenchModel::new_());
  return NSArray::arrayWithObjects(parts.data(), parts.size());
}

/// One after the other, as the change of a collection has them registered and removed.
void pairsOfMany(benchmark::State& state) {
  const NSArray parts = manyParts(kParts);
  const BenchWatcher watcher = BenchWatcher::new_();
  for (auto _ : state) {
    for (const id& part : parts) addObserver(part, watcher, "number"_ns, kBoth);
    for (const id& part : parts) removeObserver(part, watcher, "number"_ns);
  }
}

void changeOfACollection(benchmark::State& state) {
  const BenchModel model = BenchModel::new_();
  const NSArray more = manyParts(kParts + 1);
  const NSArray fewer = more->subarrayWithRange({0, kParts});
  model->setParts(fewer);
  const Block<void()> stop =
      addObserverForCollection(model, "parts"_ns, "number"_ns, kBoth, [](const NSDictionary&) {});
  bool grow = true;
  for (auto _ : state) {
    const AutoreleasePool pool;
    model->setParts(grow ? more : fewer);
    grow = !grow;
  }
  stop();
}

BENCHMARK(changeNeverObserved)->Name("change, never observed");
BENCHMARK(changeObservedElsewhere)->Name("change, nobody observes");
BENCHMARK(changeWithObservers)->Name("change, observers")->Arg(1)->Arg(10);
BENCHMARK(changeWithBlocks)->Name("change, blocks")->Arg(1)->Arg(10);
BENCHMARK(changeWithValues)->Name("change, values")->Arg(1)->Arg(10);
BENCHMARK(registerAndRemove)->Name("register and remove");
BENCHMARK(registerAndRemoveBlock)->Name("register and remove a block");
BENCHMARK(registerAndRemoveValues)->Name("register and remove values");
BENCHMARK(pairsOfMany)->Name("10,000 pairs")->Unit(benchmark::kMicrosecond);
BENCHMARK(changeOfACollection)->Name("change of 10,000")->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {"GNUstepObserving", "GObjectObserving", "QtObserving"},
      {{"change, nobody observes", "change, never observed", 1.1},
       {"change, blocks/1", "GNUstep change, 1 observer", 0.065},
       {"change, blocks/1", "GObject change, 1 observer", 0.75},
       {"change, blocks/10", "GNUstep change, 10 observers", 0.2},
       {"change, blocks/10", "GObject change, 10 observers", 1},
       {"change, values/1", "Qt change, 1 observer", 3},
       {"change, values/10", "Qt change, 10 observers", 3},
       {"register and remove", "GNUstep register and remove", 0.065},
       {"register and remove", "GObject connect and disconnect", 0.55},
       {"register and remove a block", "register and remove", 2},
       {"register and remove values", "register and remove", 2},
       {"change of 10,000", "10,000 pairs", 1.3}});
}
