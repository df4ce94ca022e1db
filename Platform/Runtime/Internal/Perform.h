// `performSelector:` and its like, for objects and proxies.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <Brindle/Platform/NSObject.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/Raise.h"
#include "Platform/Runtime/Internal/SignatureObject.h"

namespace brindle::detail {

/// Sends a message with object arguments. A method that answers no object is run too, and nil is
/// answered; one that takes other arguments raises NSInvalidArgumentException.
template <class... A>
id perform(const id& self, SEL selector, const A&... a) {
  if (selector == nullptr) raise("NSInvalidArgumentException", "performSelector: needs a selector");
  ClassRecord* cls = self.record()->isa.load(std::memory_order_acquire);
  MethodRecord* method = lookUpMethod(realized(cls), selector);
  const char* wire = method != nullptr ? method->wire.load(std::memory_order_acquire) : nullptr;
  constexpr std::string_view kExpected = wireTypes<id, A...>.view();
  if (wire == nullptr || wire == kExpected) {
    return sendSelector<id>(self, selector, a...);
  }
  const NSMethodSignature signature = signatureOfMethod(method);
  SignatureData* data = dataOfSignature(signature);
  if (data == nullptr || wire + data->result.wire.size() != kExpected.substr(1)) {
    raise("NSInvalidArgumentException",
          std::string("performSelector: of ") + selector->name + ", which takes other arguments");
  }
  ObjectRecord* record = self.record();
  std::array<ObjectRecord*, sizeof...(A) + 1> objects{a.record()..., nullptr};
  std::array<void*, sizeof...(A) + 2> frame{&record, &selector};
  for (std::size_t i = 0; i < sizeof...(A); ++i) frame[i + 2] = &objects[i];
  std::vector<std::byte> result(std::max<std::size_t>(16, data->result.size));
  sendFrame(record, selector, *data, frame.data(), result.data());
  return nullptr;
}

}  // namespace brindle::detail
