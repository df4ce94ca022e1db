#include "Source/Internal/LocalizedWords.h"

#include <Brindle/BDBundleAdditions.h>
#include <Brindle/Platform/NSBundle.h>

namespace brindle::internal {

// As in Resources/Info.plist.
constinit const NSString& kBundleIdentifier = "org.brindle.Brindle"_ns;

NSString localizedString(const Class& receiver, const NSString& key) {
  NSBundle bundle = NSBundle::bundleWithIdentifier(kBundleIdentifier);
  if (!bundle) bundle = bundleWithIdentifier(NSBundle::class_(), kBundleIdentifier, nullptr);
  if (!bundle) bundle = NSBundle::bundleForClass(receiver);
  return bundle->localizedStringForKey(key, ""_ns, nullptr);
}

}  // namespace brindle::internal
