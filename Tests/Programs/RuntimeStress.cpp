// Sixteen threads do everything that the runtime offers, to the same objects and classes, for one
// second. At the end every number must be right: a sanitizer that is silent says nothing of a
// message that was lost, an `initialize` that ran twice or a value that was never released.
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

namespace brindle {
namespace {

using Counter = std::atomic<std::int64_t>;

constexpr int kThreads = 16;
constexpr int kSharedObjects = 8;
constexpr int kLazyClasses = 64;
constexpr int kClassesOfAThread = 150;

// --- What is counted -----------------------------------------------------------------------------

// By the code that runs...
Counter living, made, ended, stepped, doubled, initialized, forwarded;
// ...and by those who asked for it.
Counter valuesMade, sends, forwards, wrongAnswers, classesMade, weakFound, weakNil, insideSum,
    insideWanted;

void expect(bool right) {
  if (!right) ++wrongAnswers;
}

/// An object whose life is counted.
class Counted : public Interface<Counted, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Counted> classPair;
  static Counted numbered(int number) {
    const Counted counted = new_();
    send<"setNumber:">(counted, number);
    return counted;
  }
  int number() const { return send<"number", int>(*this); }
  int step(int n) const { return send<"step:", int>(*this, n); }
  id held() const { return send<"held", id>(*this); }
};

struct CountedFields {
  int number = 0;
  Field<id> held;

  CountedFields() {
    ++living;
    ++made;
  }
  CountedFields(const CountedFields&) = delete;
  CountedFields& operator=(const CountedFields&) = delete;
  ~CountedFields() {
    --living;
    ++ended;
  }
};

CountedFields& fields(const Counted& self) { return fieldsOf<CountedFields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"number">([](const Counted& self) { return fields(self).number; }),
    method<"setNumber:">([](const Counted& self, int n) { fields(self).number = n; }),
    method<"held">([](const Counted& self) -> id { return fields(self).held; }),
    method<"setHeld:">([](const Counted& self, const id& held) { fields(self).held = held; }),
    method<"step:">([](const Counted&, int n) {
      ++stepped;
      return n + 1;
    }),
    method<"otherStep:">([](const Counted&, int n) {
      ++stepped;
      return n + 2;
    }),
};
constexpr ClassDefinition kCounted{
    .name = "Counted", .methods = kMethods, .fields = fieldsDefinition<CountedFields>()};

/// Hands on every message to the object that it stands for.
class Messenger : public Interface<Messenger, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Messenger> classPair;
};
struct MessengerFields {
  Field<id> target;
};

constexpr MethodDefinition kMessengerMethods[] = {
    method<"setTarget:">([](const Messenger& self, const id& target) {
      fieldsOf<MessengerFields>(self).target = target;
    }),
    method<"methodSignatureForSelector:">([](const Messenger& self, SEL s) -> NSMethodSignature {
      const id target = fieldsOf<MessengerFields>(self).target;
      return send<"methodSignatureForSelector:", NSMethodSignature>(target, s);
    }),
    method<"forwardInvocation:">([](const Messenger& self, const NSInvocation& invocation) {
      ++forwarded;
      invocation->invokeWithTarget(fieldsOf<MessengerFields>(self).target);
    }),
};
constexpr ClassDefinition kMessenger{.name = "Messenger",
                                     .methods = kMessengerMethods,
                                     .fields = fieldsDefinition<MessengerFields>()};

}  // namespace

constinit ClassPair<Counted> Counted::classPair{kCounted};
constinit ClassPair<Messenger> Messenger::classPair{kMessenger};

namespace {

// --- What all threads share ----------------------------------------------------------------------

struct Shared {
  std::array<Counted, kSharedObjects> objects;
  std::array<Class, kLazyClasses> lazy;  // nobody has sent them a message
  Messenger messenger;
  std::array<char, 4> keys{};
  std::array<std::int64_t, kSharedObjects> inside{};  // each in its object's monitor
  std::mutex passing;                                 // over `passed`
  Weak<Counted> passed;
};

void addMethod(Class cls, SEL selector, const TypedImplementation& code) {
  expect(class_addMethod(cls, selector, code.implementation, code.types) != NO);
}

Class makeClass(const std::string& name) {
  const Class cls = objc_allocateClassPair(Counted::class_(), name.c_str(), 0);
  expect(static_cast<bool>(cls));
  return cls;
}

/// A class with an `initialize` of its own. Nobody has sent it a message yet.
Class makeLazyClass(int number) {
  const Class cls = makeClass("Lazy" + std::to_string(number));
  addMethod(object_getClass(cls), sel_registerName("initialize"), implementation([](const Class&) {
              std::this_thread::yield();
              ++initialized;
            }));
  objc_registerClassPair(cls);
  return cls;
}

// --- The work of one thread ----------------------------------------------------------------------

class Worker {
 public:
  Worker(Shared& shared, int number) : shared_(shared), number_(number) {}

  void run(std::chrono::steady_clock::time_point end) {
    touchLazyClasses();
    for (turn_ = 0; std::chrono::steady_clock::now() < end || turn_ < 2; ++turn_) {
      object_ = &shared_.objects[static_cast<std::size_t>(turn_ + number_) % kSharedObjects];
      sendMessages();
      swapImplementations();
      makeAClass();
      associate();
      passWeakly();
      enterMonitors();
      autorelease();
      forward();
    }
  }

 private:
  void touchLazyClasses() {
    for (const Class cls : shared_.lazy) {
      const Counted first = uncheckedCast<Counted>(send<"new", id>(cls));
      expect(first->number() == 0);
    }
  }

  void sendMessages() {
    for (int i = 0; i < 50; ++i) {
      const int answer = (*object_)->step(i);
      expect(answer == i + 1 || answer == i + 2);
      ++sends;
    }
  }

  /// Both implementations count, so that no send is lost whichever it meets.
  void swapImplementations() {
    const Method a = class_getInstanceMethod(Counted::class_(), selector<"step:">());
    const Method b = class_getInstanceMethod(Counted::class_(), selector<"otherStep:">());
    method_exchangeImplementations(a, b);
    (*object_)->step(1);
    ++sends;
  }

  /// A subclass that overrides a method, with two of new names: the tables have to grow meanwhile.
  void makeAClass() {
    if (turn_ >= kClassesOfAThread) return;
    const std::string name = "Made" + std::to_string(number_) + "_" + std::to_string(turn_);
    const Class cls = makeClass(name);
    addMethod(cls, selector<"number">(), implementation([](const Counted&) { return 77; }));
    const SEL own = sel_registerName((name + "Own").c_str());
    addMethod(cls, own, implementation([](const Counted&) { return 78; }));
    objc_registerClassPair(cls);
    const SEL fresh = sel_registerName((name + "Twice:").c_str());
    addMethod(NSObject::class_(), fresh, implementation([](const NSObject&, int n) {
                ++doubled;
                return 2 * n;
              }));
    const Counted object = uncheckedCast<Counted>(send<"new", id>(cls));
    expect(object->number() == 77);
    expect(sendSelector<int>(object, own) == 78);
    expect(sendSelector<int>(object, fresh, turn_) == 2 * turn_);
    expect(sendSelector<int>(*object_, fresh, turn_) == 2 * turn_);
    expect(objc_getClass(name.c_str()) == cls);
    ++classesMade;
  }

  void associate() {
    for (char& key : shared_.keys) {
      ++valuesMade;
      objc_setAssociatedObject(*object_, &key, Counted::numbered(5), OBJC_ASSOCIATION_RETAIN);
      const id value = objc_getAssociatedObject(*object_, &key);
      // Another thread may have removed it.
      if (value) expect(uncheckedCast<Counted>(value)->number() == 5);
    }
    if (turn_ % 4 == 0) objc_removeAssociatedObjects(*object_);
    // An object that takes its values along.
    const Counted own = Counted::numbered(1);
    valuesMade += 2;
    objc_setAssociatedObject(own, this, Counted::numbered(6), OBJC_ASSOCIATION_RETAIN);
    expect(uncheckedCast<Counted>(objc_getAssociatedObject(own, this))->number() == 6);
  }

  /// One thread lets an object go while others ask for it.
  void passWeakly() {
    for (int i = 0; i < 10; ++i) {
      mine_ = Counted::numbered(9);
      ++valuesMade;
      Weak<Counted> theirs = mine_;
      {
        const std::lock_guard guard(shared_.passing);
        std::swap(theirs, shared_.passed);
      }
      if (const Counted found = theirs.lock()) {
        expect(found->number() == 9);
        ++weakFound;
      } else {
        ++weakNil;
      }
    }
  }

  void enterMonitors() {
    for (std::size_t i = 0; i < shared_.objects.size(); ++i) {
      const Synchronized inside(shared_.objects[i]);
      const Synchronized again(shared_.objects[i]);
      ++shared_.inside[i];
    }
    insideWanted += kSharedObjects;
  }

  void autorelease() {
    const AutoreleasePool pool;
    for (int i = 0; i < 10; ++i) {
      ++valuesMade;
      const Weak<Counted> weak = Counted::numbered(i)->autorelease();
      expect(weak.lock()->number() == i);
    }
  }

  void forward() {
    for (int i = 0; i < 5; ++i) {
      const int answer = send<"step:", int>(shared_.messenger, i);
      expect(answer == i + 1 || answer == i + 2);
      ++sends;
      ++forwards;
    }
    expect(send<"held", id>(shared_.messenger) == shared_.objects[1]);
    ++forwards;
  }

  Shared& shared_;
  const int number_;
  int turn_ = 0;
  const Counted* object_ = nullptr;
  Counted mine_;
};

void work() {
  Shared shared;
  for (Counted& object : shared.objects) object = Counted::numbered(3);
  send<"setHeld:">(shared.objects[0], shared.objects[1]);
  for (int i = 0; i < kLazyClasses; ++i)
    shared.lazy[static_cast<std::size_t>(i)] = makeLazyClass(i);
  shared.messenger = Messenger::alloc();
  send<"setTarget:">(shared.messenger, shared.objects[0]);

  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&shared, t, end] { Worker(shared, t).run(end); });
  }
  for (std::thread& t : threads) t.join();
  for (const std::int64_t inside : shared.inside) insideSum += inside;
}

bool equal(const char* what, std::int64_t found, std::int64_t wanted) {
  std::printf("%-32s %10lld%s\n", what, static_cast<long long>(found),
              found == wanted ? "" : "   WRONG");
  if (found != wanted) std::printf("  wanted %lld\n", static_cast<long long>(wanted));
  return found == wanted;
}

bool check() {
  bool right = equal("wrong answers", wrongAnswers, 0);
  right &= equal("messages answered", stepped, sends);
  right &= equal("messages forwarded", forwarded, forwards);
  right &= equal("classes initialised", initialized, kLazyClasses);
  right &= equal("new methods run", doubled, 2 * classesMade);
  right &= equal("turns inside monitors", insideSum, insideWanted);
  // Shared ones, the lazy classes' first, and one of each class made.
  right &= equal("objects made", made,
                 valuesMade + kSharedObjects + kThreads * kLazyClasses + classesMade);
  right &= equal("objects ended", ended, made);
  right &= equal("objects alive", living, 0);
  std::printf("weak references read: %lld found, %lld nil; classes made: %lld\n",
              static_cast<long long>(weakFound), static_cast<long long>(weakNil),
              static_cast<long long>(classesMade));
  return right;
}

}  // namespace
}  // namespace brindle

int main() {
  brindle::work();
  return brindle::check() ? 0 : 1;
}
