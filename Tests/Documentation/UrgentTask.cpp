// [example: urgent-source]
#include "UrgentTask.h"

#include <Brindle/Platform/Definition.h>

namespace todo {
namespace {

struct Fields {
  NSInteger level = 1;
};
Fields& fields(const UrgentTask& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"initWithLevel:">([](const UrgentTask& self, NSInteger level) -> UrgentTask {
      UrgentTask task = self->init();
      if (task) fields(task).level = level;
      return task;
    }),
    method<"level">([](const UrgentTask& self) { return fields(self).level; }),
    method<"setLevel:">(
        [](const UrgentTask& self, NSInteger level) { fields(self).level = level; }),
    method<"line">([](const UrgentTask& self) -> NSString {
      const NSString line = sendSuper<UrgentTask, "line", NSString>(self);
      return line->stringByAppendingFormat(" (urgency %ld)"_ns, self->level());
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "UrgentTask", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<UrgentTask> UrgentTask::classPair{kDefinition};

}  // namespace todo
// [end]
