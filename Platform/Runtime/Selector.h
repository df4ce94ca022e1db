// Selectors: the names of messages.
//
// A selector's text stands in the code exactly as the platform writes it, with one colon for each
// argument. Equal texts are one `SEL`, so selectors are compared with `==`. Any thread may register
// selectors at any time; they live as long as the process.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/FixedString.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

/// A registered selector. `number` is its place in dispatch tables, given when the first method of
/// that name is defined; 0 is a place that no table fills.
struct SelectorRecord {
  const char* name;
  mutable std::atomic<std::uint32_t> number;
};

/// The selector of that name, registered when it is new. Nil for a null name.
BRINDLE_PLATFORM_EXPORT SEL sel_registerName(const char* name);

/// The same operation under the platform's older name.
BRINDLE_PLATFORM_EXPORT SEL sel_getUid(const char* name);

/// The selector of that name if anybody has registered it, else null: asking registers nothing.
BRINDLE_PLATFORM_EXPORT SEL sel_findName(std::string_view name);

/// The selector's text; "<null selector>" for the null selector. Lives as long as the process.
BRINDLE_PLATFORM_EXPORT const char* sel_getName(SEL selector);

/// Whether both are the same selector.
inline BOOL sel_isEqual(SEL a, SEL b) { return a == b ? YES : NO; }

namespace detail {

/// What a slot holds until its selector is used for the first time: number 0, so a send misses and
/// the slow path registers the text.
BRINDLE_PLATFORM_EXPORT extern const SelectorRecord kUnregisteredSelector;

/// Registers the slot's text and remembers the answer in the slot.
BRINDLE_PLATFORM_EXPORT SEL registerSlot(std::atomic<SEL>& slot, const char* name);

/// One per selector and library: the registered selector, found without a lock or a guard.
template <FixedString Name>
BRINDLE_LOCAL inline constinit std::atomic<SEL> selectorSlot{&kUnregisteredSelector};

/// The selector's text, in constant data.
template <FixedString Name>
BRINDLE_LOCAL inline constexpr FixedString selectorText = Name;

constexpr std::size_t colonsOf(std::string_view name) {
  std::size_t colons = 0;
  for (char c : name) colons += c == ':' ? 1 : 0;
  return colons;
}

}  // namespace detail

/// The selector written in the code: `selector<"objectAtIndex:">()`.
template <FixedString Name>
SEL selector() {
  SEL sel = detail::selectorSlot<Name>.load(std::memory_order_acquire);
  if (sel == &detail::kUnregisteredSelector) [[unlikely]] {
    sel = detail::registerSlot(detail::selectorSlot<Name>, detail::selectorText<Name>.c_str());
  }
  return sel;
}

}  // namespace brindle
