// What a message costs that the receiver need not answer, beside a forwarded one of another object
// runtime, and what `do_once` costs when its work is done, beside the bare instructions.
#include <atomic>

#include <Brindle/BDOnce.h>
#include <Brindle/BDSafeMessengerProxy.h>
#include <Brindle/Platform/Definition.h>

#include "PeerRun.h"

namespace brindle {
namespace {

class Answerer : public Interface<Answerer, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Answerer> classPair;
  int number() const { return send<"number", int>(*this); }
};
constexpr MethodDefinition kMethods[] = {
    method<"number">([](const Answerer&) { return 7; }),
};
constexpr ClassDefinition kDefinition{.name = "BenchmarkAnswerer", .methods = kMethods};

}  // namespace

constinit ClassPair<Answerer> Answerer::classPair{kDefinition};

namespace {

void answered(benchmark::State& state) {
  Answerer object = Answerer::new_();
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    benchmark::DoNotOptimize(safely(object)->number());
  }
}

void swallowed(benchmark::State& state) {
  auto object = uncheckedCast<Answerer>(NSObject::new_());
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    benchmark::DoNotOptimize(safely(object)->number());
  }
}

void withFallback(benchmark::State& state) {
  auto object = uncheckedCast<Answerer>(NSObject::new_());
  NSInteger eight = 8;
  for (auto _ : state) {
    benchmark::DoNotOptimize(object);
    const BDFallback fallback = BDMakeFallback(Answerer::class_(), &eight);
    benchmark::DoNotOptimize(safely(object, fallback)->number());
  }
}

NSInteger once = 0;
int work = 0;

void doneOnce(benchmark::State& state) {
  for (auto _ : state) {
    do_once(&once, [] { ++work; });
    benchmark::DoNotOptimize(work);
  }
}

void bareInstructions(benchmark::State& state) {
  static std::atomic<NSInteger> done{-1};
  for (auto _ : state) {
    NSInteger expected = 0;
    benchmark::DoNotOptimize(done.compare_exchange_strong(expected, 1));
    benchmark::DoNotOptimize(done.load(std::memory_order_acquire));
    std::atomic_thread_fence(std::memory_order_seq_cst);
    benchmark::DoNotOptimize(work);
  }
}

BENCHMARK(answered)->Name("safely, answered");
BENCHMARK(swallowed)->Name("safely, swallowed");
BENCHMARK(withFallback)->Name("safely, with a fallback");
BENCHMARK(doneOnce)->Name("do_once, done");
BENCHMARK(bareInstructions)->Name("compare and swap, read, barrier");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {"GNUstepDispatch"},
      {{"safely, answered", "GNUstep forwardInvocation:", 0.06},
       {"safely, swallowed", "GNUstep forwardInvocation:", 0.06},
       {"safely, with a fallback", "GNUstep forwardInvocation:", 0.06},
       {"do_once, done", "compare and swap, read, barrier", 1.2}});
}
