// Values of any C type as objects, and objects as values of those types.
#pragma once

#include <string>

#include <Brindle/Platform/NSObject.h>

#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle::detail {

/// The type of an accessor or a variable.
struct KeyValueType {
  /// The first letter of a number's or object's encoding; 0 for all other types.
  char code = 0;
  std::string encoding;  // without qualifiers
  std::size_t size = 0;
  SignatureData* signature = nullptr;  // of the accessor

  friend bool operator==(const KeyValueType&, const KeyValueType&) = default;
  [[nodiscard]] bool isObject() const noexcept { return code == '@' || code == '#'; }
};

/// Of an encoding; its `code` is 0 and its `size` 0 when it is none.
KeyValueType keyValueType(const char* encoding);

/// What the method answers, as an object.
id boxedResult(const id& object, SEL selector, const KeyValueType& type);
/// Calls the method with the value. Raises NSInvalidArgumentException for a value of another type.
/// Not for nil where the type is none of an object.
void callWithValue(const id& object, SEL selector, const KeyValueType& type, const id& value);

/// The variable's value as an object; and the object's value in the variable.
id boxedVariable(const void* variable, const KeyValueType& type);
void setVariable(void* variable, const KeyValueType& type, const id& value);

}  // namespace brindle::detail
