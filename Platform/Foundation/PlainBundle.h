// The words of a bundle, without messages.
//
// Who shows many words of one bundle asks these, after a MethodWatch has told that nobody changed
// NSBundle's methods: messages would answer the same.
#pragma once

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/NSBundle.h>

namespace brindle {

/// The bundle that `bundleWithIdentifier:` answers from now on, whatever is loaded and unloaded:
/// its code stays as long as the process. The reference stays too. Null for another bundle, and as
/// long as nobody has asked for one by its identifier. Any thread.
BRINDLE_PLATFORM_EXPORT const NSBundle* settledBundle(const NSString& identifier);

/// Whether the words of the bundle are looked up by NSBundle's own code: not in a subclass, and not
/// while somebody observes it.
inline bool isPlainBundle(const NSBundle& bundle) noexcept {
  return bundle.record()->isa.load(std::memory_order_acquire) == &NSBundle::classPair.cls;
}

/// The word for a key in the bundle's standard table, in the user's language; the key itself where
/// that has none. Any thread.
BRINDLE_PLATFORM_EXPORT NSString plainWord(const NSBundle& bundle, const NSString& key);

}  // namespace brindle
