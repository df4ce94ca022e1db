// A library that is linked with libBrindle, by including one of its headers and nothing more.
#include <Brindle/BDAwake.h>

#include "Tests/Linking/Shared.h"
#include "Tests/Linking/Waker.h"

constinit brindle::ClassPair<shared::Common> shared::Common::classPair{shared::kDefinition};

extern "C" int linkedLibrary() {
  return awakenings(makeWaker(brindle::NSObject::class_(), "InLinked"));
}
extern "C" const void* linkedCommon() { return &shared::Common::classPair.cls; }
extern "C" int linkedCommonAwakes() {
  shared::awakened = 0;
  shared::Common::alloc()->init();
  return shared::awakened;
}
