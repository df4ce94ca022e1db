// The record of a method and the way from a receiver to it.
//
// The dispatch table of a class is an array of pages indexed by the selector's number; a class
// shares its superclass's pages until it differs. Senders read without a lock. A change of a table
// stores into it in place, under the runtime's lock.
#pragma once

#include <atomic>
#include <cstdint>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Selector.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// One method of one class. Its address is stable for the life of the process.
struct MethodRecord {
  SEL name;
  std::atomic<IMP> implementation;  // null counts as missing
  std::atomic<const char*> types;   // the method's encoding
  std::atomic<const char*> wire;    // wire codes of the implementation; null while it changes
  std::atomic<ObjectRecord*> signature{nullptr};  // the signature object made from `types`
  ClassRecord* owner;                             // the class or meta-class that defines it

  constexpr MethodRecord(SEL selector, IMP imp, const char* encoding, const char* wireCodes,
                         ClassRecord* definingClass) noexcept
      : name(selector),
        implementation(imp),
        types(encoding),
        wire(wireCodes),
        owner(definingClass) {}
};

namespace detail {

/// The method that an object of this class runs for the selector; never null (see DispatchPage).
inline MethodRecord* findMethod(const ClassRecord* cls, SEL selector) noexcept {
  // The number first: a table that is read after it is long enough for it.
  const std::uint32_t number = selector->number.load(std::memory_order_acquire);
  DispatchPage* const* table = cls->table.load(std::memory_order_acquire);
  DispatchPage* page = __atomic_load_n(&table[number / kMethodsPerPage], __ATOMIC_ACQUIRE);
  return __atomic_load_n(&page->methods[number % kMethodsPerPage], __ATOMIC_ACQUIRE);
}

/// A send found nothing in the table of `cls`: registers the selector, makes the class ready
/// (`initialize` included) and looks again. Null when nobody answers.
BRINDLE_PLATFORM_EXPORT MethodRecord* resolveMissed(ClassRecord* cls, std::atomic<SEL>& slot,
                                                    const char* name);

/// Hands an unanswered message to the receiver's forwarding operations. `arguments` point to the
/// wire values in order, `wire` is the sender's wire codes. The result is written to `result` in
/// the sender's wire type (an object owned); a result of another type is converted or zero.
BRINDLE_PLATFORM_EXPORT void forwardMessage(ObjectRecord* receiver, SEL selector, const char* wire,
                                            void** arguments, void* result);

/// A checked send found an implementation of other wire types: says so and stops the program.
[[noreturn]] BRINDLE_PLATFORM_EXPORT void stopForWrongTypes(ObjectRecord* receiver,
                                                            const MethodRecord* method,
                                                            const char* types, const char* wire);

/// Compares a sender's wire codes with those of the implementation it is about to call.
inline bool sameWire(const char* a, const char* b) noexcept {
  while (*a != '\0' && *a == *b) {
    ++a;
    ++b;
  }
  return *a == *b;
}

}  // namespace detail
}  // namespace brindle
