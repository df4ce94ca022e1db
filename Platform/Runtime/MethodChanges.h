// Has anybody changed a class's methods? Who, when, and from where?
//
// Code that knows a shorter way to what a chain of messages would do asks first whether a client
// could tell the difference: whether one of the methods on the way was added to, replaced or
// exchanged.
//
//   static MethodWatch watch{NSDate::class_(), NSCalendar::class_()};  // as the program starts
//   if (watch.unchanged()) shortWay();  // one load while no class of the process changes
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Types.h>

namespace brindle {
namespace detail {
/// Counts every change of a method of a realised class, in the whole process.
BRINDLE_PLATFORM_EXPORT extern std::atomic<std::uint64_t> methodEpoch;
}  // namespace detail

/// How many times methods of the class itself (its meta-class apart) were added, replaced or
/// exchanged after its definition was attached; a category counts too. 0 for nil.
BRINDLE_PLATFORM_EXPORT std::uint32_t class_getMethodChanges(Class cls);

/// A change of one method.
struct MethodChange {
  enum class Kind { kAdded, kReplaced, kExchanged };

  SEL selector;
  Kind kind;
  IMP before;  // null when the class had no method of its own
  IMP after;
  std::chrono::system_clock::time_point when;
  const void* from;  // an address in the code that asked for it
};

/// The latest changes of methods of the class itself (class operations: of its meta-class), the
/// oldest first: those since its definition was attached, 64 at most. What a library attaches as a
/// category is not among them. Empty for nil.
BRINDLE_PLATFORM_EXPORT std::vector<MethodChange> class_copyMethodChanges(Class cls);

/// While it lives, changes made on this thread count as asked for from `address`: for functions
/// that change methods for their callers. The outermost one counts.
///
///   ChangeOrigin origin(__builtin_return_address(0));
class BRINDLE_PLATFORM_EXPORT ChangeOrigin {
 public:
  explicit ChangeOrigin(const void* address) noexcept;
  ~ChangeOrigin();
  ChangeOrigin(const ChangeOrigin&) = delete;
  ChangeOrigin& operator=(const ChangeOrigin&) = delete;

 private:
  bool outermost_;
};

/// Watches the methods of some classes, class operations included, from its making on.
class MethodWatch {
 public:
  MethodWatch(std::initializer_list<Class> classes) : classes_(classes), first_(changes()) {}

  /// Whether the classes have the methods that they had when the watch was made. Any thread.
  [[nodiscard]] bool unchanged() noexcept {
    const std::uint64_t epoch = detail::methodEpoch.load(std::memory_order_acquire);
    const std::uint64_t known = answer_.load(std::memory_order_relaxed);
    if (known >> 1U == epoch) [[likely]]
      return (known & 1U) != 0;
    const bool now = changes() == first_;
    answer_.store(epoch << 1U | (now ? 1U : 0U), std::memory_order_relaxed);
    return now;
  }

 private:
  [[nodiscard]] std::uint64_t changes() const {
    std::uint64_t sum = 0;
    for (const Class cls : classes_) {
      sum += class_getMethodChanges(cls) + class_getMethodChanges(Class(cls.record()->other));
    }
    return sum;
  }

  std::vector<Class> classes_;
  std::uint64_t first_;
  // The epoch of the last check, shifted, and its answer. No epoch is this large.
  std::atomic<std::uint64_t> answer_{~std::uint64_t{0}};
};

}  // namespace brindle
