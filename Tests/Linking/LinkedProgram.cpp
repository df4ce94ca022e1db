// Whose `awake` is called: a program linked with libBrindle, started by a relative path after which
// it changes its folder.
//   linked_program PLUGIN
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>

#include <Brindle/BDAwake.h>

#include "Tests/Linking/Waker.h"

extern "C" {
int linkedLibrary();
int plainLibrary();
int indirectLibrary();
void* plainClass();
int plainAwakened();
const void* linkedCommon();
const void* plainCommon();
int linkedCommonAwakes();
int plainCommonAwakes();
}

namespace {

using namespace brindle;

int failures = 0;

void expect(const char* what, int found, int wanted) {
  std::printf("%-64s %d%s\n", what, found, found == wanted ? "" : "  WRONG");
  if (found != wanted) ++failures;
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 2 || ::chdir("/") != 0) return 2;
  expect("the main program", awakenings(makeWaker(NSObject::class_(), "InMain")), 1);
  expect("a library linked with the library", linkedLibrary(), 1);
  expect("a library linked with the platform only", plainLibrary(), 0);
  expect("a library linked through another one", indirectLibrary(), 1);

  void* handle = ::dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  auto* plugin = handle != nullptr
                     ? reinterpret_cast<int (*)()>(::dlsym(handle, "plugin"))  // NOLINT
                     : nullptr;
  expect("a plug-in that is linked with the library", plugin != nullptr ? plugin() : -1, 1);

  const Class base(static_cast<ClassRecord*>(plainClass()));
  const int before = plainAwakened();
  expect("an awake of unlinked code under one in linked code",
         awakenings(makeWaker(base, "OverPlain")), 1);
  expect("... is not called itself", plainAwakened() - before, 0);

  // Whichever copy of the class in a header an object is of, its own library's code decides.
  if (linkedCommon() != plainCommon()) {
    expect("a class in a header, in linked code", linkedCommonAwakes(), 1);
    expect("a class in a header, in unlinked code", plainCommonAwakes(), 0);
  }
  std::puts(failures == 0 ? "right everywhere" : "wrong");
  return failures == 0 ? 0 : 1;
}
