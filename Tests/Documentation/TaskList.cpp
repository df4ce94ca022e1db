#include "TaskList.h"

#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>

namespace todo {
namespace {

// [example: list-source]
struct Fields {
  std::vector<Task> tasks;
  Field<Block<void()>> changed;
};
Fields& fields(const TaskList& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"count">([](const TaskList& self) -> NSUInteger { return fields(self).tasks.size(); }),
    method<"addTask:">([](const TaskList& self, const Task& task) {
      if (!task) return;
      fields(self).tasks.push_back(task);
      if (fields(self).changed) fields(self).changed();
    }),
    method<"eachTask:">([](const TaskList& self, const Block<void(const Task&)>& block) {
      const std::vector<Task> now = fields(self).tasks;  // the block may add some
      for (const Task& task : now) block(task);
    }),
    method<"setChangeHandler:">([](const TaskList& self, const Block<void()>& block) {
      fields(self).changed = block;  // a block on the caller's stack is copied here
    }),
};
// [end]
constexpr ClassDefinition kDefinition{
    .name = "TaskList", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<TaskList> TaskList::classPair{kDefinition};

}  // namespace todo
