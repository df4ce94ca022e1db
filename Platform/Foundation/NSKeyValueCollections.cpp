// Key-value coding of collections: of their members, or of what a dictionary holds.
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSKeyValueCoding.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNull.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/KeyPath.h"
#include "Platform/Foundation/Internal/KeyValueChange.h"
#include "Platform/Foundation/Internal/KeyValueOperators.h"
#include "Platform/Foundation/Internal/SetStorage.h"

namespace brindle {
namespace {

using detail::requireKey;

std::vector<id> membersOf(const NSArray& array) { return detail::copyItems(array); }
std::vector<id> membersOf(const NSSet& set) { return detail::copyMembers(set); }

id made(const NSArray&, std::vector<id> objects) { return detail::makeArray(std::move(objects)); }
id made(const NSSet&, const std::vector<id>& objects) {
  return NSSet::setWithObjects(objects.data(), objects.size());
}

bool isOfCollection(const NSString& key) { return key->hasPrefix("@"_ns); }

// "@count" as a key: the collection's own `count`.
NSString withoutSign(const NSString& key) { return key->substringFromIndex(1); }

template <class T>
id operated(const T& self, const std::optional<detail::OperationResult>& result) {
  return result->objects ? made(self, *result->objects) : result->value;
}

template <class T>
id value(const T& self, SEL selector, const NSString& key) {
  requireKey(self, selector, key);
  if (isOfCollection(key)) {
    const auto result = detail::operationResult(self, membersOf(self), selector, key);
    if (result) return operated(self, result);
    return sendSuper<T, "valueForKey:", id>(self, withoutSign(key));
  }
  const detail::KeyValueNesting nesting(self, selector);
  std::vector<id> values;
  for (const id& member : membersOf(self)) {
    id found = valueForKey(member, key);
    if (found)
      values.push_back(std::move(found));
    else if constexpr (std::is_same_v<T, NSArray>)
      values.push_back(NSNull::null());
  }
  return made(self, std::move(values));
}

template <class T>
id valueAtPath(const T& self, SEL selector, const NSString& path) {
  requireKey(self, selector, path);
  if (isOfCollection(path)) {
    const auto result = detail::operationResult(self, membersOf(self), selector, path);
    if (result) return operated(self, result);
  }
  const detail::KeyPath keys = detail::splitKeyPath(path);
  const id first = valueForKey(self, keys.first);
  if (!keys.rest) return first;
  const detail::KeyValueNesting nesting(self, selector);
  return valueForKeyPath(first, keys.rest);
}

template <class T>
void set(const T& self, SEL selector, const id& value, const NSString& key) {
  requireKey(self, selector, key);
  const detail::KeyValueNesting nesting(self, selector);
  for (const id& member : membersOf(self)) setValue(member, value, key);
}

template <class T>
constexpr MethodDefinition kMethods[] = {
    method<"valueForKey:">([](const T& self, Cmd cmd, const NSString& key) -> id {
      return value(self, cmd.selector, key);
    }),
    method<"valueForKeyPath:">([](const T& self, Cmd cmd, const NSString& path) -> id {
      return valueAtPath(self, cmd.selector, path);
    }),
    method<"setValue:forKey:">([](const T& self, Cmd cmd, const id& value, const NSString& key) {
      set(self, cmd.selector, value, key);
    }),
};

constexpr MethodDefinition kDictionaryMethods[] = {
    method<"valueForKey:">([](const NSDictionary& self, Cmd cmd, const NSString& key) -> id {
      requireKey(self, cmd.selector, key);
      if (!isOfCollection(key)) return self->objectForKey(key);
      return sendSuper<NSDictionary, "valueForKey:", id>(self, withoutSign(key));
    }),
};

constexpr MethodDefinition kMutableDictionaryMethods[] = {
    method<"setValue:forKey:">(
        [](const NSMutableDictionary& self, Cmd cmd, const id& value, const NSString& key) {
          requireKey(self, cmd.selector, key);
          const auto change = [&] {
            if (value) return self->setObject(value, key);
            self->removeObjectForKey(key);
          };
          // Keys of observing live for ever: most dictionaries need none.
          const auto flags = self.record()->flags.load(std::memory_order_acquire);
          if ((flags & detail::kFlagObservers) == 0) return change();
          detail::changeValue(self, key, change);
        }),
};

template <class T>
constexpr CategoryDefinition coding(const char* name, std::span<const MethodDefinition> methods) {
  return {.name = name, .cls = &T::classPair.cls, .methods = methods};
}

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSArrayKeyValueCoding =
    coding<NSArray>("NSArrayKeyValueCoding", kMethods<NSArray>);
constinit const CategoryDefinition kNSSetKeyValueCoding =
    coding<NSSet>("NSSetKeyValueCoding", kMethods<NSSet>);
constinit const CategoryDefinition kNSDictionaryKeyValueCoding =
    coding<NSDictionary>("NSDictionaryKeyValueCoding", kDictionaryMethods);
constinit const CategoryDefinition kNSMutableDictionaryKeyValueCoding =
    coding<NSMutableDictionary>("NSMutableDictionaryKeyValueCoding", kMutableDictionaryMethods);

}  // namespace detail
}  // namespace brindle
