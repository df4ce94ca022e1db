// Words that the library shows to people, in their language.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace brindle::internal {

/// The word for a key from the default table of the library's own bundle; the key itself where that
/// has none. When the bundle is not found, the one that the receiving class belongs to is asked, so
/// that a subclass in another bundle finds its own. Looked up anew at each call.
NSString localizedString(const Class& receiver, const NSString& key);

/// The methods of NSBundle are nobody's but the libraries' now. Called when they are attached.
void watchBundleMethods();

/// The identifier of the library's own bundle.
extern const NSString& kBundleIdentifier;

}  // namespace brindle::internal
