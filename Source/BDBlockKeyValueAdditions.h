// Observing a property with a lambda.
//
//   Weak<Window> weak = window;
//   Block<void()> stop =
//       addObserver(model, window, "title"_ns, NSKeyValueObservingOptionNew,
//                   [weak](const NSDictionary& change) { weak.lock()->redraw(); });
//   ...
//   stop();
//
// The observer keeps a copy of the block alive, and is not kept itself. The answer stops the
// observation; it is called once. With BDKeyValueObservingOptionRemoveOnDealloc the observation
// stops by itself when the observer ends. Where the observed object has gone first, stopping does
// nothing. Blocks run on the thread that makes the change. Registering, and the list of what is
// stopped at an observer's end, belong to the observer's own thread.
#pragma once

#include <concepts>
#include <type_traits>

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/Weak.h>

namespace brindle {

/// What a block is told of a change: the dictionary of NSKeyValueObserving.h.
using BDKeyValueObservingBlock = BlockArg<void(const NSDictionary& change)>;

enum : std::int32_t {
  /// Stops the observation when the observer is deallocated. The constant is negative: combined
  /// with others and widened to the options it sets bits 31 to 63, and only all of them together
  /// are the option. 0x80000000 is not.
  BDKeyValueObservingOptionRemoveOnDealloc = -2147483647 - 1,
};

/// Combined with options it is widened as a signed number is, in the width of the other side.
template <class T>
requires std::unsigned_integral<T> || std::same_as<T, NSKeyValueObservingOptions>
constexpr auto operator|(T a, decltype(BDKeyValueObservingOptionRemoveOnDealloc) b) noexcept {
  using Bits = std::conditional_t<std::unsigned_integral<T>, T, NSUInteger>;
  return static_cast<Bits>(static_cast<Bits>(a) | static_cast<Bits>(static_cast<NSInteger>(b)));
}
template <class T>
requires std::unsigned_integral<T> || std::same_as<T, NSKeyValueObservingOptions>
constexpr auto operator|(decltype(BDKeyValueObservingOptionRemoveOnDealloc) a, T b) noexcept {
  return b | a;
}

/// The options of an observation with a block: any of the platform's, the one above, or both.
class BDKeyValueObservingOptions {
 public:
  // NOLINTBEGIN(google-explicit-constructor): they are those options
  constexpr BDKeyValueObservingOptions(NSUInteger options) noexcept : options_(options) {}
  constexpr BDKeyValueObservingOptions(
      decltype(BDKeyValueObservingOptionRemoveOnDealloc) alone) noexcept
      : options_(NSUInteger{0} | alone) {}
  constexpr operator NSUInteger() const noexcept { return options_; }
  // NOLINTEND(google-explicit-constructor)

 private:
  NSUInteger options_;
};

/// Observes the key path of `object` with a copy of the block. Stopping also runs the extra
/// removal, which may be nil. With the option to stop by itself the answer does nothing. A removal
/// that is called twice raises NSRangeException, as the platform does. Nil observes nothing.
inline Block<void()> addObserver(const id& object, const id& observer, const NSString& keyPath,
                                 BDKeyValueObservingOptions options,
                                 const BDKeyValueObservingBlock& block,
                                 const BlockArg<void()>& extraRemoval) {
  return send<"addObserver:forKeyPath:options:block:extraRemoval:", Block<void()>>(
      object, observer, keyPath, NSUInteger{options}, block, extraRemoval);
}
/// The same without an extra removal.
inline Block<void()> addObserver(const id& object, const id& observer, const NSString& keyPath,
                                 BDKeyValueObservingOptions options,
                                 const BDKeyValueObservingBlock& block) {
  return send<"addObserver:forKeyPath:options:block:", Block<void()>>(object, observer, keyPath,
                                                                      NSUInteger{options}, block);
}
/// The same with the object as its own observer.
inline Block<void()> addObserverForKeyPath(const id& object, const NSString& keyPath,
                                           BDKeyValueObservingOptions options,
                                           const BDKeyValueObservingBlock& block) {
  return send<"addObserverForKeyPath:options:block:", Block<void()>>(object, keyPath,
                                                                     NSUInteger{options}, block);
}

/// Observes the key path of every member of a relationship (an array property), and goes with the
/// relationship: when it is replaced or changed, its new members are observed instead. An empty
/// one, nil and NSNull have no members. The option to stop by itself has no effect here. The
/// members of before live until the autorelease pool of the change is drained.
inline Block<void()> addObserverForCollection(const id& object, const id& observer,
                                              const NSString& collectionKey,
                                              const NSString& objectKeyPath,
                                              BDKeyValueObservingOptions options,
                                              const BDKeyValueObservingBlock& block) {
  return send<"addObserver:forCollection:objectKeyPath:options:block:", Block<void()>>(
      object, observer, collectionKey, objectKeyPath, NSUInteger{options}, block);
}
/// The same with the object as its own observer.
inline Block<void()> addObserverForCollection(const id& object, const NSString& collectionKey,
                                              const NSString& objectKeyPath,
                                              BDKeyValueObservingOptions options,
                                              const BDKeyValueObservingBlock& block) {
  return send<"addObserverForCollection:objectKeyPath:options:block:", Block<void()>>(
      object, collectionKey, objectKeyPath, NSUInteger{options}, block);
}

/// The removals that run, first to last, when the object is deallocated; made when it is first
/// asked for. A change of the list while they run raises the platform's enumeration-mutation error.
inline NSMutableArray deallocUnobservers(const id& object) {
  return send<"_deallocUnobservers", NSMutableArray>(object);
}

}  // namespace brindle
