// Truth values and integers hung on any object, under a key that is an address.
//
//   const char kVisits = 0;  // its address is the key
//   objc_setAssociatedInteger(page, &kVisits, objc_getAssociatedInteger(page, &kVisits) + 1);
//
//   inline constexpr AssociationKey<NSString> kTitle;  // the same with a type
//   kTitle.set(page, "Home"_ns);
//   NSString title = kTitle.get(page);
//
// Values are kept as NSNumber by `objc_setAssociatedObject`, retained; a value set again replaces
// the former one, and all go with their object. The kinds share the keys: what was set as an
// integer is read as a truth value by the number's own conversion. On nil, setting does nothing. A
// key without a value, and nil, read NO and 0. Any thread may read and set any of them; reading and
// setting again is two steps.
#pragma once

#include <concepts>
#include <type_traits>

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {

extern "C" {
BRINDLE_EXPORT void objc_setAssociatedBool(ObjectRecord* object, const void* key, BOOL value);
BRINDLE_EXPORT BOOL objc_getAssociatedBool(ObjectRecord* object, const void* key);
BRINDLE_EXPORT void objc_setAssociatedInteger(ObjectRecord* object, const void* key,
                                              NSInteger value);
BRINDLE_EXPORT NSInteger objc_getAssociatedInteger(ObjectRecord* object, const void* key);
BRINDLE_EXPORT void objc_setAssociatedUnsignedInteger(ObjectRecord* object, const void* key,
                                                      NSUInteger value);
BRINDLE_EXPORT NSUInteger objc_getAssociatedUnsignedInteger(ObjectRecord* object, const void* key);
}

/// Associates a truth value with the object, retained and atomic.
inline void objc_setAssociatedBool(const id& object, const void* key, bool value) {
  objc_setAssociatedBool(object.record(), key, value ? YES : NO);
}
/// The `boolValue` of what is associated.
inline bool objc_getAssociatedBool(const id& object, const void* key) {
  return objc_getAssociatedBool(object.record(), key) != NO;
}

/// Associates a signed integer with the object, retained and atomic.
inline void objc_setAssociatedInteger(const id& object, const void* key, NSInteger value) {
  objc_setAssociatedInteger(object.record(), key, value);
}
/// The `integerValue` of what is associated.
inline NSInteger objc_getAssociatedInteger(const id& object, const void* key) {
  return objc_getAssociatedInteger(object.record(), key);
}

/// Associates an unsigned integer with the object, retained and atomic.
inline void objc_setAssociatedUnsignedInteger(const id& object, const void* key, NSUInteger value) {
  objc_setAssociatedUnsignedInteger(object.record(), key, value);
}
/// The `unsignedIntegerValue` of what is associated.
inline NSUInteger objc_getAssociatedUnsignedInteger(const id& object, const void* key) {
  return objc_getAssociatedUnsignedInteger(object.record(), key);
}

/// What a typed key holds: a reference, a truth value or an integer.
template <class T>
concept Associable = Reference<T> || std::integral<T>;

/// A key whose values have a type. The variable's address is the key, so there is one variable for
/// each: `inline constexpr` in a header, `constexpr` in a source file, never a copy. Safe on any
/// thread.
template <Associable T>
class AssociationKey {
 public:
  /// How objects are held; integers and truth values are always retained.
  constexpr explicit AssociationKey(
      objc_AssociationPolicy policy = OBJC_ASSOCIATION_RETAIN) noexcept
      : policy_(policy) {}
  AssociationKey(const AssociationKey&) = delete;
  AssociationKey& operator=(const AssociationKey&) = delete;

  /// The object's value; nil, NO or 0 when there is none. An object that somebody else associated
  /// with the key's address is not checked to be a T.
  T get(const id& object) const {
    if constexpr (Reference<T>)
      return uncheckedCast<T>(objc_getAssociatedObject(object, this));
    else if constexpr (std::same_as<T, bool>)
      return objc_getAssociatedBool(object, this);
    else if constexpr (std::is_signed_v<T>)
      return static_cast<T>(objc_getAssociatedInteger(object, this));
    else
      return static_cast<T>(objc_getAssociatedUnsignedInteger(object, this));
  }

  /// Sets the object's value; a nil reference removes it.
  void set(const id& object, const T& value) const {
    if constexpr (Reference<T>)
      objc_setAssociatedObject(object, this, value, policy_);
    else if constexpr (std::same_as<T, bool>)
      objc_setAssociatedBool(object, this, value);
    else if constexpr (std::is_signed_v<T>)
      objc_setAssociatedInteger(object, this, static_cast<NSInteger>(value));
    else
      objc_setAssociatedUnsignedInteger(object, this, static_cast<NSUInteger>(value));
  }

  /// Whether the object has a value, be it 0 or NO.
  bool isSet(const id& object) const {
    return static_cast<bool>(objc_getAssociatedObject(object, this));
  }
  /// Removes the object's value.
  void remove(const id& object) const { objc_setAssociatedObject(object, this, nullptr, policy_); }

 private:
  objc_AssociationPolicy policy_;
};

}  // namespace brindle
