// A client's first program, over the installed headers and both libraries. It names nothing of the
// second but a category, which no linker sees: the library must be loaded all the same.
#include <Brindle/Brindle.h>

#include <cstdio>

int main() {
  const auto exception = brindle::NSException::exceptionWithName("Name", "Reason");
  if (brindle::decodedStackTrace(exception) == nullptr) return 1;
  std::puts("A category was found.");
  return 0;
}
