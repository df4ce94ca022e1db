// What the library attaches when it is loaded: its classes, superclasses first, and its categories.
#include <Brindle/BDAwakeProxy.h>
#include <Brindle/BDBlockOperation.h>
#include <Brindle/BDCleanup.h>
#include <Brindle/BDDateRange.h>
#include <Brindle/BDLibrary.h>
#include <Brindle/BDSafeMessengerProxy.h>
#include <Brindle/Platform/Definition.h>

#include "Source/Internal/Categories.h"
#include "Source/Internal/DateRange.h"
#include "Source/Internal/LocalizedWords.h"

namespace brindle {
namespace {

constexpr ClassRecord* kClasses[] = {
    &BDAwakeProxy::classPair.cls,
    &BDDateRange::classPair.cls,
    &BDCleanup::classPair.cls,
    &BDBlockOperation::classPair.cls,
    &BDSafeMessengerProxy::classPair.cls,
};

constexpr const CategoryDefinition* kCategories[] = {
    &internal::kBDExceptionAdditions,
    &internal::kBDObjectAdditions,
    &internal::kBDRuntimeAdditions,
    &internal::kBDAwakeAdditions,
    &internal::kBDObjectSingletonAdditions,
    &internal::kBDObjectSafeMessengerAdditions,
    &internal::kBDUserDefaultsAdditions,
    &internal::kBDUserDefaultsAdditionsOfStrings,
    &internal::kBDBundleAdditions,
    &internal::kBDBundleAdditionsPersonal,
    &internal::kBDKeyValueCodingSearchAdditions,
    &internal::kBDBlockKeyValueAdditions,
};

[[gnu::constructor]] void attachBrindle() {
  attachImage({.classes = kClasses, .categories = kCategories});
  internal::watchDateRangeMethods();
  internal::watchBundleMethods();
}

}  // namespace
}  // namespace brindle
