#include <Brindle/Platform/NSCalendar.h>

#include <cstdlib>

#include <gtest/gtest.h>

using namespace brindle;

namespace {

constexpr NSCalendarUnit kDate = NSYearCalendarUnit | NSMonthCalendarUnit | NSDayCalendarUnit;
constexpr NSCalendarUnit kTime = NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit;

NSCalendar gregorianIn(const NSString& zone) {
  const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(NSGregorianCalendar);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  return calendar;
}

NSDateComponents dayOf(NSInteger year, NSInteger month, NSInteger day) {
  const NSDateComponents parts = NSDateComponents::alloc()->init();
  parts->setYear(year);
  parts->setMonth(month);
  parts->setDay(day);
  return parts;
}

}  // namespace

TEST(NSCalendar, Tour) {
  const NSCalendar calendar = gregorianIn("Asia/Tokyo"_ns);
  const NSDate date = NSDate::dateWithTimeIntervalSince1970(1715752800);  // 15:00 in Tokyo
  const NSDateComponents parts = calendar->components(kDate | kTime | NSWeekdayCalendarUnit, date);
  EXPECT_EQ(parts->year(), 2024);
  EXPECT_EQ(parts->month(), 5);
  EXPECT_EQ(parts->day(), 15);
  EXPECT_EQ(parts->hour(), 15);
  EXPECT_EQ(parts->weekday(), 4);
  EXPECT_TRUE(calendar->dateFromComponents(parts)->isEqual(date));
}

TEST(NSCalendar, FieldsThatNobodyAskedForStayUnset) {
  const NSDateComponents parts =
      gregorianIn("UTC"_ns)->components(NSMonthCalendarUnit, NSDate::date());
  EXPECT_NE(parts->month(), NSUndefinedDateComponent);
  EXPECT_EQ(parts->year(), NSUndefinedDateComponent);
  EXPECT_EQ(parts->era(), NSUndefinedDateComponent);
  EXPECT_EQ(parts->weekday(), NSUndefinedDateComponent);
  EXPECT_EQ(parts->hour(), NSUndefinedDateComponent);
}

TEST(NSCalendar, AWeekdayAmongTheFieldsNeverWins) {
  const NSDateComponents parts = dayOf(2024, 5, 15);
  parts->setWeekday(1);
  EXPECT_EQ(gregorianIn("UTC"_ns)->dateFromComponents(parts)->timeIntervalSince1970(), 1715731200);
}

TEST(NSCalendar, UnsetFieldsAreTheFirst) {
  const NSDateComponents parts = NSDateComponents::alloc()->init();
  parts->setYear(2024);
  EXPECT_EQ(gregorianIn("UTC"_ns)->dateFromComponents(parts)->timeIntervalSince1970(), 1704067200);
}

TEST(NSCalendar, YearsAreAstronomical) {
  const NSCalendar calendar = gregorianIn("UTC"_ns);
  const NSDate floor = calendar->dateFromComponents(dayOf(0, 0, 0));
  EXPECT_EQ(floor->timeIntervalSince1970(), -62170156800.0);
  const NSDateComponents parts = calendar->components(kDate | NSEraCalendarUnit, floor);
  EXPECT_EQ(parts->year(), -1);
  EXPECT_EQ(parts->month(), 11);
  EXPECT_EQ(parts->day(), 30);
  EXPECT_EQ(parts->era(), 0);
}

TEST(NSCalendar, ADayStartsWithItsFirstInstant) {
  const auto start = [](const NSString& zone, NSInteger y, NSInteger m, NSInteger d) {
    return gregorianIn(zone)->dateFromComponents(dayOf(y, m, d))->timeIntervalSince1970();
  };
  EXPECT_EQ(start("America/Sao_Paulo"_ns, 2018, 11, 4), 1541300400);
  EXPECT_EQ(start("America/Toronto"_ns, 1919, 3, 31), -1601753400);
  EXPECT_EQ(start("America/Havana"_ns, 2022, 11, 6), 1667707200);
}

TEST(NSCalendar, CalendarsWithErasKeepThem) {
  const NSCalendar japanese = NSCalendar::alloc()->initWithCalendarIdentifier(NSJapaneseCalendar);
  japanese->setTimeZone(NSTimeZone::timeZoneWithName("Asia/Tokyo"_ns));
  const NSDate showa = gregorianIn("Asia/Tokyo"_ns)->dateFromComponents(dayOf(1970, 5, 15));
  const NSDateComponents parts = japanese->components(kDate, showa);
  EXPECT_EQ(parts->year(), 45);
  EXPECT_TRUE(japanese->dateFromComponents(parts)->isEqual(showa));
}

TEST(NSCalendar, NamesOfCalendars) {
  for (const NSString& name : {NSGregorianCalendar, NSBuddhistCalendar, NSChineseCalendar,
                               NSHebrewCalendar, NSIslamicCalendar, NSIslamicCivilCalendar,
                               NSJapaneseCalendar, NSPersianCalendar, NSIndianCalendar}) {
    const NSCalendar calendar = NSCalendar::alloc()->initWithCalendarIdentifier(name);
    ASSERT_TRUE(calendar) << name;
    EXPECT_TRUE(calendar->calendarIdentifier()->isEqual(name));
  }
  EXPECT_FALSE(NSCalendar::alloc()->initWithCalendarIdentifier("mayan"_ns));
  EXPECT_FALSE(NSCalendar::alloc()->initWithCalendarIdentifier(nullptr));
}

TEST(NSCalendar, TheUsersComesFromTheEnvironmentUntilItIsSet) {
  const std::string before = std::getenv("LC_ALL") != nullptr ? std::getenv("LC_ALL") : "";
  setenv("LC_ALL", "th_TH.UTF-8", 1);
  NSCalendar::setCurrentCalendar(nullptr);
  EXPECT_TRUE(NSCalendar::currentCalendar()->calendarIdentifier()->isEqual(NSBuddhistCalendar));
  EXPECT_EQ(NSCalendar::currentCalendar()->firstWeekday(), 1U);
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_EQ(NSCalendar::currentCalendar()->firstWeekday(), 1U) << "read once";
  NSCalendar::setCurrentCalendar(nullptr);
  EXPECT_EQ(NSCalendar::currentCalendar()->firstWeekday(), 2U);
  const NSCalendar own = NSCalendar::currentCalendar();
  own->setFirstWeekday(7);
  EXPECT_EQ(NSCalendar::currentCalendar()->firstWeekday(), 2U) << "an object of the caller's own";
  NSCalendar::setCurrentCalendar(own);
  EXPECT_EQ(NSCalendar::currentCalendar()->firstWeekday(), 7U);
  setenv("LC_ALL", before.c_str(), 1);
  NSCalendar::setCurrentCalendar(nullptr);
}

TEST(NSCalendar, AFirstWeekdayIsOneToSeven) {
  const NSCalendar calendar = NSCalendar::currentCalendar();
  EXPECT_ANY_THROW(calendar->setFirstWeekday(0));
  EXPECT_ANY_THROW(calendar->setFirstWeekday(8));
  calendar->setLocale(NSLocale::alloc()->initWithLocaleIdentifier("ar_EG"_ns));
  EXPECT_EQ(calendar->firstWeekday(), 7U);
}

TEST(NSCalendar, YearsWithoutAnEraAreCountedInTheLatest) {
  const NSCalendar japanese = NSCalendar::alloc()->initWithCalendarIdentifier(NSJapaneseCalendar);
  japanese->setTimeZone(NSTimeZone::timeZoneWithName("Asia/Tokyo"_ns));
  // The sixth year of Reiwa is 2024.
  const NSDate expected = gregorianIn("Asia/Tokyo"_ns)->dateFromComponents(dayOf(2024, 5, 15));
  EXPECT_TRUE(japanese->dateFromComponents(dayOf(6, 5, 15))->isEqual(expected));
}

TEST(NSCalendar, NilIsNil) {
  EXPECT_FALSE(NSCalendar::currentCalendar()->components(kDate, nullptr));
  EXPECT_FALSE(NSCalendar::currentCalendar()->dateFromComponents(nullptr));
}

TEST(NSCalendar, EqualityCopyAndZone) {
  const NSCalendar a = gregorianIn("Asia/Tokyo"_ns);
  const NSCalendar copy = a->copy();
  EXPECT_TRUE(a->isEqual(copy));
  EXPECT_EQ(a->hash(), copy->hash());
  copy->setTimeZone(nullptr);
  EXPECT_FALSE(a->isEqual(copy));
  EXPECT_TRUE(copy->timeZone()->isEqual(NSTimeZone::defaultTimeZone()));
}

TEST(NSCalendar, TimesOfAnySizeAreTaken) {
  const NSDateComponents parts = dayOf(INT64_MIN + 1, INT64_MIN + 1, INT64_MIN + 1);
  parts->setHour(INT64_MIN + 1);
  parts->setMinute(INT64_MAX - 1);
  parts->setSecond(INT64_MAX - 1);
  EXPECT_TRUE(gregorianIn("Asia/Tokyo"_ns)->dateFromComponents(parts));
}
