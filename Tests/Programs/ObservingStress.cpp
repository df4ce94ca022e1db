// Eight threads observe, change and let go of the same few objects, in every form there is. Each
// change that a thread makes while it observes reaches its own observer exactly once, on this
// thread; observers that stay count every change of all; in the end nothing is left.
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Observation.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

constexpr int kThreads = 8;
constexpr std::size_t kObjects = 4;
constexpr auto kNew = NSKeyValueObservingOptionNew;

std::atomic<int> wrong{0};
// What this thread's own observer was told by this thread.
thread_local int told = 0;

void expect(bool right) { wrong += right ? 0 : 1; }

class Gauge : public Interface<Gauge, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Gauge> classPair;
  void setValue(int value) const { send<"setValue:">(*this, value); }
};

struct GaugeFields {
  std::atomic<int> value{0};
};
constexpr MethodDefinition kGaugeMethods[] = {
    method<"value">([](const Gauge& self) { return fieldsOf<GaugeFields>(self).value.load(); }),
    method<"setValue:">(
        [](const Gauge& self, int value) { fieldsOf<GaugeFields>(self).value = value; }),
    method<"twice">([](const Gauge& self) { return fieldsOf<GaugeFields>(self).value.load() * 2; }),
    classMethod<"keyPathsForValuesAffectingTwice">(
        [](const ClassOf<Gauge>&) { return NSSet::setWithObject("value"_ns); }),
};
constexpr ClassDefinition kGauge{
    .name = "Gauge", .methods = kGaugeMethods, .fields = fieldsDefinition<GaugeFields>()};

constinit ClassPair<Gauge> Gauge::classPair{kGauge};

/// Counts what it is told by its own thread.
class Clerk : public Interface<Clerk, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Clerk> classPair;
};

/// Counts for the thread that observes; others change too.
struct Tally {
  std::thread::id owner = std::this_thread::get_id();
  void add() const {
    if (std::this_thread::get_id() == owner) ++told;
  }
};

constexpr MethodDefinition kClerkMethods[] = {
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const Clerk&, const NSString&, const id&, const NSDictionary& change, void* context) {
          static_cast<const Tally*>(context)->add();
          expect(isa<NSNumber>(change[NSKeyValueChangeNewKey]));
        }),
};
constexpr ClassDefinition kClerk{.name = "Clerk", .methods = kClerkMethods};

constinit ClassPair<Clerk> Clerk::classPair{kClerk};

void expectOne(const Gauge& gauge, int value) {
  told = 0;
  gauge->setValue(value);
  expect(told == 1);
}

/// One registration, one change, one removal.
void turn(const Gauge& gauge, const Clerk& clerk, const Tally& tally, int number) {
  switch (number % 5) {
    case 0:
      addObserver(gauge, clerk, "value"_ns, kNew, const_cast<Tally*>(&tally));  // NOLINT
      expectOne(gauge, number);
      removeObserver(gauge, clerk, "value"_ns);
      break;
    case 1: {
      const Block<void()> stop = addObserver(gauge, clerk, "value"_ns, kNew,
                                             [tally](const NSDictionary&) { tally.add(); });
      expectOne(gauge, number);
      stop();
      break;
    }
    case 2: {
      // Reads this frame, which ends with the token.
      const Observation token =
          observe<int>(gauge, "value"_ns, [&tally](int, int) { tally.add(); });
      expectOne(gauge, number);
      break;
    }
    case 3: {
      const Observation token =
          observe(gauge, "value"_ns, kNew, [&tally](const NSDictionary&) { tally.add(); });
      expectOne(gauge, number);
      break;
    }
    default: {
      const Observation token = observe<int>(gauge, "twice"_ns, [&tally](int, int now) {
        expect(now % 2 == 0);
        tally.add();
      });
      expectOne(gauge, number);
      break;
    }
  }
  told = 0;
  gauge->setValue(number);
  expect(told == 0);
}

void work(int turns) {
  std::vector<Gauge> gauges;
  for (std::size_t i = 0; i < kObjects; ++i) gauges.push_back(Gauge::new_());
  std::array<std::atomic<int>, kObjects> changes{};
  {
    // Half of the objects are observed all the time, so that the others change their class.
    std::vector<Observation> standing;
    for (std::size_t i = 0; i < kObjects / 2; ++i) {
      standing.push_back(
          observe<int>(gauges[i], "value"_ns, [&changes, i](int, int) { ++changes[i]; }));
    }
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&gauges, turns, t] {
        const Clerk clerk = Clerk::new_();
        const Tally tally;
        for (int i = 0; i < turns; ++i) {
          turn(gauges[static_cast<std::size_t>(i + t) % kObjects], clerk, tally, i);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  for (std::size_t i = 0; i < kObjects; ++i) {
    const int expected = i < kObjects / 2 ? kThreads * turns / static_cast<int>(kObjects) * 2 : 0;
    expect(changes[i] == expected);
    std::printf("object %zu: %d of %d changes counted\n", i, changes[i].load(), expected);
    expect(object_getClass(gauges[i]) == Gauge::class_());
    const int before = changes[i];
    gauges[i]->setValue(-1);
    expect(changes[i] == before);
  }
}

}  // namespace
}  // namespace brindle

int main(int count, char** arguments) {
  const int turns = count > 1 ? std::atoi(arguments[1]) : 20000;
  brindle::work(turns);
  std::printf("%d threads, %d turns each, %d wrong\n", brindle::kThreads, turns,
              brindle::wrong.load());
  return brindle::wrong == 0 ? 0 : 1;
}
