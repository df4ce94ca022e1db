// The null object: stands for nil in collections, which cannot hold nil.
#pragma once

#include <Brindle/Platform/NSObject.h>

namespace brindle {

class NSNull : public Interface<NSNull, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSNull> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// The only one there is.
    NSNull null() const { return send<"null", NSNull>(*this); }
  };
  static NSNull null() { return class_()->null(); }
};

}  // namespace brindle
