#include <Brindle/Platform/MethodChanges.h>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(MethodChangesTest, CountsWhereTheyHappen) {
  const Class super = makeClass(NSObject::class_());
  const Class sub = makeClass(super);
  const std::uint32_t before = class_getMethodChanges(super);
  const std::uint32_t below = class_getMethodChanges(sub);
  addMethod<"changes">(super, [](const NSObject&) { return 1; });
  const std::uint32_t added = class_getMethodChanges(super);
  EXPECT_NE(added, before);
  method_setImplementation(class_getInstanceMethod(sub, selector<"changes">()), nullptr);
  const std::uint32_t set = class_getMethodChanges(super);
  EXPECT_NE(set, added);
  EXPECT_EQ(class_getMethodChanges(sub), below);
  class_replaceMethod(super, selector<"changes">(), nullptr, "i16@0:8");
  EXPECT_NE(class_getMethodChanges(super), set);
  EXPECT_EQ(class_getMethodChanges(nullptr), 0u);
}

TEST(MethodChangesTest, AWatchSeesWhatHappensAfterItWasMade) {
  const Class cls = makeClass(NSObject::class_());
  const Class other = makeClass(NSObject::class_());
  addMethod<"watched">(cls, [](const NSObject&) { return 1; });
  MethodWatch watch{cls, other};
  MethodWatch ofOther{other};
  EXPECT_TRUE(watch.unchanged());
  makeClass(cls);
  addMethod<"unwatched">(makeClass(cls), [](const NSObject&) { return 1; });
  EXPECT_TRUE(watch.unchanged()) << "a subclass is another class";
  addMethod<"ofClass">(object_getClass(cls), [](const Class&) { return 1; });
  EXPECT_FALSE(watch.unchanged()) << "class operations count";
  EXPECT_TRUE(ofOther.unchanged());
  Method method = class_getInstanceMethod(other, selector<"watched">());
  EXPECT_EQ(method, nullptr);
  addMethod<"watched">(other, [](const NSObject&) { return 2; });
  EXPECT_FALSE(ofOther.unchanged());
  EXPECT_FALSE(watch.unchanged()) << "for good";
}

}  // namespace
}  // namespace brindle
