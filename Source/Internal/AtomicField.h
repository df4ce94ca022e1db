// A variable of an object that holds another object and may be read on one thread while another
// sets it: the reader owns what it read.
#pragma once

#include <atomic>
#include <thread>

#include <Brindle/Platform/Object.h>

namespace brindle::internal {

/// A strong reference inside `Fields`, for atomic accessors. The lock is held for the length of one
/// copy, never while other code runs.
template <Reference T>
class AtomicField {
 public:
  AtomicField() noexcept = default;
  AtomicField(const AtomicField&) = delete;
  AtomicField& operator=(const AtomicField&) = delete;

  [[nodiscard]] T get() const {
    const Lock lock(busy_);
    return value_;
  }

  /// Keeps `value` (a heap copy of a block on the stack); releases the previous object last, and
  /// passes on what its end raises.
  void set(const T& value) {
    T next = value;  // a copy may run other code
    exchange(next);
    next = nullptr;
  }

  /// Whether there is an object at this moment.
  [[nodiscard]] bool isSet() const {
    const Lock lock(busy_);
    return static_cast<bool>(value_);
  }

 private:
  class Lock {
   public:
    explicit Lock(std::atomic_flag& busy) noexcept : busy_(busy) {
      while (busy_.test_and_set(std::memory_order_acquire)) std::this_thread::yield();
    }
    ~Lock() { busy_.clear(std::memory_order_release); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

   private:
    std::atomic_flag& busy_;
  };

  void exchange(T& next) noexcept {
    const Lock lock(busy_);
    ObjectRecord* previous = value_.leak();
    value_ = T(Adopt{}, next.leak());
    next = T(Adopt{}, previous);
  }

  T value_;  // first: a variable's description names the object
  mutable std::atomic_flag busy_;
};

}  // namespace brindle::internal
