// Changing a method of a class that one did not write, and calling the method that was there
// before.
#include <atomic>
#include <iostream>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

using namespace brindle;

namespace {

std::atomic<IMP> previousUppercase;
std::atomic<int> calls{0};

/// From now on `uppercaseString` of every string is counted, and ends with an exclamation mark.
void install() {
  const Class cls = NSString::class_();
  const TypedImplementation mine = implementation([](const NSString& self, Cmd cmd) -> NSString {
    ++calls;
    const NSString upper = callImplementation<NSString>(previousUppercase, self, cmd.selector);
    return upper->stringByAppendingString("!"_ns);
  });
  // The slot first, then the method: another thread may send in between.
  previousUppercase = class_getMethodImplementation(cls, selector<"uppercaseString">());
  class_replaceMethod(cls, selector<"uppercaseString">(), mine.implementation, mine.types);
}

void uninstall() {
  method_setImplementation(
      class_getInstanceMethod(NSString::class_(), selector<"uppercaseString">()),
      previousUppercase);
}

}  // namespace

int main() {
  const NSString word = "hello"_ns;
  std::cout << "before: " << word->uppercaseString() << '\n';
  install();
  std::cout << "during: " << word->uppercaseString() << '\n';
  const bool changed = word->uppercaseString()->isEqualToString("HELLO!"_ns);
  uninstall();
  std::cout << "after:  " << word->uppercaseString() << " (" << calls << " calls counted)\n";
  return changed && std::string(word->uppercaseString()) == "HELLO" ? 0 : 1;
}
