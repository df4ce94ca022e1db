// The right halves of the pairs in the coding style.
#include <algorithm>
#include <string>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "TaskList.h"
#include "UrgentTask.h"

namespace todo {

// [example: style-naming]
inline constexpr NSUInteger kMaximalTasks = 100;

class Timer : public Interface<Timer, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Timer> classPair;

  /// Seconds since `start`; 0 before it.
  double elapsedTime() const { return send<"elapsedTime", double>(*this); }
  void start() const { send<"start">(*this); }
  bool isRunning() const { return send<"isRunning", bool>(*this); }
};
// [end]

namespace {

// [example: style-parameters]
NSString joined(const NSString& first, const NSString& second) {
  return NSString::stringWithFormat("%@ and %@"_ns, first, second);
}
// [end]

// [example: style-fields]
struct TimerFields {
  double started = 0;
  bool isRunning = false;
  Field<NSString> label;
  Weak<NSObject> owner;
};
TimerFields& fields(const Timer& self) { return fieldsOf<TimerFields>(self); }
// [end]

double secondsNow() { return 12.5; }

// [example: style-table]
/// Whole bodies stand above the table; the table is read in one glance.
double elapsedTime(const Timer& self) {
  if (!self->isRunning()) return 0;
  return secondsNow() - fields(self).started;
}

constexpr MethodDefinition kMethods[] = {
    method<"start">([](const Timer& self) {
      fields(self).started = secondsNow();
      fields(self).isRunning = true;
    }),
    method<"isRunning">([](const Timer& self) { return fields(self).isRunning; }),
    method<"elapsedTime">([](const Timer& self) { return elapsedTime(self); }),
};
// [end]
constexpr ClassDefinition kDefinition{
    .name = "Timer", .methods = kMethods, .fields = fieldsDefinition<TimerFields>()};

}  // namespace

constinit ClassPair<Timer> Timer::classPair{kDefinition};

namespace {

TEST(StyleGuide, AClass) {
  const Timer timer = Timer::new_();
  EXPECT_EQ(timer->elapsedTime(), 0);
  timer->start();
  EXPECT_EQ(timer->elapsedTime(), 0) << "the clock stands still";
  EXPECT_TRUE(timer->isRunning());
  EXPECT_EQ(kMaximalTasks, 100U);
}

TEST(StyleGuide, Parameters) { EXPECT_EQ(std::string(joined("a"_ns, "b"_ns)), "a and b"); }

// [example: style-nil]
NSUInteger titleLength(const Task& task) { return task->title()->length(); }
// [end]

TEST(StyleGuide, Nil) {
  EXPECT_EQ(titleLength(nullptr), 0U);
  EXPECT_EQ(titleLength(Task::taskWithTitle("abc"_ns)), 3U);
}

// [example: style-narrowing]
void finish(const id& something) {
  if (const Task task = dynCast<Task>(something)) task->setDone(true);
}
// [end]

TEST(StyleGuide, Narrowing) {
  const Task task = Task::new_();
  finish(task);
  finish("text"_ns);
  EXPECT_TRUE(task->isDone());
}

// [example: style-loop]
std::vector<std::string> titles(const TaskList& list) {
  std::vector<std::string> result;
  list->eachTask([&result](const Task& task) { result.emplace_back(std::string(task->title())); });
  std::sort(result.begin(), result.end());
  return result;
}
// [end]

TEST(StyleGuide, Blocks) {
  const TaskList list = TaskList::new_();
  list->addTask(Task::taskWithTitle("rest"_ns));
  list->addTask(Task::taskWithTitle("call"_ns));
  EXPECT_EQ(titles(list), (std::vector<std::string>{"call", "rest"}));
}

TEST(StyleGuide, TypedSends) {
  // [example: style-send]
  const UrgentTask urgent = UrgentTask::new_();
  urgent->setLevel(3);
  send<"setLevel:">(urgent, NSInteger{3});  // where there is no member
  // [end]
  EXPECT_EQ(urgent->level(), 3);
}

TEST(StyleGuide, LettingGo) {
  // [example: style-end]
  Task task = Task::new_();
  const Weak<Task> weak = task;
  task = nullptr;  // now, if it is to end now
  const bool isGone = weak.lock() == nullptr;
  // [end]
  EXPECT_TRUE(isGone);
}

TEST(StyleGuide, KeptBlocks) {
  const TaskList list = TaskList::new_();
  // [example: style-kept-block]
  NSUInteger changes = 0;
  const Block<void()> count = [&changes] { ++changes; };
  list->setChangeHandler(count);
  // [end]
  list->addTask(Task::new_());
  EXPECT_EQ(changes, 1U);
}

// [example: style-tests]
TEST(TaskTest, Tour) {
  const Task task = Task::taskWithTitle("buy milk"_ns);
  EXPECT_EQ(std::string(task->line()), "[ ] buy milk");
  task->setDone(true);
  EXPECT_EQ(std::string(task->line()), "[x] buy milk");
}

TEST(TaskTest, ATaskWithoutATitleSaysSo) {
  EXPECT_EQ(std::string(Task::new_()->line()), "[ ] (null)");
}

TEST(TaskTest, LinesShowWhetherTheTaskIsDone) {
  const struct {
    const char* title;
    bool done;
    const char* line;
  } kCases[] = {
      {"a", false, "[ ] a"},
      {"a", true, "[x] a"},
      {"", true, "[x] "},
      {"%@", false, "[ ] %@"},
  };
  for (const auto& [title, done, line] : kCases) {
    const Task task = Task::taskWithTitle(title);
    task->setDone(done);
    EXPECT_EQ(std::string(task->line()), line);
  }
}
// [end]

}  // namespace
}  // namespace todo
