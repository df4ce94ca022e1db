#include <Brindle/Platform/NSDate.h>

#include <cmath>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

using namespace brindle;

namespace {
NSDate at(double seconds) { return NSDate::dateWithTimeIntervalSinceReferenceDate(seconds); }
}  // namespace

/// A date that is always one day later than it was made.
class LateDate : public Interface<LateDate, NSDate> {
 public:
  using Interface::Interface;
  static ClassPair<LateDate> classPair;
};

namespace {
constexpr MethodDefinition kLateMethods[] = {
    method<"timeIntervalSinceReferenceDate">([](const LateDate& self) -> double {
      return 86400 + sendSuper<LateDate, "timeIntervalSinceReferenceDate", double>(self);
    }),
};
constexpr ClassDefinition kLateDefinition{.name = "LateDate", .methods = kLateMethods};
}  // namespace
constinit ClassPair<LateDate> LateDate::classPair{kLateDefinition};

TEST(NSDate, Tour) {
  const NSDate then = NSDate::dateWithTimeIntervalSince1970(1000000000);
  EXPECT_EQ(then->timeIntervalSinceReferenceDate(), 21692800);
  EXPECT_EQ(std::string(then->description()), "2001-09-09 01:46:40 +0000");
  EXPECT_EQ(then->dateByAddingTimeInterval(60)->timeIntervalSinceDate(then), 60);
  EXPECT_EQ(then->compare(NSDate::date()), NSOrderedAscending);
}

TEST(NSDate, NowIsTheClocksNow) {
  const auto before = std::chrono::system_clock::now();
  const NSDate date = NSDate::date();
  const NSDate made = NSDate::alloc()->init();
  const auto after = std::chrono::system_clock::now();
  for (const NSDate& now : {date, made}) {
    EXPECT_GE(now->timePoint() + std::chrono::milliseconds(1), before);
    EXPECT_LE(now->timePoint(), after);
  }
  EXPECT_NEAR(NSDate::dateWithTimeIntervalSinceNow(100)->timeIntervalSinceNow(), 100, 5);
}

TEST(NSDate, EarlierAndLaterOfEqualDatesIsTheReceiver) {
  const NSDate a = at(5);
  const NSDate b = at(5);
  const NSDate c = at(6);
  EXPECT_TRUE(a->earlierDate(b) == a);
  EXPECT_TRUE(a->laterDate(b) == a);
  EXPECT_TRUE(a->earlierDate(c) == a);
  EXPECT_TRUE(a->laterDate(c) == c);
  EXPECT_TRUE(c->earlierDate(a) == a);
  EXPECT_TRUE(a->earlierDate(nullptr) == a);
}

TEST(NSDate, EqualityAndHash) {
  EXPECT_TRUE(at(1.5)->isEqual(at(1.5)));
  EXPECT_EQ(at(1.5)->hash(), at(1.5)->hash());
  EXPECT_EQ(at(0.0)->hash(), at(-0.0)->hash());
  EXPECT_FALSE(at(1.5)->isEqual(at(1.25)));
  EXPECT_FALSE(at(1.5)->isEqual("date"_ns));
  EXPECT_FALSE(at(1.5)->isEqual(nullptr));
}

TEST(NSDate, NilComesFirst) {
  EXPECT_EQ(at(0)->compare(nullptr), NSOrderedDescending);
  EXPECT_TRUE(std::isnan(at(0)->timeIntervalSinceDate(nullptr)));
}

TEST(NSDate, ACopyIsTheDateItself) {
  const NSDate date = at(1);
  EXPECT_TRUE(date->copy() == date);
}

TEST(NSDate, ASubclassIsAskedForItsInstant) {
  const LateDate late =
      cast<LateDate>(send<"dateWithTimeIntervalSinceReferenceDate:", id>(LateDate::class_(), 0.0));
  EXPECT_EQ(late->timeIntervalSince1970(), NSTimeIntervalSince1970 + 86400);
  EXPECT_TRUE(late->isEqual(at(86400)));
  EXPECT_EQ(late->compare(at(86400)), NSOrderedSame);
  EXPECT_EQ(std::string(late->description()), "2001-01-02 00:00:00 +0000");
}

TEST(NSDate, Chrono) {
  using namespace std::chrono;
  const sys_time<milliseconds> point{milliseconds(1234567890123)};
  EXPECT_EQ(NSDate(point)->timePoint(), point);
  EXPECT_EQ(at(-0.0005 - NSTimeIntervalSince1970)->timePoint().time_since_epoch().count(), -1);
  EXPECT_EQ(at(HUGE_VAL)->timePoint(), sys_time<milliseconds>::max());
  EXPECT_EQ(at(-HUGE_VAL)->timePoint(), sys_time<milliseconds>::min());
  EXPECT_EQ(at(std::nan(""))->timePoint().time_since_epoch().count(), 0);
}

TEST(NSDate, DatesFarAwayAndNumbersThatAreNone) {
  EXPECT_EQ(std::string(NSDate::distantPast()->description()), "0001-01-01 00:00:00 +0000");
  EXPECT_EQ(std::string(NSDate::distantFuture()->description()), "4001-01-01 00:00:00 +0000");
  EXPECT_TRUE(NSDate::distantPast() == NSDate::distantPast());
  EXPECT_EQ(std::string(at(HUGE_VAL)->description()), "inf seconds from 2001");
  EXPECT_EQ(std::string(at(-63148464000)->description()), "-001-11-30 00:00:00 +0000");
}
