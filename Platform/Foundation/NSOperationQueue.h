// Runs operations on threads of its own: those that are ready, several at once.
//
//   NSOperationQueue queue = NSOperationQueue::new_();
//   queue->setMaxConcurrentOperationCount(2);
//   queue->addOperation(render);
//   queue->waitUntilAllOperationsAreFinished();
//
// Operations start in the order in which they become ready, higher priorities first. A queue owns
// its operations until they are finished, and works on when nobody refers to it any more. What an
// operation raises in a queue ends the program, as on any thread. Every operation here is safe on
// any thread; an operation that waits for its own queue waits for ever.
#pragma once

#include <Brindle/Platform/NSOperation.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

/// As many operations at once as the system finds right.
inline constexpr NSInteger NSOperationQueueDefaultMaxConcurrentOperationCount = -1;

class NSOperationQueue : public Interface<NSOperationQueue, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSOperationQueue> classPair;

  /// The queue whose operation this thread is running; nil elsewhere.
  static NSOperationQueue currentQueue() {
    return send<"currentQueue", NSOperationQueue>(class_());
  }

  /// Adds an operation. Nil, and one that is or was in a queue, executes or is finished, raise
  /// NSInvalidArgumentException.
  void addOperation(const NSOperation& operation) const { send<"addOperation:">(*this, operation); }
  /// Adds them in order; may wait until these are finished.
  void addOperations(const NSArray& operations, bool wait) const {
    send<"addOperations:waitUntilFinished:">(*this, operations, wait);
  }
  /// Those that are not finished, in the order they were added.
  NSArray operations() const { return send<"operations", NSArray>(*this); }
  NSUInteger operationCount() const { return send<"operationCount", NSUInteger>(*this); }

  /// How many may run at once; NSOperationQueueDefaultMaxConcurrentOperationCount at first. Zero
  /// starts none; below -1 raises NSInvalidArgumentException.
  NSInteger maxConcurrentOperationCount() const {
    return send<"maxConcurrentOperationCount", NSInteger>(*this);
  }
  void setMaxConcurrentOperationCount(NSInteger count) const {
    send<"setMaxConcurrentOperationCount:">(*this, count);
  }

  /// A suspended queue starts no operations; those that run go on.
  bool isSuspended() const { return send<"isSuspended", bool>(*this); }
  void setSuspended(bool suspended) const { send<"setSuspended:">(*this, suspended); }

  /// Sends `cancel` to all. They stay until they are finished.
  void cancelAllOperations() const { send<"cancelAllOperations">(*this); }
  /// Waits until the queue is empty.
  void waitUntilAllOperationsAreFinished() const {
    send<"waitUntilAllOperationsAreFinished">(*this);
  }

  /// For people; nil until it is set.
  NSString name() const { return send<"name", NSString>(*this); }
  void setName(const NSString& name) const { send<"setName:">(*this, name); }
};

}  // namespace brindle
