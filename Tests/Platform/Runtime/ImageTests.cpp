// Attaching a library: classes, categories, and the order of `load`.
#include <string>
#include <string_view>

#include <Brindle/Platform/Definition.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

std::string loaded;

#define LOG_LOAD(text) classMethod<"load">([](const Class&) { loaded += text " "; })

class LoadBase : public Interface<LoadBase, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<LoadBase> classPair;
};
class LoadQuiet : public Interface<LoadQuiet, LoadBase> {
 public:
  using Interface::Interface;
  static ClassPair<LoadQuiet> classPair;
};
class LoadLeaf : public Interface<LoadLeaf, LoadQuiet> {
 public:
  using Interface::Interface;
  static ClassPair<LoadLeaf> classPair;
};
class LoadAlone : public Interface<LoadAlone, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<LoadAlone> classPair;
};

constexpr MethodDefinition kBaseMethods[] = {
    LOG_LOAD("Base"),
    classMethod<"initialize">([](const Class&) { loaded += "initialize "; }),
    method<"replaced">([](const LoadBase&) { return 1; }),
    method<"untouched">([](const LoadBase&) { return 2; }),
    classMethod<"ofClass">([](const Class&) { return 3; }),
};
constexpr MethodDefinition kLeafMethods[] = {LOG_LOAD("Leaf")};
constexpr MethodDefinition kAloneMethods[] = {LOG_LOAD("Alone")};
constexpr ClassDefinition kBase{.name = "LoadBase", .methods = kBaseMethods};
constexpr ClassDefinition kQuiet{.name = "LoadQuiet"};
constexpr ClassDefinition kLeaf{.name = "LoadLeaf", .methods = kLeafMethods};
constexpr ClassDefinition kAlone{.name = "LoadAlone", .methods = kAloneMethods};

}  // namespace
constinit ClassPair<LoadBase> LoadBase::classPair{kBase};
constinit ClassPair<LoadQuiet> LoadQuiet::classPair{kQuiet};
constinit ClassPair<LoadLeaf> LoadLeaf::classPair{kLeaf};
constinit ClassPair<LoadAlone> LoadAlone::classPair{kAlone};
namespace {

constinit ProtocolRecord kLoaded{"LoadedProtocol"};
constexpr ProtocolRecord* kProtocols[] = {&kLoaded};
constexpr PropertyDefinition kProperties[] = {{"color", "T@\"NSString\",C,N,Vcolor"}};
constexpr MethodDefinition kOne[] = {
    LOG_LOAD("Base(One)"),
    method<"added">([](const LoadBase&) { return 10; }),
    method<"replaced">([](const LoadBase&) { return 11; }),
    classMethod<"ofClass">([](const Class&) { return 13; }),
};
constexpr MethodDefinition kTwo[] = {LOG_LOAD("Alone(Two)")};
constexpr CategoryDefinition kCategoryOne{.name = "One",
                                          .cls = &LoadBase::classPair.cls,
                                          .methods = kOne,
                                          .properties = kProperties,
                                          .protocols = kProtocols};
constexpr CategoryDefinition kCategoryTwo{
    .name = "Two", .cls = &LoadAlone::classPair.cls, .methods = kTwo};
constexpr const CategoryDefinition* kCategories[] = {&kCategoryOne, &kCategoryTwo};
constexpr ClassRecord* kClasses[] = {&LoadLeaf::classPair.cls, &LoadAlone::classPair.cls,
                                     &LoadQuiet::classPair.cls, &LoadBase::classPair.cls};

std::string names(Class cls) {
  std::string text;
  for (Method m : class_copyMethodList(cls))
    text += std::string(sel_getName(method_getName(m))) + " ";
  return text;
}

/// Attaches the library above, once for all tests here.
class ImageTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    registerClass(LoadBase::classPair);
    handle = class_getInstanceMethod(LoadBase::class_(), selector<"replaced">());
    EXPECT_EQ(names(LoadBase::class_()), "replaced untouched ");
    EXPECT_EQ(loaded, "") << "registering a class alone loads nothing";
    attachImage({.classes = kClasses, .categories = kCategories});
    order = loaded;
  }
  static inline Method handle = nullptr;
  static inline std::string order;
};

TEST_F(ImageTest, LoadRunsForClassesSuperclassesFirstThenForCategories) {
  EXPECT_EQ(order, "Base Leaf Alone Base(One) Alone(Two) ")
      << "each class's own, not replaced by a category's, and no initialize";
}

TEST_F(ImageTest, ClassesAreFoundByName) {
  for (std::string_view name : {"LoadBase", "LoadQuiet", "LoadLeaf", "LoadAlone"}) {
    EXPECT_TRUE(objc_getClass(std::string(name).c_str())) << name;
  }
}

TEST_F(ImageTest, ACategorysMethodsReplaceAndComeFirstInItsOrder) {
  EXPECT_EQ(names(LoadBase::class_()), "added replaced untouched ");
  const LoadLeaf leaf = LoadLeaf::new_();
  EXPECT_EQ((send<"added", int>(leaf)), 10);
  EXPECT_EQ((send<"replaced", int>(leaf)), 11);
  EXPECT_EQ((send<"untouched", int>(leaf)), 2);
  EXPECT_EQ((send<"ofClass", int>(LoadLeaf::class_())), 13);
}

TEST_F(ImageTest, AHandleStaysWhenACategoryReplacesItsMethod) {
  EXPECT_EQ(class_getInstanceMethod(LoadLeaf::class_(), selector<"replaced">()), handle);
  EXPECT_EQ(callImplementation<int>(method_getImplementation(handle), LoadBase::new_(),
                                    selector<"replaced">()),
            11);
}

TEST_F(ImageTest, ACategoryBringsPropertiesAndProtocols) {
  EXPECT_NE(class_getProperty(LoadLeaf::class_(), "color"), nullptr);
  EXPECT_EQ(class_conformsToProtocol(LoadBase::class_(), kLoaded), YES);
  EXPECT_TRUE(LoadLeaf::class_()->conformsToProtocol(kLoaded));
}

constexpr CategoryDefinition kOutdated{
    .version = kDefinitionVersion + 1, .name = "Outdated", .cls = &LoadBase::classPair.cls};
constexpr const CategoryDefinition* kOutdatedList[] = {&kOutdated};

TEST(ImageDeathTest, ACategoryOfAnotherLayoutIsRefused) {
  EXPECT_DEATH(attachImage({.categories = kOutdatedList}),
               "category Outdated was built for layout");
}

}  // namespace
}  // namespace brindle
