// [example: task-source]
#include "Task.h"

#include <cstddef>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>

namespace todo {
namespace {

struct Fields {
  Field<NSString> title;
  bool isDone = false;
};
Fields& fields(const Task& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"taskWithTitle:">([](const ClassOf<Task>& self, const NSString& title) -> Task {
      Task task = self->new_();
      task->setTitle(title);
      return task;
    }),
    method<"title">([](const Task& self) -> NSString { return fields(self).title; }),
    method<"setTitle:">(
        [](const Task& self, const NSString& title) { fields(self).title = title->copy(); }),
    method<"isDone">([](const Task& self) { return fields(self).isDone; }),
    method<"setDone:">([](const Task& self, bool done) { fields(self).isDone = done; }),
    method<"line">([](const Task& self) -> NSString {
      return NSString::stringWithFormat("[%s] %@"_ns, self->isDone() ? "x" : " ", self->title());
    }),
    method<"description">([](const Task& self) -> NSString { return self->line(); }),
};
constexpr PropertyDefinition kProperties[] = {
    {"title", "T@\"NSString\",C,N,V_title"},
    {"done", "Tc,N,GisDone,V_isDone"},
};
constexpr IvarDefinition kVariables[] = {
    ivar<NSString>("_title", offsetof(Fields, title)),
    ivar<bool>("_isDone", offsetof(Fields, isDone)),
};
constexpr ClassDefinition kDefinition{.name = "Task",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Task> Task::classPair{kDefinition};

}  // namespace todo
// [end]
