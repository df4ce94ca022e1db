// Reading keyed archives, binary or XML, whoever wrote them.
//
//   auto range = dynCast<BDDateRange>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
//
// Archives are not trusted. What is no keyed archive raises NSInvalidArgumentException; a class
// that the program does not have, references that lead nowhere and objects nested more deeply than
// the thread's stack allows raise NSInvalidUnarchiveOperationException. What a class does with
// values of kinds that it did not expect is the class's own concern: `decodeObjectForKey:` answers
// any object, so ask for its class.
#pragma once

#include <Brindle/Platform/NSCoder.h>

namespace brindle {

extern "C" {
BRINDLE_PLATFORM_EXPORT extern const NSString NSInvalidUnarchiveOperationException;
}

class NSKeyedUnarchiver : public Interface<NSKeyedUnarchiver, NSCoder> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSKeyedUnarchiver> classPair;

  template <class Self>
  class ClassSide : public NSCoder::ClassSide<Self> {
   public:
    /// The only object of an archive; nil when the archive holds nil, for an archive of several
    /// objects without a root, and for nil.
    id unarchiveObjectWithData(const NSData& data) const {
      return send<"unarchiveObjectWithData:", id>(*this, data);
    }
    /// The same from a file; nil when it cannot be read.
    id unarchiveObjectWithFile(const NSString& path) const {
      return send<"unarchiveObjectWithFile:", id>(*this, path);
    }
    /// The class that every unarchiver makes for a name in an archive; nil for the class of that
    /// name.
    void setClass(Class cls, const NSString& name) const {
      send<"setClass:forClassName:">(*this, cls, name);
    }
    Class classForClassName(const NSString& name) const {
      return send<"classForClassName:", Class>(*this, name);
    }
  };
  static id unarchiveObjectWithData(const NSData& data) {
    return class_()->unarchiveObjectWithData(data);
  }
  static id unarchiveObjectWithFile(const NSString& path) {
    return class_()->unarchiveObjectWithFile(path);
  }

  /// An unarchiver of the archive's top values. Raises when the data is no archive.
  NSKeyedUnarchiver initForReadingWithData(const NSData& data) const {
    return send<"initForReadingWithData:", NSKeyedUnarchiver>(*this, data);
  }
  /// Forgets the archive. Nothing can be decoded after it.
  void finishDecoding() const { send<"finishDecoding">(*this); }
  /// The class that this unarchiver makes for a name; nil for what all unarchivers make.
  void setClass(Class cls, const NSString& name) const {
    send<"setClass:forClassName:">(*this, cls, name);
  }
  Class classForClassName(const NSString& name) const {
    return send<"classForClassName:", Class>(*this, name);
  }
};

}  // namespace brindle
