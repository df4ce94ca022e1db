#include <Brindle/Platform/CivilDate.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSCalendar.h>

using namespace brindle;

namespace {

class InZone {
 public:
  explicit InZone(const NSString& name) : before_(NSTimeZone::defaultTimeZone()) {
    NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName(name));
  }
  ~InZone() { NSTimeZone::setDefaultTimeZone(before_); }
  InZone(const InZone&) = delete;
  InZone& operator=(const InZone&) = delete;

 private:
  NSTimeZone before_;
};

}  // namespace

TEST(CivilDate, Tour) {
  const InZone zone("America/New_York"_ns);
  const CivilDate day = civilDateAt(737460000);  // 2024-05-15 09:20 in New York
  EXPECT_EQ(day.year, 2024);
  EXPECT_EQ(day.month, 5);
  EXPECT_EQ(day.day, 15);
  EXPECT_EQ(day.weekday, 4);
  const CivilStart next = startOfCivilDate({day.year, day.month + 1, 1});
  EXPECT_EQ(next.instant, 738907200);
  EXPECT_EQ(next.date.month, 6);
}

TEST(CivilDate, AMissingDayIsTheNext) {
  const InZone zone("Pacific/Apia"_ns);
  EXPECT_EQ(startOfCivilDate({2011, 12, 30}).date.day, 31);
}

TEST(CivilDate, TheUsersWeek) {
  const NSCalendar calendar = NSCalendar::currentCalendar();
  calendar->setFirstWeekday(6);
  NSCalendar::setCurrentCalendar(calendar);
  EXPECT_EQ(currentCivilWeek().firstWeekday, 6);
  const NSCalendar other = NSCalendar::alloc()->initWithCalendarIdentifier(NSBuddhistCalendar);
  NSCalendar::setCurrentCalendar(other);
  EXPECT_FALSE(currentCivilWeek().gregorian);
  NSCalendar::setCurrentCalendar(nullptr);
  EXPECT_TRUE(currentCivilWeek().gregorian);
}

TEST(CivilDate, NowIsBetweenTwoReadings) {
  const double before = currentInstant();
  const double now = NSDate::date()->timeIntervalSinceReferenceDate();
  EXPECT_LE(before, now);
  EXPECT_LE(now, currentInstant());
}
