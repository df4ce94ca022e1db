// Key-value observing: being told when a property of an object changes.
//
//   addObserver(account, watcher, "balance"_ns, NSKeyValueObservingOptionNew);
//   account->setBalance(7);      // watcher: observeValueForKeyPath:ofObject:change:context:
//   removeObserver(account, watcher, "balance"_ns);
//
// Setters tell by themselves while their object is observed; everything else is told with
// `willChange...` and `didChange...` around the change. A key path is followed through the objects
// on its way, also when one of them is replaced. Observers are told on the thread that makes the
// change. Neither side keeps the other alive: an observer that is gone is told nothing, and what
// was registered with an object goes when the object goes.
#pragma once

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/NSSet.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

/// What an observer wants to be told; combined with `|`. Other bits are ignored.
enum NSKeyValueObservingOptions : NSUInteger {
  NSKeyValueObservingOptionNew = 1,      // the value after the change
  NSKeyValueObservingOptionOld = 2,      // the value before it
  NSKeyValueObservingOptionInitial = 4,  // once at registration, before that returns
  NSKeyValueObservingOptionPrior = 8,    // also before each change
};
constexpr NSKeyValueObservingOptions operator|(NSKeyValueObservingOptions a,
                                               NSKeyValueObservingOptions b) noexcept {
  return static_cast<NSKeyValueObservingOptions>(NSUInteger{a} | NSUInteger{b});
}

/// The kind of a change: a number under NSKeyValueChangeKindKey.
enum NSKeyValueChange : NSUInteger {
  NSKeyValueChangeSetting = 1,
  NSKeyValueChangeInsertion = 2,
  NSKeyValueChangeRemoval = 3,
  NSKeyValueChangeReplacement = 4,
};

/// How a set changes.
enum NSKeyValueSetMutationKind : NSUInteger {
  NSKeyValueUnionSetMutation = 1,
  NSKeyValueMinusSetMutation = 2,
  NSKeyValueIntersectSetMutation = 3,
  NSKeyValueSetSetMutation = 4,
};

// The keys of a change dictionary. Nil values are NSNull there; of a change at indexes, or of a
// set, old and new are the members concerned.
extern "C" {
/// "kind": an NSKeyValueChange, in every dictionary.
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyValueChangeKindKey;
/// "new"
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyValueChangeNewKey;
/// "old"
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyValueChangeOldKey;
/// "indexes": the NSIndexSet of an indexed change.
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyValueChangeIndexesKey;
/// "notificationIsPrior": true in what is sent before a change, absent after it.
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyValueChangeNotificationIsPriorKey;
}

// --- Registering ---------------------------------------------------------------------------------

/// Registers the observer. It is told by `observeValueForKeyPath:ofObject:change:context:`, with
/// the context as it is given here; the same observer may be registered many times. An array or set
/// as the object raises NSInvalidArgumentException, as does a nil or empty key path.
inline void addObserver(const id& object, const id& observer, const NSString& keyPath,
                        NSUInteger options, void* context = nullptr) {
  send<"addObserver:forKeyPath:options:context:">(object, observer, keyPath, options, context);
}
/// Removes the observer's latest registration for the key path. Raises NSRangeException when there
/// is none.
inline void removeObserver(const id& object, const id& observer, const NSString& keyPath) {
  send<"removeObserver:forKeyPath:">(object, observer, keyPath);
}
/// The latest one with that context.
inline void removeObserver(const id& object, const id& observer, const NSString& keyPath,
                           void* context) {
  send<"removeObserver:forKeyPath:context:">(object, observer, keyPath, context);
}
/// The same for the members of an array at indexes, each by itself. An index beyond the end raises
/// NSRangeException.
inline void addObserver(const NSArray& objects, const id& observer, const NSIndexSet& indexes,
                        const NSString& keyPath, NSUInteger options, void* context = nullptr) {
  send<"addObserver:toObjectsAtIndexes:forKeyPath:options:context:">(objects, observer, indexes,
                                                                     keyPath, options, context);
}
inline void removeObserver(const NSArray& objects, const id& observer, const NSIndexSet& indexes,
                           const NSString& keyPath) {
  send<"removeObserver:fromObjectsAtIndexes:forKeyPath:">(objects, observer, indexes, keyPath);
}
inline void removeObserver(const NSArray& objects, const id& observer, const NSIndexSet& indexes,
                           const NSString& keyPath, void* context) {
  send<"removeObserver:fromObjectsAtIndexes:forKeyPath:context:">(objects, observer, indexes,
                                                                  keyPath, context);
}

// --- Telling -------------------------------------------------------------------------------------

/// Around a change of a value, in this order, on one thread; pairs may be nested. A `did` whose
/// `will` is missing does nothing.
inline void willChangeValueForKey(const id& object, const NSString& key) {
  send<"willChangeValueForKey:">(object, key);
}
inline void didChangeValueForKey(const id& object, const NSString& key) {
  send<"didChangeValueForKey:">(object, key);
}
/// Around an insertion, removal or replacement of members at indexes; for insertions, the indexes
/// that the members have afterwards.
inline void willChange(const id& object, NSKeyValueChange kind, const NSIndexSet& indexes,
                       const NSString& key) {
  send<"willChange:valuesAtIndexes:forKey:">(object, kind, indexes, key);
}
inline void didChange(const id& object, NSKeyValueChange kind, const NSIndexSet& indexes,
                      const NSString& key) {
  send<"didChange:valuesAtIndexes:forKey:">(object, kind, indexes, key);
}
/// Around a change of a set by another set.
inline void willChangeValueForKey(const id& object, const NSString& key,
                                  NSKeyValueSetMutationKind mutation, const NSSet& objects) {
  send<"willChangeValueForKey:withSetMutation:usingObjects:">(object, key, mutation, objects);
}
inline void didChangeValueForKey(const id& object, const NSString& key,
                                 NSKeyValueSetMutationKind mutation, const NSSet& objects) {
  send<"didChangeValueForKey:withSetMutation:usingObjects:">(object, key, mutation, objects);
}

// --- What a class says of its keys ---------------------------------------------------------------

/// Whether setters of the key tell by themselves. Yes, unless the class has a class operation
/// `automaticallyNotifiesObserversOf<Key>` that says no, or overrides this one.
inline bool automaticallyNotifiesObserversForKey(Class cls, const NSString& key) {
  return send<"automaticallyNotifiesObserversForKey:", bool>(cls, key);
}
/// The key paths whose changes are changes of the key: what the class operation
/// `keyPathsForValuesAffecting<Key>` answers, or an override of this one; with the superclass's.
inline NSSet keyPathsForValuesAffectingValueForKey(Class cls, const NSString& key) {
  return send<"keyPathsForValuesAffectingValueForKey:", NSSet>(cls, key);
}

}  // namespace brindle
