#include <Brindle/Platform/NSOperationQueue.h>

#include <utility>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableArray.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/OperationQueue.h"
#include "Platform/Foundation/Internal/WorkerThreads.h"

namespace brindle {
namespace internal {
namespace {

// More than any machine has use for; so many may wait for something at the same time.
constexpr NSInteger kDefaultLimit = 64;

constinit thread_local OperationQueue* runningQueue = nullptr;

}  // namespace

void OperationQueue::add(const NSOperation& operation) {
  {
    const std::lock_guard guard(lock_);
    const std::uint64_t place = ++lastPlace_;
    members_[place].operation = operation;
    places_[operation.record()] = place;
    self_ = shared_from_this();
  }
  reconsider(operation);
}

void OperationQueue::reconsider(const NSOperation& operation) {
  if (!operation->isReady()) return;
  const NSInteger priority = operation->queuePriority();
  {
    const std::lock_guard guard(lock_);
    const auto place = places_.find(operation.record());
    if (place == places_.end()) return;
    Member& member = members_[place->second];
    if (member.state != State::waiting) return;
    member.state = State::ready;
    ready_.emplace(Turn{-priority, ++lastTurn_}, place->second);
  }
  startReady();
}

bool OperationQueue::mayStart() const {
  if (suspended_ || ready_.empty()) return false;
  return running_ < (limit_ < 0 ? kDefaultLimit : limit_);
}

void OperationQueue::startReady() {
  std::vector<NSOperation> starting;
  {
    const std::lock_guard guard(lock_);
    while (mayStart()) {
      Member& member = members_[ready_.begin()->second];
      ready_.erase(ready_.begin());
      member.state = State::running;
      ++running_;
      starting.push_back(member.operation);
    }
  }
  for (const NSOperation& operation : starting) {
    runOnWorker([self = shared_from_this(), operation] { self->run(operation); });
  }
}

bool OperationQueue::putBack(const NSOperation& operation) {
  if (operation->isReady()) return false;
  {
    const std::lock_guard guard(lock_);
    const auto place = places_.find(operation.record());
    if (place == places_.end()) return true;
    members_[place->second].state = State::waiting;
    --running_;
  }
  reconsider(operation);  // it may have become ready meanwhile
  startReady();
  return true;
}

void OperationQueue::run(const NSOperation& operation) {
  const AutoreleasePool pool;
  if (putBack(operation)) return;
  runningQueue = this;
  operation->start();
  runningQueue = nullptr;
}

void OperationQueue::finished(const NSOperation& operation) {
  NSOperation dropped;
  std::shared_ptr<OperationQueue> self;
  {
    const std::lock_guard guard(lock_);
    const auto place = places_.find(operation.record());
    if (place == places_.end()) return;
    const auto member = members_.find(place->second);
    if (member->second.state == State::running) --running_;
    if (member->second.state == State::ready) {
      std::erase_if(ready_, [&](const auto& turn) { return turn.second == place->second; });
    }
    dropped = std::move(member->second.operation);
    members_.erase(member);
    places_.erase(place);
    if (members_.empty()) self = std::move(self_);
    if (members_.empty()) empty_.notify_all();
  }
  startReady();
}

NSArray OperationQueue::operations() {
  std::vector<NSOperation> all;
  {
    const std::lock_guard guard(lock_);
    for (const auto& [place, member] : members_) all.push_back(member.operation);
  }
  const NSMutableArray list = NSMutableArray::array();
  for (const NSOperation& operation : all) list->addObject(operation);
  return list;
}

NSUInteger OperationQueue::count() {
  const std::lock_guard guard(lock_);
  return members_.size();
}

NSInteger OperationQueue::limit() {
  const std::lock_guard guard(lock_);
  return limit_;
}

void OperationQueue::setLimit(NSInteger limit) {
  {
    const std::lock_guard guard(lock_);
    limit_ = limit;
  }
  startReady();
}

bool OperationQueue::isSuspended() {
  const std::lock_guard guard(lock_);
  return suspended_;
}

void OperationQueue::setSuspended(bool suspended) {
  {
    const std::lock_guard guard(lock_);
    suspended_ = suspended;
  }
  startReady();
}

void OperationQueue::waitUntilEmpty() {
  std::unique_lock guard(lock_);
  empty_.wait(guard, [this] { return members_.empty(); });
}

NSOperationQueue OperationQueue::current() {
  return runningQueue != nullptr ? runningQueue->queue_.lock() : nullptr;
}

}  // namespace internal

namespace {

struct Fields {
  std::shared_ptr<internal::OperationQueue> core;
  std::mutex nameLock;
  NSString name;
};
Fields& fields(const NSOperationQueue& self) { return fieldsOf<Fields>(self); }

/// The queue, kept alive for the call.
std::shared_ptr<internal::OperationQueue> core(const NSOperationQueue& self) {
  return fields(self).core;
}

void add(const NSOperationQueue& self, SEL selector, const NSOperation& operation) {
  detail::requireArgument(self, selector, operation);
  const auto queue = core(self);
  if (!internal::enterQueue(operation, queue)) {
    detail::raiseIn("NSInvalidArgumentException", self, selector,
                    "the operation is in a queue, executing or finished");
  }
  queue->add(operation);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"currentQueue">([](const Class&) { return internal::OperationQueue::current(); }),
    method<"init">([](const NSOperationQueue& self) -> id {
      const auto queue = sendSuper<NSOperationQueue, "init", NSOperationQueue>(self);
      if (queue) fields(queue).core = std::make_shared<internal::OperationQueue>(queue);
      return queue;
    }),
    method<"addOperation:">(
        [](const NSOperationQueue& self, Cmd cmd, const NSOperation& operation) {
          add(self, cmd.selector, operation);
        }),
    method<"addOperations:waitUntilFinished:">(
        [](const NSOperationQueue& self, const NSArray& operations, bool wait) {
          for (const id& operation : operations) self->addOperation(cast<NSOperation>(operation));
          if (!wait) return;
          for (const id& operation : operations) cast<NSOperation>(operation)->waitUntilFinished();
        }),
    method<"operations">([](const NSOperationQueue& self) { return core(self)->operations(); }),
    method<"operationCount">([](const NSOperationQueue& self) { return core(self)->count(); }),
    method<"maxConcurrentOperationCount">(
        [](const NSOperationQueue& self) { return core(self)->limit(); }),
    method<"setMaxConcurrentOperationCount:">(
        [](const NSOperationQueue& self, Cmd cmd, NSInteger count) {
          if (count < NSOperationQueueDefaultMaxConcurrentOperationCount) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                            "a count below -1: " + std::to_string(count));
          }
          core(self)->setLimit(count);
        }),
    method<"isSuspended">([](const NSOperationQueue& self) { return core(self)->isSuspended(); }),
    method<"setSuspended:">(
        [](const NSOperationQueue& self, bool suspended) { core(self)->setSuspended(suspended); }),
    method<"cancelAllOperations">([](const NSOperationQueue& self) {
      for (const id& operation : self->operations())
        uncheckedCast<NSOperation>(operation)->cancel();
    }),
    method<"waitUntilAllOperationsAreFinished">(
        [](const NSOperationQueue& self) { core(self)->waitUntilEmpty(); }),
    method<"name">([](const NSOperationQueue& self) -> NSString {
      const std::lock_guard guard(fields(self).nameLock);
      return fields(self).name;
    }),
    method<"setName:">([](const NSOperationQueue& self, const NSString& name) {
      NSString next = name->copy();  // outlives the lock, as what it is exchanged for
      const std::lock_guard guard(fields(self).nameLock);
      std::swap(next, fields(self).name);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "NSOperationQueue", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSOperationQueue> NSOperationQueue::classPair{kDefinition};

}  // namespace brindle
