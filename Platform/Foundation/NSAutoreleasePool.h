// An autorelease pool as an object. `AutoreleasePool` is the same for a C++ scope, and cannot be
// forgotten.
//
//   NSAutoreleasePool pool = NSAutoreleasePool::new_();
//   ...
//   pool->drain();
//
// A pool belongs to the thread that made it. Pools nest: draining one takes along those made after
// it.
#pragma once

#include <Brindle/Platform/NSObject.h>

namespace brindle {

class NSAutoreleasePool : public Interface<NSAutoreleasePool, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSAutoreleasePool> classPair;

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// Gives the object to the thread's current pool.
    void addObject(const id& object) const { send<"addObject:">(*this, object); }
  };

  /// Releases what the pool holds; a second time does nothing. What is drained may raise. A pool
  /// whose last reference goes is drained too: by then a raise ends the program.
  void drain() const { send<"drain">(*this); }
};

}  // namespace brindle
