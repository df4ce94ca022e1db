// Data: bytes in an object, immutable. May be used by many threads at once.
#pragma once

#include <string_view>

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSRange.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSMutableData;

class NSData : public Interface<NSData, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSData> classPair;

  /// Copies the bytes.
  explicit NSData(std::string_view bytes) : NSData(dataWithBytes(bytes.data(), bytes.size())) {}

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// Empty data.
    Self data() const { return send<"data", Self>(*this); }
    /// Copies the bytes.
    Self dataWithBytes(const void* bytes, NSUInteger length) const {
      return send<"dataWithBytes:length:", Self>(*this, bytes, length);
    }
    /// Empty for nil.
    Self dataWithData(const NSData& other) const {
      return send<"dataWithData:", Self>(*this, other);
    }
    /// The file's bytes; nil when it cannot be read.
    Self dataWithContentsOfFile(const NSString& path) const {
      return send<"dataWithContentsOfFile:", Self>(*this, path);
    }
  };

  static NSData data() { return class_()->data(); }
  static NSData dataWithBytes(const void* bytes, NSUInteger length) {
    return class_()->dataWithBytes(bytes, length);
  }
  static NSData dataWithData(const NSData& other) { return class_()->dataWithData(other); }
  static NSData dataWithContentsOfFile(const NSString& path) {
    return class_()->dataWithContentsOfFile(path);
  }

  NSData initWithBytes(const void* bytes, NSUInteger length) const {
    return send<"initWithBytes:length:", NSData>(*this, bytes, length);
  }
  NSData initWithData(const NSData& other) const {
    return send<"initWithData:", NSData>(*this, other);
  }

  NSUInteger length() const { return send<"length", NSUInteger>(*this); }
  /// Lives as long as the data, and of mutable data until its next change. Never null but for nil.
  const void* bytes() const { return send<"bytes", const void*>(*this); }
  /// The same, for nil empty.
  std::string_view view() const {
    return *this == nullptr ? std::string_view()
                            : std::string_view(static_cast<const char*>(bytes()), length());
  }
  /// Copies at most `length` bytes from the first on.
  void getBytes(void* buffer, NSUInteger length) const {
    send<"getBytes:length:">(*this, buffer, length);
  }
  /// Copies the range. Beyond the end it raises NSRangeException.
  void getBytes(void* buffer, NSRange range) const {
    send<"getBytes:range:">(*this, buffer, range);
  }
  NSData subdataWithRange(NSRange range) const {
    return send<"subdataWithRange:", NSData>(*this, range);
  }
  bool isEqualToData(const NSData& other) const {
    return send<"isEqualToData:", bool>(*this, other);
  }
  /// Writes the bytes to a file, which is made or replaced; atomically through another file beside
  /// it. False when that fails.
  bool writeToFile(const NSString& path, bool atomically) const {
    return send<"writeToFile:atomically:", bool>(*this, path, atomically);
  }
  /// The bytes in mutable data of its own.
  NSMutableData mutableCopy() const;
};

}  // namespace brindle
