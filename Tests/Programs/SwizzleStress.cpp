// Threads swizzle, each selectors of its own, and add methods, while others send: no answer may be
// wrong, and in the end every selector answers as before, but for the swizzles that stay.
#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/BDSwizzle.h>

namespace brindle {
namespace {

constexpr std::size_t kChangers = 4;
constexpr std::size_t kSenders = 4;
constexpr int kTurns = 100;

std::atomic<int> wrong{0};
std::atomic<int> rounds{0};
std::array<IMP, kChangers> stored;

void expect(bool right) { wrong += right ? 0 : 1; }

struct Shared {
  Class super;
  Class sub;
  id inSuper, inSub;
  std::array<SEL, kChangers> numbers;
  std::atomic<bool> done{false};
};

Class makeClass(Class superclass, const std::string& name) {
  const Class cls = objc_allocateClassPair(superclass, name.c_str(), 0);
  objc_registerClassPair(cls);
  return cls;
}

int ask(const id& object, SEL selector) { return sendSelector<int>(object, selector); }

template <int N>
IMP answering() {
  return implementation([](const NSObject&) { return N; }).implementation;
}

/// Calls the stored implementation, which is there as soon as this code runs.
template <std::size_t N>
IMP adding() {
  return implementation([](const NSObject& self, Cmd cmd) {
           return callImplementation<int>(stored[N], self, cmd.selector) + 1000;
         })
      .implementation;
}
IMP addingOf(std::size_t number) {
  const IMP all[] = {adding<0>(), adding<1>(), adding<2>(), adding<3>()};
  return all[number];
}

/// The body owns its slot, since others may still be inside when the token ends.
SwizzleToken adding(Class cls, SEL selector, int sum) {
  const auto slot = std::make_shared<ImplementationSlot<int(NSObject)>>();
  return scopedSwizzle(
      cls, selector,
      [slot, sum](const NSObject& self, Cmd cmd) { return (*slot)(self, cmd) + sum; }, *slot);
}

/// Swizzles its own selector with tokens, in the superclass and the subclass.
void change(Shared& shared, std::size_t number) {
  const SEL selector = shared.numbers[number];
  const std::string own = "changer" + std::to_string(number) + "_";
  for (int turn = 0; turn < kTurns; ++turn) {
    SwizzleToken below = adding(shared.super, selector, 10);
    SwizzleToken above = adding(shared.sub, selector, 100);
    if (turn == kTurns / 2) {
      expect(swizzle(shared.super, selector, addingOf(number), &stored[number]));
    }
    // A method of a name that nobody knew.
    const SEL fresh = sel_registerName((own + std::to_string(turn)).c_str());
    const TypedImplementation seven = implementation([](const NSObject&) { return 7; });
    expect(class_addMethod(shared.super, fresh, seven.implementation, seven.types) != NO);
    class_cacheMethodImp(shared.super, fresh);
    expect(ask(shared.inSub, fresh) == 7);
    expect(class_getCachedMethodImp(shared.sub, fresh) == seven.implementation);
    // The subclass has what the superclass had at its first swizzle, below its own.
    expect(ask(shared.inSub, selector) == static_cast<int>(number) + (turn == 0 ? 110 : 100));
    below.end();
    above.end();
    expect(ask(shared.inSuper, selector) % 1000 == static_cast<int>(number));
  }
}

void sendAll(Shared& shared) {
  while (!shared.done) {
    for (std::size_t n = 0; n < kChangers; ++n) {
      expect(ask(shared.inSuper, shared.numbers[n]) % 10 == static_cast<int>(n));
      expect(ask(shared.inSub, shared.numbers[n]) % 10 == static_cast<int>(n));
      ++rounds;
    }
  }
}

void work() {
  Shared shared;
  shared.super = makeClass(NSObject::class_(), "StressSuper");
  shared.sub = makeClass(shared.super, "StressSub");
  const IMP answers[] = {answering<0>(), answering<1>(), answering<2>(), answering<3>()};
  for (std::size_t n = 0; n < kChangers; ++n) {
    shared.numbers[n] = sel_registerName(("stressNumber" + std::to_string(n)).c_str());
    class_addMethod(shared.super, shared.numbers[n], answers[n], "i16@0:8");
  }
  shared.inSuper = send<"new", id>(shared.super);
  shared.inSub = send<"new", id>(shared.sub);

  std::vector<std::thread> senders;
  for (std::size_t i = 0; i < kSenders; ++i) senders.emplace_back([&] { sendAll(shared); });
  std::vector<std::thread> changers;
  for (std::size_t n = 0; n < kChangers; ++n) changers.emplace_back([&, n] { change(shared, n); });
  for (std::thread& thread : changers) thread.join();
  shared.done = true;
  for (std::thread& thread : senders) thread.join();

  for (std::size_t n = 0; n < kChangers; ++n) {
    const int number = static_cast<int>(n);
    expect(ask(shared.inSuper, shared.numbers[n]) == number + 1000);
    // The subclass has had a method of its own since its first swizzle.
    expect(ask(shared.inSub, shared.numbers[n]) == number);
  }
}

}  // namespace
}  // namespace brindle

int main() {
  brindle::work();
  std::printf("%d rounds of sends, %d wrong\n", brindle::rounds.load(), brindle::wrong.load());
  return brindle::wrong == 0 ? 0 : 1;
}
