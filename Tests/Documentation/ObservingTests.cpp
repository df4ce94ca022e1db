// What the guide to observing says.
#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <Brindle/BDBlockKeyValueAdditions.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Observation.h>
#include <Brindle/Platform/Runtime.h>

#include "Task.h"

namespace todo {
namespace {

/// A way with stops. One thread at a time.
class Trip : public Interface<Trip, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Trip> classPair;

  double kilometres() const { return send<"kilometres", double>(*this); }
  void setKilometres(double km) const { send<"setKilometres:">(*this, km); }
  double hours() const { return send<"hours", double>(*this); }
  void setHours(double hours) const { send<"setHours:">(*this, hours); }
  double speed() const { return send<"speed", double>(*this); }
};

struct Fields {
  double kilometres = 0;
  double hours = 1;
  Field<NSMutableArray> stops = NSMutableArray::array();
};
Fields& fields(const Trip& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"kilometres">([](const Trip& self) { return fields(self).kilometres; }),
    method<"setKilometres:">([](const Trip& self, double km) { fields(self).kilometres = km; }),
    method<"hours">([](const Trip& self) { return fields(self).hours; }),
    // [example: observing-manual]
    classMethod<"automaticallyNotifiesObserversOfHours">(
        [](const ClassOf<Trip>&) { return false; }),
    method<"setHours:">([](const Trip& self, double hours) {
      if (hours == fields(self).hours) return;  // no change: nobody is told
      willChangeValueForKey(self, "hours"_ns);
      fields(self).hours = hours;
      didChangeValueForKey(self, "hours"_ns);
    }),
    // [end]
    // [example: observing-dependent]
    method<"speed">([](const Trip& self) { return self->kilometres() / self->hours(); }),
    classMethod<"keyPathsForValuesAffectingSpeed">([](const ClassOf<Trip>&) {
      return NSSet{"kilometres"_ns, "hours"_ns};
    }),
    // [end]
    // [example: observing-relationship]
    method<"stops">([](const Trip& self) -> NSArray { return fields(self).stops->copy(); }),
    method<"setStops:">(
        [](const Trip& self, const NSArray& stops) { fields(self).stops = stops->mutableCopy(); }),
    method<"insertObject:inStopsAtIndex:">([](const Trip& self, const id& stop, NSUInteger i) {
      fields(self).stops->insertObject(stop, i);
    }),
    method<"removeObjectFromStopsAtIndex:">(
        [](const Trip& self, NSUInteger i) { fields(self).stops->removeObjectAtIndex(i); }),
    // [end]
};
constexpr ClassDefinition kDefinition{
    .name = "Trip", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

constinit ClassPair<Trip> Trip::classPair{kDefinition};

TEST(ObservingGuide, Typed) {
  // [example: observing-typed]
  const Task task = Task::taskWithTitle("buy milk"_ns);
  std::string seen;
  Observation watching = observe<std::string>(
      task, "title"_ns, [&seen](const std::string& old, const std::string& now) {
        seen += old + " -> " + now + "\n";
      });
  task->setTitle("buy oat milk"_ns);  // seen: buy milk -> buy oat milk
  watching.reset();
  task->setTitle("rest"_ns);  // tells nobody
  // [end]
  EXPECT_EQ(seen, "buy milk -> buy oat milk\n");
}

TEST(ObservingGuide, Member) {
  // [example: observing-member]
  class TitleBar {
   public:
    explicit TitleBar(const Task& task)
        : text_(std::string(task->title())),
          watching_(observe<std::string>(
              task, "title"_ns,
              [this](const std::string&, const std::string& now) { text_ = now; })) {}
    TitleBar(const TitleBar&) = delete;  // the lambda knows where this one is
    TitleBar& operator=(const TitleBar&) = delete;
    const std::string& text() const { return text_; }

   private:
    std::string text_;
    Observation watching_;  // last: it ends before anything that the lambda uses
  };
  // [end]
  const Task task = Task::taskWithTitle("one"_ns);
  const TitleBar bar(task);
  task->setTitle("two"_ns);
  EXPECT_EQ(bar.text(), "two");
}

TEST(ObservingGuide, Dictionary) {
  // [example: observing-token]
  const Task task = Task::new_();
  NSUInteger calls = 0;
  const NSUInteger options = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionInitial;
  const Observation watching =
      observe(task, "done"_ns, options, [&calls](const NSDictionary& change) {
        const bool isDone = cast<NSNumber>(change[NSKeyValueChangeNewKey])->boolValue();
        calls += isDone ? 100 : 1;
      });
  task->setDone(true);  // calls is 101: one at once, one for the change
  // [end]
  EXPECT_EQ(calls, 101U);
}

TEST(ObservingGuide, Blocks) {
  std::string shown;
  // [example: observing-block]
  const Task task = Task::taskWithTitle("rest"_ns);
  NSObject window = NSObject::new_();
  const Block<void()> stop = addObserver(
      task, window, "title"_ns, NSKeyValueObservingOptionNew, [&shown](const NSDictionary& change) {
        shown = std::string(cast<NSString>(change[NSKeyValueChangeNewKey]));
      });
  task->setTitle("work"_ns);
  stop();  // once, and not twice
  // [end]
  EXPECT_EQ(shown, "work");
  // [example: observing-tied]
  addObserver(
      task, window, "title"_ns,
      NSKeyValueObservingOptionNew | BDKeyValueObservingOptionRemoveOnDealloc,
      [&shown](const NSDictionary&) { shown = "told"; },
      [&shown] { shown = "closed"; });  // the extra removal
  window = nullptr;                     // ends the observation
  // [end]
  EXPECT_EQ(shown, "closed");
  task->setTitle("rest"_ns);
  EXPECT_EQ(shown, "closed");
}

// [example: observing-observer]
/// Counts the changes that it is told of.
class Watcher : public Interface<Watcher, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Watcher> classPair;
};

struct WatcherFields {
  NSUInteger changes = 0;
};
const char kContext = 0;

constexpr MethodDefinition kWatcherMethods[] = {
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const Watcher& self, const NSString& keyPath, const id& object,
           const NSDictionary& change, void* context) {
          if (context == &kContext) {
            ++fieldsOf<WatcherFields>(self).changes;
          } else {  // it is for the superclass, which raises when it does not know either
            sendSuper<Watcher, "observeValueForKeyPath:ofObject:change:context:">(
                self, keyPath, object, change, context);
          }
        }),
};
constexpr ClassDefinition kWatcher{
    .name = "Watcher", .methods = kWatcherMethods, .fields = fieldsDefinition<WatcherFields>()};

constinit ClassPair<Watcher> Watcher::classPair{kWatcher};
// [end]

TEST(ObservingGuide, Platform) {
  // [example: observing-platform]
  const Task task = Task::taskWithTitle("rest"_ns);
  const Watcher watcher = Watcher::new_();
  void* context = const_cast<char*>(&kContext);
  addObserver(task, watcher, "title"_ns, NSKeyValueObservingOptionNew, context);
  task->setTitle("work"_ns);
  removeObserver(task, watcher, "title"_ns, context);
  // [end]
  EXPECT_EQ(fieldsOf<WatcherFields>(watcher).changes, 1U);
  EXPECT_EQ(object_getClass(task), Task::class_());
}

TEST(ObservingGuide, Keys) {
  const Trip trip = Trip::new_();
  std::vector<double> speeds;
  int hourChanges = 0;
  // [example: observing-dependent-use]
  const Observation speed =
      observe<double>(trip, "speed"_ns, [&speeds](double, double now) { speeds.push_back(now); });
  const Observation hours =
      observe<double>(trip, "hours"_ns, [&hourChanges](double, double) { ++hourChanges; });
  trip->setKilometres(120);  // 120 an hour
  trip->setHours(2);         // 60
  trip->setHours(2);         // no change
  // [end]
  EXPECT_EQ(speeds, (std::vector<double>{120, 60}));
  EXPECT_EQ(hourChanges, 1);
}

TEST(ObservingGuide, Relationships) {
  const Trip trip = Trip::new_();
  std::string kinds;
  int titles = 0;
  // [example: observing-relationship-use]
  const Observation stops =
      observe(trip, "stops"_ns, NSKeyValueObservingOptionNew, [&kinds](const NSDictionary& change) {
        const int kind = cast<NSNumber>(change[NSKeyValueChangeKindKey])->intValue();
        kinds += kind == NSKeyValueChangeInsertion ? 'i'
                 : kind == NSKeyValueChangeRemoval ? 'r'
                                                   : 's';
      });
  const Block<void()> stop =
      addObserverForCollection(trip, "stops"_ns, "title"_ns, NSKeyValueObservingOptionNew,
                               [&titles](const NSDictionary&) { ++titles; });

  const NSMutableArray editor = mutableArrayValueForKey(trip, "stops"_ns);
  const Task lunch = Task::taskWithTitle("lunch"_ns);
  editor->addObject(lunch);            // an insertion
  lunch->setTitle("a long lunch"_ns);  // a title
  editor->removeObjectAtIndex(0);      // a removal
  lunch->setTitle("no lunch"_ns);      // not on the way any more
  stop();
  // [end]
  EXPECT_EQ(kinds, "ir");
  EXPECT_EQ(titles, 1);
}

TEST(ObservingGuide, Threads) {
  const Task task = Task::new_();
  std::mutex lock;
  int sum = 0;
  // [example: observing-threads]
  Observation watching = observe<bool>(task, "done"_ns, [&lock, &sum](bool, bool now) {
    const std::lock_guard guard(lock);  // changes may come from several threads
    sum += now ? 1 : 0;
  });
  std::thread other([task] { task->setDone(true); });
  other.join();
  watching.reset();  // not under the lock: a call that waits for it could never return
  // [end]
  EXPECT_EQ(sum, 1);
}

TEST(ObservingGuide, Cycles) {
  Task gone = Task::new_();
  const Weak<Task> watch = gone;
  {
    // [example: observing-weak]
    const Task task = gone;
    Block<void()> stop = addObserverForKeyPath(task, "title"_ns, NSKeyValueObservingOptionNew,
                                               [weak = Weak<Task>(task)](const NSDictionary&) {
                                                 if (const Task strong = weak.lock())
                                                   strong->setDone(false);
                                               });
    // [end]
    task->setDone(true);
    task->setTitle("again"_ns);
    EXPECT_FALSE(task->isDone());
  }
  gone = nullptr;
  EXPECT_FALSE(watch.lock());
}

}  // namespace
}  // namespace todo
