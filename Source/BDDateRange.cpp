// Date ranges: the value object. BDDateRangeCalculation.cpp works out the dates,
// BDDateRangeNames.cpp knows the named ranges, BDDateRangeDescriptions.cpp the words.
#include <Brindle/BDDateRange.h>

#include <atomic>
#include <thread>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/DateRange.h"

namespace brindle {
namespace {

struct Fields {
  Field<NSDate> anchor;  // under `lock`, so that a reader owns what it read
  std::int64_t offset = 0;
  std::int64_t length = 0;
  BDTimeUnit anchorUnit = BDTimeUnitDay;
  BDTimeUnit offsetUnit = BDTimeUnitDay;
  BDTimeUnit lengthUnit = BDTimeUnitDay;
  std::atomic_flag lock;
};

Fields& fields(const BDDateRange& self) { return fieldsOf<Fields>(self); }

/// Holds the anchor's lock: for the length of one copy, never while other code runs.
class AnchorLock {
 public:
  explicit AnchorLock(Fields& fields) : flag_(fields.lock) {
    while (flag_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
  }
  ~AnchorLock() { flag_.clear(std::memory_order_release); }
  AnchorLock(const AnchorLock&) = delete;
  AnchorLock& operator=(const AnchorLock&) = delete;

 private:
  std::atomic_flag& flag_;
};

NSDate readAnchor(Fields& f) {
  const AnchorLock lock(f);
  return f.anchor;
}

void writeAnchor(Fields& f, NSDate anchor) {
  // The old anchor is released after the lock is.
  NSDate old;
  {
    const AnchorLock lock(f);
    old = f.anchor.take();
    f.anchor = static_cast<NSDate&&>(anchor);
  }
  old = nullptr;
}

// Units are widened without their sign: -1 is 4294967295 in archives and hashes.
NSInteger widened(BDTimeUnit unit) {
  return static_cast<NSInteger>(static_cast<std::uint32_t>(unit));
}
BDTimeUnit narrowed(NSInteger number) {
  return static_cast<BDTimeUnit>(static_cast<std::int32_t>(static_cast<std::uint32_t>(number)));
}

NSUInteger hashOf(const BDDateRange& self) {
  return self->anchor()->hash() + static_cast<NSUInteger>(self->offset()) +
         static_cast<NSUInteger>(self->length()) +
         static_cast<NSUInteger>(widened(self->anchorUnit())) +
         static_cast<NSUInteger>(widened(self->offsetUnit())) +
         static_cast<NSUInteger>(widened(self->lengthUnit()));
}

bool equal(const BDDateRange& self, const BDDateRange& other) {
  if (self == other) return true;
  const NSDate anchor = self->anchor();
  const NSDate otherAnchor = other->anchor();
  return (anchor == otherAnchor || anchor->isEqual(otherAnchor)) &&
         self->offset() == other->offset() && self->length() == other->length() &&
         self->anchorUnit() == other->anchorUnit() && self->offsetUnit() == other->offsetUnit() &&
         self->lengthUnit() == other->lengthUnit();
}

void encode(const BDDateRange& self, const NSCoder& coder) {
  const Fields& f = fields(self);
  coder->encodeObject(readAnchor(fields(self)), "anchor"_ns);
  coder->encodeInteger(f.offset, "offset"_ns);
  coder->encodeInteger(f.length, "length"_ns);
  coder->encodeInteger(widened(f.anchorUnit), "anchorUnit"_ns);
  coder->encodeInteger(widened(f.offsetUnit), "offsetUnit"_ns);
  coder->encodeInteger(widened(f.lengthUnit), "lengthUnit"_ns);
}

BDDateRange decode(const BDDateRange& self, const NSCoder& coder) {
  BDDateRange range = sendSuper<BDDateRange, "init", BDDateRange>(self);
  if (!range) return nullptr;
  // Past the setters: nobody is told, and an overridden setter sees nothing.
  Fields& f = fields(range);
  writeAnchor(f, cast<NSDate>(coder->decodeObjectForKey("anchor"_ns)));
  f.offset = coder->decodeIntegerForKey("offset"_ns);
  f.length = coder->decodeIntegerForKey("length"_ns);
  f.anchorUnit = narrowed(coder->decodeIntegerForKey("anchorUnit"_ns));
  f.offsetUnit = narrowed(coder->decodeIntegerForKey("offsetUnit"_ns));
  f.lengthUnit = narrowed(coder->decodeIntegerForKey("lengthUnit"_ns));
  return range;
}

BDDateRange copied(const BDDateRange& self) {
  // Always the fixed class, also for a subclass's instance.
  BDDateRange copy = BDDateRange::alloc()->init();
  copy->setAnchor(self->anchor());
  copy->setOffset(self->offset());
  copy->setLength(self->length());
  copy->setAnchorUnit(self->anchorUnit());
  copy->setOffsetUnit(self->offsetUnit());
  copy->setLengthUnit(self->lengthUnit());
  return copy;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"dateRangeWithAnchor:offset:length:">([](const ClassOf<BDDateRange>& self,
                                                         const NSDate& anchor, std::int64_t offset,
                                                         std::int64_t length) -> BDDateRange {
      BDDateRange range = self->alloc()->init();
      range->setAnchor(anchor);
      range->setOffset(offset);
      range->setLength(length);
      return range;
    }),
    classMethod<"dateRangeWithAnchor:unit:offset:unit:length:unit:">(
        [](const ClassOf<BDDateRange>& self, const NSDate& anchor, BDTimeUnit anchorUnit,
           std::int64_t offset, BDTimeUnit offsetUnit, std::int64_t length,
           BDTimeUnit lengthUnit) -> BDDateRange {
          BDDateRange range = self->alloc()->init();
          range->setAnchor(anchor);
          range->setAnchorUnit(anchorUnit);
          range->setOffset(offset);
          range->setOffsetUnit(offsetUnit);
          range->setLength(length);
          range->setLengthUnit(lengthUnit);
          return range;
        }),
    classMethod<"keyPathsForValuesAffectingStart">([](const Class&) -> NSSet {
      return NSSet{"anchor"_ns,     "offset"_ns,     "length"_ns,
                   "anchorUnit"_ns, "offsetUnit"_ns, "lengthUnit"_ns};
    }),
    classMethod<"keyPathsForValuesAffectingEnd">([](const ClassOf<BDDateRange>& self) -> NSSet {
      return self->keyPathsForValuesAffectingStart();
    }),
    classMethod<"dateRangeWithNamedRange:">([](const Class&, BDNamedRange name) -> BDDateRange {
      return internal::dateRangeNamed(name);
    }),
    classMethod<"namedRangeFrom:">(
        [](const Class&, const BDDateRange& range) { return internal::nameOfDateRange(range); }),
    classMethod<"nameForSingularUnit:">([](const Class& self, BDTimeUnit unit) {
      return internal::singularNameOfUnit(self, unit);
    }),
    classMethod<"nameForPluralUnit:">(
        [](const Class& self, BDTimeUnit unit) { return internal::pluralNameOfUnit(self, unit); }),
    classMethod<"descriptionForUnit:offset:">(
        [](const ClassOf<BDDateRange>& self, BDTimeUnit unit, std::int64_t offset) {
          return internal::descriptionOfOffset(self, unit, offset);
        }),

    method<"anchor">([](const BDDateRange& self) { return readAnchor(fields(self)); }),
    method<"setAnchor:">(
        [](const BDDateRange& self, const NSDate& anchor) { writeAnchor(fields(self), anchor); }),
    method<"offset">([](const BDDateRange& self) { return fields(self).offset; }),
    method<"setOffset:">(
        [](const BDDateRange& self, std::int64_t offset) { fields(self).offset = offset; }),
    method<"length">([](const BDDateRange& self) { return fields(self).length; }),
    method<"setLength:">(
        [](const BDDateRange& self, std::int64_t length) { fields(self).length = length; }),
    method<"anchorUnit">([](const BDDateRange& self) { return fields(self).anchorUnit; }),
    method<"setAnchorUnit:">(
        [](const BDDateRange& self, BDTimeUnit unit) { fields(self).anchorUnit = unit; }),
    method<"offsetUnit">([](const BDDateRange& self) { return fields(self).offsetUnit; }),
    method<"setOffsetUnit:">(
        [](const BDDateRange& self, BDTimeUnit unit) { fields(self).offsetUnit = unit; }),
    method<"lengthUnit">([](const BDDateRange& self) { return fields(self).lengthUnit; }),
    method<"setLengthUnit:">(
        [](const BDDateRange& self, BDTimeUnit unit) { fields(self).lengthUnit = unit; }),

    method<"start">([](const BDDateRange& self) { return internal::startOfDateRange(self); }),
    method<"end">([](const BDDateRange& self) { return internal::endOfDateRange(self); }),
    method<"calculate:">(
        [](const BDDateRange& self, const Block<id(const NSDate&, const NSDate&)>& block) -> id {
          return internal::calculateDateRange(self, block);
        }),
    method<"add:in:to:">([](const BDDateRange&, std::int64_t count, BDTimeUnit unit,
                            const NSDate& date) { return internal::addToDate(count, unit, date); }),
    method<"_anchor">([](const BDDateRange& self) { return internal::roundedAnchor(self); }),

    method<"copyWithZone:">(
        [](const BDDateRange& self, NSZone*) -> BDDateRange { return copied(self); }),
    method<"encodeWithCoder:">(
        [](const BDDateRange& self, const NSCoder& coder) { encode(self, coder); }),
    method<"initWithCoder:">(
        [](const BDDateRange& self, const NSCoder& coder) { return decode(self, coder); }),
    method<"isEqual:">([](const BDDateRange& self, const id& other) {
      return isa<BDDateRange>(other) && self->isEqualToDateRange(uncheckedCast<BDDateRange>(other));
    }),
    method<"isEqualToDateRange:">(
        [](const BDDateRange& self, const BDDateRange& other) { return equal(self, other); }),
    method<"hash">([](const BDDateRange& self) { return hashOf(self); }),
};

constexpr PropertyDefinition kProperties[] = {
    {"anchor", "T@\"NSDate\",&,Vanchor"},
    {"offset", "Tq,Voffset"},
    {"length", "Tq,Vlength"},
    {"anchorUnit", "Ti,VanchorUnit"},
    {"offsetUnit", "Ti,VoffsetUnit"},
    {"lengthUnit", "Ti,VlengthUnit"},
};

constexpr IvarDefinition kVariables[] = {
    ivar<NSDate>("anchor", offsetof(Fields, anchor)),
    ivar<std::int64_t>("offset", offsetof(Fields, offset)),
    ivar<std::int64_t>("length", offsetof(Fields, length)),
    ivar<BDTimeUnit>("anchorUnit", offsetof(Fields, anchorUnit)),
    ivar<BDTimeUnit>("offsetUnit", offsetof(Fields, offsetUnit)),
    ivar<BDTimeUnit>("lengthUnit", offsetof(Fields, lengthUnit)),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSCoding};

constexpr ClassDefinition kDefinition{.name = "BDDateRange",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .variables = kVariables,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<BDDateRange> BDDateRange::classPair{kDefinition};

}  // namespace brindle
