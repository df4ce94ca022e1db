#include <Brindle/BDAwakeProxy.h>

#include <cstring>
#include <string_view>

#include <Brindle/BDAwake.h>
#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/Allocation.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSMethodSignature.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

constexpr std::string_view kProxyPrefix = "BDAwakeProxy_";
constexpr std::string_view kInitialiserPrefix = "init";

Class originalClass(const BDAwakeProxy& self) {
  const char* name = class_getName(object_getClass(self));
  if (std::strncmp(name, kProxyPrefix.data(), kProxyPrefix.size()) != 0) {
    NSException::raise(BDInternalInconsistencyException,
                       "BDAwakeProxy object with invalid name of %s"_ns, name);
  }
  const char* original = name + kProxyPrefix.size();
  // Mostly the class it was made as; that one is known without a search for the name.
  const Class birth = object_getBirthClass(self);
  if (birth && std::strcmp(class_getName(birth), original) == 0) return birth;
  return objc_getClass(original);
}

void forward(const BDAwakeProxy& self, const NSInvocation& invocation) {
  const SEL selector = invocation->selector();
  if (!std::string_view(sel_getName(selector)).starts_with(kInitialiserPrefix)) {
    NSException::raise(BDInternalInconsistencyException,
                       "Unexpected non-init method (%@) called on awake proxy for %@"_ns,
                       NSStringFromSelector(selector), id(self->originalClass()));
  }
  // An initialiser may let go of its receiver and answer another object.
  const id object = self;
  object_setClass(object, self->originalClass());
  invocation->invokeWithTarget(object);
  invokeAwake(object_getClass(object), object);
}

constexpr MethodDefinition kMethods[] = {
    method<"originalClass">([](const BDAwakeProxy& self) { return originalClass(self); }),
    method<"forwardInvocation:">([](const BDAwakeProxy& self, const NSInvocation& invocation) {
      forward(self, invocation);
    }),
    method<"methodSignatureForSelector:">(
        [](const BDAwakeProxy& self, SEL selector) -> NSMethodSignature {
          return send<"instanceMethodSignatureForSelector:", NSMethodSignature>(
              self->originalClass(), selector);
        }),
};

constexpr ClassDefinition kDefinition{.name = "BDAwakeProxy", .methods = kMethods};

}  // namespace

extern "C" {
constinit const char* const kAwakeProxyPrefix = kProxyPrefix.data();
constinit const char* const kInitPrefix = kInitialiserPrefix.data();
}

constinit ClassPair<BDAwakeProxy> BDAwakeProxy::classPair{kDefinition};

}  // namespace brindle
