// What the guides say about references.
#include <memory>
#include <sstream>
#include <string>
#include <unordered_set>
#include <vector>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"

namespace todo {
namespace {

TEST(ReferencesGuide, ReferencesOwn) {
  // [example: references]
  Task milk = Task::taskWithTitle("buy milk"_ns);  // one owner
  Task same = milk;                                // two
  milk = nullptr;                                  // one: the object lives on
  std::vector<Task> tasks = {same, Task::new_()};  // containers own what is in them
  const Weak<Task> weak = same;                    // does not own
  same = nullptr;
  tasks.clear();                  // the last owner: the object is gone
  const Task gone = weak.lock();  // nil
  // [end]
  EXPECT_FALSE(gone);
  EXPECT_FALSE(milk);
}

TEST(ReferencesGuide, NilPassesThrough) {
  // [example: nil]
  Task none;                                         // a reference is nil by default
  const NSString line = none->line();                // nil
  const NSUInteger length = none->line()->length();  // 0
  none->setDone(true);                               // nothing happens
  if (none) none->line();                            // asks whether there is an object
  const bool isNil = none == nullptr;
  // [end]
  EXPECT_FALSE(line);
  EXPECT_EQ(length, 0U);
  EXPECT_TRUE(isNil);
}

TEST(ReferencesGuide, NarrowingHasThreeVerbs) {
  // [example: narrowing]
  const id something = UrgentTask::alloc()->initWithLevel(2);  // wider needs nothing

  const bool isTask = isa<Task>(something);               // asks
  const NSString text = dynCast<NSString>(something);     // nil: it is no string
  const UrgentTask urgent = cast<UrgentTask>(something);  // checked: raises when it is none
  if (const Task task = dynCast<Task>(something)) task->setDone(true);
  // [end]
  EXPECT_TRUE(isTask);
  EXPECT_FALSE(text);
  EXPECT_TRUE(urgent->isDone());
  EXPECT_ANY_THROW(static_cast<void>(cast<NSString>(something)));
}

TEST(ReferencesGuide, EqualityAndText) {
  const NSString word = "milk";
  // [example: equality]
  const NSString a = NSString::stringWithFormat("%@ %d"_ns, word, 1);
  const NSString b = "milk 1"_ns;
  const bool sameObject = a == b;       // identity: false
  const bool sameText = a->isEqual(b);  // contents: true

  std::unordered_set<id, NSObjectHash, NSObjectEqual> words = {a, b};  // one member

  std::ostringstream out;
  out << b;  // any object: its description
  const std::string utf8(b);
  // [end]
  EXPECT_FALSE(sameObject);
  EXPECT_TRUE(sameText);
  EXPECT_EQ(words.size(), 1U);
  EXPECT_EQ(out.str(), utf8);
}

TEST(ReferencesGuide, AutoreleasePools) {
  // [example: pool]
  Weak<Task> weak;
  {
    AutoreleasePool pool;
    weak = Task::new_()->autorelease();  // kept by the pool alone
    weak.lock()->setDone(true);          // still there
  }
  const Task gone = weak.lock();  // nil: the pool is drained
  // [end]
  EXPECT_FALSE(gone);
}

// [example: out-slot]
/// The number in the text; when there is none 0, and `*problem` says why.
NSInteger parseCount(const NSString& text, NSString* problem) {
  const NSInteger number = text->integerValue();
  if (number == 0 && problem != nullptr) {
    *problem = NSString::stringWithFormat("\"%@\" is no count"_ns, text);
  }
  return number;
}
// [end]

TEST(ReferencesGuide, OutSlots) {
  // [example: out-slot-use]
  NSString problem = nullptr;
  const NSInteger count = parseCount("some"_ns, &problem);
  if (count == 0 && problem) problem = problem->capitalizedString();
  // [end]
  EXPECT_EQ(std::string(problem), "\"Some\" Is No Count");
  EXPECT_EQ(parseCount("7"_ns, nullptr), 7);
}

}  // namespace
}  // namespace todo
