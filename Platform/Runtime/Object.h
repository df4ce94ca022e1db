// Objects and the references that own them.
//
// An object is a record in memory: its class, a count of its owners, and flags. `id` is a reference
// to any object: one pointer, nil by default. Copying a reference retains the object, destroying
// one releases it, moving one costs nothing; the last reference to go deallocates the object.
//
//   id a = NSObject::alloc()->init();
//   id b = a;       // two owners
//   a = nullptr;    // one
//
// A reference may be copied, read and destroyed on any thread; one reference variable changed by
// one thread while another uses it is a race, as with any variable.
#pragma once

#include <atomic>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

class NSString;
class Protocol;

/// The head of every object. `flags` holds eight flags and, above them, the number of the class
/// that the object was born with: its fields are destroyed by that class whatever its class is
/// then.
struct ObjectRecord {
  std::atomic<ClassRecord*> isa;
  std::atomic<std::uint32_t> count;
  std::atomic<std::uint32_t> flags;

  constexpr ObjectRecord(ClassRecord* c, std::uint32_t n, std::uint32_t f) noexcept
      : isa(c), count(n), flags(f) {}
};
static_assert(sizeof(ObjectRecord) == 16);

namespace detail {

// Counts. 1 and above: live. Dying: the end has begun; retains and releases change nothing that
// matters. Immortal: constants and classes. A stack block has the highest value of all.
inline constexpr std::uint32_t kCountNearLimit = 0x3FF00000;
inline constexpr std::uint32_t kCountDying = 0x40000000;
inline constexpr std::uint32_t kCountImmortal = 0x80000000;
inline constexpr std::uint32_t kCountStackBlock = 0xFFFFFFFF;

inline constexpr std::uint32_t kFlagAssociations = 1U << 0;
inline constexpr std::uint32_t kFlagObservers = 1U << 1;
inline constexpr std::uint32_t kFlagWeak = 1U << 2;
inline constexpr std::uint32_t kFlagMonitor = 1U << 3;
inline constexpr std::uint32_t kFlagClass = 1U << 4;
inline constexpr std::uint32_t kFlagDisposed = 1U << 5;
inline constexpr unsigned kBirthShift = 8;

/// Slow ends of `retained`: near the limit, dying, immortal, or a block on the stack (which is
/// answered as a heap copy, owned).
BRINDLE_PLATFORM_EXPORT ObjectRecord* retainSpecial(ObjectRecord* record);

/// The last owner is gone: clears weak references, sends `dealloc`, frees. Passes on what it
/// raises.
BRINDLE_PLATFORM_EXPORT void endObject(ObjectRecord* record);

/// The same from a destructor: inside another object's end a raise is kept until that object is
/// done; anywhere else it ends the program.
BRINDLE_PLATFORM_EXPORT void endObjectInDestructor(ObjectRecord* record) noexcept;

/// One owner more. Answers the record to keep: the same one, or the heap copy of a stack block.
inline ObjectRecord* retained(ObjectRecord* record) {
  if (record == nullptr) return nullptr;
  const std::uint32_t count = record->count.load(std::memory_order_relaxed);
  if (count >= kCountNearLimit) [[unlikely]] {
    return count == kCountImmortal ? record : retainSpecial(record);
  }
  record->count.fetch_add(1, std::memory_order_relaxed);
  return record;
}

/// One owner less; true when it was the last.
inline bool dropCount(ObjectRecord* record) noexcept {
  const std::uint32_t count = record->count.load(std::memory_order_acquire);
  if (count >= kCountImmortal) [[unlikely]]
    return false;
  // The only owner needs no exclusive access, which would cost more than the rest, when no weak
  // reference can make another owner meanwhile.
  if (count == 1 && (record->flags.load(std::memory_order_relaxed) & kFlagWeak) == 0) return true;
  return record->count.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

/// One owner less. Raises what the object's end raises.
inline void release(ObjectRecord* record) {
  if (record != nullptr && dropCount(record)) [[unlikely]]
    endObject(record);
}

inline void releaseInDestructor(ObjectRecord* record) noexcept {
  if (record != nullptr && dropCount(record)) [[unlikely]]
    endObjectInDestructor(record);
}

}  // namespace detail

/// A reference to any object, or nil. Owns the object while it refers to it.
///
/// Assigning releases the previous object last, so a raise out of its end leaves the assignment
/// with the new object in place; a raise out of the end of an object whose last reference is
/// destroyed at a closing brace ends the program (destructors cannot raise).
class id {
 public:
  constexpr id() noexcept = default;
  // NOLINTNEXTLINE(google-explicit-constructor): nil is nullptr.
  constexpr id(std::nullptr_t) noexcept {}
  /// Takes over one count of `record`, without retaining.
  constexpr id(Adopt, ObjectRecord* record) noexcept : record_(record) {}

  constexpr id(const id& other) : record_(other.record_) {
    if (!std::is_constant_evaluated()) record_ = detail::retained(record_);
  }
  constexpr id(id&& other) noexcept : record_(other.record_) { other.record_ = nullptr; }
  constexpr ~id() {
    if (!std::is_constant_evaluated()) detail::releaseInDestructor(record_);
  }

  id& operator=(const id& other) {
    ObjectRecord* old = record_;
    record_ = detail::retained(other.record_);
    detail::release(old);
    return *this;
  }
  id& operator=(id&& other) {  // NOLINT(*-noexcept-move): releasing may raise
    if (this != &other) {
      ObjectRecord* old = record_;
      record_ = other.record_;
      other.record_ = nullptr;
      detail::release(old);
    }
    return *this;
  }
  id& operator=(std::nullptr_t) {
    ObjectRecord* old = record_;
    record_ = nullptr;
    detail::release(old);
    return *this;
  }

  /// The reference itself: members are const, and answer zero or nil when the reference is nil.
  const id* operator->() const noexcept { return this; }

  /// Whether there is an object.
  constexpr explicit operator bool() const noexcept { return record_ != nullptr; }

  /// The object's record, lent; null for nil.
  [[nodiscard]] constexpr ObjectRecord* record() const noexcept { return record_; }

  /// Gives up ownership: the caller holds the count from now on, this reference is nil.
  [[nodiscard]] constexpr ObjectRecord* leak() noexcept {
    ObjectRecord* record = record_;
    record_ = nullptr;
    return record;
  }

  // --- What every object answers, proxies included. Defined in NSObject.h. Nil answers no and nil.

  /// Whether its class is `c` or inherits from `c`. A proxy asks the object it stands for.
  bool isKindOfClass(Class c) const;
  /// Whether its class is `c` itself.
  bool isMemberOfClass(Class c) const;
  /// Whether a message with the selector finds a method.
  bool respondsToSelector(SEL s) const;
  /// Whether the object's class, or a superclass, adopts the protocol.
  bool conformsToProtocol(const Protocol& protocol) const;
  /// Yes for a proxy, which stands for another object.
  bool isProxy() const;

  /// Equality as the class defines it; identity unless it does. Nil equals nothing.
  bool isEqual(const id& other) const;
  /// Equal objects have equal hashes.
  NSUInteger hash() const;
  /// Text for people.
  NSString description() const;
  /// Text for programmers; the description unless the class says otherwise.
  NSString debugDescription() const;

  /// Sends a message without arguments, or with one or two objects. The method must take and answer
  /// objects. Raises NSInvalidArgumentException for the null selector.
  id performSelector(SEL s) const;
  id performSelector(SEL s, const id& a) const;
  id performSelector(SEL s, const id& a, const id& b) const;

  /// The number of owners. For curiosity, not for decisions: others may change it at any time.
  NSUInteger retainCount() const;

  /// Identity: the same object, or both nil. `isEqual` compares contents.
  friend constexpr bool operator==(const id& a, const id& b) noexcept {
    return a.record_ == b.record_;
  }
  friend constexpr bool operator==(const id& a, std::nullptr_t) noexcept {
    return a.record_ == nullptr;
  }

 private:
  ObjectRecord* record_ = nullptr;
};
static_assert(sizeof(id) == sizeof(void*));

/// `id` and everything derived from it.
template <class T>
concept Reference = std::derived_from<std::remove_cvref_t<T>, id>;

/// A reference of type T to the object of `record`, taking over one count.
template <Reference T>
constexpr T adopt(ObjectRecord* record) noexcept {
  return T(Adopt{}, record);
}

/// A reference of type T to a borrowed record: retains it.
template <Reference T>
T borrow(ObjectRecord* record) {
  return T(Adopt{}, detail::retained(record));
}

/// The same object under another reference type, unchecked: for code that knows. Everybody else
/// uses `cast`, `dynCast` and `isa` of NSObject.h.
template <Reference T>
T uncheckedCast(id object) noexcept {
  return T(Adopt{}, object.leak());
}

namespace detail {

/// A borrowed parameter: a reference whose end is never run, so that nothing is counted.
template <Reference T>
union Lent {
  T reference;
  explicit Lent(ObjectRecord* record) noexcept : reference(Adopt{}, record) {}
  Lent(const Lent&) = delete;
  Lent& operator=(const Lent&) = delete;
  ~Lent() {}  // NOLINT(*-use-equals-default): the member must not be destroyed
};

}  // namespace detail
}  // namespace brindle

/// References hash by identity; `NSObjectHash` of NSObject.h hashes by contents.
template <brindle::Reference T>
struct std::hash<T> {
  std::size_t operator()(const T& reference) const noexcept {
    return std::hash<const void*>()(reference.record());
  }
};
