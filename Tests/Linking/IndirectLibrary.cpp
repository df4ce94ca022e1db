// A library that is linked with one that is linked with libBrindle.
#include "Tests/Linking/Waker.h"

extern "C" int linkedLibrary();
extern "C" int indirectLibrary() {
  linkedLibrary();
  return awakenings(makeWaker(brindle::NSObject::class_(), "InIndirect"));
}
