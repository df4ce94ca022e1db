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
          for (const id& key : detail::copyItems(other->allKeys())) {
            self->setObject(other->objectForKey(key), key);
          }
        }),
    method<"setDictionary:">([](const NSMutableDictionary& self, const NSDictionary& other) {
      const auto kept = NSDictionary::dictionaryWithDictionary(other);  // it may be the receiver
      self->removeAllObjects();
      self->addEntriesFromDictionary(kept);
    }),
    method<"copyWithZone:">([](const NSMutableDictionary& self, NSZone*) -> id {
      return NSDictionary::dictionaryWithDictionary(self);
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSMutableDictionary", .methods = kMethods};

}  // namespace

constinit ClassPair<NSMutableDictionary> NSMutableDictionary::classPair{kDefinition};

}  // namespace brindle
