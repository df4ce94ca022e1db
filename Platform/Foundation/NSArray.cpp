#include <Brindle/Platform/NSArray.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/CollectionDescription.h"
#include "Platform/Foundation/Internal/Enumerators.h"
#include "Platform/Foundation/Internal/Sorting.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using detail::ArrayItems;
using detail::storageOf;

using Comparison = Block<NSComparisonResult(const id& a, const id& b)>;

id makeOfClass(const Class& cls, const id* objects, NSUInteger count) {
  return send<"initWithObjects:count:", id>(send<"alloc", id>(cls), objects, count);
}

NSUInteger indexOf(const NSArray& self, const id& object) {
  if (!object) return static_cast<NSUInteger>(NSNotFound);
  if (detail::isLibraryArray(self)) {
    // The members' `isEqual:` may be a client's and change the array.
    const auto& items = storageOf(self).items;
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (items[i] == object) return i;
      const id member = items[i];
      if (send<"isEqual:", bool>(object, member)) return i;
    }
  } else {
    const NSUInteger count = self->count();
    for (NSUInteger i = 0; i < count; ++i) {
      if (detail::sameOrEqual(object, self->objectAtIndex(i))) return i;
    }
  }
  return static_cast<NSUInteger>(NSNotFound);
}

bool areEqual(const NSArray& self, const NSArray& other) {
  if (self == other) return true;
  if (!other || self->count() != other->count()) return false;
  const std::vector<id> mine = detail::copyItems(self);
  const std::vector<id> its = detail::copyItems(other);
  if (mine.size() != its.size()) return false;
  for (std::size_t i = 0; i < mine.size(); ++i) {
    if (!detail::sameOrEqual(mine[i], its[i])) return false;
  }
  return true;
}

template <class Compare>
NSArray sorted(const NSArray& self, const Compare& compare) {
  std::vector<id> items = detail::copyItems(self);
  detail::mergeSort(
      items, [&compare](const id& a, const id& b) { return compare(a, b) == NSOrderedDescending; });
  return detail::makeArray(std::move(items));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"array">([](const ClassOf<NSArray>& self) { return self->alloc()->init(); }),
    classMethod<"arrayWithObject:">(
        [](const Class& self, const id& object) { return makeOfClass(self, &object, 1); }),
    classMethod<"arrayWithObjects:count:">(
        [](const Class& self, const id* objects, NSUInteger count) {
          return makeOfClass(self, objects, count);
        }),
    classMethod<"arrayWithArray:">([](const Class& self, const NSArray& other) {
      return send<"initWithArray:", id>(send<"alloc", id>(self), other);
    }),
    method<"init">([](const NSArray& self) -> id { return self->initWithObjects(nullptr, 0); }),
    method<"initWithObjects:count:">(
        [](const NSArray& self, Cmd cmd, const id* objects, NSUInteger count) -> id {
          for (NSUInteger i = 0; i < count; ++i) {
            detail::requireArgument(self, cmd.selector, objects[i], i);
          }
          std::vector<id> items(objects, objects + count);
          detail::ArrayStorage& storage = storageOf(self);
          ++storage.mutations;
          storage.items.swap(items);
          return self;
        }),
    method<"initWithArray:">([](const NSArray& self, const NSArray& other) -> id {
      const std::vector<id> items = detail::copyItems(other);
      return self->initWithObjects(items.data(), items.size());
    }),

    method<"count">([](const NSArray& self) -> NSUInteger { return storageOf(self).items.size(); }),
    method<"objectAtIndex:">([](const NSArray& self, Cmd cmd, NSUInteger index) -> id {
      const auto& items = storageOf(self).items;
      if (index >= items.size()) {
        detail::raiseBeyondCount(self, cmd.selector, index, items.size());
      }
      return items[index];
    }),
    method<"firstObject">([](const NSArray& self) -> id {
      return self->count() == 0 ? id() : self->objectAtIndex(0);
    }),
    method<"lastObject">([](const NSArray& self) -> id {
      const NSUInteger count = self->count();
      return count == 0 ? id() : self->objectAtIndex(count - 1);
    }),
    method<"containsObject:">([](const NSArray& self, const id& object) {
      return indexOf(self, object) != static_cast<NSUInteger>(NSNotFound);
    }),
    method<"indexOfObject:">(
        [](const NSArray& self, const id& object) { return indexOf(self, object); }),
    method<"indexOfObjectIdenticalTo:">([](const NSArray& self, const id& object) -> NSUInteger {
      const ArrayItems items(self);
      for (std::size_t i = 0; i < items.size(); ++i) {
        if (items.items()[i] == object) return i;
      }
      return static_cast<NSUInteger>(NSNotFound);
    }),
    method<"isEqual:">([](const NSArray& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSArray>(other));
    }),
    method<"isEqualToArray:">(
        [](const NSArray& self, const NSArray& other) { return areEqual(self, other); }),
    method<"hash">([](const NSArray& self) { return self->count(); }),

    method<"objectEnumerator">([](const NSArray& self) {
      return detail::makeArrayEnumerator(self, detail::Direction::kForwards);
    }),
    method<"reverseObjectEnumerator">([](const NSArray& self) {
      return detail::makeArrayEnumerator(self, detail::Direction::kBackwards);
    }),
    method<"countByEnumeratingWithState:objects:count:">(
        [](const NSArray& self, NSFastEnumerationState* state, ObjectRecord** buffer,
           NSUInteger room) -> NSUInteger {
          detail::ArrayStorage& storage = storageOf(self);
          state->mutationsPtr = &storage.mutations;
          if (detail::isLibraryArray(self)) {
            const std::size_t done = std::min<std::size_t>(state->state, storage.items.size());
            state->itemsPtr = storage.items.data() + done;
            state->state = storage.items.size();
            return storage.items.size() - done;
          }
          // A subclass keeps its members itself: they are lent as long as it does.
          NSUInteger filled = 0;
          const NSUInteger count = self->count();
          for (; filled < room && state->state < count; ++filled) {
            const id member = self->objectAtIndex(state->state++);
            buffer[filled] = send<"autorelease", id>(member).record();
          }
          state->itemsPtr = detail::lentObjects(buffer);
          return filled;
        }),

    method<"arrayByAddingObject:">([](const NSArray& self, Cmd cmd, const id& object) {
      detail::requireArgument(self, cmd.selector, object);
      std::vector<id> items = detail::copyItems(self);
      items.push_back(object);
      return detail::makeArray(std::move(items));
    }),
    method<"arrayByAddingObjectsFromArray:">([](const NSArray& self, const NSArray& other) {
      std::vector<id> items = detail::copyItems(self);
      const ArrayItems more(other);
      items.insert(items.end(), more.begin(), more.end());
      return detail::makeArray(std::move(items));
    }),
    method<"subarrayWithRange:">([](const NSArray& self, Cmd cmd, NSRange range) {
      const ArrayItems items(self);
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, items.size());
      const auto part = items.items().subspan(range.location, range.length);
      return detail::makeArray({part.begin(), part.end()});
    }),
    method<"componentsJoinedByString:">([](const NSArray& self, const NSString& separator) {
      internal::TextBuilder text;
      internal::Text between;  // a copy: the members' descriptions may be a client's
      between.append(detail::StringText(separator).view());
      bool first = true;
      for (const id& member : detail::copyItems(self)) {
        if (!first) text.append(between);
        first = false;
        detail::describeObject(text, member.record());
      }
      return detail::makeString(text);
    }),
    method<"sortedArrayUsingSelector:">([](const NSArray& self, SEL comparison) {
      return sorted(self, [comparison](const id& a, const id& b) {
        return sendSelector<NSComparisonResult>(a, comparison, b);
      });
    }),
    method<"sortedArrayUsingComparator:">(
        [](const NSArray& self, const Comparison& comparison) { return sorted(self, comparison); }),
    method<"makeObjectsPerformSelector:">([](const NSArray& self, SEL message) {
      for (const id& member : detail::copyItems(self))
        send<"performSelector:", id>(member, message);
    }),
    method<"makeObjectsPerformSelector:withObject:">(
        [](const NSArray& self, SEL message, const id& argument) {
          for (const id& member : detail::copyItems(self)) {
            send<"performSelector:withObject:", id>(member, message, argument);
          }
        }),
    method<"description">([](const NSArray& self) { return detail::describeCollection(self, 0); }),
    method<"descriptionWithLocale:indent:">([](const NSArray& self, const id&, NSUInteger level) {
      return detail::describeCollection(self, level);
    }),
    method<"copyWithZone:">([](const NSArray& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">(
        [](const NSArray& self, NSZone*) -> id { return NSMutableArray::arrayWithArray(self); }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying, &kNSFastEnumeration};

constexpr ClassDefinition kDefinition{.name = "NSArray",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<detail::ArrayStorage>()};

}  // namespace

constinit ClassPair<NSArray> NSArray::classPair{kDefinition};

namespace detail {

ArrayStorage& storageOf(const NSArray& array) { return fieldsOf<ArrayStorage>(array); }

bool isLibraryArray(const NSArray& array) noexcept {
  const ClassRecord* cls = array.record()->isa.load(std::memory_order_acquire);
  return cls == &NSArray::classPair.cls || cls == &NSMutableArray::classPair.cls;
}

NSArray makeArray(std::vector<id> items) {
  auto array = adopt<NSArray>(createInstance(&NSArray::classPair.cls, 0));
  storageOf(array).items = std::move(items);
  return array;
}

ArrayItems::ArrayItems(const NSArray& array) {
  if (!array) return;
  if (isLibraryArray(array)) {
    items_ = storageOf(array).items;
    return;
  }
  const NSUInteger count = array->count();
  for (NSUInteger i = 0; i < count; ++i) gathered_.push_back(array->objectAtIndex(i));
  items_ = gathered_;
}

std::vector<id> copyItems(const NSArray& array) {
  const ArrayItems items(array);
  return {items.begin(), items.end()};
}

}  // namespace detail
}  // namespace brindle
