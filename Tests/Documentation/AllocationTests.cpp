// What the guide to changing classes says about values on any object, `awake`, classes with one
// instance, messages that need no answer, and who changed what.
#include <string>

#include <Brindle/BDAssociatedValues.h>
#include <Brindle/BDAwake.h>
#include <Brindle/BDOnce.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/BDSafeMessengerProxy.h>
#include <Brindle/BDSingleton.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "Task.h"

namespace todo {
namespace {

// [example: typed-key]
constexpr AssociationKey<NSString> kNote;  // its address is the key: one variable, never a copy
constexpr AssociationKey<NSInteger> kVisits;
// [end]

TEST(AllocationGuide, ValuesOnAnyObject) {
  const Task task = Task::taskWithTitle("buy milk"_ns);
  // [example: typed-values]
  kNote.set(task, "the blue carton"_ns);
  kVisits.set(task, kVisits.get(task) + 1);
  const NSString note = kNote.get(task);
  // [end]
  EXPECT_EQ(std::string(note), "the blue carton");
  EXPECT_EQ(kVisits.get(task), 1);
}

int opened = 0;

// [example: awake]
/// A task whose subclasses need not remember to open it, whichever initialiser they write.
class Opened : public Interface<Opened, Task> {
 public:
  using Interface::Interface;
  static ClassPair<Opened> classPair;
};

constexpr MethodDefinition kOpenedMethods[] = {
    method<"awake">([](const Opened& self) {
      ++opened;  // self is initialised by now
      self->setTitle("untitled"_ns);
    }),
};
constexpr ClassDefinition kOpened{.name = "OpenedTask", .methods = kOpenedMethods};
// [end]

// [example: singleton]
/// There is one: `Settings::alloc()->init()` is always the same object.
class Settings : public Interface<Settings, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Settings> classPair;
};

constexpr ProtocolRecord* kSettingsProtocols[] = {&kBDSingleton};
constexpr ClassDefinition kSettings{.name = "TodoSettings", .protocols = kSettingsProtocols};
// [end]

}  // namespace

constinit ClassPair<Opened> Opened::classPair{kOpened};
constinit ClassPair<Settings> Settings::classPair{kSettings};

namespace {

TEST(AllocationGuide, Awake) {
  // [example: awake-use]
  const Opened task = Opened::alloc()->init();  // `awake` has run when `init` returns
  // [end]
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(std::string(task->title()), "untitled");
}

TEST(AllocationGuide, Singleton) {
  const Settings first = Settings::alloc()->init();
  EXPECT_EQ(first, Settings::alloc()->init());
}

TEST(AllocationGuide, Safely) {
  const Task task = Task::taskWithTitle("buy milk"_ns);
  // [example: safely]
  const NSString title = safely(task)->title();                            // buy milk
  const NSString colour = send<"colour", NSString>(safely(task));          // nil: no such method
  const int level = send<"priorityLevel", int>(safely(NSObject::new_()));  // 0
  // [end]
  EXPECT_EQ(std::string(title), "buy milk");
  EXPECT_FALSE(colour);
  EXPECT_EQ(level, 0);
}

TEST(AllocationGuide, Once) {
  int runs = 0;
  for (int i = 0; i < 3; ++i) {
    // [example: once]
    static NSInteger once = 0;
    do_once(&once, [&] { ++runs; });
    // [end]
  }
  EXPECT_EQ(runs, 1);
}

TEST(AllocationGuide, WhoChangedWhat) {
  const Class cls = objc_allocateClassPair(Task::class_(), "WatchedTask", 0);
  objc_registerClassPair(cls);
  class_replaceMethodImp(cls, selector<"line">(),
                         [](const Task& self) -> NSString { return self->title(); });
  std::string text;
  // [example: changes]
  for (const MethodChange& change : class_copyMethodChanges(cls)) {
    text += sel_getName(change.selector);
    text += change.kind == MethodChange::Kind::kReplaced ? " replaced\n" : " added\n";
  }
  // [end]
  EXPECT_EQ(text, "line added\nline replaced\n");
}

}  // namespace
}  // namespace todo
