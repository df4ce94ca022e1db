// Makes a class with an `awake` of the including file's own code, and tells what comes of it.
#pragma once

#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

namespace {

int awakened = 0;

/// A class named `name` over `superclass`, with an `awake` of this image.
inline brindle::Class makeWaker(brindle::Class superclass, const char* name) {
  const brindle::Class cls = brindle::objc_allocateClassPair(superclass, name, 0);
  brindle::objc_registerClassPair(cls);
  const auto awake = brindle::implementation([](const brindle::NSObject&) { ++awakened; });
  brindle::class_addMethod(cls, brindle::selector<"awake">(), awake.implementation, awake.types);
  return cls;
}

/// How often a new object of the class ran this image's `awake`.
inline int awakenings(brindle::Class cls) {
  awakened = 0;
  brindle::send<"init", brindle::id>(brindle::send<"alloc", brindle::id>(cls));
  return awakened;
}

}  // namespace
