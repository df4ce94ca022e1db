// What operations and their queues tell each other.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <unordered_map>
#include <utility>

#include <Brindle/Platform/NSOperationQueue.h>
#include <Brindle/Platform/Weak.h>

namespace brindle::internal {

/// A queue's state. It outlives the queue's object while there are operations in it. Nothing is
/// sent while the lock is held.
class OperationQueue : public std::enable_shared_from_this<OperationQueue> {
 public:
  explicit OperationQueue(const NSOperationQueue& queue) : queue_(queue) {}

  void add(const NSOperation& operation);
  /// Starts the operation, sooner or later, when it says that it is ready.
  void reconsider(const NSOperation& operation);
  /// Lets go of it.
  void finished(const NSOperation& operation);

  [[nodiscard]] NSArray operations();
  [[nodiscard]] NSUInteger count();
  [[nodiscard]] NSInteger limit();
  void setLimit(NSInteger limit);
  [[nodiscard]] bool isSuspended();
  void setSuspended(bool suspended);
  void waitUntilEmpty();

  /// The queue whose operation runs on this thread.
  static NSOperationQueue current();

 private:
  enum class State { waiting, ready, running };
  struct Member {
    NSOperation operation;
    State state = State::waiting;
    NSInteger priority = 0;
  };
  using Turn = std::pair<NSInteger, std::uint64_t>;  // higher priorities first, then by readiness

  void startReady();
  /// Whether the operation has been given one more to wait for since its turn came: it waits again.
  bool putBack(const NSOperation& operation);
  void run(const NSOperation& operation);
  bool mayStart() const;  // under the lock

  Weak<NSOperationQueue> queue_;
  std::mutex lock_;
  std::condition_variable empty_;
  std::map<std::uint64_t, Member> members_;  // in the order they were added
  std::unordered_map<ObjectRecord*, std::uint64_t> places_;
  std::map<Turn, std::uint64_t> ready_;
  std::shared_ptr<OperationQueue> self_;  // while there are members
  std::uint64_t lastPlace_ = 0;
  std::uint64_t lastTurn_ = 0;
  NSInteger limit_ = NSOperationQueueDefaultMaxConcurrentOperationCount;
  NSInteger running_ = 0;
  bool suspended_ = false;
};

/// Notes the queue in the operation. False when the operation was in one, runs or is finished.
bool enterQueue(const NSOperation& operation, const std::shared_ptr<OperationQueue>& queue);

}  // namespace brindle::internal
