// Coders turn objects into archives and back. An object that adopts the coding protocol writes its
// variables under keys, and reads them again in `initWithCoder:`; keys may come in any order, and
// may be missing.
//
//   method<"encodeWithCoder:">([](const Note& self, const NSCoder& coder) {
//     coder->encodeObject(self->title(), "title"_ns);
//     coder->encodeInteger(self->stars(), "stars"_ns);
//   }),
//
// NSKeyedArchiver and NSKeyedUnarchiver are the coders that come with the library. A nil key raises
// NSInvalidArgumentException. Coders are for one thread at a time.
#pragma once

#include <cstdint>

#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Protocol.h>

namespace brindle {

/// `encodeWithCoder:` writes the object, `initWithCoder:` initialises a new one from an archive.
BRINDLE_PLATFORM_EXPORT extern ProtocolRecord kNSCoding;

/// What subclasses define; here everything raises NSInvalidArgumentException.
class NSCoder : public Interface<NSCoder, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSCoder> classPair;

  /// Whether values have keys. Every coder of this library says yes.
  bool allowsKeyedCoding() const { return send<"allowsKeyedCoding", bool>(*this); }

  // --- Writing ---------------------------------------------------------------------------------

  /// An object that is written twice is one object again when it is read. Nil is written too.
  void encodeObject(const id& object, const NSString& key) const {
    send<"encodeObject:forKey:">(*this, object, key);
  }
  /// Writes the object only when something else writes it unconditionally; otherwise nil.
  void encodeConditionalObject(const id& object, const NSString& key) const {
    send<"encodeConditionalObject:forKey:">(*this, object, key);
  }
  void encodeBool(bool value, const NSString& key) const {
    send<"encodeBool:forKey:">(*this, value, key);
  }
  void encodeInt(int value, const NSString& key) const {
    send<"encodeInt:forKey:">(*this, value, key);
  }
  void encodeInt32(std::int32_t value, const NSString& key) const {
    send<"encodeInt32:forKey:">(*this, value, key);
  }
  void encodeInt64(std::int64_t value, const NSString& key) const {
    send<"encodeInt64:forKey:">(*this, value, key);
  }
  void encodeInteger(NSInteger value, const NSString& key) const {
    send<"encodeInteger:forKey:">(*this, value, key);
  }
  void encodeFloat(float value, const NSString& key) const {
    send<"encodeFloat:forKey:">(*this, value, key);
  }
  void encodeDouble(double value, const NSString& key) const {
    send<"encodeDouble:forKey:">(*this, value, key);
  }
  void encodeBytes(const void* bytes, NSUInteger length, const NSString& key) const {
    send<"encodeBytes:length:forKey:">(*this, bytes, length, key);
  }

  // --- Reading: what is missing reads as nil or zero -------------------------------------------

  bool containsValueForKey(const NSString& key) const {
    return send<"containsValueForKey:", bool>(*this, key);
  }
  id decodeObjectForKey(const NSString& key) const {
    return send<"decodeObjectForKey:", id>(*this, key);
  }
  /// Numbers are read as any other kind of number: a real is cut toward zero, a truth value is 0 or
  /// 1. Anything else reads as 0.
  bool decodeBoolForKey(const NSString& key) const {
    return send<"decodeBoolForKey:", bool>(*this, key);
  }
  /// Beyond the type's range: the nearest value.
  int decodeIntForKey(const NSString& key) const {
    return send<"decodeIntForKey:", int>(*this, key);
  }
  std::int32_t decodeInt32ForKey(const NSString& key) const {
    return send<"decodeInt32ForKey:", std::int32_t>(*this, key);
  }
  std::int64_t decodeInt64ForKey(const NSString& key) const {
    return send<"decodeInt64ForKey:", std::int64_t>(*this, key);
  }
  NSInteger decodeIntegerForKey(const NSString& key) const {
    return send<"decodeIntegerForKey:", NSInteger>(*this, key);
  }
  float decodeFloatForKey(const NSString& key) const {
    return send<"decodeFloatForKey:", float>(*this, key);
  }
  double decodeDoubleForKey(const NSString& key) const {
    return send<"decodeDoubleForKey:", double>(*this, key);
  }
  /// The bytes and their number, which live as long as the coder; null when there are none.
  const void* decodeBytesForKey(const NSString& key, NSUInteger* length) const {
    return send<"decodeBytesForKey:returnedLength:", const void*>(*this, key, length);
  }
};

}  // namespace brindle
