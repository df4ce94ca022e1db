// A plug-in, opened while the program runs.
#include <Brindle/BDAwake.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/NSString.h>

#include "Tests/Linking/Waker.h"

namespace {

/// A class that is there as soon as the plug-in is, with a method that was changed.
[[gnu::constructor]] void begin() {
  const brindle::Class cls = makeWaker(brindle::NSObject::class_(), "OfPlugin");
  brindle::class_replaceMethodImp(cls, brindle::selector<"description">(),
                                  [](const brindle::NSObject&) -> brindle::NSString {
                                    return brindle::NSString("of a plug-in");
                                  });
}

}  // namespace

extern "C" int plugin() { return awakenings(makeWaker(brindle::NSObject::class_(), "InPlugin")); }
