// A client's first program, over the installed headers and both libraries. It names nothing of the
// second but a category, which no linker sees: the library must be loaded all the same.
#include <Brindle/Brindle.h>

#include <cstdio>
#include <string>

// Whether the library's own bundle is the one in the prefix.
static bool isBundleIn(const std::string& prefix) {
  const auto bundle = brindle::NSBundle::bundleWithIdentifier("org.brindle.Brindle");
  const std::string path(bundle->bundlePath());
  std::printf("The library's bundle is %s.\n", path.c_str());
  return path.starts_with(prefix + "/") && bundle->localizations()->count() > 1;
}

int main(int count, char** words) {
  const auto exception = brindle::NSException::exceptionWithName("Name", "Reason");
  if (brindle::decodedStackTrace(exception) == nullptr) return 1;
  std::puts("A category was found.");
  if (count > 1 && !isBundleIn(words[1])) return 1;
  return 0;
}
