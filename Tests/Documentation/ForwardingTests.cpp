// What the guides say about messages that nobody declared.
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSProxy.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"

namespace todo {

// [example: forwarding]
/// Answers `setX:` and `x` for every X: what was set, or nil.
class Record : public Interface<Record, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Record> classPair;
};

namespace {

struct RecordFields {
  std::map<std::string, id, std::less<>> values;  // under the setter's selector
};
RecordFields& fields(const Record& self) { return fieldsOf<RecordFields>(self); }

bool isSetter(std::string_view name) {
  return name.starts_with("set") && name.find(':') == name.size() - 1;
}

constexpr MethodDefinition kRecordMethods[] = {
    // Nil means: I do not answer that.
    method<"methodSignatureForSelector:">([](const Record& self, SEL s) -> NSMethodSignature {
      const std::string_view name = sel_getName(s);
      if (isSetter(name)) return NSMethodSignature::signatureWithObjCTypes("v@:@");
      if (name.find(':') == name.npos) return NSMethodSignature::signatureWithObjCTypes("@@:");
      return sendSuper<Record, "methodSignatureForSelector:", NSMethodSignature>(self, s);
    }),
    method<"forwardInvocation:">([](const Record& self, const NSInvocation& call) {
      std::string name = sel_getName(call->selector());
      if (isSetter(name)) {
        fields(self).values[name] = call->argument<id>(2);  // 0 is the receiver, 1 the selector
        return;
      }
      name = std::string("set") + static_cast<char>(name[0] - 'a' + 'A') + name.substr(1) + ":";
      const auto found = fields(self).values.find(name);
      if (found != fields(self).values.end()) call->setResult<id>(found->second);
    }),
};
constexpr ClassDefinition kRecord{
    .name = "Record", .methods = kRecordMethods, .fields = fieldsDefinition<RecordFields>()};

}  // namespace

constinit ClassPair<Record> Record::classPair{kRecord};
// [end]

// [example: proxy]
/// Stands for an object and notes what it is sent.
class Listener : public Interface<Listener, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Listener> classPair;

  /// A listener for the object. (A proxy has no `init`.)
  static Listener listenerFor(const id& target) {
    return send<"listenerFor:", Listener>(class_(), target);
  }
  /// The selectors, with a space behind each.
  NSString heard() const { return send<"heard", NSString>(*this); }
};

namespace {

struct ListenerFields {
  Field<id> target;
  std::string heard;
};
ListenerFields& fields(const Listener& self) { return fieldsOf<ListenerFields>(self); }

constexpr MethodDefinition kListenerMethods[] = {
    classMethod<"listenerFor:">([](const ClassOf<Listener>& self, const id& target) -> Listener {
      Listener listener = self->alloc();
      fields(listener).target = target;
      return listener;
    }),
    method<"heard">([](const Listener& self) -> NSString { return fields(self).heard; }),
    method<"methodSignatureForSelector:">([](const Listener& self, SEL s) -> NSMethodSignature {
      return send<"methodSignatureForSelector:", NSMethodSignature>(fields(self).target.get(), s);
    }),
    method<"forwardInvocation:">([](const Listener& self, const NSInvocation& call) {
      fields(self).heard += sel_getName(call->selector()) + std::string(" ");
      call->invokeWithTarget(fields(self).target);
    }),
};
constexpr ClassDefinition kListener{
    .name = "Listener", .methods = kListenerMethods, .fields = fieldsDefinition<ListenerFields>()};

}  // namespace

constinit ClassPair<Listener> Listener::classPair{kListener};
// [end]

// [example: forwarding-target]
/// A task that leaves to another object what tasks cannot do.
class HelpedTask : public Interface<HelpedTask, Task> {
 public:
  using Interface::Interface;
  static ClassPair<HelpedTask> classPair;
};

namespace {
constexpr MethodDefinition kHelpedMethods[] = {
    method<"forwardingTargetForSelector:">(
        [](const HelpedTask& self, SEL) -> id { return self->title(); }),
};
constexpr ClassDefinition kHelped{.name = "HelpedTask", .methods = kHelpedMethods};
}  // namespace

constinit ClassPair<HelpedTask> HelpedTask::classPair{kHelped};
// [end]

namespace {

TEST(ForwardingGuide, AnObjectThatAnswersEverything) {
  // [example: forwarding-use]
  const Record record = Record::new_();
  send<"setColour:">(record, "red"_ns);
  const NSString colour = send<"colour", NSString>(record);  // red
  const NSString size = send<"size", NSString>(record);      // nil: never set
  // [end]
  EXPECT_EQ(std::string(colour), "red");
  EXPECT_FALSE(size);
  EXPECT_FALSE(record->respondsToSelector(selector<"colour">()));
  EXPECT_THROW(send<"mix:with:">(record, "red"_ns, "blue"_ns), std::exception);
}

TEST(ForwardingGuide, AProxy) {
  // [example: proxy-use]
  const Listener listener = Listener::listenerFor(Task::taskWithTitle("rest"_ns));
  const Task task = uncheckedCast<Task>(listener);  // it will do for a task
  task->setDone(true);
  const NSString line = task->line();        // [x] rest
  const bool passes = isa<Task>(task);       // true: the target is asked
  const NSString heard = listener->heard();  // setDone: line isKindOfClass:
  // [end]
  EXPECT_EQ(std::string(line), "[x] rest");
  EXPECT_TRUE(passes);
  EXPECT_EQ(std::string(heard), "setDone: line isKindOfClass: ");
}

TEST(ForwardingGuide, AnotherReceiver) {
  // [example: forwarding-target-use]
  const HelpedTask task = HelpedTask::new_();
  task->setTitle("rest"_ns);
  const NSUInteger length = send<"length", NSUInteger>(task);  // of the title: 4
  // [end]
  EXPECT_EQ(length, 4U);
}

TEST(ForwardingGuide, AMessageAsAnObject) {
  // [example: invocation]
  const UrgentTask urgent = UrgentTask::new_();
  const SEL name = selector<"initWithLevel:">();
  const NSInvocation call =
      NSInvocation::invocationWithMethodSignature(urgent->methodSignatureForSelector(name));
  call->setSelector(name);
  call->setArgument(2, NSInteger{3});  // its own arguments begin at 2
  call->invokeWithTarget(urgent);
  const UrgentTask same = call->result<UrgentTask>();
  // [end]
  EXPECT_TRUE(same == urgent);
  EXPECT_EQ(urgent->level(), 3);
}

TEST(ForwardingGuide, NobodyAnswers) {
  std::string caught;
  // [example: unrecognized]
  try {
    send<"fly">(Task::new_());
  } catch (const std::exception& raised) {
    caught = raised.what();  // ends in: -[Task fly]: unrecognized selector sent to instance 0x...
  }
  // [end]
  EXPECT_NE(caught.find("-[Task fly]: unrecognized selector sent to instance 0x"), caught.npos)
      << caught;
}

}  // namespace
}  // namespace todo
