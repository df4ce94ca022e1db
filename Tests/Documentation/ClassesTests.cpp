// What the guides say about classes, subclasses, categories, properties and protocols.
#include <stdexcept>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

#include "UrgentTask.h"
#include "Words.h"

namespace todo {
namespace {

TEST(ClassesGuide, AClassAndASubclass) {
  // [example: class-use]
  const Task task = Task::taskWithTitle("buy milk"_ns);
  task->setDone(true);
  const NSString line = task->line();  // [x] buy milk

  const UrgentTask urgent = UrgentTask::alloc()->initWithLevel(3);
  urgent->setTitle("call home"_ns);
  const Task any = urgent;                  // a subclass is a C++ subclass
  const NSString urgentLine = any->line();  // [ ] call home (urgency 3)
  const UrgentTask made = UrgentTask::class_()->taskWithTitle("rest"_ns);  // an UrgentTask
  // [end]
  EXPECT_EQ(std::string(line), "[x] buy milk");
  EXPECT_EQ(std::string(urgentLine), "[ ] call home (urgency 3)");
  EXPECT_EQ(made->level(), 1);
  EXPECT_EQ(std::string(made->title()), "rest");
}

TEST(ClassesGuide, ACategory) {
  // [example: category-use]
  const NSUInteger words = wordCount("buy milk and bread"_ns);     // 4
  const NSUInteger none = wordCount(nullptr);                      // 0
  const NSString text = repeated(NSString::class_(), "ho"_ns, 3);  // ho ho ho
  // [end]
  EXPECT_EQ(words, 4U);
  EXPECT_EQ(none, 0U);
  EXPECT_EQ(std::string(text), "ho ho ho");
}

TEST(ClassesGuide, Sends) {
  const Task task = Task::taskWithTitle("buy milk"_ns);
  // [example: sends]
  const NSString title = task->title();                  // the typed sender of the header
  const NSString again = send<"title", NSString>(task);  // what that sender does
  send<"setTitle:">(task, "buy bread"_ns);               // void unless told otherwise
  const SEL name = sel_registerName("line");
  const NSString line = sendSelector<NSString>(task, name);  // a name known only at run time
  const id performed = task->performSelector(selector<"line">());
  const Task other = send<"taskWithTitle:", Task>(Task::class_(), "rest"_ns);  // to the class
  // [end]
  EXPECT_EQ(std::string(title), std::string(again));
  EXPECT_TRUE(line->isEqual(performed));
  EXPECT_EQ(std::string(line), "[ ] buy bread");
  EXPECT_EQ(std::string(other->title()), "rest");
}

#if BRINDLE_ASSERTIONS && defined(GTEST_HAS_DEATH_TEST)
TEST(ClassesGuideDeathTest, ASendOfOtherTypesStops) {
  EXPECT_DEATH(send<"setDone:">(Task::new_(), NSInteger{1}),
               "-\\[Task setDone:\\] was sent with the types .*, but its implementation has");
}
#endif

TEST(ClassesGuide, PropertiesTellAboutThemselves) {
  std::vector<std::string> described;
  // [example: properties]
  for (const objc_property_t property : class_copyPropertyList(Task::class_())) {
    described.push_back(std::string(property_getName(property)) + ": " +
                        property_getAttributes(property));
  }
  // title: T@"NSString",C,N,V_title    done: Tc,N,GisDone,V_isDone
  const Ivar variable = class_getInstanceVariable(Task::class_(), "_title");
  const char* encoding = ivar_getTypeEncoding(variable);  // @
  // [end]
  EXPECT_EQ(described, (std::vector<std::string>{"title: T@\"NSString\",C,N,V_title",
                                                 "done: Tc,N,GisDone,V_isDone"}));
  EXPECT_EQ(encoding[0], '@');
}

}  // namespace

// [example: protocol]
/// Things that can be put off: they answer `postponeByDays:`.
constinit ProtocolRecord kPostponing{"Postponing"};

class Chore : public Interface<Chore, Task> {
 public:
  using Interface::Interface;
  static ClassPair<Chore> classPair;
};

namespace {
constexpr ProtocolRecord* kChoreProtocols[] = {&kPostponing};
constexpr MethodDefinition kChoreMethods[] = {
    method<"postponeByDays:">([](const Chore& self, NSInteger days) {
      self->setTitle(self->title()->stringByAppendingFormat(", in %ld days"_ns, days));
    }),
};
constexpr ClassDefinition kChore{
    .name = "Chore", .methods = kChoreMethods, .protocols = kChoreProtocols};
}  // namespace

constinit ClassPair<Chore> Chore::classPair{kChore};
// [end]

namespace {

TEST(ClassesGuide, Protocols) {
  const Chore chore = Chore::new_();
  chore->setTitle("sweep"_ns);
  // [example: protocol-use]
  if (chore->conformsToProtocol(kPostponing)) send<"postponeByDays:">(chore, NSInteger{2});
  const bool optional = chore->respondsToSelector(selector<"postponeForEver">());  // false
  // [end]
  EXPECT_EQ(std::string(chore->title()), "sweep, in 2 days");
  EXPECT_FALSE(optional);
  EXPECT_FALSE(Task::new_()->conformsToProtocol(kPostponing));
}

// [example: dealloc-class]
class Ticket : public Interface<Ticket, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Ticket> classPair;
};

constexpr MethodDefinition kTicketMethods[] = {
    method<"dealloc">([](const Ticket& self) {
      sendSuper<Ticket, "dealloc">(self);  // last: `self` is no object any more
      throw std::runtime_error("the ticket was never used");
    }),
};
constexpr ClassDefinition kTicket{.name = "Ticket", .methods = kTicketMethods};
// [end]

}  // namespace

constinit ClassPair<Ticket> Ticket::classPair{kTicket};

namespace {

TEST(ClassesGuide, ARaiseOutOfADealloc) {
  std::string caught;
  // [example: dealloc-use]
  Ticket ticket = Ticket::new_();
  try {
    ticket = nullptr;  // the last owner: an assignment passes the raise on
  } catch (const std::exception& raised) {
    caught = raised.what();
  }
  // [end]
  EXPECT_EQ(caught, "the ticket was never used");
}

}  // namespace
}  // namespace todo
