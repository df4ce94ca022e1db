// Property attributes from outside: whatever they are, reading them ends with selectors or with the
// exception that names the character. Name and attributes are separated by a zero byte.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <Brindle/BDExceptions.h>
#include <Brindle/BDPropertyDetails.h>
#include <Brindle/Platform/NSException.h>

#include "Platform/Runtime/Internal/ClassData.h"

using namespace brindle;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string_view nameOf(SEL selector) { return sel_getName(selector); }

void check(const std::string& name, const std::string& attributes) {
  const PropertyRecord property{name.c_str(), attributes.c_str()};
  try {
    const BDPropertyDetails details = property_getDetails(&property);
    require(details.getter != nullptr);
    const bool named = attributes.find('G') != attributes.npos;
    require(named || nameOf(details.getter) == name);
    if (attributes.find('R') == attributes.npos) require(details.setter != nullptr);
    if (attributes.find('S') == attributes.npos && details.setter != nullptr) {
      require(nameOf(details.setter).size() == name.size() + 4);
      require(nameOf(details.setter).starts_with("set"));
    }
  } catch (const RaisedException& raised) {
    require(raised.exception()->name()->isEqual(BDInternalInconsistencyException));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::size_t separator = bytes.find('\0');
  const std::string name(bytes.substr(0, separator));
  std::string attributes;
  if (separator != bytes.npos) attributes = bytes.substr(separator + 1);
  check(name, attributes.c_str());  // up to its first zero byte
  return 0;
}
