#include <Brindle/BDAssociatedValues.h>

#include <Brindle/Platform/AssociationPeek.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/PlainNumber.h>

namespace brindle {
namespace {

void associate(ObjectRecord* object, const void* key, const NSNumber& value) {
  const detail::Lent<id> lent(object);
  objc_setAssociatedObject(lent.reference, key, value, OBJC_ASSOCIATION_RETAIN);
}

id associated(ObjectRecord* object, const void* key) {
  const detail::Lent<id> lent(object);
  return objc_getAssociatedObject(lent.reference, key);
}

}  // namespace

void objc_setAssociatedBool(ObjectRecord* object, const void* key, BOOL value) {
  associate(object, key, NSNumber::numberWithBool(value != NO));
}

BOOL objc_getAssociatedBool(ObjectRecord* object, const void* key) {
  if (!hasAssociations(object)) return NO;
  std::uint64_t bits = 0;
  if (readAssociatedInteger(object, key, bits)) return bits != 0 ? YES : NO;
  return send<"boolValue", bool>(associated(object, key)) ? YES : NO;
}

void objc_setAssociatedInteger(ObjectRecord* object, const void* key, NSInteger value) {
  associate(object, key, NSNumber::numberWithInteger(value));
}

NSInteger objc_getAssociatedInteger(ObjectRecord* object, const void* key) {
  if (!hasAssociations(object)) return 0;
  std::uint64_t bits = 0;
  if (readAssociatedInteger(object, key, bits)) return static_cast<NSInteger>(bits);
  return send<"integerValue", NSInteger>(associated(object, key));
}

void objc_setAssociatedUnsignedInteger(ObjectRecord* object, const void* key, NSUInteger value) {
  associate(object, key, NSNumber::numberWithUnsignedInteger(value));
}

NSUInteger objc_getAssociatedUnsignedInteger(ObjectRecord* object, const void* key) {
  if (!hasAssociations(object)) return 0;
  std::uint64_t bits = 0;
  if (readAssociatedInteger(object, key, bits)) return bits;
  return send<"unsignedIntegerValue", NSUInteger>(associated(object, key));
}

}  // namespace brindle
