// What allocation costs where this library is loaded: a plain object, one that is awakened, and the
// instance of a class that has one.
#include <Brindle/BDAwake.h>
#include <Brindle/BDSingleton.h>
#include <Brindle/Platform/Definition.h>

#include "PeerRun.h"

namespace brindle {
namespace {

class Awakened : public Interface<Awakened, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Awakened> classPair;
};
constexpr MethodDefinition kAwakenedMethods[] = {
    method<"awake">([](const Awakened& self) { benchmark::DoNotOptimize(self.record()); }),
};
constexpr ClassDefinition kAwakened{.name = "Awakened", .methods = kAwakenedMethods};

class Only : public Interface<Only, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Only> classPair;
};
constexpr ProtocolRecord* kOnlyProtocols[] = {&kBDSingleton};
constexpr ClassDefinition kOnly{.name = "Only", .protocols = kOnlyProtocols};

}  // namespace

constinit ClassPair<Awakened> Awakened::classPair{kAwakened};
constinit ClassPair<Only> Only::classPair{kOnly};

namespace {

template <class T>
void allocInitRelease(benchmark::State& state) {
  for (auto _ : state) {
    const id object = send<"init", id>(T::alloc());
    benchmark::DoNotOptimize(object.record());
  }
}

BENCHMARK(allocInitRelease<NSObject>)->Name("plain object");
BENCHMARK(allocInitRelease<Awakened>)->Name("awakened object");
BENCHMARK(allocInitRelease<Only>)->Name("instance of a singleton class");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(argc, argv,
                                      {"PlatformAllocation", "GNUstepDispatch", "QtAllocation"},
                                      {{"plain object", "platform alone, and 10 virtual calls", 1},
                                       {"plain object", "platform alone", 2},
                                       {"plain object", "Qt new and delete", 1},
                                       {"plain object", "GNUstep alloc, init, release", 0.6},
                                       {"awakened object", "plain object", 8}});
}
