#include <Brindle/Platform/NSOperation.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/Weak.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/OperationQueue.h"
#include "Platform/Foundation/Internal/ReleaseEach.h"

namespace brindle {
namespace {

/// Under `lock`, which is never held while a message is sent or an object released.
struct Fields {
  std::mutex lock;
  std::condition_variable isSettled;
  std::vector<NSOperation> dependencies;
  std::vector<ObjectRecord*> unfinished;  // of the dependencies
  std::vector<Weak<NSOperation>> dependents;
  std::weak_ptr<internal::OperationQueue> queue;
  Block<void()> completion;
  NSOperationQueuePriority priority = NSOperationQueuePriorityNormal;
  bool queued = false;
  bool started = false;
  bool executing = false;
  bool finished = false;
  bool cancelled = false;
  bool settled = false;  // finished, and everybody has been told
};
Fields& fields(const NSOperation& self) { return fieldsOf<Fields>(self); }

/// A field as it is at this moment.
template <class T>
T read(const NSOperation& self, T Fields::*field) {
  const std::lock_guard guard(fields(self).lock);
  return fields(self).*field;
}

/// Takes every step, whatever observers raise in some of them: others wait for what comes after.
/// Then passes on what was raised first.
template <class... Steps>
void takeSteps(const Steps&... steps) {
  std::exception_ptr raised;
  const auto take = [&raised](const auto& step) {
    try {
      step();
    } catch (...) {
      if (!raised) raised = std::current_exception();
    }
  };
  (take(steps), ...);
  if (raised) std::rethrow_exception(raised);
}

/// Changes the state and tells those who observe the key.
template <class Change>
void announce(const NSOperation& self, const NSString& key, Change change) {
  takeSteps([&] { willChangeValueForKey(self, key); },
            [&] {
              const std::lock_guard guard(fields(self).lock);
              change(fields(self));
            },
            [&] { didChangeValueForKey(self, key); });
}

bool readyLocked(const Fields& f) { return f.cancelled || f.unfinished.empty(); }

/// Whoever waits for the other operation waits no longer.
void forgetDependency(const NSOperation& self, const NSOperation& other, bool altogether) {
  Fields& f = fields(self);
  NSOperation dropped;
  bool becameReady = false;
  {
    const std::lock_guard guard(f.lock);
    const bool wasReady = readyLocked(f);
    std::erase(f.unfinished, other.record());
    becameReady = !wasReady && readyLocked(f);
    const auto place = std::find(f.dependencies.begin(), f.dependencies.end(), other);
    if (altogether && place != f.dependencies.end()) {
      dropped = std::move(*place);
      f.dependencies.erase(place);
    }
  }
  if (becameReady) announce(self, "isReady"_ns, [](Fields&) {});
}

void addDependency(const NSOperation& self, const NSOperation& other) {
  Fields& f = fields(self);
  {
    const std::lock_guard guard(f.lock);
    if (std::find(f.dependencies.begin(), f.dependencies.end(), other) != f.dependencies.end()) {
      return;
    }
  }
  const bool holdsUp = !other->isFinished();
  const bool unready = holdsUp && self->isReady();
  if (unready) willChangeValueForKey(self, "isReady"_ns);
  {
    const std::lock_guard guard(f.lock);
    f.dependencies.push_back(other);
    if (holdsUp) f.unfinished.push_back(other.record());
  }
  // After that, so that no end of the other one is missed.
  bool settled = false;
  if (holdsUp) {
    Fields& o = fields(other);
    const std::lock_guard guard(o.lock);
    settled = o.settled;
    if (!settled) o.dependents.emplace_back(self);
  }
  if (settled) forgetDependency(self, other, false);
  if (unready) didChangeValueForKey(self, "isReady"_ns);
}

/// The operation has finished: wakes those who wait, and lets what depends on it go on. Once.
void settle(const NSOperation& self) {
  Fields& f = fields(self);
  std::vector<Weak<NSOperation>> dependents;
  std::shared_ptr<internal::OperationQueue> queue;
  Block<void()> completion;
  {
    const std::lock_guard guard(f.lock);
    if (std::exchange(f.settled, true)) return;
    dependents.swap(f.dependents);
    queue = f.queue.lock();
    completion = std::exchange(f.completion, nullptr);
  }
  takeSteps(
      [&] {
        detail::releaseEach(dependents, [&self](const Weak<NSOperation>& dependent) {
          if (const NSOperation other = dependent.lock()) forgetDependency(other, self, false);
        });
      },
      [&] {
        if (queue) queue->finished(self);
      },
      [&] { f.isSettled.notify_all(); },
      [&] {
        if (completion) completion();
      });
}

void finish(const NSOperation& self) {
  const bool executed = self->isExecuting();
  takeSteps(
      [&] {
        if (executed) willChangeValueForKey(self, "isExecuting"_ns);
      },
      [&] { willChangeValueForKey(self, "isFinished"_ns); },
      [&] {
        const std::lock_guard guard(fields(self).lock);
        fields(self).executing = false;
        fields(self).finished = true;
      },
      [&] {
        if (executed) didChangeValueForKey(self, "isExecuting"_ns);
      },
      [&] { didChangeValueForKey(self, "isFinished"_ns); });
}

void start(const NSOperation& self, SEL selector) {
  const auto refuse = [&self, selector](const char* why) {
    detail::raiseIn("NSInvalidArgumentException", self, selector, why);
  };
  if (self->isFinished()) refuse("the operation has finished");
  if (!self->isReady()) refuse("the operation is not ready");
  bool started = false;
  {
    const std::lock_guard guard(fields(self).lock);
    started = std::exchange(fields(self).started, true);
  }
  if (started) refuse("the operation is executing");
  if (self->isCancelled()) {
    finish(self);
    return;
  }
  takeSteps(
      [&] {
        announce(self, "isExecuting"_ns, [](Fields& f) { f.executing = true; });
        self->main();
      },
      [&] { finish(self); });
}

void cancel(const NSOperation& self) {
  if (self->isFinished() || self->isCancelled()) return;
  const bool becomesReady = !self->isReady();
  takeSteps(
      [&] {
        if (becomesReady) willChangeValueForKey(self, "isReady"_ns);
      },
      [&] { announce(self, "isCancelled"_ns, [](Fields& f) { f.cancelled = true; }); },
      [&] {
        if (becomesReady) didChangeValueForKey(self, "isReady"_ns);
      });
}

NSOperationQueuePriority roundedPriority(NSInteger priority) {
  if (priority >= NSOperationQueuePriorityVeryHigh) return NSOperationQueuePriorityVeryHigh;
  if (priority >= NSOperationQueuePriorityHigh) return NSOperationQueuePriorityHigh;
  if (priority <= NSOperationQueuePriorityVeryLow) return NSOperationQueuePriorityVeryLow;
  if (priority <= NSOperationQueuePriorityLow) return NSOperationQueuePriorityLow;
  return NSOperationQueuePriorityNormal;
}

constexpr MethodDefinition kMethods[] = {
    method<"start">([](const NSOperation& self, Cmd cmd) { start(self, cmd.selector); }),
    method<"main">([](const NSOperation&) {}),
    method<"cancel">([](const NSOperation& self) { cancel(self); }),
    method<"isReady">([](const NSOperation& self) {
      const std::lock_guard guard(fields(self).lock);
      return readyLocked(fields(self));
    }),
    method<"isExecuting">([](const NSOperation& self) { return read(self, &Fields::executing); }),
    method<"isFinished">([](const NSOperation& self) { return read(self, &Fields::finished); }),
    method<"isCancelled">([](const NSOperation& self) { return read(self, &Fields::cancelled); }),
    method<"isConcurrent">([](const NSOperation&) { return false; }),

    method<"addDependency:">([](const NSOperation& self, Cmd cmd, const NSOperation& other) {
      detail::requireArgument(self, cmd.selector, other);
      if (other == self) {
        detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                        "an operation cannot depend on itself");
      }
      addDependency(self, other);
    }),
    method<"removeDependency:">([](const NSOperation& self, Cmd cmd, const NSOperation& other) {
      detail::requireArgument(self, cmd.selector, other);
      forgetDependency(self, other, true);
    }),
    method<"dependencies">([](const NSOperation& self) -> NSArray {
      const NSMutableArray list = NSMutableArray::array();
      for (const NSOperation& other : read(self, &Fields::dependencies)) list->addObject(other);
      return list;
    }),

    method<"queuePriority">([](const NSOperation& self) { return read(self, &Fields::priority); }),
    method<"setQueuePriority:">([](const NSOperation& self, NSOperationQueuePriority priority) {
      const std::lock_guard guard(fields(self).lock);
      fields(self).priority = roundedPriority(priority);
    }),
    method<"completionBlock">(
        [](const NSOperation& self) { return read(self, &Fields::completion); }),
    method<"setCompletionBlock:">([](const NSOperation& self, const Block<void()>& block) {
      Block<void()> next = block;
      {
        const std::lock_guard guard(fields(self).lock);
        std::swap(next, fields(self).completion);
      }
      next = nullptr;  // the previous one ends here, with no lock held
    }),
    method<"waitUntilFinished">([](const NSOperation& self) {
      Fields& f = fields(self);
      std::unique_lock guard(f.lock);
      f.isSettled.wait(guard, [&f] { return f.settled; });
    }),

    // A subclass that keeps a state of its own announces it: that is how everybody learns of it.
    method<"didChangeValueForKey:">([](const NSOperation& self, const NSString& key) {
      takeSteps([&] { sendSuper<NSOperation, "didChangeValueForKey:">(self, key); },
                [&] {
                  if (key->isEqualToString("isFinished"_ns) && self->isFinished()) settle(self);
                },
                [&] {
                  if (!key->isEqualToString("isReady"_ns)) return;
                  const auto queue = read(self, &Fields::queue).lock();
                  if (queue) queue->reconsider(self);
                });
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "NSOperation", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSOperation> NSOperation::classPair{kDefinition};

bool internal::enterQueue(const NSOperation& operation,
                          const std::shared_ptr<OperationQueue>& queue) {
  if (operation->isExecuting() || operation->isFinished()) return false;
  Fields& f = fields(operation);
  const std::lock_guard guard(f.lock);
  if (f.started || std::exchange(f.queued, true)) return false;
  f.queue = queue;
  return true;
}

}  // namespace brindle
