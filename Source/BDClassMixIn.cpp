#include <Brindle/BDClassMixIn.h>

#include <string>
#include <string_view>

#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/MethodSwizzle.h"

namespace brindle {
namespace {

constexpr std::string_view kPrefix = "mixin_";

std::string_view typesOf(Method method) {
  const char* types = method_getTypeEncoding(method);
  return types != nullptr ? types : "";
}

void mixInMethod(Class target, Class mixIn, Method method) {
  const SEL selector = method_getName(method);
  const std::string name = sel_getName(selector);
  if (name.starts_with(kPrefix)) return;
  const IMP imp = method_getImplementation(method);
  const char* types = method_getTypeEncoding(method);
  const Method former = class_getInstanceMethod(target, selector);
  if (former == nullptr) {
    class_addMethod(target, selector, imp, types);
    return;
  }
  if (typesOf(former) != typesOf(method)) {
    NSException::raise(BDInvalidArgumentException,
                       "Cannot mix %s into %s.  Type mismatch on %s."_ns, class_getName(mixIn),
                       class_getName(target), name.c_str());
  }
  const SEL derived = sel_registerName((std::string(kPrefix) + name).c_str());
  if (class_getInstanceMethod(target, derived) != nullptr) {
    NSException::raise(BDInvalidArgumentException, "%s has already mixed in a method named %s"_ns,
                       class_getName(target), name.c_str());
  }
  class_addMethod(target, derived, imp, types);
  internal::swizzleByName(target.record(), selector, derived);
}

}  // namespace

extern "C" void class_mixIn(ClassRecord* target, ClassRecord* mixIn) {
  const ChangeOrigin origin(__builtin_return_address(0));
  for (const Method method : class_copyMethodList(Class(mixIn))) {
    mixInMethod(Class(target), Class(mixIn), method);
  }
}

}  // namespace brindle
