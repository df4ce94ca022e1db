#include <Brindle/Platform/NSMutableSet.h>

#include <algorithm>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/SetStorage.h"

namespace brindle {
namespace {

using detail::copyMembers;
using detail::tableOf;

// More is given only when it is needed: a capacity is a hint, and nobody has checked it.
constexpr NSUInteger kGreatestReserve = 1U << 20U;

constexpr MethodDefinition kMethods[] = {
    // By messages for a client's class, which keeps its members elsewhere.
    method<"initWithObjects:count:">(
        [](const NSMutableSet& self, const id* objects, NSUInteger count) -> id {
          if (detail::isLibrarySet(self)) {
            return sendSuper<NSMutableSet, "initWithObjects:count:", id>(self, objects, count);
          }
          const id* none = nullptr;
          const auto made = sendSuper<NSMutableSet, "initWithObjects:count:", NSMutableSet>(
              self, none, NSUInteger{0});
          for (NSUInteger i = 0; i < count; ++i) made->addObject(objects[i]);
          return made;
        }),
    classMethod<"setWithCapacity:">([](const Class& self, NSUInteger capacity) -> id {
      return send<"initWithCapacity:", id>(send<"alloc", id>(self), capacity);
    }),
    method<"initWithCapacity:">([](const NSMutableSet& self, NSUInteger capacity) -> id {
      const NSMutableSet made = self->init();
      if (made) tableOf(made).reserve(std::min(capacity, kGreatestReserve));
      return made;
    }),
    method<"addObject:">([](const NSMutableSet& self, Cmd cmd, const id& object) {
      detail::requireArgument(self, cmd.selector, object);
      tableOf(self).insert(object, nullptr, false);
    }),
    method<"removeObject:">([](const NSMutableSet& self, const id& object) {
      if (object) tableOf(self).remove(object);
    }),
    method<"removeAllObjects">([](const NSMutableSet& self) {
      if (detail::isLibrarySet(self)) return tableOf(self).clear();
      for (const id& object : copyMembers(self)) self->removeObject(object);
    }),
    method<"addObjectsFromArray:">([](const NSMutableSet& self, const NSArray& array) {
      for (const id& object : detail::copyItems(array)) self->addObject(object);
    }),
    method<"unionSet:">([](const NSMutableSet& self, const NSSet& other) {
      for (const id& object : copyMembers(other)) self->addObject(object);
    }),
    method<"minusSet:">([](const NSMutableSet& self, const NSSet& other) {
      for (const id& object : copyMembers(other)) self->removeObject(object);
    }),
    method<"intersectSet:">([](const NSMutableSet& self, const NSSet& other) {
      for (const id& object : copyMembers(self)) {
        if (!other->containsObject(object)) self->removeObject(object);
      }
    }),
    method<"setSet:">([](const NSMutableSet& self, const NSSet& other) {
      const std::vector<id> members = copyMembers(other);  // it may be the receiver
      self->removeAllObjects();
      for (const id& object : members) self->addObject(object);
    }),
    method<"copyWithZone:">([](const NSMutableSet& self, NSZone*) -> id {
      const std::vector<id> members = copyMembers(self);
      return NSSet::setWithObjects(members.data(), members.size());
    }),
};

constexpr ClassDefinition kDefinition{.name = "NSMutableSet", .methods = kMethods};

}  // namespace

constinit ClassPair<NSMutableSet> NSMutableSet::classPair{kDefinition};

}  // namespace brindle
