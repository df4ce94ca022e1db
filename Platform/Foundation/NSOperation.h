// A piece of work with a state: ready, executing, finished, cancelled.
//
//   class Render : public Interface<Render, NSOperation> ...    // overrides `main`
//   render->addDependency(load);
//   queue->addOperation(render);                                // runs when `load` is finished
//   render->waitUntilFinished();
//
// An operation runs once, by `start`: from an NSOperationQueue or by hand. It is ready when all it
// depends on is finished, or when it is cancelled: a cancelled operation is started too, and
// finishes without running `main`. Cancelling one that runs only marks it; its work may ask.
//
// The states can be observed under isReady, isExecuting, isFinished and isCancelled; observers are
// told on the thread that changes the state. A subclass that works on after `start` has returned
// overrides `start`, `isConcurrent`, `isExecuting` and `isFinished`, and announces the last two
// with `willChangeValueForKey:` and `didChangeValueForKey:`, as it does for an `isReady` of its
// own. All operations are safe on any thread.
#pragma once

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// Among operations that are ready, a queue starts those of higher priority first.
enum NSOperationQueuePriority : NSInteger {
  NSOperationQueuePriorityVeryLow = -8,
  NSOperationQueuePriorityLow = -4,
  NSOperationQueuePriorityNormal = 0,
  NSOperationQueuePriorityHigh = 4,
  NSOperationQueuePriorityVeryHigh = 8,
};

class NSOperation : public Interface<NSOperation, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSOperation> classPair;

  /// Runs `main` on this thread, unless the operation is cancelled, and finishes. Raises
  /// NSInvalidArgumentException when the operation is executing, finished or not ready. What `main`
  /// or an observer raises is passed on, after the operation has finished.
  void start() const { send<"start">(*this); }
  /// The work; a subclass overrides it. Does nothing here.
  void main() const { send<"main">(*this); }
  /// Marks the operation cancelled and makes it ready. Without effect when it is finished.
  void cancel() const { send<"cancel">(*this); }

  bool isReady() const { return send<"isReady", bool>(*this); }
  bool isExecuting() const { return send<"isExecuting", bool>(*this); }
  bool isFinished() const { return send<"isFinished", bool>(*this); }
  bool isCancelled() const { return send<"isCancelled", bool>(*this); }
  /// Whether it works on after `start` has returned; NO here.
  bool isConcurrent() const { return send<"isConcurrent", bool>(*this); }

  /// The operation will not be ready before `other` is finished, or cancelled itself. Nil, and the
  /// operation itself, raise NSInvalidArgumentException; a circle of operations is never ready.
  void addDependency(const NSOperation& other) const { send<"addDependency:">(*this, other); }
  void removeDependency(const NSOperation& other) const { send<"removeDependency:">(*this, other); }
  /// In the order they were added, finished ones included.
  NSArray dependencies() const { return send<"dependencies", NSArray>(*this); }

  /// Read when the operation becomes ready in its queue.
  NSOperationQueuePriority queuePriority() const {
    return send<"queuePriority", NSOperationQueuePriority>(*this);
  }
  /// Values between the named ones count as the named one nearer to normal.
  void setQueuePriority(NSOperationQueuePriority priority) const {
    send<"setQueuePriority:">(*this, priority);
  }

  /// Runs once, on the thread that finishes the operation, when it has finished; then it is nil.
  Block<void()> completionBlock() const { return send<"completionBlock", Block<void()>>(*this); }
  void setCompletionBlock(const BlockArg<void()>& block) const {
    send<"setCompletionBlock:">(*this, block);
  }

  /// Waits until the operation has finished.
  void waitUntilFinished() const { send<"waitUntilFinished">(*this); }
};

}  // namespace brindle
