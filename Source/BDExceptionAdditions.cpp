#include <Brindle/BDExceptionAdditions.h>

#include <execinfo.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSNumber.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

NSMutableString decoded(const NSException& self) {
  const NSArray numbers = self->callStackReturnAddresses();
  // Counted in 32 bits, as backtrace_symbols counts: a negative count is none.
  const auto count = static_cast<std::int32_t>(static_cast<std::uint32_t>(numbers->count()));
  // The array is walked to its end, whatever it says of its count.
  std::vector<void*> addresses;
  const NSEnumerator enumerator = numbers->objectEnumerator();
  while (const id number = enumerator->nextObject()) {
    const auto address = send<"unsignedIntegerValue", NSUInteger>(number);
    if (count > 0 && addresses.size() < static_cast<std::size_t>(count)) {
      addresses.push_back(reinterpret_cast<void*>(address));  // NOLINT: an address from a number
    }
  }

  NSMutableString text = cast<NSMutableString>(NSMutableString::string());
  if (addresses.empty()) return text;
  const int lines = static_cast<int>(addresses.size());
  const std::unique_ptr<char*, void (*)(void*)> symbols(
      ::backtrace_symbols(addresses.data(), lines), &std::free);
  if (!symbols) return text;
  for (int i = 0; i < lines; ++i) {
    const char* line = symbols.get()[i];
    if (line != nullptr) text->appendFormat("%s\n"_ns, line);
  }
  return text;
}

constexpr MethodDefinition kMethods[] = {
    method<"decodedStackTrace">([](const NSException& self) { return decoded(self); }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDExceptionAdditions{
    .name = "BDExceptionAdditions", .cls = &NSException::classPair.cls, .methods = kMethods};

}  // namespace brindle
