// Bytes as text: what an encoding accepts comes back as the same bytes, apart from marks, and any
// bytes can be read as UTF-8 with replacements, searched, folded and read as numbers. The first
// byte chooses the encoding.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/TextNumbers.h"
#include "Platform/Foundation/Internal/TextUnicode.h"

using namespace brindle::internal;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

bool hasSurrogate(TextView text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((text[i] & 0xF800) == 0xD800) return true;
  }
  return false;
}

void checkText(TextView text) {
  const std::u16string units = text.toUtf16();
  const TextView wide = TextView::utf16(units);
  require(text == wide && text.hash() == wide.hash());
  require(compareText(text, wide, {.caseInsensitive = true}) == 0);
  const Text upper = uppercaseText(text);
  const Text lower = lowercaseText(upper);
  (void)capitalizedText(lower);
  (void)doubleFromText(text);
  (void)integer64FromText(text);
  (void)booleanFromText(text);
  if (text.empty()) return;
  const TextView part = text.sub(text.size() / 2, 3);
  for (const bool backwards : {false, true}) {
    const auto found = findText(text, part, {.literal = true, .backwards = backwards});
    require(found && text.sub(*found) == part);
    const auto folded = findText(text, part, {.caseInsensitive = true, .backwards = backwards});
    require(!folded || folded->end() <= text.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto encoding = static_cast<TextEncoding>(data[0] % 6);
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  if (const auto text = decodeText(bytes, encoding)) {
    const auto encoded = encodeText(*text, encoding);
    const bool hasMark = encoding == TextEncoding::utf8 || encoding == TextEncoding::utf16;
    if (!hasMark && !hasSurrogate(*text)) require(encoded == bytes);
    require(encoded.has_value());
    if (!hasSurrogate(*text)) require(textFromUtf8(utf8FromText(*text)) == text);
    checkText(*text);
  }
  checkText(textFromUtf8Replacing(bytes));
  return 0;
}
