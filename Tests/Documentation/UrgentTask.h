// [example: urgent-header]
// Tasks that cannot wait.
#pragma once

#include "Task.h"

namespace todo {

/// A task with an urgency, which its line shows. One thread at a time.
class UrgentTask : public Interface<UrgentTask, Task> {
 public:
  using Interface::Interface;
  static ClassPair<UrgentTask> classPair;

  /// Initialises a new task with an urgency; `init` gives it 1.
  UrgentTask initWithLevel(NSInteger level) const {
    return send<"initWithLevel:", UrgentTask>(*this, level);
  }
  NSInteger level() const { return send<"level", NSInteger>(*this); }
  void setLevel(NSInteger level) const { send<"setLevel:">(*this, level); }
};

}  // namespace todo
// [end]
