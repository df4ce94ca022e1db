// Strings tables from outside: whatever the bytes are, they are read or refused, and what was read,
// written plainly, is read as the same.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/StringsTable.h"

using namespace brindle::internal;

namespace {

[[noreturn]] void complain(const char* what, const std::string& error) {
  std::fprintf(stderr, "%s: %s\n", what, error.c_str());
  std::abort();
}

// In ASCII, every unit as its number.
void write(std::string& file, const Text& text) {
  constexpr char kDigits[] = "0123456789abcdef";
  file += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned unit = text[i];
    file += "\\U";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) file += kDigits[unit >> shift & 15U];
  }
  file += '"';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::string error;
  const auto entries = readStringsTable(bytes, error);
  if (entries.has_value() == !error.empty()) complain("neither read nor refused", error);
  if (!entries) return 0;
  std::string file;
  for (const StringsEntry& entry : *entries) {
    write(file, entry.key);
    file += '=';
    write(file, entry.value);
    file += ';';
  }
  const auto again = readStringsTable(file, error);
  if (!again) complain("not read back", error);
  if (again->size() != entries->size()) complain("read back differently", file);
  for (std::size_t i = 0; i < entries->size(); ++i) {
    if (!((*again)[i].key == (*entries)[i].key && (*again)[i].value == (*entries)[i].value)) {
      complain("read back differently", file);
    }
  }
  return 0;
}
