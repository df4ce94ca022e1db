#include <Brindle/Platform/MethodChanges.h>

#include <dlfcn.h>

#include <string>

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

TEST(MethodChangesTest, TellsWhatWasChangedWhenAndFromWhere) {
  const Class cls = makeClass(NSObject::class_());
  const auto one = implementation([](const NSObject&) { return 1; });
  const auto two = implementation([](const NSObject&) { return 2; });
  const SEL count = sel_registerName("count");
  const SEL size = sel_registerName("size");
  const auto start = std::chrono::system_clock::now();
  class_addMethod(cls, count, one.implementation, one.types);
  class_replaceMethod(cls, size, two.implementation, two.types);
  method_setImplementation(class_getInstanceMethod(cls, count), two.implementation);
  method_exchangeImplementations(class_getInstanceMethod(cls, count),
                                 class_getInstanceMethod(cls, size));
  const std::vector<MethodChange> story = class_copyMethodChanges(cls);
  ASSERT_EQ(story.size(), 5u);
  using Kind = MethodChange::Kind;
  EXPECT_EQ(story[0].kind, Kind::kAdded);
  EXPECT_EQ(story[0].selector, count);
  EXPECT_EQ(story[0].before, nullptr);
  EXPECT_EQ(story[0].after, one.implementation);
  EXPECT_EQ(story[1].kind, Kind::kAdded);
  EXPECT_EQ(story[1].selector, size);
  EXPECT_EQ(story[2].kind, Kind::kReplaced);
  EXPECT_EQ(story[2].before, one.implementation);
  EXPECT_EQ(story[2].after, two.implementation);
  EXPECT_EQ(story[3].kind, Kind::kExchanged);
  EXPECT_EQ(story[4].selector, size);
  for (const MethodChange& change : story) {
    EXPECT_GE(change.when, start);
    EXPECT_LE(change.when, std::chrono::system_clock::now());
    Dl_info image{};
    ASSERT_NE(dladdr(change.from, &image), 0);
    EXPECT_EQ(std::string(image.dli_fname).find("libBrindle"), std::string::npos);
  }
}

TEST(MethodChangesTest, TheOutermostOriginCounts) {
  const Class cls = makeClass(NSObject::class_());
  const auto one = implementation([](const NSObject&) { return 1; });
  const int here = 0;
  const int inside = 0;
  {
    const ChangeOrigin origin(&here);
    const ChangeOrigin nested(&inside);
    class_addMethod(cls, sel_registerName("count"), one.implementation, one.types);
  }
  class_addMethod(cls, sel_registerName("size"), one.implementation, one.types);
  const std::vector<MethodChange> story = class_copyMethodChanges(cls);
  ASSERT_EQ(story.size(), 2u);
  EXPECT_EQ(story[0].from, &here);
  EXPECT_NE(story[1].from, &here);
}

TEST(MethodChangesTest, TheLatest64AreKept) {
  const Class cls = makeClass(NSObject::class_());
  const auto one = implementation([](const NSObject&) { return 1; });
  class_addMethod(cls, sel_registerName("count"), one.implementation, one.types);
  for (int i = 0; i < 100; ++i) {
    class_replaceMethod(cls, sel_registerName("count"), one.implementation, one.types);
  }
  const std::vector<MethodChange> story = class_copyMethodChanges(cls);
  ASSERT_EQ(story.size(), 64u);
  EXPECT_EQ(story.front().kind, MethodChange::Kind::kReplaced);
  EXPECT_EQ(class_getMethodChanges(cls), 101u);
  EXPECT_TRUE(class_copyMethodChanges(nullptr).empty());
}

}  // namespace
}  // namespace brindle
