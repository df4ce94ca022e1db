#include <Brindle/Platform/NSMutableDictionary.h>

#include <algorithm>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/DictionaryStorage.h"

namespace brindle {
namespace {

using detail::tableOf;

// More is given only when it is needed: a capacity is a hint, and nobody has checked it.
constexpr NSUInteger kGreatestReserve = 1U << 20U;

constexpr MethodDefinition kMethods[] = {
    // By messages for a client's class, which keeps its entries elsewhere.
    method<"initWithObjects:forKeys:count:">([](const NSMutableDictionary& self, const id* objects,
                                                const id* keys, NSUInteger count) -> id {
      if (detail::isLibraryDictionary(self)) {
        return sendSuper<NSMutableDictionary, "initWithObjects:forKeys:count:", id>(self, objects,
                                                                                    keys, count);
      }
      const id* none = nullptr;
      const auto made =
          sendSuper<NSMutableDictionary, "initWithObjects:forKeys:count:", NSMutableDictionary>(
              self, none, none, NSUInteger{0});
      for (NSUInteger i = 0; i < count; ++i) made->setObject(objects[i], keys[i]);
      return made;
    }),
    classMethod<"dictionaryWithCapacity:">([](const Class& self, NSUInteger capacity) -> id {
      return send<"initWithCapacity:", id>(send<"alloc", id>(self), capacity);
    }),
    method<"initWithCapacity:">([](const NSMutableDictionary& self, NSUInteger capacity) -> id {
      const NSMutableDictionary made = self->init();
      if (made) tableOf(made).reserve(std::min(capacity, kGreatestReserve));
      return made;
    }),
    method<"setObject:forKey:">(
        [](const NSMutableDictionary& self, Cmd cmd, const id& object, const id& key) {
          detail::requireArgument(self, cmd.selector, object);
          detail::requireArgument(self, cmd.selector, key);
          tableOf(self).insert(detail::copyKey(key), object, true);
        }),
    method<"removeObjectForKey:">([](const NSMutableDictionary& self, Cmd cmd, const id& key) {
      detail::requireArgument(self, cmd.selector, key);
      tableOf(self).remove(key);
    }),
    method<"removeObjectsForKeys:">([](const NSMutableDictionary& self, const NSArray& keys) {
      for (const id& key : detail::copyItems(keys)) self->removeObjectForKey(key);
    }),
    method<"removeAllObjects">([](const NSMutableDictionary& self) {
      if (detail::isLibraryDictionary(self)) return tableOf(self).clear();
      self->removeObjectsForKeys(self->keyEnumerator()->allObjects());
    }),
    method<"addEntriesFromDictionary:">(
        [](const NSMutableDictionary& self, const NSDictionary& other) {
          for (const auto& [key, value] : detail::copyEntries(other)) self->setObject(value, key);
        }),
    method<"setDictionary:">([](const NSMutableDictionary& self, const NSDictionary& other) {
      const auto entries = detail::copyEntries(other);  // it may be the receiver
      self->removeAllObjects();
      for (const auto& [key, value] : entries) self->setObject(value, key);
    }),
    method<"copyWithZone:">([](const NSMutableDictionary& self, NSZone*) -> id {
      return NSDictionary::dictionaryWithDictionary(self);
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSMutableDictionary", .methods = kMethods};

}  // namespace

constinit ClassPair<NSMutableDictionary> NSMutableDictionary::classPair{kDefinition};

}  // namespace brindle
