// What a message costs, beside a C++ virtual call in the same run and the same work in other object
// runtimes.
#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/NSObject.h>

#include "PeerRun.h"
#include "VirtualCall.h"

namespace brindle {
namespace {

/// Answers a number and an object that it keeps.
class Answerer : public Interface<Answerer, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Answerer> classPair;
};

struct AnswererFields {
  int number = 7;
  Field<id> kept = NSObject::new_();
};

constexpr MethodDefinition kAnswererMethods[] = {
    method<"number">([](const Answerer& self) { return fieldsOf<AnswererFields>(self).number; }),
    method<"kept">([](const Answerer& self) -> id { return fieldsOf<AnswererFields>(self).kept; }),
};
constexpr ClassDefinition kAnswerer{
    .name = "Answerer", .methods = kAnswererMethods, .fields = fieldsDefinition<AnswererFields>()};

/// Has no `number` of its own: sends it on to an Answerer.
class Sender : public Interface<Sender, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Sender> classPair;
};

struct SenderFields {
  Field<id> target = Answerer::new_();
};

constexpr MethodDefinition kSenderMethods[] = {
    method<"methodSignatureForSelector:">([](const Sender& self, SEL s) -> NSMethodSignature {
      return send<"methodSignatureForSelector:", NSMethodSignature>(
          fieldsOf<SenderFields>(self).target.peek(), s);
    }),
    method<"forwardInvocation:">([](const Sender& self, const NSInvocation& invocation) {
      invocation->invokeWithTarget(fieldsOf<SenderFields>(self).target.peek());
    }),
};
constexpr ClassDefinition kSender{
    .name = "Sender", .methods = kSenderMethods, .fields = fieldsDefinition<SenderFields>()};

}  // namespace

constinit ClassPair<Answerer> Answerer::classPair{kAnswerer};
constinit ClassPair<Sender> Sender::classPair{kSender};

namespace {

// --- Each reads its receiver from memory and keeps the answer ------------------------------------

void typedSend(benchmark::State& state) {
  Answerer receiver = Answerer::new_();
  for (auto _ : state) {
    benchmark::DoNotOptimize(receiver);
    benchmark::DoNotOptimize(send<"number", int>(receiver));
  }
}

void sendToNil(benchmark::State& state) {
  Answerer receiver;
  for (auto _ : state) {
    benchmark::DoNotOptimize(receiver);
    benchmark::DoNotOptimize(send<"number", int>(receiver));
  }
}

void sendForObject(benchmark::State& state) {
  Answerer receiver = Answerer::new_();
  for (auto _ : state) {
    benchmark::DoNotOptimize(receiver);
    const id kept = send<"kept", id>(receiver);
    benchmark::DoNotOptimize(kept.record());
  }
}

void forwardedSend(benchmark::State& state) {
  Sender receiver = Sender::new_();
  for (auto _ : state) {
    benchmark::DoNotOptimize(receiver);
    benchmark::DoNotOptimize(send<"number", int>(receiver));
  }
}

void allocInitRelease(benchmark::State& state) {
  for (auto _ : state) {
    const NSObject object = NSObject::alloc()->init();
    benchmark::DoNotOptimize(object.record());
  }
}

constexpr int kObjectsInPool = 1000;

void allocInitAutorelease(benchmark::State& state) {
  while (state.KeepRunningBatch(kObjectsInPool)) {
    const AutoreleasePool pool;
    for (int i = 0; i < kObjectsInPool; ++i) NSObject::alloc()->init()->autorelease();
  }
}

void retainAutorelease(benchmark::State& state) {
  NSObject object = NSObject::new_();
  while (state.KeepRunningBatch(kObjectsInPool)) {
    const AutoreleasePool pool;
    for (int i = 0; i < kObjectsInPool; ++i) {
      benchmark::DoNotOptimize(object);
      object->autorelease();
    }
  }
}

void emptyPool(benchmark::State& state) {
  for (auto _ : state) const AutoreleasePool pool;
}

BENCHMARK(bench::virtualCall)->Name("virtual call");
BENCHMARK(typedSend)->Name("typed send");
BENCHMARK(sendToNil)->Name("send to nil");
BENCHMARK(sendForObject)->Name("send for a stored object");
BENCHMARK(forwardedSend)->Name("forwardInvocation:");
BENCHMARK(allocInitRelease)->Name("alloc, init, release");
BENCHMARK(allocInitAutorelease)->Name("alloc, init, autorelease, drain");
BENCHMARK(retainAutorelease)->Name("retain, autorelease, drain");
BENCHMARK(emptyPool)->Name("empty pool");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {"Dispatch", "GNUstepDispatch"},
      {{"typed send", "libobjc send", 0.5},
       {"typed send", "virtual call", 1.6},
       {"send to nil", "virtual call", 1.0},
       {"send to nil", "libobjc send to nil", 0.5},
       {"send for a stored object", "virtual call", 3.5},
       {"forwardInvocation:", "GNUstep forwardInvocation:", 0.06},
       {"alloc, init, release", "GNUstep alloc, init, release", 0.4},
       {"alloc, init, autorelease, drain", "GNUstep alloc, init, autorelease", 0.6},
       {"retain, autorelease, drain", "GNUstep retain, autorelease", 0.6},
       {"empty pool", "GNUstep empty pool", 0.6}});
}
