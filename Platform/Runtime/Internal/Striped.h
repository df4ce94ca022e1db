// State that belongs to objects but is kept beside them, in stripes by address, so that threads
// that deal with different objects rarely meet. A stripe's lock is never held while other code
// runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace brindle::detail {

inline constexpr std::uint32_t kStripes = 64;

inline std::uint32_t stripeOf(const void* object) noexcept {
  const auto address = reinterpret_cast<std::uintptr_t>(object);  // NOLINT(*-reinterpret-cast)
  return static_cast<std::uint32_t>((address >> 5U) ^ (address >> 12U)) % kStripes;
}

template <class Stripe>
class Striped {
 public:
  Stripe& operator[](std::uint32_t stripe) noexcept { return padded_[stripe].stripe; }
  Stripe& of(const void* object) noexcept { return padded_[stripeOf(object)].stripe; }

 private:
  struct alignas(64) Padded {
    Stripe stripe;
  };
  std::array<Padded, kStripes> padded_;
};

}  // namespace brindle::detail
