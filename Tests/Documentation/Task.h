// [example: task-header]
// Things to do. A task has a title and is done or not.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace todo {
using namespace brindle;

/// One thing to do. One thread at a time.
class Task : public Interface<Task, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Task> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// A new task of the receiving class.
    Self taskWithTitle(const NSString& title) const {
      return send<"taskWithTitle:", Self>(*this, title);
    }
  };
  static Task taskWithTitle(const NSString& title) { return class_()->taskWithTitle(title); }

  /// Nil for a task that was given none.
  NSString title() const { return send<"title", NSString>(*this); }
  /// Copies the title.
  void setTitle(const NSString& title) const { send<"setTitle:">(*this, title); }
  bool isDone() const { return send<"isDone", bool>(*this); }
  void setDone(bool done) const { send<"setDone:">(*this, done); }
  /// The title, with a tick in front when the task is done.
  NSString line() const { return send<"line", NSString>(*this); }
};

}  // namespace todo
// [end]
