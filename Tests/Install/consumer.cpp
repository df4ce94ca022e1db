// A client's first program, over the installed headers and both libraries.
#include <Brindle/Brindle.h>

#include <cstdio>

int main() {
  const brindle::NSObject object = brindle::NSObject::class_()->alloc()->init();
  if (!object) return 1;
  std::puts("An object was made.");
  return 0;
}
