// What the guide to key-value coding says.
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSNumber.h>
#include <gtest/gtest.h>

#include "Task.h"

namespace todo {
namespace {

// [example: key-value-relationship]
/// Somebody with a row of tasks.
class Person : public Interface<Person, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Person> classPair;
};

struct PersonFields {
  Field<NSString> _name = "Ann"_ns;
  std::vector<Task> tasks;
};
PersonFields& fields(const Person& self) { return fieldsOf<PersonFields>(self); }
auto place(const Person& self, NSUInteger index) {
  return fields(self).tasks.begin() + static_cast<std::ptrdiff_t>(index);
}

constexpr MethodDefinition kMethods[] = {
    method<"countOfTasks">(
        [](const Person& self) -> NSUInteger { return fields(self).tasks.size(); }),
    method<"objectInTasksAtIndex:">(
        [](const Person& self, NSUInteger index) -> Task { return fields(self).tasks.at(index); }),
    method<"insertObject:inTasksAtIndex:">(
        [](const Person& self, const Task& task, NSUInteger index) {
          fields(self).tasks.insert(place(self, index), task);
        }),
    method<"removeObjectFromTasksAtIndex:">(
        [](const Person& self, NSUInteger index) { fields(self).tasks.erase(place(self, index)); }),
    method<"validateName:error:">([](const Person&, NSString* name, NSError*) {
      if (!*name) return false;
      *name = (*name)->capitalizedString();
      return true;
    }),
};
constexpr IvarDefinition kVariables[] = {
    ivar<NSString>("_name", offsetof(PersonFields, _name)),
};
constexpr ClassDefinition kDefinition{.name = "TodoPerson",
                                      .methods = kMethods,
                                      .variables = kVariables,
                                      .fields = fieldsDefinition<PersonFields>()};
// [end]

}  // namespace

constinit ClassPair<Person> Person::classPair{kDefinition};

namespace {

TEST(KeyValueGuide, ReadAndWrite) {
  // [example: key-value-read]
  const Task task = Task::taskWithTitle("buy milk"_ns);
  const id title = valueForKey(task, "title"_ns);
  const auto done = valueForKey<NSNumber>(task, "done"_ns);    // by isDone; false
  const id length = valueForKeyPath(task, "title.length"_ns);  // the number 8
  setValue(task, NSNumber(true), "done"_ns);                   // by setDone:
  // [end]
  EXPECT_EQ(std::string(cast<NSString>(title)), "buy milk");
  EXPECT_FALSE(done->boolValue());
  EXPECT_EQ(cast<NSNumber>(length)->intValue(), 8);
  EXPECT_TRUE(task->isDone());
}

TEST(KeyValueGuide, Relationships) {
  const Person person = Person::new_();
  // [example: key-value-mutable]
  const NSMutableArray tasks = mutableArrayValueForKey(person, "tasks"_ns);
  tasks->addObject(Task::taskWithTitle("buy milk"_ns));  // by insertObject:inTasksAtIndex:
  tasks->insertObject(Task::taskWithTitle("rest"_ns), 0);
  tasks->removeLastObject();
  const auto same = valueForKey<NSArray>(person, "tasks"_ns);  // by countOfTasks, ...
  const NSUInteger count = same->count();                      // 1
  // [end]
  EXPECT_EQ(count, 1U);
}

TEST(KeyValueGuide, Collections) {
  const Task milk = Task::taskWithTitle("milk"_ns);
  const Task bread = Task::taskWithTitle("bread"_ns);
  milk->setDone(true);
  // [example: key-value-collections]
  const NSArray tasks = {milk, bread};
  const id titles = valueForKey(tasks, "title"_ns);                   // ["milk", "bread"]
  const id letters = valueForKeyPath(tasks, "@sum.title.length"_ns);  // 9
  const id longest = valueForKeyPath(tasks, "@max.title.length"_ns);  // 5
  setValue(tasks, NSNumber(true), "done"_ns);                         // all are done
  // [end]
  EXPECT_TRUE(titles->isEqual(NSArray{"milk"_ns, "bread"_ns}));
  EXPECT_EQ(cast<NSNumber>(letters)->intValue(), 9);
  EXPECT_EQ(cast<NSNumber>(longest)->intValue(), 5);
  EXPECT_TRUE(bread->isDone());
}

TEST(KeyValueGuide, Validation) {
  const Person person = Person::new_();
  // [example: key-value-validate]
  id name = "bo"_ns;
  NSError error = nullptr;
  if (validateValue(person, &name, "name"_ns, &error)) {  // by validateName:error:
    setValue(person, name, "name"_ns);                    // "Bo", in the variable _name
  }
  // [end]
  EXPECT_EQ(std::string(valueForKey<NSString>(person, "name"_ns)), "Bo");
}

}  // namespace
}  // namespace todo
