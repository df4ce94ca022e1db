// Data whose bytes and length can be changed. For one thread at a time.
#pragma once

#include <Brindle/Platform/NSData.h>

namespace brindle {

class NSMutableData : public Interface<NSMutableData, NSData> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableData> classPair;

  template <class Self>
  class ClassSide : public NSData::ClassSide<Self> {
   public:
    /// Empty, with room for that many bytes.
    Self dataWithCapacity(NSUInteger capacity) const {
      return send<"dataWithCapacity:", Self>(*this, capacity);
    }
    /// That many zero bytes.
    Self dataWithLength(NSUInteger length) const {
      return send<"dataWithLength:", Self>(*this, length);
    }
  };
  static NSMutableData data() { return class_()->data(); }
  static NSMutableData dataWithBytes(const void* bytes, NSUInteger length) {
    return class_()->dataWithBytes(bytes, length);
  }
  static NSMutableData dataWithCapacity(NSUInteger capacity) {
    return class_()->dataWithCapacity(capacity);
  }
  static NSMutableData dataWithLength(NSUInteger length) {
    return class_()->dataWithLength(length);
  }

  /// The bytes, to be changed in place until the next change of the length.
  void* mutableBytes() const { return send<"mutableBytes", void*>(*this); }
  /// Cuts the end off, or adds zero bytes.
  void setLength(NSUInteger length) const { send<"setLength:">(*this, length); }
  void increaseLengthBy(NSUInteger bytes) const { send<"increaseLengthBy:">(*this, bytes); }
  void appendBytes(const void* bytes, NSUInteger length) const {
    send<"appendBytes:length:">(*this, bytes, length);
  }
  void appendData(const NSData& other) const { send<"appendData:">(*this, other); }
  /// Replaces the bytes of the range by others, of any number. A range that begins beyond the end
  /// raises NSRangeException.
  void replaceBytesInRange(NSRange range, const void* bytes, NSUInteger length) const {
    send<"replaceBytesInRange:withBytes:length:">(*this, range, bytes, length);
  }
  void setData(const NSData& other) const { send<"setData:">(*this, other); }
};

inline NSMutableData NSData::mutableCopy() const {
  return send<"mutableCopy", NSMutableData>(*this);
}

}  // namespace brindle
