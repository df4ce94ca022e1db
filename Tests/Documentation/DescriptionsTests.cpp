// The examples of the page on words for time.
#include <string>

#include <Brindle/BDDateRange.h>
#include <Brindle/BDRelativePhrases.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>
#include <gtest/gtest.h>

namespace todo {

using namespace brindle;

// [example: descriptions-subclass]
class SprintRange : public Interface<SprintRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<SprintRange> classPair;
};

constexpr MethodDefinition kSprintMethods[] = {
    classMethod<"nameForPluralUnit:">([](const ClassOf<SprintRange>& self, BDTimeUnit unit) {
      if (unit == BDTimeUnitWeek) return "sprints"_ns;
      return sendSuper<SprintRange, "nameForPluralUnit:", NSString>(self, unit);
    }),
};
constexpr ClassDefinition kSprintDefinition{.name = "SprintRange", .methods = kSprintMethods};
constinit ClassPair<SprintRange> SprintRange::classPair{kSprintDefinition};

NSString later() {
  return SprintRange::class_()->descriptionForUnit(BDTimeUnitWeek, 2);  // "2 sprints from now"
}
// [end]

namespace {

class Descriptions : public testing::Test {
 protected:
  void SetUp() override { NSLocale::setPreferredLanguages({"en"_ns}); }
  void TearDown() override { NSLocale::setPreferredLanguages(nullptr); }
};

TEST_F(Descriptions, WordsOfDateRanges) {
  // [example: descriptions-words]
  NSString unit = BDDateRange::nameForPluralUnit(BDTimeUnitWeek);        // "weeks"
  NSString past = BDDateRange::descriptionForUnit(BDTimeUnitWeek, -3);   // "3 weeks ago"
  NSString future = BDDateRange::descriptionForUnit(BDTimeUnitDay, 1);   // "1 day from now"
  NSString now = BDDateRange::descriptionForUnit(BDTimeUnitQuarter, 0);  // "this quarter"
  // [end]
  EXPECT_EQ(std::string(unit), "weeks");
  EXPECT_EQ(std::string(past), "3 weeks ago");
  EXPECT_EQ(std::string(future), "1 day from now");
  EXPECT_EQ(std::string(now), "this quarter");
}

TEST_F(Descriptions, WordsOfASubclass) { EXPECT_EQ(std::string(later()), "2 sprints from now"); }

TEST_F(Descriptions, PhrasesInTheLanguagesGrammar) {
  // [example: descriptions-phrases]
  std::string tomorrow = relativePhrase(BDTimeUnitDay, 1);  // "tomorrow", in the user's language
  NSLocale polish = NSLocale::alloc()->initWithLocaleIdentifier("pl"_ns);
  std::string three = relativePhrase(BDTimeUnitWeek, -3, polish);  // "3 tygodnie temu"
  std::string five = relativePhrase(BDTimeUnitWeek, -5, polish);   // "5 tygodni temu"
  std::string one = relativePhrase(BDTimeUnitDay, 1, polish, PhraseStyle::numeric);  // "za 1 dzień"
  // [end]
  EXPECT_EQ(tomorrow, "tomorrow");
  EXPECT_EQ(three, "3 tygodnie temu");
  EXPECT_EQ(five, "5 tygodni temu");
  EXPECT_EQ(one, "za 1 dzień");
}

}  // namespace
}  // namespace todo
