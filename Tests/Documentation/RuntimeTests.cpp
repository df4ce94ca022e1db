// What the guides say about associated objects, monitors, and the start of classes.
#include <string>
#include <thread>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"

namespace todo {
namespace {

// [example: association]
const char kNoteKey = 0;  // its address is the key

NSString note(const Task& task) {
  return cast<NSString>(objc_getAssociatedObject(task, &kNoteKey));
}
void setNote(const Task& task, const NSString& text) {
  objc_setAssociatedObject(task, &kNoteKey, text, OBJC_ASSOCIATION_COPY);
}
// [end]

TEST(RuntimeGuide, AssociatedObjects) {
  const Task task = Task::new_();
  EXPECT_FALSE(note(task));
  setNote(task, "in the red box"_ns);
  EXPECT_EQ(std::string(note(task)), "in the red box");
  setNote(task, nullptr);
  EXPECT_FALSE(note(task));
}

TEST(RuntimeGuide, Monitors) {
  const Task task = Task::taskWithTitle(""_ns);
  // [example: monitor]
  const auto addStars = [task] {
    for (int i = 0; i < 100; ++i) {
      const Synchronized inside(task);  // recursive; until the closing brace
      task->setTitle(task->title()->stringByAppendingString("*"_ns));
    }
  };
  std::thread other(addStars);
  addStars();
  other.join();
  // [end]
  EXPECT_EQ(task->title()->length(), 200U);
}

std::vector<std::string> started;

// [example: starting]
class Base : public Interface<Base, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Base> classPair;
};
class Leaf : public Interface<Leaf, Base> {
 public:
  using Interface::Interface;
  static ClassPair<Leaf> classPair;
};

constexpr MethodDefinition kBaseMethods[] = {
    classMethod<"load">([](const Class&) { started.emplace_back("load Base"); }),
    classMethod<"initialize">([](const Class& self) {
      started.push_back(std::string("initialize ") + class_getName(self));
    }),
};
constexpr MethodDefinition kLeafMethods[] = {
    classMethod<"load">([](const Class&) { started.emplace_back("load Leaf"); }),
};
constexpr ClassDefinition kBase{.name = "Base", .methods = kBaseMethods};
constexpr ClassDefinition kLeaf{.name = "Leaf", .methods = kLeafMethods};
// [end]

}  // namespace

constinit ClassPair<Base> Base::classPair{kBase};
constinit ClassPair<Leaf> Leaf::classPair{kLeaf};

namespace {

TEST(RuntimeGuide, LoadAndInitialize) {
  static constexpr ClassRecord* kClasses[] = {&Leaf::classPair.cls, &Base::classPair.cls};
  // [example: starting-order]
  attachImage({.classes = kClasses});  // load Base, load Leaf: superclasses first
  const Leaf leaf = Leaf::new_();      // initialize Base, initialize Leaf (inherited)
  const Leaf another = Leaf::new_();   // nothing: once for each class
  // [end]
  EXPECT_EQ(started, (std::vector<std::string>{"load Base", "load Leaf", "initialize Base",
                                               "initialize Leaf"}));
}

TEST(RuntimeGuide, ClassesByName) {
  // [example: by-name]
  const Class cls = objc_getClass("UrgentTask");  // nil when there is none
  const Task task = ClassOf<Task>(cls)->taskWithTitle("call home"_ns);
  const bool isUrgent = task->isMemberOfClass(UrgentTask::class_());
  // [end]
  EXPECT_TRUE(isUrgent);
}

// [example: fields]
struct Fields {
  Field<NSString> name;        // owned: an object
  Field<id> anything;          // owned: any object
  Weak<Task> parent;           // not owned
  std::vector<Task> children;  // owned, in a C++ container
  double weight = 1.5;         // a C++ value, with its default
};
// [end]

TEST(RuntimeGuide, FieldsHoldWhatCppHolds) {
  Fields fields;
  fields.name = "box"_ns;
  // [example: field-use]
  const NSUInteger length = fields.name->length();  // the name lives until the call is done
  const NSString name = fields.name;                // an owned copy
  fields.name = nullptr;
  // [end]
  EXPECT_EQ(length, 3U);
  EXPECT_TRUE(name);
  EXPECT_FALSE(fields.anything);
  EXPECT_FALSE(fields.parent.lock());
}

}  // namespace
}  // namespace todo
