// What the guides say about changing methods while the program runs.
#include <atomic>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"

namespace todo {
namespace {

// [example: swizzle]
std::atomic<IMP> previousLine;

/// From now on the lines of all tasks are in upper case.
void shoutLines() {
  const Class cls = Task::class_();
  const TypedImplementation shouting = implementation([](const Task& self, Cmd cmd) -> NSString {
    const NSString line = callImplementation<NSString>(previousLine, self, cmd.selector);
    return line->uppercaseString();
  });
  // The slot first: another thread may send in between.
  previousLine = class_getMethodImplementation(cls, selector<"line">());
  class_replaceMethod(cls, selector<"line">(), shouting.implementation, shouting.types);
}
// [end]

TEST(SwizzleGuide, TheReplacementCallsThePrevious) {
  const UrgentTask urgent = UrgentTask::new_();
  urgent->setTitle("call home"_ns);
  EXPECT_EQ(std::string(urgent->line()), "[ ] call home (urgency 1)");
  shoutLines();
  EXPECT_EQ(std::string(urgent->line()), "[ ] CALL HOME (urgency 1)") << "through sendSuper too";
  EXPECT_EQ(std::string(urgent->description()), "[ ] CALL HOME (urgency 1)");
  // [example: unswizzle]
  method_setImplementation(class_getInstanceMethod(Task::class_(), selector<"line">()),
                           previousLine);
  // [end]
  EXPECT_EQ(std::string(urgent->line()), "[ ] call home (urgency 1)");
}

TEST(SwizzleGuide, AClassSideSwizzle) {
  static std::atomic<IMP> previous;
  static int made = 0;
  // [example: swizzle-class-side]
  // A class operation is a method of the meta-class.
  const Class meta = object_getClass(Task::class_());
  const TypedImplementation counting =
      implementation([](const ClassOf<Task>& self, Cmd cmd, const NSString& title) -> Task {
        ++made;
        return callImplementation<Task>(previous, self, cmd.selector, title);
      });
  previous = class_getMethodImplementation(meta, selector<"taskWithTitle:">());
  class_replaceMethod(meta, selector<"taskWithTitle:">(), counting.implementation, counting.types);
  // [end]
  EXPECT_EQ(std::string(Task::taskWithTitle("x"_ns)->title()), "x");
  EXPECT_EQ(made, 1);
  method_setImplementation(class_getClassMethod(Task::class_(), selector<"taskWithTitle:">()),
                           previous);
}

TEST(SwizzleGuide, ExchangedImplementations) {
  const Task task = Task::taskWithTitle("rest"_ns);
  // [example: exchange]
  const TypedImplementation quoted = implementation([](const Task& self) -> NSString {
    // After the exchange this name leads to the previous implementation.
    const NSString line = send<"todo_quotedLine", NSString>(self);
    return NSString::stringWithFormat("\"%@\""_ns, line);
  });
  class_addMethod(Task::class_(), selector<"todo_quotedLine">(), quoted.implementation,
                  quoted.types);
  const Method line = class_getInstanceMethod(Task::class_(), selector<"line">());
  const Method other = class_getInstanceMethod(Task::class_(), selector<"todo_quotedLine">());
  method_exchangeImplementations(line, other);
  // [end]
  EXPECT_EQ(std::string(task->line()), "\"[ ] rest\"");
  method_exchangeImplementations(line, other);
  EXPECT_EQ(std::string(task->line()), "[ ] rest");
}

TEST(SwizzleGuide, AClassMadeWhileTheProgramRuns) {
  // [example: class-pair]
  const Class calm = objc_allocateClassPair(Task::class_(), "CalmTask", 0);
  const TypedImplementation softly =
      implementation([](const Task& self) -> NSString { return self->title()->lowercaseString(); });
  class_addMethod(calm, selector<"line">(), softly.implementation, softly.types);
  objc_registerClassPair(calm);

  const Task task = ClassOf<Task>(calm)->taskWithTitle("Rest"_ns);
  const NSString line = task->line();     // rest
  object_setClass(task, Task::class_());  // an object may change its class
  const NSString plain = task->line();    // [ ] Rest
  // [end]
  EXPECT_EQ(std::string(line), "rest");
  EXPECT_EQ(std::string(plain), "[ ] Rest");
  EXPECT_EQ(objc_getClass("CalmTask"), calm);
}

}  // namespace
}  // namespace todo
