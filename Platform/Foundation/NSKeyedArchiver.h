// Writing objects to keyed archives, in the platform's own format, as binary or XML property lists.
//
//   NSData data = NSKeyedArchiver::archivedDataWithRootObject(range);
//
// Strings, numbers, data, dates, NSNull, arrays, dictionaries and sets can be archived, and every
// object that adopts `kNSCoding`. Objects that refer to each other, also in a circle, come back so.
// An object that cannot be archived raises. Left out: delegates, secure coding.
#pragma once

#include <Brindle/Platform/NSCoder.h>
#include <Brindle/Platform/NSMutableData.h>

namespace brindle {

/// The form of a property list.
enum NSPropertyListFormat : NSUInteger {
  NSPropertyListXMLFormat_v1_0 = 100,
  NSPropertyListBinaryFormat_v1_0 = 200,
};

extern "C" {
/// The key of an archive's only object.
BRINDLE_PLATFORM_EXPORT extern const NSString NSKeyedArchiveRootObjectKey;
BRINDLE_PLATFORM_EXPORT extern const NSString NSInvalidArchiveOperationException;
}

class NSKeyedArchiver : public Interface<NSKeyedArchiver, NSCoder> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSKeyedArchiver> classPair;

  template <class Self>
  class ClassSide : public NSCoder::ClassSide<Self> {
   public:
    /// A binary archive of one object, which may be nil.
    NSData archivedDataWithRootObject(const id& object) const {
      return send<"archivedDataWithRootObject:", NSData>(*this, object);
    }
    /// Writes such an archive to a file, atomically. False when that fails.
    bool archiveRootObject(const id& object, const NSString& path) const {
      return send<"archiveRootObject:toFile:", bool>(*this, object, path);
    }
    /// The name that every archiver writes for a class; nil for its own.
    void setClassName(const NSString& name, Class cls) const {
      send<"setClassName:forClass:">(*this, name, cls);
    }
    NSString classNameForClass(Class cls) const {
      return send<"classNameForClass:", NSString>(*this, cls);
    }
  };
  static NSData archivedDataWithRootObject(const id& object) {
    return class_()->archivedDataWithRootObject(object);
  }
  static bool archiveRootObject(const id& object, const NSString& path) {
    return class_()->archiveRootObject(object, path);
  }

  /// An archiver that puts its archive into the data when it is finished.
  NSKeyedArchiver initForWritingWithMutableData(const NSMutableData& data) const {
    return send<"initForWritingWithMutableData:", NSKeyedArchiver>(*this, data);
  }
  /// Writes the archive. Nothing can be encoded after it; a second time does nothing.
  void finishEncoding() const { send<"finishEncoding">(*this); }
  /// Binary unless it is set.
  NSPropertyListFormat outputFormat() const {
    return send<"outputFormat", NSPropertyListFormat>(*this);
  }
  void setOutputFormat(NSPropertyListFormat format) const {
    send<"setOutputFormat:">(*this, format);
  }
  /// The name that this archiver writes for a class; nil for what all archivers write.
  void setClassName(const NSString& name, Class cls) const {
    send<"setClassName:forClass:">(*this, name, cls);
  }
  NSString classNameForClass(Class cls) const {
    return send<"classNameForClass:", NSString>(*this, cls);
  }
};

}  // namespace brindle
