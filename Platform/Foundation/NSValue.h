// A value: bytes of a C type in an object, so that they can be in collections. Immutable; may be
// used by many threads at once. NSNumber is a value that can be calculated with.
#pragma once

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSRange.h>

namespace brindle {

class NSValue : public Interface<NSValue, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSValue> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// Copies the bytes of a value of that type encoding: integers, floating types, pointers,
    /// NSRange and structures of them. Raises NSInvalidArgumentException for other encodings.
    Self valueWithBytes(const void* bytes, const char* type) const {
      return send<"valueWithBytes:objCType:", Self>(*this, bytes, type);
    }
    Self valueWithPointer(const void* pointer) const {
      return send<"valueWithPointer:", Self>(*this, pointer);
    }
    /// Does not keep the object.
    Self valueWithNonretainedObject(const id& object) const {
      return send<"valueWithNonretainedObject:", Self>(*this, object);
    }
    Self valueWithRange(NSRange range) const { return send<"valueWithRange:", Self>(*this, range); }
  };

  static NSValue valueWithBytes(const void* bytes, const char* type) {
    return class_()->valueWithBytes(bytes, type);
  }
  static NSValue valueWithPointer(const void* pointer) {
    return class_()->valueWithPointer(pointer);
  }
  static NSValue valueWithNonretainedObject(const id& object) {
    return class_()->valueWithNonretainedObject(object);
  }
  static NSValue valueWithRange(NSRange range) { return class_()->valueWithRange(range); }

  /// The encoding of its type. Lives as long as the value.
  const char* objCType() const { return send<"objCType", const char*>(*this); }
  /// Copies the value to `buffer`, which must have room for its type.
  void getValue(void* buffer) const { send<"getValue:">(*this, buffer); }
  /// Of a value of another type: null, nil, {0, 0}.
  void* pointerValue() const { return send<"pointerValue", void*>(*this); }
  id nonretainedObjectValue() const { return send<"nonretainedObjectValue", id>(*this); }
  NSRange rangeValue() const { return send<"rangeValue", NSRange>(*this); }
  /// The same type with the same bytes.
  bool isEqualToValue(const NSValue& other) const {
    return send<"isEqualToValue:", bool>(*this, other);
  }
};

}  // namespace brindle
