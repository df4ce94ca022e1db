// Weak references: they do not own, and read nil once the object's end has begun.
//
//   Weak<NSObject> weak = object;
//   if (NSObject strong = weak.lock()) ...   // owned while it is used
//
// A `Weak` may be read while another thread releases the object. One variable changed by one thread
// while another uses it is a race, as with any variable.
#pragma once

#include <Brindle/Platform/Object.h>

namespace brindle {
namespace detail {

struct WeakCell;
/// The cell that all weak references to the object share, one owner more; null for null, for an
/// object whose end has begun, and for the immortal a cell like any other.
BRINDLE_PLATFORM_EXPORT WeakCell* weakCellOf(ObjectRecord* record);
BRINDLE_PLATFORM_EXPORT WeakCell* retainWeakCell(WeakCell* cell) noexcept;
BRINDLE_PLATFORM_EXPORT void releaseWeakCell(WeakCell* cell) noexcept;
/// The object, owned by the caller, or null.
BRINDLE_PLATFORM_EXPORT ObjectRecord* loadWeakCell(WeakCell* cell) noexcept;

}  // namespace detail

/// A reference that does not keep its object alive.
template <Reference T>
class Weak {
 public:
  Weak() noexcept = default;
  Weak(std::nullptr_t) noexcept {}                                       // NOLINT: nil is nullptr
  Weak(const T& object) : cell_(detail::weakCellOf(object.record())) {}  // NOLINT: meant to convert
  Weak(const Weak& other) noexcept : cell_(detail::retainWeakCell(other.cell_)) {}
  Weak(Weak&& other) noexcept : cell_(other.cell_) { other.cell_ = nullptr; }
  ~Weak() { detail::releaseWeakCell(cell_); }

  Weak& operator=(Weak other) noexcept {
    detail::WeakCell* old = cell_;
    cell_ = other.cell_;
    other.cell_ = old;
    return *this;
  }

  /// The object, kept alive by the answer; nil once its last owner is gone.
  [[nodiscard]] T lock() const noexcept { return adopt<T>(detail::loadWeakCell(cell_)); }

 private:
  detail::WeakCell* cell_ = nullptr;
};

}  // namespace brindle
