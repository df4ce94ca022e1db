#include <Brindle/Platform/NSDateComponents.h>

#include <gtest/gtest.h>

using namespace brindle;

TEST(NSDateComponents, Tour) {
  const NSDateComponents parts = NSDateComponents::alloc()->init();
  EXPECT_EQ(parts->year(), NSUndefinedDateComponent);
  parts->setYear(2024);
  parts->setMonth(13);
  parts->setDay(-1);
  EXPECT_EQ(parts->year(), 2024);
  EXPECT_EQ(parts->month(), 13);
  EXPECT_EQ(parts->day(), -1);
}

TEST(NSDateComponents, EveryFieldIsItsOwn) {
  const NSDateComponents p = NSDateComponents::alloc()->init();
  p->setEra(1);
  p->setYear(2);
  p->setMonth(3);
  p->setDay(4);
  p->setHour(5);
  p->setMinute(6);
  p->setSecond(7);
  p->setWeekday(8);
  p->setLeapMonth(true);
  EXPECT_EQ(p->era(), 1);
  EXPECT_EQ(p->year(), 2);
  EXPECT_EQ(p->month(), 3);
  EXPECT_EQ(p->day(), 4);
  EXPECT_EQ(p->hour(), 5);
  EXPECT_EQ(p->minute(), 6);
  EXPECT_EQ(p->second(), 7);
  EXPECT_EQ(p->weekday(), 8);
  EXPECT_TRUE(p->isLeapMonth());
}

TEST(NSDateComponents, ACopyIsEqualAndApart) {
  const NSDateComponents p = NSDateComponents::alloc()->init();
  p->setDay(4);
  const NSDateComponents copy = p->copy();
  EXPECT_TRUE(copy->isEqual(p));
  EXPECT_EQ(copy->hash(), p->hash());
  copy->setHour(1);
  EXPECT_FALSE(copy->isEqual(p));
  EXPECT_EQ(p->hour(), NSUndefinedDateComponent);
}
