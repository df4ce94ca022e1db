// What the library attaches when it is loaded: its classes, superclasses first, and its categories.
#include <Brindle/BDDateRange.h>
#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Definition.h>

#include "Source/Internal/Categories.h"
#include "Source/Internal/DateRange.h"

namespace brindle {
namespace {

constexpr ClassRecord* kClasses[] = {
    &BDDateRange::classPair.cls,
};

constexpr const CategoryDefinition* kCategories[] = {
    &internal::kBDExceptionAdditions,
};

[[gnu::constructor]] void attachBrindle() {
  attachImage({.classes = kClasses, .categories = kCategories});
  internal::watchDateRangeMethods();
}

}  // namespace

constinit const int kBrindleLibrary = 1;

}  // namespace brindle
