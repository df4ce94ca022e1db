// Key-value observing: what objects and classes are asked. Observations.cpp keeps the
// registrations, ObservingClasses.cpp makes setters tell, ObservedChange.cpp tells.
#include <Brindle/Platform/NSKeyValueObserving.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/ObservedChange.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {

constinit const NSString NSKeyValueChangeKindKey = "kind"_ns;
constinit const NSString NSKeyValueChangeNewKey = "new"_ns;
constinit const NSString NSKeyValueChangeOldKey = "old"_ns;
constinit const NSString NSKeyValueChangeIndexesKey = "indexes"_ns;
constinit const NSString NSKeyValueChangeNotificationIsPriorKey = "notificationIsPrior"_ns;

namespace {

using detail::observedKey;
using detail::ObservedKey;
using detail::observedPath;
using detail::ObservedPath;

std::string address(const void* pointer) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%p", pointer);
  return pointer != nullptr ? text.data() : "0x0";
}

std::string named(const id& object) {
  return std::string("<") + (object ? class_getName(classOf(object)) : "(null)") + " " +
         address(object.record()) + ">";
}

const ObservedPath* requirePath(const id& self, SEL selector, const NSString& keyPath) {
  const ObservedPath* path = observedPath(keyPath);
  if (path == nullptr) {
    detail::raiseIn("NSInvalidArgumentException", self, selector,
                    keyPath ? "empty key path" : "nil key path");
  }
  return path;
}

const ObservedKey& requireKey(const id& self, SEL selector, const NSString& key) {
  detail::requireArgument(self, selector, key);
  return *observedKey(key);
}

void add(const NSObject& self, SEL selector, const id& observer, const NSString& keyPath,
         NSUInteger options, void* context) {
  const ObservedPath* path = requirePath(self, selector, keyPath);
  detail::releaseRegistration(detail::observe(self, observer, path, options, context, nullptr));
}

void remove(const NSObject& self, const id& observer, const NSString& keyPath, bool anyContext,
            void* context) {
  const ObservedPath* path = observedPath(keyPath);
  if (path != nullptr) {
    const detail::RegistrationOwner found(
        detail::findRegistration(self.record(), observer, path, anyContext, context));
    if (found.get() != nullptr && detail::endRegistration(found.get())) return;
  }
  detail::raise("NSRangeException",
                "Cannot remove an observer " + named(observer) + " for the key path \"" +
                    (keyPath ? static_cast<std::string>(keyPath) : "(null)") + "\" from " +
                    named(self) + " because it is not registered as an observer.");
}

// --- Changes told by hand ------------------------------------------------------------------------

struct Announced {
  const ObjectRecord* object;
  std::unique_ptr<detail::ObservedChange> change;
};
std::vector<Announced>& announced() {
  thread_local std::vector<Announced> changes;
  return changes;
}

void will(const NSObject& self, const ObservedKey& key, detail::ChangeDetails details) {
  if ((self.record()->flags.load(std::memory_order_acquire) & detail::kFlagObservers) == 0) return;
  const id object = self;  // observers may let go of it
  auto change = std::make_unique<detail::ObservedChange>(object, key, std::move(details),
                                                         detail::SnapshotLife::kLong);
  announced().push_back({self.record(), std::move(change)});
}

void did(const NSObject& self, const ObservedKey& key) {
  std::vector<Announced>& changes = announced();
  for (std::size_t i = changes.size(); i-- > 0;) {
    if (changes[i].object != self.record() || &changes[i].change->key() != &key) continue;
    const std::unique_ptr<detail::ObservedChange> change = std::move(changes[i].change);
    changes.erase(changes.begin() + static_cast<std::ptrdiff_t>(i));
    const id object = self;
    change->finish(object);
    return;
  }
}

detail::ChangeDetails indexed(NSKeyValueChange kind, const NSIndexSet& indexes) {
  detail::ChangeDetails details;
  details.kind = kind;
  details.indexes = indexes->copy();
  return details;
}

detail::ChangeDetails mutated(NSKeyValueSetMutationKind mutation, const NSSet& members) {
  detail::ChangeDetails details;
  details.ofSet = true;
  details.mutation = mutation;
  details.members = members ? NSSet::setWithSet(members) : NSSet::set();
  return details;
}

// --- What classes say of their keys --------------------------------------------------------------

bool tellsAutomatically(const Class& self, const NSString& name) {
  const ObservedKey* key = observedKey(name);
  const SEL asked =
      key != nullptr ? detail::keySelector(*key, "automaticallyNotifiesObserversOf", "") : nullptr;
  Method method = class_getClassMethod(self, asked);
  if (method == nullptr || method_getNumberOfArguments(method) != 2) return true;
  return sendSelector<bool>(self, asked);
}

NSSet affectingPaths(const Class& self, const NSString& name) {
  NSSet paths = NSSet::set();
  const ObservedKey* key = observedKey(name);
  const SEL asked =
      key != nullptr ? detail::keySelector(*key, "keyPathsForValuesAffecting", "") : nullptr;
  if (asked == nullptr) return paths;
  // What each class on the way up says, asked as the receiver.
  const MethodRecord* last = nullptr;
  for (Class cls = self; cls; cls = class_getSuperclass(cls)) {
    Method method = class_getClassMethod(cls, asked);
    if (method == nullptr || method->implementation.load() == nullptr) break;
    if (method == last) continue;
    last = method;
    const auto said = callImplementation<NSSet>(method->implementation.load(), self, asked);
    if (said) paths = paths->setByAddingObjectsFromSet(said);
  }
  return paths;
}

[[noreturn]] void raiseUnhandled(const NSObject& self, const NSString& keyPath, const id& object,
                                 const NSDictionary& change, void* context) {
  NSException::raise(NSInternalInconsistencyException,
                     "%@: An -observeValueForKeyPath:ofObject:change:context: message was received "
                     "but not handled.\nKey path: %@\nObserved object: %@\nChange: %@\nContext: "
                     "%s"_ns,
                     self, keyPath, object, change, address(context).c_str());
}

constexpr MethodDefinition kMethods[] = {
    method<"addObserver:forKeyPath:options:context:">(
        [](const NSObject& self, Cmd cmd, const id& observer, const NSString& keyPath,
           NSUInteger options,
           void* context) { add(self, cmd.selector, observer, keyPath, options, context); }),
    method<"removeObserver:forKeyPath:">(
        [](const NSObject& self, const id& observer, const NSString& keyPath) {
          remove(self, observer, keyPath, true, nullptr);
        }),
    method<"removeObserver:forKeyPath:context:">(
        [](const NSObject& self, const id& observer, const NSString& keyPath, void* context) {
          remove(self, observer, keyPath, false, context);
        }),
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const NSObject& self, const NSString& keyPath, const id& object,
           const NSDictionary& change,
           void* context) { raiseUnhandled(self, keyPath, object, change, context); }),

    method<"willChangeValueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) {
      will(self, requireKey(self, cmd.selector, key), {});
    }),
    method<"didChangeValueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) {
      did(self, requireKey(self, cmd.selector, key));
    }),
    method<"willChange:valuesAtIndexes:forKey:">(
        [](const NSObject& self, Cmd cmd, NSKeyValueChange kind, const NSIndexSet& indexes,
           const NSString& key) {
          detail::requireArgument(self, cmd.selector, indexes);
          will(self, requireKey(self, cmd.selector, key), indexed(kind, indexes));
        }),
    method<"didChange:valuesAtIndexes:forKey:">(
        [](const NSObject& self, Cmd cmd, NSKeyValueChange, const NSIndexSet&,
           const NSString& key) { did(self, requireKey(self, cmd.selector, key)); }),
    method<"willChangeValueForKey:withSetMutation:usingObjects:">(
        [](const NSObject& self, Cmd cmd, const NSString& key, NSKeyValueSetMutationKind mutation,
           const NSSet& members) {
          will(self, requireKey(self, cmd.selector, key), mutated(mutation, members));
        }),
    method<"didChangeValueForKey:withSetMutation:usingObjects:">(
        [](const NSObject& self, Cmd cmd, const NSString& key, NSKeyValueSetMutationKind,
           const NSSet&) { did(self, requireKey(self, cmd.selector, key)); }),

    classMethod<"automaticallyNotifiesObserversForKey:">(
        [](const Class& self, const NSString& key) { return tellsAutomatically(self, key); }),
    classMethod<"keyPathsForValuesAffectingValueForKey:">(
        [](const Class& self, const NSString& key) { return affectingPaths(self, key); }),
};

// --- Arrays and sets -----------------------------------------------------------------------------

[[noreturn]] void refuse(const id& self, SEL selector, const NSString& keyPath) {
  detail::raiseUnobservable(self, selector, keyPath);
}

/// Does something with the members at the indexes, as they are now; raises before it begins.
template <class Body>
void forMembers(const NSArray& self, SEL selector, const NSIndexSet& indexes, Body body) {
  detail::requireArgument(self, selector, indexes);
  const NSUInteger count = self->count();
  if (indexes->count() > 0 && indexes->lastIndex() >= count) {
    detail::raiseBeyondCount(self, selector, indexes->lastIndex(), count);
  }
  if (detail::isLibraryArray(self) && !isa<NSMutableArray>(self)) {
    const NSArray kept = self;  // and with it its members, where they are
    const detail::ArrayItems members(kept);
    const NSIndexSet same = indexes->copy();
    for (const NSUInteger index : same) body(members.items()[index]);
    return;
  }
  std::vector<id> members;
  members.reserve(indexes->count());
  for (const NSUInteger index : indexes) members.push_back(self->objectAtIndex(index));
  for (const id& member : members) body(member);
}

constexpr MethodDefinition kArrayMethods[] = {
    method<"addObserver:forKeyPath:options:context:">(
        [](const NSArray& self, Cmd cmd, const id&, const NSString& keyPath, NSUInteger, void*) {
          refuse(self, cmd.selector, keyPath);
        }),
    method<"removeObserver:forKeyPath:">(
        [](const NSArray& self, Cmd cmd, const id&, const NSString& keyPath) {
          refuse(self, cmd.selector, keyPath);
        }),
    method<"removeObserver:forKeyPath:context:">(
        [](const NSArray& self, Cmd cmd, const id&, const NSString& keyPath, void*) {
          refuse(self, cmd.selector, keyPath);
        }),
    method<"addObserver:toObjectsAtIndexes:forKeyPath:options:context:">(
        [](const NSArray& self, Cmd cmd, const id& observer, const NSIndexSet& indexes,
           const NSString& keyPath, NSUInteger options, void* context) {
          forMembers(self, cmd.selector, indexes, [&](const id& member) {
            addObserver(member, observer, keyPath, options, context);
          });
        }),
    method<"removeObserver:fromObjectsAtIndexes:forKeyPath:">(
        [](const NSArray& self, Cmd cmd, const id& observer, const NSIndexSet& indexes,
           const NSString& keyPath) {
          forMembers(self, cmd.selector, indexes,
                     [&](const id& member) { removeObserver(member, observer, keyPath); });
        }),
    method<"removeObserver:fromObjectsAtIndexes:forKeyPath:context:">(
        [](const NSArray& self, Cmd cmd, const id& observer, const NSIndexSet& indexes,
           const NSString& keyPath, void* context) {
          forMembers(self, cmd.selector, indexes,
                     [&](const id& member) { removeObserver(member, observer, keyPath, context); });
        }),
};

constexpr MethodDefinition kSetMethods[] = {
    method<"addObserver:forKeyPath:options:context:">(
        [](const NSSet& self, Cmd cmd, const id&, const NSString& keyPath, NSUInteger, void*) {
          refuse(self, cmd.selector, keyPath);
        }),
    method<"removeObserver:forKeyPath:">(
        [](const NSSet& self, Cmd cmd, const id&, const NSString& keyPath) {
          refuse(self, cmd.selector, keyPath);
        }),
    method<"removeObserver:forKeyPath:context:">(
        [](const NSSet& self, Cmd cmd, const id&, const NSString& keyPath, void*) {
          refuse(self, cmd.selector, keyPath);
        }),
};

}  // namespace

namespace detail {

void raiseUnobservable(const id& collection, SEL selector, const NSString& keyPath) {
  raise("NSInvalidArgumentException", "[" + named(collection) + " " + sel_getName(selector) +
                                          "] is not supported. Key path: " +
                                          (keyPath ? static_cast<std::string>(keyPath) : "(null)"));
}

constinit const CategoryDefinition kNSKeyValueObserving{
    .name = "NSKeyValueObserving", .cls = &NSObject::classPair.cls, .methods = kMethods};
constinit const CategoryDefinition kNSArrayObserving{
    .name = "NSArrayKeyValueObserving", .cls = &NSArray::classPair.cls, .methods = kArrayMethods};
constinit const CategoryDefinition kNSSetObserving{
    .name = "NSSetKeyValueObserving", .cls = &NSSet::classPair.cls, .methods = kSetMethods};

}  // namespace detail
}  // namespace brindle
