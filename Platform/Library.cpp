// What the platform library attaches when it is loaded: its classes, superclasses first, and its
// categories. A class that is missing here works, but is not found by name before its first use.
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSTimeZone.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSScanner.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

constexpr ClassRecord* kClasses[] = {
    &NSObject::classPair.cls,
    &NSProxy::classPair.cls,
    &Protocol::classPair.cls,
    &NSBlock::classPair.cls,
    &NSMethodSignature::classPair.cls,
    &NSInvocation::classPair.cls,
    &NSString::classPair.cls,
    &NSMutableString::classPair.cls,
    &NSCharacterSet::classPair.cls,
    &NSDate::classPair.cls,
    &NSTimeZone::classPair.cls,
    &NSLocale::classPair.cls,
    &NSDateComponents::classPair.cls,
    &NSCalendar::classPair.cls,
    &NSScanner::classPair.cls,
};

constexpr const CategoryDefinition* kCategories[] = {
    &detail::kNSObjectDescriptions,
    &detail::kNSProxyDescriptions,
    &detail::kNSStringBytes,
    &detail::kNSStringFormatting,
    &detail::kNSStringSearching,
    &detail::kNSStringTransforming,
};

[[gnu::constructor]] void attachPlatform() {
  attachImage({.classes = kClasses, .categories = kCategories});
  detail::setPlainDealloc(
      class_getMethodImplementation(NSObject::class_(), selector<"dealloc">()));
}

}  // namespace
}  // namespace brindle
