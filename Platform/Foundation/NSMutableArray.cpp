#include <Brindle/Platform/NSMutableArray.h>

#include <algorithm>
#include <iterator>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/ReleaseEach.h"

namespace brindle {
namespace {

using detail::storageOf;

// More is given only when it is needed: a capacity is a hint, and nobody has checked it.
constexpr NSUInteger kGreatestReserve = 1U << 20U;

std::vector<id>& changed(const NSMutableArray& self) {
  detail::ArrayStorage& storage = storageOf(self);
  ++storage.mutations;
  return storage.items;
}

void requireIndex(const NSMutableArray& self, SEL selector, NSUInteger index, NSUInteger count) {
  if (index >= count) detail::raiseBeyondCount(self, selector, index, count);
}

// The last release of an object may run a client's code, and may raise.
void releaseRemoved(std::vector<id>& removed) {
  detail::releaseEach(removed, [](id& member) { member = nullptr; });
}

// What a change throws out is released when the array is whole again: the last release of an object
// may run a client's code.
void removePlace(const NSMutableArray& self, NSUInteger index) {
  auto& items = changed(self);
  id removed = std::move(items[index]);
  items.erase(items.begin() + static_cast<std::ptrdiff_t>(index));
  removed = nullptr;  // not at the brace: its end may raise
}

// In one go, unless a question to the members changed the array meanwhile.
template <class Predicate>
bool removeAtOnce(const NSMutableArray& self, const Predicate& goes) {
  const unsigned long before = storageOf(self).mutations;
  std::vector<id> kept;
  std::vector<id> removed;
  for (id& member : detail::copyItems(self)) {
    auto& side = goes(member) ? removed : kept;
    side.push_back(std::move(member));
  }
  if (storageOf(self).mutations != before) return false;
  if (removed.empty()) return true;
  changed(self).swap(kept);
  kept.clear();  // each of them has another owner in one of the others
  releaseRemoved(removed);
  return true;
}

template <class Predicate>
void removeWhere(const NSMutableArray& self, const Predicate& goes) {
  if (detail::isLibraryArray(self) && removeAtOnce(self, goes)) return;
  // Backwards, so that the places still to be looked at stay where they are.
  for (NSUInteger i = self->count(); i-- > 0;) {
    if (i >= self->count()) continue;
    const id member = self->objectAtIndex(i);
    if (!goes(member)) continue;
    if (i < self->count() && self->objectAtIndex(i) == member) self->removeObjectAtIndex(i);
  }
}

void replaceAll(const NSMutableArray& self, std::vector<id> items) {
  if (detail::isLibraryArray(self)) {
    changed(self).swap(items);
    return releaseRemoved(items);
  }
  self->removeAllObjects();
  for (const id& item : items) self->addObject(item);
}

constexpr MethodDefinition kMethods[] = {
    // By messages for a client's class, which keeps its members elsewhere.
    method<"initWithObjects:count:">(
        [](const NSMutableArray& self, const id* objects, NSUInteger count) -> id {
          if (detail::isLibraryArray(self)) {
            return sendSuper<NSMutableArray, "initWithObjects:count:", id>(self, objects, count);
          }
          const id* none = nullptr;
          const auto made = sendSuper<NSMutableArray, "initWithObjects:count:", NSMutableArray>(
              self, none, NSUInteger{0});
          for (NSUInteger i = 0; i < count; ++i) made->addObject(objects[i]);
          return made;
        }),
    classMethod<"arrayWithCapacity:">([](const Class& self, NSUInteger capacity) -> id {
      return send<"initWithCapacity:", id>(send<"alloc", id>(self), capacity);
    }),
    method<"initWithCapacity:">([](const NSMutableArray& self, NSUInteger capacity) -> id {
      const NSMutableArray made = self->init();
      if (made) storageOf(made).items.reserve(std::min(capacity, kGreatestReserve));
      return made;
    }),

    method<"addObject:">([](const NSMutableArray& self, Cmd cmd, const id& object) {
      detail::requireArgument(self, cmd.selector, object);
      changed(self).push_back(object);
    }),
    method<"insertObject:atIndex:">(
        [](const NSMutableArray& self, Cmd cmd, const id& object, NSUInteger index) {
          detail::requireArgument(self, cmd.selector, object);
          const auto& items = storageOf(self).items;
          if (index > items.size()) {
            detail::raiseBeyondCount(self, cmd.selector, index, items.size());
          }
          auto& target = changed(self);
          target.insert(target.begin() + static_cast<std::ptrdiff_t>(index), object);
        }),
    method<"replaceObjectAtIndex:withObject:">(
        [](const NSMutableArray& self, Cmd cmd, NSUInteger index, const id& object) {
          detail::requireArgument(self, cmd.selector, object);
          requireIndex(self, cmd.selector, index, storageOf(self).items.size());
          id replaced = object;
          std::swap(changed(self)[index], replaced);
          replaced = nullptr;
        }),
    method<"removeObjectAtIndex:">([](const NSMutableArray& self, Cmd cmd, NSUInteger index) {
      requireIndex(self, cmd.selector, index, storageOf(self).items.size());
      removePlace(self, index);
    }),
    method<"removeLastObject">([](const NSMutableArray& self, Cmd cmd) {
      const NSUInteger count = self->count();
      if (count == 0) detail::raiseBeyondCount(self, cmd.selector, 0, 0);
      self->removeObjectAtIndex(count - 1);
    }),

    method<"removeObject:">([](const NSMutableArray& self, const id& object) {
      if (!object) return;
      const id kept = object;  // it may be kept by the array alone
      removeWhere(self, [&kept](const id& member) { return detail::sameOrEqual(kept, member); });
    }),
    method<"removeObjectIdenticalTo:">([](const NSMutableArray& self, const id& object) {
      const id kept = object;
      removeWhere(self, [&kept](const id& member) { return kept == member; });
    }),
    method<"removeObjectsInRange:">([](const NSMutableArray& self, Cmd cmd, NSRange range) {
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, self->count());
      if (detail::isLibraryArray(self)) {
        auto& items = changed(self);
        const auto first = items.begin() + static_cast<std::ptrdiff_t>(range.location);
        const auto last = first + static_cast<std::ptrdiff_t>(range.length);
        std::vector<id> removed(std::make_move_iterator(first), std::make_move_iterator(last));
        items.erase(first, last);
        return releaseRemoved(removed);
      }
      for (NSUInteger i = range.length; i-- > 0;) self->removeObjectAtIndex(range.location + i);
    }),
    method<"removeObjectsInArray:">([](const NSMutableArray& self, const NSArray& other) {
      for (const id& object : detail::copyItems(other)) self->removeObject(object);
    }),
    method<"removeAllObjects">([](const NSMutableArray& self) {
      if (detail::isLibraryArray(self)) {
        std::vector<id> removed;
        changed(self).swap(removed);
        return releaseRemoved(removed);
      }
      while (self->count() > 0) self->removeLastObject();
    }),
    method<"addObjectsFromArray:">([](const NSMutableArray& self, const NSArray& other) {
      for (const id& object : detail::copyItems(other)) self->addObject(object);
    }),
    method<"setArray:">([](const NSMutableArray& self, const NSArray& other) {
      replaceAll(self, detail::copyItems(other));
    }),
    method<"exchangeObjectAtIndex:withObjectAtIndex:">(
        [](const NSMutableArray& self, Cmd cmd, NSUInteger a, NSUInteger b) {
          requireIndex(self, cmd.selector, std::max(a, b), self->count());
          const id first = self->objectAtIndex(a);
          self->replaceObjectAtIndex(a, self->objectAtIndex(b));
          self->replaceObjectAtIndex(b, first);
        }),
    method<"sortUsingSelector:">([](const NSMutableArray& self, SEL comparison) {
      replaceAll(self, detail::copyItems(self->sortedArrayUsingSelector(comparison)));
    }),
    method<"sortUsingComparator:">([](const NSMutableArray& self, const NSComparator& comparison) {
      const auto sorted = send<"sortedArrayUsingComparator:", NSArray>(self, comparison);
      replaceAll(self, detail::copyItems(sorted));
    }),
    method<"copyWithZone:">([](const NSMutableArray& self, NSZone*) -> id {
      return detail::makeArray(detail::copyItems(self));
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSMutableArray", .methods = kMethods};

}  // namespace

constinit ClassPair<NSMutableArray> NSMutableArray::classPair{kDefinition};

}  // namespace brindle
