#include "Platform/Foundation/Internal/OtherCalendars.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "Platform/Foundation/Internal/CivilTime.h"

using namespace brindle::internal;

TEST(OtherCalendars, Tour) {
  const CalendarFields fields = fieldsInCalendar("buddhist", dayNumber({2024, 5, 15}));
  EXPECT_EQ(fields.year, 2567);
  EXPECT_EQ(fields.month, 5);
  EXPECT_EQ(fields.day, 15);
  EXPECT_EQ(dayInCalendar("buddhist", fields), dayNumber({2024, 5, 15}));
}

TEST(OtherCalendars, NamesOfCalendars) {
  for (const char* name :
       {"buddhist", "japanese", "hebrew", "chinese", "persian", "islamic-civil"}) {
    EXPECT_TRUE(isCalendar(name)) << name;
  }
  for (const char* name : {"", "nonsense", "buddhist;currency=EUR", "x@y"}) {
    EXPECT_FALSE(isCalendar(name)) << name;
  }
}

TEST(OtherCalendars, EveryDayComesBackWithItsEra) {
  for (const char* name : {"buddhist", "japanese", "hebrew", "chinese", "persian", "roc"}) {
    for (std::int64_t day = dayNumber({1868, 10, 23}); day < dayNumber({2040, 1, 1}); day += 97) {
      ASSERT_EQ(dayInCalendar(name, fieldsInCalendar(name, day)), day) << name << ' ' << day;
    }
  }
}

TEST(OtherCalendars, FieldsOfAnySizeAreTaken) {
  for (const std::int64_t value : {INT64_MIN, INT64_MAX}) {
    dayInCalendar("hebrew", {value, value, value, value, true});
    dayInCalendar("buddhist", {0, value, value, value, false});
  }
}

TEST(OtherCalendars, WhatLocalesSay) {
  const struct {
    const char* locale;
    std::int64_t firstWeekday;
    const char* calendar;
  } cases[] = {
      {"en_US", 1, "gregorian"}, {"de_DE.UTF-8", 2, "gregorian"}, {"ar_EG", 7, "gregorian"},
      {"fa_IR", 7, "persian"},   {"th_TH", 1, "buddhist"},        {"C", 1, "gregorian"},
      {"POSIX", 1, "gregorian"}, {"C.UTF-8", 1, "gregorian"},     {"", 1, "gregorian"},
      {"ja_JP", 1, "gregorian"}, {"de_DE@euro", 2, "gregorian"},
  };
  for (const auto& c : cases) {
    const UserCalendar user = calendarOfLocale(c.locale);
    EXPECT_EQ(user.firstWeekday, c.firstWeekday) << c.locale;
    EXPECT_EQ(user.calendar, c.calendar) << c.locale;
  }
  EXPECT_EQ(calendarOfLocale("C").locale, "en_US_POSIX");
  calendarOfLocale(std::string(10000, 'x'));
}

TEST(OtherCalendars, TheFirstVariableThatIsNotEmptyCounts) {
  const std::string all = std::getenv("LC_ALL") != nullptr ? std::getenv("LC_ALL") : "";
  setenv("LC_ALL", "", 1);
  setenv("LC_TIME", "fa_IR.UTF-8", 1);
  setenv("LANG", "en_US.UTF-8", 1);
  EXPECT_EQ(userCalendar().locale, "fa_IR");
  unsetenv("LC_TIME");
  EXPECT_EQ(userCalendar().locale, "en_US");
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_EQ(userCalendar().firstWeekday, 2);
  setenv("LC_ALL", all.c_str(), 1);
}
