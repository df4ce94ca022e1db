#include <Brindle/Platform/PlainBundle.h>

#include "Platform/Foundation/Internal/BundleAccess.h"

namespace brindle {

NSString plainWord(const NSBundle& bundle, const NSString& key) {
  const NSString* word = detail::stringsOf(bundle).standardTable().find(key);
  return word != nullptr ? *word : key;
}

}  // namespace brindle
