// A library that is linked with the platform only: an `awake` of its own means something else.
#include "Tests/Linking/Shared.h"
#include "Tests/Linking/Waker.h"

constinit brindle::ClassPair<shared::Common> shared::Common::classPair{shared::kDefinition};

extern "C" int plainLibrary() {
  return awakenings(makeWaker(brindle::NSObject::class_(), "InPlain"));
}
extern "C" void* plainClass() {
  return makeWaker(brindle::NSObject::class_(), "PlainBase").record();
}
extern "C" int plainAwakened() { return awakened; }
extern "C" const void* plainCommon() { return &shared::Common::classPair.cls; }
extern "C" int plainCommonAwakes() {
  shared::awakened = 0;
  shared::Common::alloc()->init();
  return shared::awakened;
}
