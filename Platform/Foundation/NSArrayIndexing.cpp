#include <Brindle/Platform/NSArrayIndexing.h>

#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/ReleaseEach.h"

namespace brindle {
namespace {

// The indexes, all of them below the count.
std::vector<NSUInteger> places(const id& self, SEL selector, const NSIndexSet& indexes,
                               NSUInteger count) {
  detail::requireArgument(self, selector, indexes);
  const NSUInteger size = indexes->count();
  if (size > 0 && indexes->lastIndex() >= count) {
    detail::raiseBeyondCount(self, selector, indexes->lastIndex(), count);
  }
  std::vector<NSUInteger> result(size);
  result.resize(indexes->getIndexes(result.data(), size, nullptr));
  return result;
}

std::vector<id> asMany(const id& self, SEL selector, const NSArray& objects,
                       const NSIndexSet& indexes) {
  detail::requireArgument(self, selector, indexes);
  detail::requireArgument(self, selector, objects);
  std::vector<id> items = detail::copyItems(objects);
  if (items.size() != indexes->count()) {
    detail::raiseIn("NSInvalidArgumentException", self, selector,
                    std::to_string(items.size()) + " objects for " +
                        std::to_string(indexes->count()) + " indexes");
  }
  return items;
}

void insert(const NSMutableArray& self, SEL selector, const NSArray& objects,
            const NSIndexSet& indexes) {
  std::vector<id> items = asMany(self, selector, objects, indexes);
  const NSUInteger count = self->count();
  const std::vector<NSUInteger> at = places(self, selector, indexes, count + items.size());
  if (at.empty()) return;
  if (!detail::isLibraryArray(self)) {
    for (std::size_t i = 0; i < at.size(); ++i) self->insertObject(items[i], at[i]);
    return;
  }
  std::vector<id> all;
  all.reserve(count + items.size());
  detail::ArrayStorage& storage = detail::storageOf(self);
  std::size_t inserted = 0;
  for (id& member : storage.items) {
    for (; inserted < at.size() && at[inserted] == all.size(); ++inserted) {
      all.push_back(std::move(items[inserted]));
    }
    all.push_back(std::move(member));
  }
  for (; inserted < at.size(); ++inserted) all.push_back(std::move(items[inserted]));
  ++storage.mutations;
  storage.items.swap(all);
}

void removeAll(const NSMutableArray& self, SEL selector, const NSIndexSet& indexes) {
  const std::vector<NSUInteger> at = places(self, selector, indexes, self->count());
  if (at.empty()) return;
  if (!detail::isLibraryArray(self)) {
    for (std::size_t i = at.size(); i-- > 0;) self->removeObjectAtIndex(at[i]);
    return;
  }
  detail::ArrayStorage& storage = detail::storageOf(self);
  std::vector<id> kept;
  std::vector<id> removed;
  kept.reserve(storage.items.size() - at.size());
  for (std::size_t i = 0; i < storage.items.size(); ++i) {
    const bool goes = removed.size() < at.size() && at[removed.size()] == i;
    (goes ? removed : kept).push_back(std::move(storage.items[i]));
  }
  ++storage.mutations;
  storage.items.swap(kept);
  // The last release of an object may run a client's code, and may raise.
  detail::releaseEach(removed, [](id& member) { member = nullptr; });
}

constexpr MethodDefinition kArrayMethods[] = {
    method<"objectsAtIndexes:">([](const NSArray& self, Cmd cmd, const NSIndexSet& indexes) {
      const detail::ArrayItems items(self);
      std::vector<id> chosen;
      for (const NSUInteger index : places(self, cmd.selector, indexes, items.size())) {
        chosen.push_back(items.items()[index]);
      }
      return detail::makeArray(std::move(chosen));
    }),
};

constexpr MethodDefinition kMutableArrayMethods[] = {
    method<"insertObjects:atIndexes:">(
        [](const NSMutableArray& self, Cmd cmd, const NSArray& objects, const NSIndexSet& indexes) {
          insert(self, cmd.selector, objects, indexes);
        }),
    method<"removeObjectsAtIndexes:">(
        [](const NSMutableArray& self, Cmd cmd, const NSIndexSet& indexes) {
          removeAll(self, cmd.selector, indexes);
        }),
    method<"replaceObjectsAtIndexes:withObjects:">(
        [](const NSMutableArray& self, Cmd cmd, const NSIndexSet& indexes, const NSArray& objects) {
          const std::vector<id> items = asMany(self, cmd.selector, objects, indexes);
          const auto at = places(self, cmd.selector, indexes, self->count());
          for (std::size_t i = 0; i < at.size(); ++i) self->replaceObjectAtIndex(at[i], items[i]);
        }),
};

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSArrayIndexing{
    .name = "NSArrayIndexing", .cls = &NSArray::classPair.cls, .methods = kArrayMethods};
constinit const CategoryDefinition kNSMutableArrayIndexing{.name = "NSMutableArrayIndexing",
                                                           .cls = &NSMutableArray::classPair.cls,
                                                           .methods = kMutableArrayMethods};

}  // namespace detail
}  // namespace brindle
