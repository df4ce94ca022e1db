// Implementations and the types that sends to them are checked against.
#include <Brindle/Platform/Implementation.h>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

int twice(const NSObject& object, int n) { return send<"twice:", int>(object, n); }

TEST(ImplementationTest, Tour) {
  const TypedImplementation code = implementation([](const NSObject&, int n) { return 2 * n; });
  EXPECT_STREQ(code.types, "i20@0:8i16");
  const NSObject object = NSObject::new_();
  EXPECT_EQ(callImplementation<int>(code.implementation, object, selector<"twice:">(), 21), 42);
}

TEST(ImplementationTest, AddressesComeBack) {
  const IMP imp = implementation([](const NSObject&) {}).implementation;
  EXPECT_EQ(detail::implementationAt(detail::implementationAddress(imp)), imp);
}

TEST(ImplementationTest, ABodyMayTakeItsSelector) {
  const Class cls = makeClass(NSObject::class_());
  const TypedImplementation code =
      implementation([](const NSObject&, Cmd cmd, int n) { return cmd.selector->name[0] + n; });
  const SEL other = uniqueSelector("zap:");
  class_addMethod(cls, selector<"twice:">(), code.implementation, code.types);
  class_addMethod(cls, other, code.implementation, code.types);
  const NSObject object = cast<NSObject>(send<"new", id>(cls));
  EXPECT_EQ(twice(object, 1), 't' + 1);
  EXPECT_EQ(sendSelector<int>(object, other, 2), 'z' + 2);
}

#if BRINDLE_ASSERTIONS
TEST(ImplementationDeathTest, SendsAreCheckedAgainstTheCodeNotTheText) {
  const Class cls = makeClass(NSObject::class_());
  const TypedImplementation code = implementation([](const NSObject&, double d) { return d; });
  // The text says int.
  class_addMethod(cls, selector<"twice:">(), code.implementation, "i20@0:8i16");
  const NSObject object = cast<NSObject>(send<"new", id>(cls));
  EXPECT_DEATH(twice(object, 1), "twice:. was sent with the types i20@0:8i16 .ii.");
  EXPECT_EQ((send<"twice:", double>(object, 1.5)), 1.5);
}

TEST(ImplementationDeathTest, ExchangedCodeTakesItsTypesAlong) {
  const Class cls = makeClass(NSObject::class_());
  addMethod<"twice:">(cls, [](const NSObject&, int n) { return 2 * n; });
  addMethod<"half:">(cls, [](const NSObject&, double d) { return d / 2; });
  const NSObject object = cast<NSObject>(send<"new", id>(cls));
  method_exchangeImplementations(class_getInstanceMethod(cls, selector<"twice:">()),
                                 class_getInstanceMethod(cls, selector<"half:">()));
  EXPECT_EQ((send<"half:", int>(object, 4)), 8);
  EXPECT_DEATH(twice(object, 1), "its implementation has .* .dd.");
}

TEST(ImplementationDeathTest, FieldsOfAnotherClass) {
  const NSObject stranger = NSObject::new_();
  const IMP tag = class_getMethodImplementation(Mortal::class_(), selector<"tag">());
  EXPECT_DEATH(callImplementation<int>(tag, stranger, selector<"tag">()),
               "a method of Mortal reached for its fields in an instance of NSObject");
}
#endif

}  // namespace
}  // namespace brindle
