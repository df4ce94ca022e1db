#include "Source/Internal/LocalizedWords.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <Brindle/BDBundleAdditions.h>
#include <Brindle/BDDateRange.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSBundle.h>

#include "Tests/Source/WordsTesting.h"

namespace brindle {
namespace {

// What was asked, in order.
std::vector<std::string>& asked() {
  static auto& steps = *new std::vector<std::string>();
  return steps;
}

NSBundle& answered() {
  static auto& bundle = *new NSBundle();
  return bundle;
}

std::string text(const NSString& string) { return string ? std::string(string) : "nil"; }

/// Until the end of the scope a method is another one.
template <class Body>
class Replaced {
 public:
  Replaced(Method method, const Body& body) : method_(method) {
    previous_ = method_setImplementation(method_, implementation(body).implementation);
  }
  ~Replaced() { method_setImplementation(method_, previous_); }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;

 private:
  Method method_;
  IMP previous_;
};

Method classOperation(SEL selector) { return class_getClassMethod(NSBundle::class_(), selector); }

class LocalizedWordsTest : public testing::Test {
 protected:
  void SetUp() override { asked().clear(); }
  void TearDown() override { answered() = nullptr; }
};

// By the identifier that its words are looked up with.
TEST_F(LocalizedWordsTest, TheLibrarysOwnBundleIsFound) {
  const NSBundle own = NSBundle::bundleWithIdentifier("org.brindle.Brindle"_ns);
  ASSERT_TRUE(own);
  EXPECT_EQ(std::string(own->bundleIdentifier()), "org.brindle.Brindle");
  EXPECT_EQ(NSBundle::bundleForClass(BDDateRange::class_()), own);
}

TEST_F(LocalizedWordsTest, AWordWithoutATranslationIsItself) {
  const NSBundle own = NSBundle::bundleWithIdentifier("org.brindle.Brindle"_ns);
  EXPECT_EQ(std::string(own->localizedStringForKey("no such word"_ns, ""_ns, nullptr)),
            "no such word");
}

TEST_F(LocalizedWordsTest, EveryWordOfAPhraseIsLookedUpAtEachCall) {
  const Method method =
      class_getInstanceMethod(NSBundle::class_(), selector<"localizedStringForKey:value:table:">());
  const Replaced replaced(method,
                          [](const NSBundle& self, const NSString& key, const NSString& value,
                             const NSString& table) -> NSString {
                            asked().push_back(text(self->bundleIdentifier()) + ": " + text(key) +
                                              ", '" + text(value) + "', " + text(table));
                            return key;
                          });
  const std::string own = "org.brindle.Brindle: ";
  for (int i = 0; i < 2; ++i) {
    asked().clear();
    EXPECT_EQ(text(BDDateRange::descriptionForUnit(BDTimeUnitWeek, -3)), "3 weeks ago");
    EXPECT_EQ(asked(), (std::vector<std::string>{own + "weeks, '', nil", own + "ago, '', nil",
                                                 own + "%i %@ %@, '', nil"}));
  }
}

TEST_F(LocalizedWordsTest, ThreeBundlesAreAskedForInTurn) {
  const Replaced first(
      classOperation(selector<"bundleWithIdentifier:">()),
      [](const Class& self, const NSString& identifier) -> NSBundle {
        asked().push_back(text(NSStringFromClass(self)) + " loaded " + text(identifier));
        return nullptr;
      });
  const Replaced second(
      classOperation(selector<"bundleWithIdentifier:loaded:">()),
      [](const Class& self, const NSString& identifier, bool* loaded) -> NSBundle {
        asked().push_back(text(NSStringFromClass(self)) + " searched " + text(identifier) +
                          (loaded == nullptr ? "" : " with a slot"));
        return answered();
      });
  const Replaced third(classOperation(selector<"bundleForClass:">()),
                       [](const Class&, const Class& cls) -> NSBundle {
                         asked().push_back("of " + text(NSStringFromClass(cls)));
                         return NSBundle::mainBundle();
                       });
  const std::vector<std::string> both{"NSBundle loaded org.brindle.Brindle",
                                      "NSBundle searched org.brindle.Brindle"};

  // Found by the search: its words are taken.
  const TemporaryFolder folder;
  std::ofstream(folder.path() / "Localizable.strings") << "days = sols;";
  answered() = NSBundle::bundleWithPath(NSString(folder.path().string()));
  EXPECT_EQ(text(BDDateRange::nameForPluralUnit(BDTimeUnitDay)), "sols");
  EXPECT_EQ(asked(), both);

  // Found nowhere: the bundle of the class that was asked, which may be a subclass.
  answered() = nullptr;
  const Class sub = objc_allocateClassPair(BDDateRange::class_(), "RangeOfAnotherBundle", 0);
  objc_registerClassPair(sub);
  asked().clear();
  EXPECT_EQ(text(send<"nameForPluralUnit:", NSString>(sub, BDTimeUnitDay)), "days");
  EXPECT_EQ(asked(), (std::vector<std::string>{both[0], both[1], "of RangeOfAnotherBundle"}));
}

}  // namespace
}  // namespace brindle
