#include <Brindle/Platform/NSDictionary.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/CollectionDescription.h"
#include "Platform/Foundation/Internal/DictionaryStorage.h"
#include "Platform/Foundation/Internal/Enumerators.h"
#include "Platform/Foundation/Internal/TableEnumeration.h"

namespace brindle {
namespace {

using detail::copyEntries;
using detail::ObjectTable;
using detail::tableOf;

bool areEqual(const NSDictionary& self, const NSDictionary& other) {
  if (self == other) return true;
  if (!other || self->count() != other->count()) return false;
  for (const auto& [key, value] : copyEntries(self)) {
    const id its = other->objectForKey(key);
    if (!its || !detail::sameOrEqual(value, its)) return false;
  }
  return true;
}

id makeOfClass(const Class& cls, const id* objects, const id* keys, NSUInteger count) {
  return send<"initWithObjects:forKeys:count:", id>(send<"alloc", id>(cls), objects, keys, count);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"dictionary">(
        [](const ClassOf<NSDictionary>& self) { return self->alloc()->init(); }),
    classMethod<"dictionaryWithObject:forKey:">(
        [](const Class& self, const id& object, const id& key) {
          return makeOfClass(self, &object, &key, 1);
        }),
    classMethod<"dictionaryWithObjects:forKeys:">(
        [](const Class& self, Cmd cmd, const NSArray& objects, const NSArray& keys) {
          const std::vector<id> values = detail::copyItems(objects);
          const std::vector<id> names = detail::copyItems(keys);
          if (values.size() != names.size()) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                            std::to_string(values.size()) + " objects for " +
                                std::to_string(names.size()) + " keys");
          }
          return makeOfClass(self, values.data(), names.data(), values.size());
        }),
    classMethod<"dictionaryWithObjects:forKeys:count:">(
        [](const Class& self, const id* objects, const id* keys, NSUInteger count) {
          return makeOfClass(self, objects, keys, count);
        }),
    classMethod<"dictionaryWithDictionary:">([](const Class& self, const NSDictionary& other) {
      return send<"initWithDictionary:", id>(send<"alloc", id>(self), other);
    }),
    method<"init">(
        [](const NSDictionary& self) -> id { return self->initWithObjects(nullptr, nullptr, 0); }),
    method<"initWithObjects:forKeys:count:">([](const NSDictionary& self, Cmd cmd,
                                                const id* objects, const id* keys,
                                                NSUInteger count) -> id {
      ObjectTable table;
      for (NSUInteger i = 0; i < count; ++i) {
        detail::requireArgument(self, cmd.selector, objects[i], i);
        detail::requireArgument(self, cmd.selector, keys[i], i);
        table.insert(detail::copyKey(keys[i]), objects[i], true);
      }
      tableOf(self).swapEntries(table);
      return self;
    }),
    method<"initWithDictionary:">([](const NSDictionary& self, const NSDictionary& other) -> id {
      std::vector<id> objects;
      std::vector<id> keys;
      for (auto& [key, value] : copyEntries(other)) {
        keys.push_back(std::move(key));
        objects.push_back(std::move(value));
      }
      return self->initWithObjects(objects.data(), keys.data(), keys.size());
    }),

    method<"count">([](const NSDictionary& self) -> NSUInteger { return tableOf(self).count(); }),
    method<"objectForKey:">([](const NSDictionary& self, const id& key) -> id {
      if (!key) return nullptr;
      const ObjectTable::Entry* entry = tableOf(self).find(key);
      return entry != nullptr ? entry->value : id();
    }),
    method<"allKeys">([](const NSDictionary& self) {
      std::vector<id> keys;
      for (auto& [key, value] : copyEntries(self)) keys.push_back(std::move(key));
      return detail::makeArray(std::move(keys));
    }),
    method<"allValues">([](const NSDictionary& self) {
      std::vector<id> values;
      for (auto& [key, value] : copyEntries(self)) values.push_back(std::move(value));
      return detail::makeArray(std::move(values));
    }),
    method<"allKeysForObject:">([](const NSDictionary& self, const id& object) {
      std::vector<id> keys;
      for (auto& [key, value] : copyEntries(self)) {
        if (object && detail::sameOrEqual(object, value)) keys.push_back(std::move(key));
      }
      return detail::makeArray(std::move(keys));
    }),
    method<"objectsForKeys:notFoundMarker:">(
        [](const NSDictionary& self, Cmd cmd, const NSArray& keys, const id& marker) {
          detail::requireArgument(self, cmd.selector, marker);
          std::vector<id> values;
          for (const id& key : detail::copyItems(keys)) {
            const id value = self->objectForKey(key);
            values.push_back(value ? value : marker);
          }
          return detail::makeArray(std::move(values));
        }),
    method<"keyEnumerator">([](const NSDictionary& self) {
      return detail::makeTableEnumerator(self, tableOf(self), detail::Column::kKeys);
    }),
    method<"objectEnumerator">([](const NSDictionary& self) {
      if (detail::isLibraryDictionary(self)) {
        return detail::makeTableEnumerator(self, tableOf(self), detail::Column::kValues);
      }
      return self->allValues()->objectEnumerator();
    }),
    method<"countByEnumeratingWithState:objects:count:">(
        [](const NSDictionary& self, NSFastEnumerationState* state, ObjectRecord** buffer,
           NSUInteger room) -> NSUInteger {
          if (detail::isLibraryDictionary(self)) {
            return detail::enumerateKeys(self, tableOf(self), *state, buffer, room);
          }
          // A subclass is asked for its keys once.
          state->mutationsPtr = tableOf(self).mutations();
          if (state->state++ > 0) return 0;
          const NSArray keys = self->keyEnumerator()->allObjects()->autorelease();
          const detail::ArrayItems items(keys);
          state->itemsPtr = items.items().data();
          return items.size();
        }),
    method<"isEqual:">([](const NSDictionary& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSDictionary>(other));
    }),
    method<"isEqualToDictionary:">(
        [](const NSDictionary& self, const NSDictionary& other) { return areEqual(self, other); }),
    method<"hash">([](const NSDictionary& self) { return self->count(); }),
    method<"description">(
        [](const NSDictionary& self) { return detail::describeCollection(self, 0); }),
    method<"descriptionWithLocale:indent:">(
        [](const NSDictionary& self, const id&, NSUInteger level) {
          return detail::describeCollection(self, level);
        }),
    method<"copyWithZone:">([](const NSDictionary& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">([](const NSDictionary& self, NSZone*) -> id {
      return NSMutableDictionary::dictionaryWithDictionary(self);
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying, &kNSFastEnumeration};

constexpr ClassDefinition kDefinition{.name = "NSDictionary",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<ObjectTable>()};

}  // namespace

constinit ClassPair<NSDictionary> NSDictionary::classPair{kDefinition};

NSDictionary::NSDictionary(std::initializer_list<std::pair<id, id>> entries) {
  std::vector<id> objects;
  std::vector<id> keys;
  for (const auto& [key, value] : entries) {
    keys.push_back(key);
    objects.push_back(value);
  }
  *this = class_()->dictionaryWithObjects(objects.data(), keys.data(), keys.size());
}

namespace detail {

ObjectTable& tableOf(const NSDictionary& dictionary) { return fieldsOf<ObjectTable>(dictionary); }

bool isLibraryDictionary(const NSDictionary& dictionary) noexcept {
  const ClassRecord* cls = dictionary.record()->isa.load(std::memory_order_acquire);
  return cls == &NSDictionary::classPair.cls || cls == &NSMutableDictionary::classPair.cls;
}

id copyKey(const id& key) {
  const auto copy = send<"copyWithZone:", id>(key, static_cast<NSZone*>(nullptr));
  if (!copy) raise("NSInvalidArgumentException", "a key has nil for its copy");
  return copy;
}

std::vector<DictionaryEntry> copyEntries(const NSDictionary& dictionary) {
  std::vector<DictionaryEntry> entries;
  if (!dictionary) return entries;
  if (isLibraryDictionary(dictionary)) {
    for (const auto& entry : tableOf(dictionary).entries()) {
      if (entry.key) entries.push_back({entry.key, entry.value});
    }
    return entries;
  }
  for (const id& key : dictionary->keyEnumerator()) {
    const id value = dictionary->objectForKey(key);
    if (value) entries.push_back({key, value});
  }
  return entries;
}

}  // namespace detail
}  // namespace brindle
