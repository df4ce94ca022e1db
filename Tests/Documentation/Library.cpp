// [example: library]
// What is attached when this library (or program) is loaded.
#include <Brindle/Platform/Definition.h>

#include "TaskList.h"
#include "UrgentTask.h"

namespace todo {

extern const CategoryDefinition kWords;

namespace {

constexpr ClassRecord* kClasses[] = {
    &Task::classPair.cls,
    &UrgentTask::classPair.cls,
    &TaskList::classPair.cls,
};
constexpr const CategoryDefinition* kCategories[] = {&kWords};

[[gnu::constructor]] void attach() {
  attachImage({.classes = kClasses, .categories = kCategories});
}

}  // namespace
}  // namespace todo
// [end]
