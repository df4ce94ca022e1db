#include <Brindle/Platform/NSTimeZone.h>

#include <gtest/gtest.h>

using namespace brindle;

namespace {
NSDate january() { return NSDate::dateWithTimeIntervalSince1970(1704067200); }
NSDate july() { return NSDate::dateWithTimeIntervalSince1970(1719792000); }
}  // namespace

TEST(NSTimeZone, Tour) {
  const NSTimeZone zone = NSTimeZone::timeZoneWithName("Europe/Paris"_ns);
  EXPECT_EQ(zone->secondsFromGMTForDate(january()), 3600);
  EXPECT_EQ(zone->secondsFromGMTForDate(july()), 7200);
  EXPECT_EQ(std::string(zone->abbreviationForDate(july())), "CEST");
  EXPECT_TRUE(zone->isDaylightSavingTimeForDate(july()));
  EXPECT_FALSE(zone->isDaylightSavingTimeForDate(january()));
  EXPECT_EQ(std::string(zone->name()), "Europe/Paris");
}

TEST(NSTimeZone, UnknownNamesAreNil) {
  EXPECT_TRUE(NSTimeZone::timeZoneWithName("Atlantis/Port"_ns) == nullptr);
  EXPECT_TRUE(NSTimeZone::timeZoneForSecondsFromGMT(90000) == nullptr);
  EXPECT_ANY_THROW(NSTimeZone::timeZoneWithName(nullptr));
}

TEST(NSTimeZone, FixedOffsets) {
  EXPECT_EQ(NSTimeZone::timeZoneForSecondsFromGMT(-5400)->secondsFromGMT(), -5400);
}

TEST(NSTimeZone, TheDefaultCanBeSetAndGivenBack) {
  const NSTimeZone before = NSTimeZone::defaultTimeZone();
  const NSTimeZone tokyo = NSTimeZone::timeZoneWithName("Asia/Tokyo"_ns);
  NSTimeZone::setDefaultTimeZone(tokyo);
  EXPECT_TRUE(NSTimeZone::defaultTimeZone()->isEqual(tokyo));
  EXPECT_TRUE(NSTimeZone::localTimeZone()->isEqual(tokyo));
  NSTimeZone::setDefaultTimeZone(nullptr);
  EXPECT_TRUE(NSTimeZone::defaultTimeZone()->isEqual(NSTimeZone::systemTimeZone()));
  EXPECT_TRUE(NSTimeZone::defaultTimeZone()->isEqual(before));
}

TEST(NSTimeZone, EqualityIsThatOfTheRules) {
  const NSTimeZone a = NSTimeZone::timeZoneWithName("Europe/Paris"_ns);
  EXPECT_TRUE(a->isEqual(NSTimeZone::timeZoneWithName("Europe/Paris"_ns)));
  EXPECT_EQ(a->hash(), NSTimeZone::timeZoneWithName("Europe/Paris"_ns)->hash());
  EXPECT_FALSE(a->isEqual(NSTimeZone::timeZoneWithName("Europe/Berlin"_ns)));
  EXPECT_TRUE(a->copy() == a);
}
