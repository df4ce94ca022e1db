// What the platform library attaches when it is loaded: its classes, superclasses first, and its
// categories. A class that is missing here works, but is not found by name before its first use.
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Runtime.h>

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
};

[[gnu::constructor]] void attachPlatform() {
  attachImage({.classes = kClasses});
  detail::setPlainDealloc(
      class_getMethodImplementation(NSObject::class_(), selector<"dealloc">()));
}

}  // namespace
}  // namespace brindle
