// What the tests of operations and queues share: operations that do what a function says.
#pragma once

#include <functional>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSOperation.h>

namespace brindle {

/// An operation that runs a function and notes what it announces.
class Job : public Interface<Job, NSOperation> {
 public:
  using Interface::Interface;
  static ClassPair<Job> classPair;

  static Job with(std::function<void()> work);
  /// "isExecuting+ isExecuting- ": the keys that were announced, before (+) and after (-).
  std::string announced() const;
};

}  // namespace brindle
