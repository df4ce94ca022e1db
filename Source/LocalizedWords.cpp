#include "Source/Internal/LocalizedWords.h"

#include <atomic>

#include <Brindle/BDBundleAdditions.h>
#include <Brindle/BDSingleton.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/PlainBundle.h>

namespace brindle::internal {
namespace {

MethodWatch& watch() {
  static auto& bundles = *new MethodWatch{NSBundle::class_()};
  return bundles;
}

/// The library's own bundle once it is settled, which it stays; null before.
const NSBundle* ownBundle() {
  static constinit std::atomic<const NSBundle*> own{nullptr};
  const NSBundle* known = own.load(std::memory_order_acquire);
  if (known != nullptr) return known;
  known = settledBundle(kBundleIdentifier);
  own.store(known, std::memory_order_release);
  return known;
}

}  // namespace

// As in Resources/Info.plist.
constinit const NSString& kBundleIdentifier = "org.brindle.Brindle"_ns;

void watchBundleMethods() {
  // The answer becomes a method of the class: not while it is watched.
  hasSingletonProtocol(NSBundle::class_());
  watch();
}

NSString localizedString(const Class& receiver, const NSString& key) {
  // The messages below would do nothing else.
  if (watch().unchanged()) {
    const NSBundle* own = ownBundle();
    if (own != nullptr && isPlainBundle(*own)) return plainWord(*own, key);
  }
  NSBundle bundle = NSBundle::bundleWithIdentifier(kBundleIdentifier);
  if (!bundle) bundle = bundleWithIdentifier(NSBundle::class_(), kBundleIdentifier, nullptr);
  if (!bundle) bundle = NSBundle::bundleForClass(receiver);
  return bundle->localizedStringForKey(key, ""_ns, nullptr);
}

}  // namespace brindle::internal
