// For code that stands in the way of allocation and must not be felt there.
//
// A class carries eight marks for the library above the platform: what it found out about the class
// once is one load away afterwards. An object knows the class that it was born with, whatever its
// class is now.
#pragma once

#include <cstdint>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Export.h>

namespace brindle {

/// Marks of a class, one bit each. They begin unset, and are not inherited. Any thread.
enum class ClassMarks : std::uint32_t {};

constexpr ClassMarks operator|(ClassMarks a, ClassMarks b) noexcept {
  return static_cast<ClassMarks>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

/// Whether the class has all of the marks. The class is not nil.
inline bool hasMarks(Class cls, ClassMarks marks) noexcept {
  const auto bits = static_cast<std::uint32_t>(marks) << detail::kBirthShift;
  return (cls.record()->flags.load(std::memory_order_acquire) & bits) == bits;
}

/// Sets the marks. What was stored before is seen by whoever sees them.
inline void setMarks(Class cls, ClassMarks marks) noexcept {
  // A class is no instance of a class that was born: these bits are free in its head.
  cls.record()->flags.fetch_or(static_cast<std::uint32_t>(marks) << detail::kBirthShift,
                               std::memory_order_acq_rel);
}

/// The class that the object was made as: the one whose variables it has. Nil for nil, for classes
/// and for constants.
BRINDLE_PLATFORM_EXPORT Class object_getBirthClass(const id& object);

/// Says of a `dealloc` of NSObject's that it does nothing but call `previous` for an object without
/// associated objects. Where `previous` is the library's own, such an object then ends without
/// running either. Called while a library starts.
BRINDLE_PLATFORM_EXPORT void setAssociationsDealloc(IMP dealloc, IMP previous) noexcept;

}  // namespace brindle
