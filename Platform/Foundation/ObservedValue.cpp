#include <Brindle/Platform/ObservedValue.h>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle::detail {

id ObservedValue::object() const {
  if (box == nullptr) return nullptr;
  id object = box(source);
  return object == NSNull::null() ? id() : object;
}

ObservedValue ObservedValue::number(const NSString& keyPath) const {
  ObservedValue found = *this;
  const id boxed = object();
  found.kind = Kind::kInteger;
  if (!boxed) {
    found.integer = 0;
    return found;
  }
  const NSNumber number = dynCast<NSNumber>(boxed);
  if (!number) raiseUnexpectedValue(boxed, keyPath, "a number");
  switch (number->objCType()[0]) {
    case 'f':
    case 'd':
      found.kind = Kind::kReal;
      found.real = number->doubleValue();
      break;
    case 'Q':
      found.kind = Kind::kNatural;
      found.integer = static_cast<std::int64_t>(number->unsignedLongLongValue());
      break;
    default:
      found.integer = number->longLongValue();
      break;
  }
  return found;
}

void raiseUnexpectedValue(const id& value, const NSString& keyPath, const char* wanted) {
  NSException::raise(
      NSInvalidArgumentException,
      "the value of the observed key path \"%@\" is an object of class %s, not %s"_ns, keyPath,
      class_getName(send<"class", Class>(value)), wanted);
}

}  // namespace brindle::detail
