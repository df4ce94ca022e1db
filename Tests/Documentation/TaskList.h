// Lists of tasks, which call blocks.
#pragma once

#include <Brindle/Platform/Block.h>

#include "Task.h"

namespace todo {

// [example: list-header]
/// Tasks in the order in which they were added. One thread at a time.
class TaskList : public Interface<TaskList, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<TaskList> classPair;

  NSUInteger count() const { return send<"count", NSUInteger>(*this); }
  /// Owns the task; tells the change handler. Ignores nil.
  void addTask(const Task& task) const { send<"addTask:">(*this, task); }
  /// Runs the block for each task that is in the list now.
  void eachTask(const BlockArg<void(const Task&)>& block) const { send<"eachTask:">(*this, block); }
  /// Keeps the block, to be run after each change; nil for none. A block that uses the list takes a
  /// `Weak<TaskList>` along: with an owning reference neither would ever go.
  void setChangeHandler(const BlockArg<void()>& block) const {
    send<"setChangeHandler:">(*this, block);
  }
};
// [end]

}  // namespace todo
