// Changing a method of a class that one did not write, calling the method that was there before,
// and putting it back.
#include <iostream>
#include <string>

#include <Brindle/BDSwizzle.h>
#include <Brindle/Platform/NSString.h>

using namespace brindle;

namespace {

ImplementationSlot<NSString(NSString)> previousUppercase;
ImplementationSlot<NSString(NSString)> previousLowercase;

/// From now on `uppercaseString` of every string ends with an exclamation mark.
bool shout() {
  return swizzle(
      NSString::class_(), selector<"uppercaseString">(),
      [](const NSString& self, Cmd cmd) -> NSString {
        return previousUppercase(self, cmd)->stringByAppendingString("!"_ns);
      },
      previousUppercase);
}

}  // namespace

int main() {
  const NSString word = "Hello"_ns;
  std::cout << "before: " << word->uppercaseString() << '\n';
  if (!shout()) return 1;
  std::cout << "after:  " << word->uppercaseString() << '\n';

  int calls = 0;
  {
    const SwizzleToken counting = scopedSwizzle(
        NSString::class_(), selector<"lowercaseString">(),
        [&calls](const NSString& self, Cmd cmd) -> NSString {
          ++calls;
          return previousLowercase(self, cmd);
        },
        previousLowercase);
    std::cout << "during: " << word->lowercaseString() << '\n';
  }
  std::cout << "then:   " << word->lowercaseString() << " (" << calls << " call counted)\n";
  return calls == 1 && std::string(word->uppercaseString()) == "HELLO!" ? 0 : 1;
}
