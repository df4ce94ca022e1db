// Formats from outside: whatever the bytes are as a format, and however its arguments fit, filling
// it reads nothing but its arguments and ends with text of a bounded size. The first two bytes
// choose the arguments.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string_view>

#include "Platform/Foundation/Internal/FormatParser.h"
#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/TextFormat.h"

using brindle::FormatArgument;
using namespace brindle::internal;

namespace {

void describe(TextBuilder& target, const void*) {
  target.append(TextView::utf16(u"\u4E2D\U0001F600"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static const char unterminated[] = {'a', 'b', '\xC3', '\xA9', '\0'};
  const FormatArgument pool[] = {
      1,       -1L,       2.5,
      NAN,     HUGE_VAL,  static_cast<const char*>(unterminated),
      nullptr, ~0ull,     std::u16string_view(u"\xD83D wide"),
      'x',     "",        FormatArgument::object(unterminated),
      true,    U'\u20AC', std::numeric_limits<int>::min(),
      1e300,
  };
  const auto chosen = [&pool](unsigned index) { return pool[index % std::size(pool)]; };
  const FormatArgument arguments[] = {chosen(data[0] & 15U), chosen(data[0] >> 4U),
                                      chosen(data[1] & 15U)};
  const std::size_t count = data[1] >> 6U;
  const Text format = textFromUtf8Replacing({reinterpret_cast<const char*>(data) + 2, size - 2});
  TextBuilder filled;
  formatText(filled, format, {arguments, count}, describe);
  // The longest conversion: a number of some 310 digits with the greatest precision.
  if (filled.view().size() > format.size() * (kMaximumFormatField + 400)) std::abort();
  return 0;
}
