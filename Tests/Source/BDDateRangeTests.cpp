// Date ranges as values: fields, constructors, copying, archiving, equality, hash, metadata.
#include <Brindle/BDDateRange.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSMutableData.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

using namespace brindle;

namespace {

constexpr std::int64_t kLowest = INT64_MIN;
constexpr std::int64_t kHighest = INT64_MAX;

NSDate someDate() { return NSDate::dateWithTimeIntervalSinceReferenceDate(737460000.25); }

BDDateRange archivedAndBack(const BDDateRange& range) {
  return cast<BDDateRange>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(range)));
}

void expectFields(const BDDateRange& range, const NSDate& anchor, BDTimeUnit anchorUnit,
                  std::int64_t offset, BDTimeUnit offsetUnit, std::int64_t length,
                  BDTimeUnit lengthUnit) {
  EXPECT_TRUE(range->anchor() == anchor || range->anchor()->isEqual(anchor));
  EXPECT_EQ(range->anchorUnit(), anchorUnit);
  EXPECT_EQ(range->offset(), offset);
  EXPECT_EQ(range->offsetUnit(), offsetUnit);
  EXPECT_EQ(range->length(), length);
  EXPECT_EQ(range->lengthUnit(), lengthUnit);
}

}  // namespace

/// A range that notes the order in which its setters are called.
class NotingRange : public Interface<NotingRange, BDDateRange> {
 public:
  using Interface::Interface;
  static ClassPair<NotingRange> classPair;
};

namespace {

std::string calls;

constexpr MethodDefinition kNotingMethods[] = {
    method<"setAnchor:">([](const NotingRange& self, const NSDate& anchor) {
      calls += "anchor ";
      sendSuper<NotingRange, "setAnchor:">(self, anchor);
    }),
    method<"setOffset:">([](const NotingRange& self, std::int64_t offset) {
      calls += "offset ";
      sendSuper<NotingRange, "setOffset:">(self, offset);
    }),
    method<"setLength:">([](const NotingRange& self, std::int64_t length) {
      calls += "length ";
      sendSuper<NotingRange, "setLength:">(self, length);
    }),
    method<"setAnchorUnit:">([](const NotingRange& self, BDTimeUnit unit) {
      calls += "anchorUnit ";
      sendSuper<NotingRange, "setAnchorUnit:">(self, unit);
    }),
    method<"setOffsetUnit:">([](const NotingRange& self, BDTimeUnit unit) {
      calls += "offsetUnit ";
      sendSuper<NotingRange, "setOffsetUnit:">(self, unit);
    }),
    method<"setLengthUnit:">([](const NotingRange& self, BDTimeUnit unit) {
      calls += "lengthUnit ";
      sendSuper<NotingRange, "setLengthUnit:">(self, unit);
    }),
    classMethod<"keyPathsForValuesAffectingStart">(
        [](const Class&) -> NSSet { return NSSet{"anchor"_ns}; }),
};
constexpr ClassDefinition kNotingDefinition{.name = "NotingRange", .methods = kNotingMethods};

}  // namespace

constinit ClassPair<NotingRange> NotingRange::classPair{kNotingDefinition};

TEST(BDDateRange, Tour) {
  const NSDate now = NSDate::date();
  BDDateRange range =
      BDDateRange::dateRangeWithAnchor(now, BDTimeUnitWeek, -1, BDTimeUnitWeek, 7, BDTimeUnitDay);
  expectFields(range, now, BDTimeUnitWeek, -1, BDTimeUnitWeek, 7, BDTimeUnitDay);
  EXPECT_EQ(range->start()->compare(range->end()), NSOrderedAscending);
  BDDateRange copy = range->copy();
  EXPECT_FALSE(copy == range);
  EXPECT_TRUE(copy->isEqual(range));
  EXPECT_EQ(copy->hash(), range->hash());
  EXPECT_TRUE(archivedAndBack(range)->isEqual(range));
  copy->setLength(8);
  EXPECT_FALSE(copy->isEqual(range));
}

TEST(BDDateRange, BeginsAsTheDayOfNowWithoutLength) {
  expectFields(BDDateRange::alloc()->init(), nullptr, BDTimeUnitDay, 0, BDTimeUnitDay, 0,
               BDTimeUnitDay);
}

TEST(BDDateRange, ShortConstructorLeavesTheUnitsAtDay) {
  const NSDate date = someDate();
  expectFields(BDDateRange::dateRangeWithAnchor(date, -3, 5), date, BDTimeUnitDay, -3,
               BDTimeUnitDay, 5, BDTimeUnitDay);
  expectFields(BDDateRange::dateRangeWithAnchor(nullptr, 1, 2), nullptr, BDTimeUnitDay, 1,
               BDTimeUnitDay, 2, BDTimeUnitDay);
}

TEST(BDDateRange, ConstructorsUseTheReceivingClassAndItsSettersInOrder) {
  calls.clear();
  const NotingRange few = NotingRange::class_()->dateRangeWithAnchor(someDate(), 1, 2);
  EXPECT_EQ(calls, "anchor offset length ");
  EXPECT_TRUE(classOf(few) == NotingRange::class_());
  calls.clear();
  const NotingRange many = NotingRange::class_()->dateRangeWithAnchor(
      nullptr, BDTimeUnitWeek, 1, BDTimeUnitMonth, 2, BDTimeUnitYear);
  EXPECT_EQ(calls, "anchor anchorUnit offset offsetUnit length lengthUnit ");
  EXPECT_TRUE(classOf(many) == NotingRange::class_());
}

TEST(BDDateRange, SettersStoreWhateverTheyAreGiven) {
  BDDateRange range = BDDateRange::new_();
  for (const std::int64_t number : {kLowest, std::int64_t{-1}, std::int64_t{0}, kHighest}) {
    range->setOffset(number);
    range->setLength(number);
    EXPECT_EQ(range->offset(), number);
    EXPECT_EQ(range->length(), number);
  }
  for (const std::int32_t number : {INT32_MIN, -1, 5, INT32_MAX}) {
    const auto unit = static_cast<BDTimeUnit>(number);
    range->setAnchorUnit(unit);
    range->setOffsetUnit(unit);
    range->setLengthUnit(unit);
    EXPECT_EQ(range->anchorUnit(), unit);
    EXPECT_EQ(range->offsetUnit(), unit);
    EXPECT_EQ(range->lengthUnit(), unit);
  }
}

TEST(BDDateRange, HasTheStatedPropertyAttributes) {
  const std::pair<const char*, const char*> expected[] = {{"anchor", "T@\"NSDate\",&,Vanchor"},
                                                          {"offset", "Tq,Voffset"},
                                                          {"length", "Tq,Vlength"},
                                                          {"anchorUnit", "Ti,VanchorUnit"},
                                                          {"offsetUnit", "Ti,VoffsetUnit"},
                                                          {"lengthUnit", "Ti,VlengthUnit"}};
  const std::vector<objc_property_t> list = class_copyPropertyList(BDDateRange::class_());
  ASSERT_EQ(list.size(), std::size(expected));
  for (std::size_t i = 0; i < list.size(); ++i) {
    EXPECT_STREQ(property_getName(list[i]), expected[i].first);
    EXPECT_STREQ(property_getAttributes(list[i]), expected[i].second);
    EXPECT_TRUE(class_getInstanceVariable(BDDateRange::class_(), expected[i].first) != nullptr);
  }
}

TEST(BDDateRange, CalculateHasTheStatedBlockType) {
  const Block<id(const NSDate&, const NSDate&)> block = [](const NSDate& a, const NSDate&) -> id {
    return a;
  };
  EXPECT_STREQ(static_cast<detail::BlockRecord*>(block.record())->operations->types, "@24@?0@8@16");
  EXPECT_STREQ(method_getTypeEncoding(
                   class_getInstanceMethod(BDDateRange::class_(), selector<"add:in:to:">())),
               "@36@0:8q16i24@28");
}

TEST(BDDateRange, AdoptsCopyingAndCoding) {
  EXPECT_TRUE(BDDateRange::class_()->conformsToProtocol(kNSCopying));
  EXPECT_TRUE(BDDateRange::class_()->conformsToProtocol(kNSCoding));
}

TEST(BDDateRange, KeyPathsOfStartAreTheSixProperties) {
  const NSSet keys = BDDateRange::class_()->keyPathsForValuesAffectingStart();
  EXPECT_TRUE(keys->isEqual(NSSet{"anchor"_ns, "offset"_ns, "length"_ns, "anchorUnit"_ns,
                                  "offsetUnit"_ns, "lengthUnit"_ns}));
  EXPECT_TRUE(BDDateRange::class_()->keyPathsForValuesAffectingEnd()->isEqual(keys));
}

TEST(BDDateRange, KeyPathsOfEndAskTheReceivingClass) {
  EXPECT_TRUE(NotingRange::class_()->keyPathsForValuesAffectingEnd()->isEqual(NSSet{"anchor"_ns}));
}

TEST(BDDateRange, ACopyOfASubclassIsAPlainRangeWithTheSameAnchorObject) {
  const NotingRange range = NotingRange::class_()->dateRangeWithAnchor(
      someDate(), BDTimeUnitYear, -4, BDTimeUnitQuarter, 5, BDTimeUnitMonth);
  const BDDateRange copy = cast<BDDateRange>(send<"copy", id>(range));
  EXPECT_TRUE(object_getClass(copy) == BDDateRange::class_());
  EXPECT_TRUE(copy->anchor() == range->anchor());
  EXPECT_TRUE(copy->isEqual(range));
}

TEST(BDDateRange, EqualityIsStructural) {
  const NSDate date = someDate();
  const auto make = [&](const NSDate& a, BDTimeUnit au, std::int64_t o, BDTimeUnit ou,
                        std::int64_t l, BDTimeUnit lu) {
    return BDDateRange::dateRangeWithAnchor(a, au, o, ou, l, lu);
  };
  const BDDateRange base = make(date, BDTimeUnitDay, 1, BDTimeUnitDay, 7, BDTimeUnitDay);
  EXPECT_TRUE(base->isEqual(base));
  EXPECT_TRUE(base->isEqual(make(date, BDTimeUnitDay, 1, BDTimeUnitDay, 7, BDTimeUnitDay)));
  // An equal anchor that is another object.
  EXPECT_TRUE(base->isEqual(make(someDate(), BDTimeUnitDay, 1, BDTimeUnitDay, 7, BDTimeUnitDay)));
  EXPECT_FALSE(base->isEqual(make(date, BDTimeUnitWeek, 1, BDTimeUnitDay, 7, BDTimeUnitDay)));
  EXPECT_FALSE(base->isEqual(make(date, BDTimeUnitDay, 2, BDTimeUnitDay, 7, BDTimeUnitDay)));
  EXPECT_FALSE(base->isEqual(make(date, BDTimeUnitDay, 1, BDTimeUnitWeek, 7, BDTimeUnitDay)));
  EXPECT_FALSE(base->isEqual(make(date, BDTimeUnitDay, 1, BDTimeUnitDay, 8, BDTimeUnitDay)));
  EXPECT_FALSE(base->isEqual(make(date, BDTimeUnitDay, 1, BDTimeUnitDay, 7, BDTimeUnitWeek)));
  // Offsets that agree in their low 32 bits.
  EXPECT_FALSE(make(date, BDTimeUnitDay, 1, BDTimeUnitDay, 0, BDTimeUnitDay)
                   ->isEqual(make(date, BDTimeUnitDay, (std::int64_t{1} << 32) + 1, BDTimeUnitDay,
                                  0, BDTimeUnitDay)));
}

TEST(BDDateRange, SevenDaysAndOneWeekAreUnequalRangesOfTheSameDates) {
  const NSDate date = someDate();
  const BDDateRange days =
      BDDateRange::dateRangeWithAnchor(date, BDTimeUnitDay, 0, BDTimeUnitDay, 7, BDTimeUnitDay);
  const BDDateRange week =
      BDDateRange::dateRangeWithAnchor(date, BDTimeUnitDay, 0, BDTimeUnitDay, 1, BDTimeUnitWeek);
  EXPECT_TRUE(days->end()->isEqual(week->end()));
  EXPECT_FALSE(days->isEqual(week));
}

TEST(BDDateRange, AMissingAnchorEqualsOnlyAMissingAnchor) {
  const BDDateRange none = BDDateRange::dateRangeWithAnchor(nullptr, 1, 2);
  const BDDateRange some = BDDateRange::dateRangeWithAnchor(someDate(), 1, 2);
  EXPECT_TRUE(none->isEqual(BDDateRange::dateRangeWithAnchor(nullptr, 1, 2)));
  EXPECT_EQ(none->hash(), BDDateRange::dateRangeWithAnchor(nullptr, 1, 2)->hash());
  EXPECT_FALSE(none->isEqual(some));
  EXPECT_FALSE(some->isEqual(none));
}

TEST(BDDateRange, EqualsNoOtherKindOfObjectButSubclasses) {
  const BDDateRange range = BDDateRange::dateRangeWithAnchor(nullptr, 1, 2);
  EXPECT_FALSE(range->isEqual("range"_ns));
  EXPECT_FALSE(range->isEqual(nullptr));
  const NotingRange sub = NotingRange::class_()->dateRangeWithAnchor(nullptr, 1, 2);
  EXPECT_TRUE(range->isEqual(sub));
  EXPECT_TRUE(sub->isEqual(range));
}

TEST(BDDateRange, HashIsTheWrappingSumOfItsValues) {
  const NSDate date = someDate();
  const BDDateRange range = BDDateRange::dateRangeWithAnchor(
      date, BDTimeUnitWeek, kHighest, BDTimeUnitMonth, kHighest, static_cast<BDTimeUnit>(-1));
  const NSUInteger expected = date->hash() + static_cast<NSUInteger>(kHighest) +
                              static_cast<NSUInteger>(kHighest) + 1 + 2 + 4294967295U;
  EXPECT_EQ(range->hash(), expected);
  EXPECT_EQ(BDDateRange::dateRangeWithAnchor(nullptr, -1, 0)->hash(), static_cast<NSUInteger>(-1));
}

TEST(BDDateRange, ArchivesKeepEveryValue) {
  for (const std::int64_t number : {kLowest, std::int64_t{-5}, std::int64_t{0}, kHighest}) {
    for (const std::int32_t unit : {INT32_MIN, -1, 3, 99}) {
      const auto u = static_cast<BDTimeUnit>(unit);
      const BDDateRange range =
          BDDateRange::dateRangeWithAnchor(someDate(), u, number, u, number, u);
      const BDDateRange back = archivedAndBack(range);
      expectFields(back, range->anchor(), u, number, u, number, u);
    }
  }
  expectFields(archivedAndBack(BDDateRange::new_()), nullptr, BDTimeUnitDay, 0, BDTimeUnitDay, 0,
               BDTimeUnitDay);
}

namespace {

/// Archives an object whose class is replaced by BDDateRange's name, with keys of the test's own.
template <class Encode>
BDDateRange decoded(Encode encode) {
  const NSMutableData data = NSMutableData::alloc()->init();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  encode(archiver);
  archiver->finishEncoding();
  const NSKeyedUnarchiver reader = NSKeyedUnarchiver::alloc()->initForReadingWithData(data);
  return send<"initWithCoder:", BDDateRange>(BDDateRange::alloc(), NSCoder(reader));
}

}  // namespace

TEST(BDDateRange, AnArchiveWithOnlyAnAnchorHasTheDefaults) {
  const BDDateRange range = decoded(
      [](const NSKeyedArchiver& archiver) { archiver->encodeObject(someDate(), "anchor"_ns); });
  expectFields(range, someDate(), BDTimeUnitDay, 0, BDTimeUnitDay, 0, BDTimeUnitDay);
}

TEST(BDDateRange, UnitsAreWrittenWithoutTheirSignAndCutTo32BitsWhenRead) {
  const NSMutableData data = NSMutableData::alloc()->init();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  const auto unit = static_cast<BDTimeUnit>(-1);
  send<"encodeWithCoder:">(BDDateRange::dateRangeWithAnchor(nullptr, unit, -5, unit, 7, unit),
                           NSCoder(archiver));
  archiver->finishEncoding();
  const NSKeyedUnarchiver reader = NSKeyedUnarchiver::alloc()->initForReadingWithData(data);
  EXPECT_EQ(reader->decodeIntegerForKey("anchorUnit"_ns), 4294967295);
  EXPECT_EQ(reader->decodeIntegerForKey("offsetUnit"_ns), 4294967295);
  EXPECT_EQ(reader->decodeIntegerForKey("lengthUnit"_ns), 4294967295);
  EXPECT_EQ(reader->decodeIntegerForKey("offset"_ns), -5);
  const BDDateRange wide = decoded([](const NSKeyedArchiver& a) {
    a->encodeInteger((std::int64_t{7} << 32) + 3, "anchorUnit"_ns);
  });
  EXPECT_EQ(wide->anchorUnit(), BDTimeUnitQuarter);
}

TEST(BDDateRange, DecodingGoesPastTheSetters) {
  const NotingRange range = NotingRange::class_()->dateRangeWithAnchor(
      someDate(), BDTimeUnitWeek, 1, BDTimeUnitMonth, 2, BDTimeUnitYear);
  registerClass(NotingRange::classPair);
  const NSData data = NSKeyedArchiver::archivedDataWithRootObject(range);
  calls.clear();
  const id back = NSKeyedUnarchiver::unarchiveObjectWithData(data);
  EXPECT_EQ(calls, "");
  EXPECT_TRUE(classOf(back) == NotingRange::class_());
  EXPECT_TRUE(range->isEqual(back));
}

TEST(BDDateRange, TheAnchorMayBeReadWhileAnotherThreadReplacesIt) {
  const BDDateRange range = BDDateRange::dateRangeWithAnchor(someDate(), 0, 0);
  std::atomic<bool> done{false};
  std::thread writer([&] {
    for (int i = 0; i < 20000; ++i) {
      range->setAnchor(NSDate::dateWithTimeIntervalSinceReferenceDate(i));
    }
    done = true;
  });
  std::size_t wrong = 0;
  while (!done) {
    const NSDate anchor = range->anchor();
    if (!(anchor->timeIntervalSinceReferenceDate() >= 0)) ++wrong;
  }
  writer.join();
  EXPECT_EQ(wrong, 0U);
}

TEST(BDDateRange, TheAnchorDiesWithItsRange) {
  Weak<NSDate> weak;
  {
    const BDDateRange range = BDDateRange::dateRangeWithAnchor(someDate(), 0, 0);
    weak = range->anchor();
    EXPECT_TRUE(weak.lock());
  }
  EXPECT_FALSE(weak.lock());
}

TEST(BDDateRange, NilAnswersZero) {
  const BDDateRange nil;
  EXPECT_TRUE(nil->start() == nullptr);
  EXPECT_EQ(nil->offset(), 0);
  EXPECT_FALSE(nil->isEqual(nil));
  EXPECT_EQ(nil->interval().start.time_since_epoch().count(), 0);
}
