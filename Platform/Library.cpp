// What the platform library attaches when it is loaded: its classes, superclasses first, and its
// categories. A class that is missing here works, but is not found by name before its first use.
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSAssertionHandler.h>
#include <Brindle/Platform/NSAutoreleasePool.h>
#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/NSCalendar.h>
#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSCoder.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSDateComponents.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSEnumerator.h>
#include <Brindle/Platform/NSError.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableData.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSOperation.h>
#include <Brindle/Platform/NSOperationQueue.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSScanner.h>
#include <Brindle/Platform/NSSet.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/NSThread.h>
#include <Brindle/Platform/NSTimeZone.h>
#include <Brindle/Platform/NSURL.h>
#include <Brindle/Platform/NSUserDefaults.h>
#include <Brindle/Platform/NSValue.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/ObservedChange.h"
#include "Platform/Foundation/Internal/PlainNumberWatch.h"
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
    &NSException::classPair.cls,
    &NSNull::classPair.cls,
    &NSValue::classPair.cls,
    &NSNumber::classPair.cls,
    &NSData::classPair.cls,
    &NSMutableData::classPair.cls,
    &NSEnumerator::classPair.cls,
    &NSArray::classPair.cls,
    &NSMutableArray::classPair.cls,
    &NSDictionary::classPair.cls,
    &NSMutableDictionary::classPair.cls,
    &NSSet::classPair.cls,
    &NSMutableSet::classPair.cls,
    &NSError::classPair.cls,
    &NSThread::classPair.cls,
    &NSURL::classPair.cls,
    &NSUserDefaults::classPair.cls,
    &NSFileManager::classPair.cls,
    &NSCoder::classPair.cls,
    &NSKeyedArchiver::classPair.cls,
    &NSKeyedUnarchiver::classPair.cls,
    &NSAssertionHandler::classPair.cls,
    &NSAutoreleasePool::classPair.cls,
    &NSDate::classPair.cls,
    &NSTimeZone::classPair.cls,
    &NSLocale::classPair.cls,
    &NSDateComponents::classPair.cls,
    &NSCalendar::classPair.cls,
    &NSScanner::classPair.cls,
    &NSIndexSet::classPair.cls,
    &NSMutableIndexSet::classPair.cls,
    &NSBundle::classPair.cls,
    &NSOperation::classPair.cls,
    &NSOperationQueue::classPair.cls,
};

constexpr const CategoryDefinition* kCategories[] = {
    &detail::kNSObjectDescriptions,
    &detail::kNSProxyDescriptions,
    &detail::kNSStringBytes,
    &detail::kNSStringFormatting,
    &detail::kNSStringSearching,
    &detail::kNSStringTransforming,
    &detail::kNSObjectCoding,
    &detail::kNSStringCoding,
    &detail::kNSDataCoding,
    &detail::kNSNumberCoding,
    &detail::kNSDateCoding,
    &detail::kNSNullCoding,
    &detail::kNSArrayCoding,
    &detail::kNSDictionaryCoding,
    &detail::kNSSetCoding,
    &detail::kNSArrayIndexing,
    &detail::kNSMutableArrayIndexing,
    &detail::kNSStringPaths,
    &detail::kNSStringFiles,
    &detail::kNSBundleResources,
    &detail::kNSBundleCode,
    &detail::kNSObjectKeyValueCoding,
    &detail::kNSArrayKeyValueCoding,
    &detail::kNSSetKeyValueCoding,
    &detail::kNSDictionaryKeyValueCoding,
    &detail::kNSMutableDictionaryKeyValueCoding,
    &detail::kNSKeyValueObserving,
    &detail::kNSArrayObserving,
    &detail::kNSSetObserving,
};

[[gnu::constructor]] void attachPlatform() {
  attachImage({.classes = kClasses, .categories = kCategories});
  detail::watchNumberMethods();
  detail::setEndsQuietly(&NSString::classPair.cls);
  detail::setForgetObservers(&detail::forgetObservers);
  detail::CapturedValue::learnPlainReading();
  detail::setPlainDealloc(class_getMethodImplementation(NSObject::class_(), selector<"dealloc">()));
}

}  // namespace
}  // namespace brindle
