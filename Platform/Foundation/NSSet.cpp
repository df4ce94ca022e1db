#include <Brindle/Platform/NSSet.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/CollectionDescription.h"
#include "Platform/Foundation/Internal/Enumerators.h"
#include "Platform/Foundation/Internal/SetStorage.h"
#include "Platform/Foundation/Internal/TableEnumeration.h"

namespace brindle {
namespace {

using detail::copyMembers;
using detail::ObjectTable;
using detail::tableOf;

id makeOfClass(const Class& cls, const id* objects, NSUInteger count) {
  return send<"initWithObjects:count:", id>(send<"alloc", id>(cls), objects, count);
}

id makeOfClass(const Class& cls, const std::vector<id>& objects) {
  return makeOfClass(cls, objects.data(), objects.size());
}

id member(const NSSet& self, const id& object) {
  if (!object) return nullptr;
  const ObjectTable::Entry* entry = tableOf(self).find(object);
  return entry != nullptr ? entry->key : id();
}

bool isSubset(const NSSet& self, const NSSet& other) {
  for (const id& object : copyMembers(self)) {
    if (!other->containsObject(object)) return false;
  }
  return true;
}

bool areEqual(const NSSet& self, const NSSet& other) {
  if (self == other) return true;
  return other && self->count() == other->count() && isSubset(self, other);
}

NSSet adding(const NSSet& self, const std::vector<id>& more) {
  std::vector<id> objects = copyMembers(self);
  objects.insert(objects.end(), more.begin(), more.end());
  return NSSet::setWithObjects(objects.data(), objects.size());
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"set">([](const ClassOf<NSSet>& self) { return self->alloc()->init(); }),
    classMethod<"setWithObject:">(
        [](const Class& self, const id& object) { return makeOfClass(self, &object, 1); }),
    classMethod<"setWithObjects:count:">(
        [](const Class& self, const id* objects, NSUInteger count) {
          return makeOfClass(self, objects, count);
        }),
    classMethod<"setWithArray:">([](const Class& self, const NSArray& array) {
      return send<"initWithArray:", id>(send<"alloc", id>(self), array);
    }),
    classMethod<"setWithSet:">([](const Class& self, const NSSet& other) {
      return send<"initWithSet:", id>(send<"alloc", id>(self), other);
    }),
    method<"init">([](const NSSet& self) -> id { return self->initWithObjects(nullptr, 0); }),
    method<"initWithObjects:count:">(
        [](const NSSet& self, Cmd cmd, const id* objects, NSUInteger count) -> id {
          ObjectTable table;
          for (NSUInteger i = 0; i < count; ++i) {
            detail::requireArgument(self, cmd.selector, objects[i], i);
            table.insert(objects[i], nullptr, false);
          }
          tableOf(self).swapEntries(table);
          return self;
        }),
    method<"initWithArray:">([](const NSSet& self, const NSArray& array) -> id {
      const std::vector<id> objects = detail::copyItems(array);
      return self->initWithObjects(objects.data(), objects.size());
    }),
    method<"initWithSet:">([](const NSSet& self, const NSSet& other) -> id {
      const std::vector<id> objects = copyMembers(other);
      return self->initWithObjects(objects.data(), objects.size());
    }),

    method<"count">([](const NSSet& self) -> NSUInteger { return tableOf(self).count(); }),
    method<"member:">([](const NSSet& self, const id& object) { return member(self, object); }),
    method<"containsObject:">([](const NSSet& self, const id& object) {
      return static_cast<bool>(self->member(object));
    }),
    method<"anyObject">(
        [](const NSSet& self) -> id { return self->objectEnumerator()->nextObject(); }),
    method<"allObjects">([](const NSSet& self) { return detail::makeArray(copyMembers(self)); }),
    method<"objectEnumerator">([](const NSSet& self) {
      return detail::makeTableEnumerator(self, tableOf(self), detail::Column::kKeys);
    }),
    method<"countByEnumeratingWithState:objects:count:">(
        [](const NSSet& self, NSFastEnumerationState* state, ObjectRecord** buffer,
           NSUInteger room) -> NSUInteger {
          if (detail::isLibrarySet(self)) {
            return detail::enumerateKeys(self, tableOf(self), *state, buffer, room);
          }
          // A subclass is asked for its members once.
          state->mutationsPtr = tableOf(self).mutations();
          if (state->state++ > 0) return 0;
          const NSArray members = self->objectEnumerator()->allObjects()->autorelease();
          const detail::ArrayItems items(members);
          state->itemsPtr = items.items().data();
          return items.size();
        }),
    method<"isEqual:">([](const NSSet& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSSet>(other));
    }),
    method<"isEqualToSet:">(
        [](const NSSet& self, const NSSet& other) { return areEqual(self, other); }),
    method<"hash">([](const NSSet& self) { return self->count(); }),
    method<"isSubsetOfSet:">(
        [](const NSSet& self, const NSSet& other) { return isSubset(self, other); }),
    method<"intersectsSet:">([](const NSSet& self, const NSSet& other) {
      for (const id& object : copyMembers(self)) {
        if (other->containsObject(object)) return true;
      }
      return false;
    }),

    method<"setByAddingObject:">([](const NSSet& self, Cmd cmd, const id& object) {
      detail::requireArgument(self, cmd.selector, object);
      return adding(self, {object});
    }),
    method<"setByAddingObjectsFromSet:">(
        [](const NSSet& self, const NSSet& other) { return adding(self, copyMembers(other)); }),
    method<"setByAddingObjectsFromArray:">([](const NSSet& self, const NSArray& array) {
      return adding(self, detail::copyItems(array));
    }),
    method<"makeObjectsPerformSelector:">([](const NSSet& self, SEL message) {
      for (const id& object : copyMembers(self)) send<"performSelector:", id>(object, message);
    }),
    method<"makeObjectsPerformSelector:withObject:">(
        [](const NSSet& self, SEL message, const id& argument) {
          for (const id& object : copyMembers(self)) {
            send<"performSelector:withObject:", id>(object, message, argument);
          }
        }),
    method<"description">([](const NSSet& self) { return detail::describeCollection(self, 0); }),
    method<"descriptionWithLocale:indent:">([](const NSSet& self, const id&, NSUInteger level) {
      return detail::describeCollection(self, level);
    }),
    method<"copyWithZone:">([](const NSSet& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">([](const NSSet& self, NSZone*) -> id {
      return makeOfClass(NSMutableSet::class_(), copyMembers(self));
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying, &kNSFastEnumeration};

constexpr ClassDefinition kDefinition{.name = "NSSet",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<ObjectTable>()};

}  // namespace

constinit ClassPair<NSSet> NSSet::classPair{kDefinition};

namespace detail {

ObjectTable& tableOf(const NSSet& set) { return fieldsOf<ObjectTable>(set); }

bool isLibrarySet(const NSSet& set) noexcept {
  const ClassRecord* cls = set.record()->isa.load(std::memory_order_acquire);
  return cls == &NSSet::classPair.cls || cls == &NSMutableSet::classPair.cls;
}

std::vector<id> copyMembers(const NSSet& set) {
  std::vector<id> members;
  if (!set) return members;
  if (isLibrarySet(set)) {
    for (const auto& entry : tableOf(set).entries()) {
      if (entry.key) members.push_back(entry.key);
    }
  } else {
    const NSEnumerator enumerator = set->objectEnumerator();
    while (id object = enumerator->nextObject()) members.push_back(std::move(object));
  }
  return members;
}

}  // namespace detail
}  // namespace brindle
