// The first page: a range of dates, a replaced method, an exception, in one program.
#include <iostream>

// [example: taste]
#include <Brindle/Brindle.h>
#include <Brindle/Platform.h>

using namespace brindle;

int main() {
  BDDateRange month = BDDateRange::dateRangeWithNamedRange(BDNamedRangeThisMonth);
  std::cout << "This month ends on " << month->end() << '\n';

  // Methods are found while the program runs, so they can be replaced: from now on dates are words.
  auto inDays = implementation([](const NSDate& self) -> NSString {
    return NSString::stringWithFormat("day %.0f"_ns, self->timeIntervalSinceNow() / 86400);
  });
  class_replaceMethod(NSDate::class_(), selector<"description">(), inDays.implementation,
                      inDays.types);
  std::cout << "counted from now: " << month->end() << '\n';

  NSArray words = {"methods"_ns, "are"_ns, "messages"_ns};
  for (const id& word : words) std::cout << word << '\n';
  try {
    words->objectAtIndex(9);
  } catch (const RaisedException& raised) {
    std::cout << raised.what() << '\n';  // NSRangeException: ...
  }
}
// [end]
