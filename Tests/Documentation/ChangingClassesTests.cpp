// What the guide says about changing classes while they run.
#include <string>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDSwizzle.h>
#include <Brindle/Platform/NSException.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"

namespace todo {
namespace {

/// A task class of a test's own, with a task in it.
struct Fresh {
  explicit Fresh(const char* name) : cls(objc_allocateClassPair(Task::class_(), name, 0)) {
    objc_registerClassPair(cls);
    task = ClassOf<Task>(cls)->taskWithTitle("buy milk"_ns);
  }
  Class cls;
  Task task;
};

std::string line(const Task& task) { return std::string(task->line()); }

TEST(ChangingClassesGuide, OwnMethods) {
  const Class urgent = UrgentTask::class_();
  // [example: first-level]
  const Method own = class_firstLevelMethod(urgent, selector<"line">());
  const Method inherited = class_firstLevelMethod(urgent, selector<"title">());  // null
  // [end]
  EXPECT_NE(own, nullptr);
  EXPECT_EQ(inherited, nullptr);
}

TEST(ChangingClassesGuide, PullingUp) {
  const Fresh fresh("PulledTask");
  const Class cls = fresh.cls;
  // [example: pull-up]
  const Method found = class_getInstanceMethod(cls, selector<"line">());  // Task's
  const Method own = class_pullUpInstanceMethod(cls, found);              // now one of its own
  const TypedImplementation short_ =
      implementation([](const Task& self) -> NSString { return self->title(); });
  method_setImplementation(own, short_.implementation);  // Task keeps its line
  // [end]
  EXPECT_EQ(line(fresh.task), "buy milk");
  EXPECT_EQ(line(Task::taskWithTitle("rest"_ns)), "[ ] rest");
}

TEST(ChangingClassesGuide, Replacing) {
  const Fresh fresh("ReplacedTask");
  const Class cls = fresh.cls;
  // [example: replace]
  const bool done = class_replaceMethodImp(
      cls, selector<"line">(), [](const Task& self) -> NSString { return self->title(); });
  // [end]
  EXPECT_TRUE(done);
  EXPECT_EQ(line(fresh.task), "buy milk");
}

// [example: exchange-swizzle]
/// From now on the lines of the class's tasks stand in brackets.
void bracketLines(Class cls) {
  const TypedImplementation bracketed = implementation([](const Task& self) -> NSString {
    const NSString before = send<"todo_bracketedLine", NSString>(self);  // the former code
    return NSString::stringWithFormat("(%@)"_ns, before);
  });
  class_addMethod(cls, selector<"todo_bracketedLine">(), bracketed.implementation, bracketed.types);
  swizzle(cls, selector<"line">(), selector<"todo_bracketedLine">());
}
// [end]

TEST(ChangingClassesGuide, Exchanging) {
  const Fresh fresh("BracketedTask");
  bracketLines(fresh.cls);
  EXPECT_EQ(line(fresh.task), "([ ] buy milk)");
}

// [example: store-swizzle]
IMP previousTitle;

/// From now on the titles of the class's tasks are in upper case.
void shoutTitles(Class cls) {
  swizzle(
      cls, selector<"title">(),
      [](const Task& self, Cmd cmd) -> NSString {
        return callImplementation<NSString>(previousTitle, self, cmd.selector)->uppercaseString();
      },
      &previousTitle);
}
// [end]

TEST(ChangingClassesGuide, Storing) {
  const Fresh fresh("ShoutingTask");
  shoutTitles(fresh.cls);
  EXPECT_EQ(line(fresh.task), "[ ] BUY MILK");
}

// [example: typed-slot]
ImplementationSlot<void(Task, const NSString&)> previousSetTitle;

/// From now on empty titles are refused.
void refuseEmptyTitles(Class cls) {
  swizzle(
      cls, selector<"setTitle:">(),
      [](const Task& self, Cmd cmd, const NSString& title) {
        if (title->length() > 0) previousSetTitle(self, cmd, title);
      },
      previousSetTitle);
}
// [end]

TEST(ChangingClassesGuide, TypedSlots) {
  const Fresh fresh("TitledTask");
  refuseEmptyTitles(fresh.cls);
  fresh.task->setTitle(""_ns);
  EXPECT_EQ(line(fresh.task), "[ ] buy milk");
  fresh.task->setTitle("rest"_ns);
  EXPECT_EQ(line(fresh.task), "[ ] rest");
}

ImplementationSlot<Task(ClassOf<Task>, const NSString&)> previousMaking;

TEST(ChangingClassesGuide, ClassOperations) {
  const Fresh fresh("CountedTask");
  const Class cls = fresh.cls;
  static int made = 0;
  // [example: class-side-swizzle]
  swizzleClassMethod(
      cls, selector<"taskWithTitle:">(),
      [](const ClassOf<Task>& self, Cmd cmd, const NSString& title) -> Task {
        ++made;
        return previousMaking(self, cmd, title);
      },
      previousMaking);
  // [end]
  EXPECT_EQ(line(ClassOf<Task>(cls)->taskWithTitle("rest"_ns)), "[ ] rest");
  EXPECT_EQ(made, 1);
}

TEST(ChangingClassesGuide, Tokens) {
  const Fresh fresh("SpiedTask");
  const Class cls = fresh.cls;
  const Task task = fresh.task;
  // [example: token]
  int lines = 0;
  {
    ImplementationSlot<NSString(Task)> previous;
    const SwizzleToken spying = scopedSwizzle(
        cls, selector<"line">(),
        [&](const Task& self, Cmd cmd) -> NSString {  // it may capture
          ++lines;
          return previous(self, cmd);
        },
        previous);
    task->line();
  }
  task->line();  // as before: nobody counts
  // [end]
  EXPECT_EQ(lines, 1);
}

TEST(ChangingClassesGuide, Caching) {
  const Fresh fresh("CachedTask");
  const Class cls = fresh.cls;
  const Task task = fresh.task;
  // [example: cache]
  class_cacheMethodImp(cls, selector<"line">());  // the first copy stays
  bracketLines(cls);
  const NSString now = task->line();
  const NSString then = send<"bddyn_line", NSString>(task);  // the copy is a method
  const IMP code = class_getCachedMethodImp(cls, selector<"line">());
  // [end]
  EXPECT_EQ(std::string(now), "([ ] buy milk)");
  EXPECT_EQ(std::string(then), "[ ] buy milk");
  EXPECT_EQ(code, class_getMethodImplementation(Task::class_(), selector<"line">()));
}

// [example: mix-in]
/// Mixed into a class of tasks: says what is done.
class Praise : public Interface<Praise, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Praise> classPair;
};

constexpr MethodDefinition kPraiseMethods[] = {
    method<"line">([](const Praise& self) -> NSString {
      const NSString former = send<"mixin_line", NSString>(self);  // the target's own
      const bool isDone = send<"isDone", bool>(self);
      return isDone ? former->stringByAppendingString(" - well done"_ns) : former;
    }),
    method<"praise">([](const Praise&) -> NSString { return "good"_ns; }),
};
constexpr ClassDefinition kPraise{.name = "Praise", .methods = kPraiseMethods};
// [end]

}  // namespace
constinit ClassPair<Praise> Praise::classPair{kPraise};
namespace {

TEST(ChangingClassesGuide, MixIns) {
  const Fresh fresh("PraisedTask");
  const Class cls = fresh.cls;
  const Task task = fresh.task;
  // [example: mix-in-use]
  class_mixIn(cls, Praise::class_());
  task->setDone(true);
  const NSString praised = task->line();                       // [x] buy milk - well done
  const NSString former = send<"mixin_line", NSString>(task);  // [x] buy milk
  const NSString added = send<"praise", NSString>(task);       // good
  // [end]
  EXPECT_EQ(std::string(praised), "[x] buy milk - well done");
  EXPECT_EQ(std::string(former), "[x] buy milk");
  EXPECT_EQ(std::string(added), "good");
  EXPECT_THROW(class_mixIn(cls, Praise::class_()), RaisedException);
}

}  // namespace
}  // namespace todo
