// Immutable collections by accessors.
#include <utility>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSArrayIndexing.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/KeyValueProxies.h"

namespace brindle {
namespace {

using detail::KeyAccessor;
using Part = KeyAccessor::Part;

struct Fields {
  Field<id> object;
  const KeyAccessor* accessor = nullptr;
};

template <class T>
Fields& fields(const T& self) {
  return fieldsOf<Fields>(self);
}

template <class T>
NSUInteger count(const T& self) {
  const id object = fields(self).object;
  return detail::countIn(object, *fields(self).accessor);
}

constexpr MethodDefinition kArrayMethods[] = {
    method<"count">([](const NSKeyValueArray& self) { return count(self); }),
    method<"objectAtIndex:">([](const NSKeyValueArray& self, Cmd cmd, NSUInteger index) -> id {
      const NSUInteger size = count(self);
      if (index >= size) detail::raiseBeyondCount(self, cmd.selector, index, size);
      const id object = fields(self).object;
      return detail::memberAt(object, *fields(self).accessor, index);
    }),
    method<"objectsAtIndexes:">(
        [](const NSKeyValueArray& self, const NSIndexSet& indexes) -> NSArray {
          const SEL many = fields(self).accessor->parts[Part::kObjectsAt];
          if (many == nullptr || !indexes) {
            return sendSuper<NSKeyValueArray, "objectsAtIndexes:", NSArray>(self, indexes);
          }
          const id object = fields(self).object;
          return sendSelector<NSArray>(object, many, indexes);
        }),
    method<"copyWithZone:">(
        [](const NSKeyValueArray& self, NSZone*) -> id { return NSArray::arrayWithArray(self); }),
};
constexpr ClassDefinition kArray{
    .name = "NSKeyValueArray", .methods = kArrayMethods, .fields = fieldsDefinition<Fields>()};

constexpr MethodDefinition kSetMethods[] = {
    method<"count">([](const NSKeyValueSet& self) { return count(self); }),
    method<"member:">([](const NSKeyValueSet& self, const id& member) -> id {
      if (!member) return nullptr;
      const id object = fields(self).object;
      return sendSelector<id>(object, fields(self).accessor->parts[Part::kMember], member);
    }),
    method<"objectEnumerator">([](const NSKeyValueSet& self) -> NSEnumerator {
      const id object = fields(self).object;
      return sendSelector<NSEnumerator>(object, fields(self).accessor->parts[Part::kEnumerator]);
    }),
    method<"copyWithZone:">(
        [](const NSKeyValueSet& self, NSZone*) -> id { return NSSet::setWithSet(self); }),
};
constexpr ClassDefinition kSet{
    .name = "NSKeyValueSet", .methods = kSetMethods, .fields = fieldsDefinition<Fields>()};

template <class T>
id make(const id& object, const KeyAccessor& accessor) {
  const T made = T::alloc()->init();
  fields(made).object = object;
  fields(made).accessor = &accessor;
  return made;
}

}  // namespace

constinit ClassPair<NSKeyValueArray> NSKeyValueArray::classPair{kArray};
constinit ClassPair<NSKeyValueSet> NSKeyValueSet::classPair{kSet};

namespace detail {

id keyValueCollection(const id& object, const KeyAccessor& accessor) {
  if (accessor.has(Part::kObjectAt) || accessor.has(Part::kObjectsAt)) {
    return make<NSKeyValueArray>(object, accessor);
  }
  return make<NSKeyValueSet>(object, accessor);
}

NSUInteger countIn(const id& object, const KeyAccessor& accessor) {
  return sendSelector<NSUInteger>(object, accessor.parts[Part::kCount]);
}

id memberAt(const id& object, const KeyAccessor& accessor, NSUInteger index) {
  if (accessor.has(Part::kObjectAt)) {
    return sendSelector<id>(object, accessor.parts[Part::kObjectAt], index);
  }
  const NSIndexSet indexes = NSIndexSet::indexSetWithIndex(index);
  return sendSelector<NSArray>(object, accessor.parts[Part::kObjectsAt], indexes)->firstObject();
}

}  // namespace detail
}  // namespace brindle
