// What the guides say about blocks.
#include <string>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "TaskList.h"

namespace todo {
namespace {

TaskList groceries() {
  TaskList list = TaskList::new_();
  list->addTask(Task::taskWithTitle("milk"_ns));
  list->addTask(Task::taskWithTitle("bread"_ns));
  return list;
}

TEST(BlocksGuide, ALambdaAsAnArgument) {
  const TaskList list = groceries();
  // [example: block-argument]
  NSUInteger letters = 0;
  list->eachTask([&letters](const Task& task) { letters += task->title()->length(); });
  // [end]
  EXPECT_EQ(letters, 9U);
}

TEST(BlocksGuide, ABlockIsAnObject) {
  // [example: block-object]
  const Task milk = Task::taskWithTitle("milk"_ns);
  Block<NSString(NSInteger)> label = [milk](NSInteger number) -> NSString {  // keeps `milk`
    return NSString::stringWithFormat("%ld. %@"_ns, number, milk->title());
  };
  const NSString text = label(3);  // 3. milk
  const id object = label;         // retained, stored, associated like any object
  label = nullptr;
  // [end]
  EXPECT_EQ(std::string(text), "3. milk");
  EXPECT_TRUE(isa<NSBlock>(object));
  EXPECT_EQ(milk->retainCount(), 2U);
  EXPECT_ANY_THROW(label(1));
}

TEST(BlocksGuide, AKeptBlockDoesNotKeepItsKeeper) {
  // [example: block-weak]
  TaskList list = groceries();
  NSUInteger seen = 0;
  list->setChangeHandler([&seen, weak = Weak<TaskList>(list)] {
    if (const TaskList strong = weak.lock()) seen = strong->count();
  });
  list->addTask(Task::taskWithTitle("butter"_ns));  // seen is 3
  const Weak<TaskList> watch = list;
  list = nullptr;  // the list goes, and its block with it
  const bool isGone = watch.lock() == nullptr;
  // [end]
  EXPECT_EQ(seen, 3U);
  EXPECT_TRUE(isGone);
}

TEST(BlocksGuide, ACycleHasToBeCut) {
  TaskList list = groceries();
  list->setChangeHandler([list] { static_cast<void>(list->count()); });
  EXPECT_EQ(list->retainCount(), 2U) << "what the guide calls wrong";
  list->setChangeHandler(nullptr);
  EXPECT_EQ(list->retainCount(), 1U);
}

}  // namespace
}  // namespace todo
