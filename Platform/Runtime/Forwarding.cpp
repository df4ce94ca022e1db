// Forwarding: what happens to a message that nobody answers.
#include "Platform/Runtime/Internal/Forwarding.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string_view>

#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Raise.h"
#include "Platform/Runtime/Internal/SignatureObject.h"

namespace brindle {
namespace detail {
namespace {

// libffi writes small integers as whole words, and the largest plain result has 16 bytes.
constexpr std::size_t kSmallResult = 16;

/// Steps over one type's wire codes.
std::string_view nextCode(const char*& wire) {
  const char* begin = wire;
  if (*wire == '\0') return {};
  int open = 0;
  do {
    if (*wire == '{') ++open;
    if (*wire == '}') --open;
    ++wire;
  } while (open > 0 && *wire != '\0');
  return {begin, static_cast<std::size_t>(wire - begin)};
}

std::size_t integerSize(std::string_view code) {
  if (code == "b") return 1;
  if (code == "s") return 2;
  if (code == "i") return 4;
  if (code == "q") return 8;
  return 0;
}

bool isSigned(const std::string& encoding) {
  return !encoding.empty() && std::strchr("csilq", encoding.back()) != nullptr;
}

/// A value of one type as another: the same bits for the same type, integers and floating values by
/// value, anything else zero.
void convert(const void* from, std::string_view fromCode, bool fromSigned, void* to,
             std::string_view toCode, std::size_t toSize) {
  if (fromCode == toCode) {
    std::memcpy(to, from, toSize);
    return;
  }
  std::memset(to, 0, toSize);
  const std::size_t fromInteger = integerSize(fromCode);
  const std::size_t toInteger = integerSize(toCode);
  if (fromInteger > 0 && toInteger > 0) {
    std::uint64_t value = 0;
    std::memcpy(&value, from, fromInteger);
    const std::size_t unused = 64 - 8 * fromInteger;
    if (fromSigned) {
      value = static_cast<std::uint64_t>(static_cast<std::int64_t>(value << unused) >>
                                         static_cast<int>(unused));
    }
    std::memcpy(to, &value, toInteger);
  } else if (fromCode == "f" && toCode == "d") {
    float value = 0;
    std::memcpy(&value, from, sizeof value);
    const double wide = value;
    std::memcpy(to, &wide, sizeof wide);
  } else if (fromCode == "d" && toCode == "f") {
    double value = 0;
    std::memcpy(&value, from, sizeof value);
    const auto narrow = static_cast<float>(value);
    std::memcpy(to, &narrow, sizeof narrow);
  }
}

std::size_t wireSize(std::string_view code, const SignatureData& data) {
  if (const std::size_t size = integerSize(code)) return size;
  if (code == "f") return 4;
  if (code == "D") return 16;
  if (code == "v" || code.empty()) return 0;
  if (code.front() == '{') return data.result.wire == code ? data.result.size : 0;
  return 8;
}

/// A class that is still being initialised has its methods in the writers' view only.
[[gnu::noinline, gnu::cold]] bool answersUnpublished(const ClassRecord& cls, SEL selector) {
  const MethodRecord* method = lookUpMethod(cls.data.load(std::memory_order_acquire), selector);
  return method != nullptr && method->implementation.load(std::memory_order_acquire) != nullptr;
}

inline bool answers(const ClassRecord& cls, SEL selector) {
  const MethodRecord* method = findMethod(&cls, selector);
  return method->implementation.load(std::memory_order_acquire) != nullptr ||
         answersUnpublished(cls, selector);
}

/// A class that lacks the operations of forwarding itself can only fail.
inline void requireForwarding(const ClassRecord& cls, SEL selector, const void* receiver) {
  const SEL signature = brindle::selector<"methodSignatureForSelector:">();
  const SEL forward = brindle::selector<"forwardInvocation:">();
  if (selector == signature || selector == forward || !answers(cls, signature) ||
      !answers(cls, forward)) [[unlikely]] {
    raiseUnrecognized(cls, selector, receiver);
  }
}

/// Nobody answers: the receiver says so, or the runtime for a class that cannot.
void fail(const id& receiver, SEL selector) {
  const ClassRecord& cls = *receiver.record()->isa.load(std::memory_order_acquire);
  const SEL doesNotRecognize = brindle::selector<"doesNotRecognizeSelector:">();
  if (selector == doesNotRecognize || !answers(cls, doesNotRecognize)) {
    raiseUnrecognized(cls, selector, receiver.record());
  }
  send<"doesNotRecognizeSelector:">(receiver, selector);
}

/// Sends a message on to another receiver, with the sender's own arguments.
void resend(const id& target, SEL selector, const char* wire, void** arguments, void* result) {
  const NSMethodSignature signature =
      send<"methodSignatureForSelector:", NSMethodSignature>(target, selector);
  SignatureData* data = dataOfSignature(signature);
  if (data == nullptr) {
    fail(target, selector);
    return;
  }
  // `performSelector:` expects an object whatever the method answers, and gets nil for anything
  // else.
  const bool answersOther = *wire == '@' && data->result.wire != "@" &&
                            sameWire(wire + 1, data->wire.c_str() + data->result.wire.size());
  if (!answersOther && !sameWire(wire, data->wire.c_str())) {
    raise("NSInvalidArgumentException", std::string("the target of a forwarded ") + selector->name +
                                            " has other types (" + data->types + ")");
  }
  std::vector<void*> frame(data->arguments.size());
  ObjectRecord* record = target.record();
  frame[0] = &record;
  frame[1] = &selector;
  std::copy_n(arguments, frame.size() - 2, frame.begin() + 2);
  if (!answersOther) return sendFrame(record, selector, *data, frame.data(), result);
  std::vector<std::byte> ignored(std::max(kSmallResult, data->result.size));
  sendFrame(record, selector, *data, frame.data(), ignored.data());
}

/// Fills in a sender's arguments as the signature wants them.
void convertArguments(const char* wire, void** arguments, const SignatureData& data,
                      const NSInvocation& invocation) {
  nextCode(wire);
  std::size_t index = 2;
  for (std::string_view code = nextCode(wire); !code.empty(); code = nextCode(wire), ++index) {
    if (index >= data.arguments.size()) break;
    const TypeData& type = data.arguments[index];
    convert(arguments[index - 2], code, true, argumentOf(invocation, index), type.wire, type.size);
  }
}

/// Hands the result over in the type that the sender expects.
void convertResult(const NSInvocation& invocation, const SignatureData& data, const char* wire,
                   void* result) {
  const std::string_view code = nextCode(wire);
  if (code == "@") {
    if (data.result.wire == "@") {
      *static_cast<ObjectRecord**>(result) =
          retained(*static_cast<ObjectRecord**>(resultOf(invocation)));
    }
    return;
  }
  const std::size_t size = wireSize(code, data);
  if (data.result.size == 0 || size == 0) return;
  convert(resultOf(invocation), data.result.wire, isSigned(data.result.encoding), result, code,
          size);
}

void closureEntry(ffi_cif*, void* result, void** arguments, void* user) {
  auto& data = *static_cast<SignatureData*>(user);
  auto* receiver = *static_cast<ObjectRecord**>(arguments[0]);
  const SEL selector = *static_cast<SEL*>(arguments[1]);
  alignas(16) std::array<std::byte, 256> small{};
  std::vector<std::byte> large;
  void* room = small.data();
  if (data.result.size > small.size()) {
    large.resize(data.result.size);
    room = large.data();
  }
  if (receiver != nullptr) {
    forwardMessage(receiver, selector, data.wire.c_str(), arguments + 2,
                   data.result.size > 0 ? room : nullptr);
  }
  if (data.result.size == 0) return;
  // Small integers travel as whole words; the room is zeroed behind the value.
  std::memcpy(result, room,
              std::max(data.result.size,
                       integerSize(data.result.wire) > 0 ? sizeof(ffi_arg) : data.result.size));
}

}  // namespace

std::mutex& closureLock() {
  static auto& lock = *new std::mutex;
  return lock;
}

void raiseUnrecognized(const ClassRecord& cls, SEL selector, const void* receiver) {
  std::array<char, 32> address{};
  std::snprintf(address.data(), address.size(), "%p", receiver);
  raise("NSInvalidArgumentException", std::string(cls.isMeta ? "+[" : "-[") + cls.name + " " +
                                          sel_getName(selector) +
                                          "]: unrecognized selector sent to " +
                                          (cls.isMeta ? "class " : "instance ") + address.data());
}

void sendFrame(ObjectRecord* target, SEL selector, SignatureData& data, void** arguments,
               void* result) {
  if (selector == nullptr) raise("NSInvalidArgumentException", "an invocation has no selector");
  ClassRecord* cls = target->isa.load(std::memory_order_acquire);
  MethodRecord* method = findMethod(cls, selector);
  IMP imp = method->implementation.load(std::memory_order_acquire);
  if (imp == nullptr) {
    std::atomic<SEL> slot{selector};
    method = resolveMissed(cls, slot, selector->name);
    if (method != nullptr) imp = method->implementation.load(std::memory_order_acquire);
  }
  if (imp == nullptr) {
    forwardMessage(target, selector, data.wire.c_str(), arguments + 2,
                   data.result.size > 0 ? result : nullptr);
    return;
  }
  const char* wire = method->wire.load(std::memory_order_acquire);
  if (wire != nullptr && !sameWire(wire, data.wire.c_str())) {
    raise("NSInvalidArgumentException", std::string("an invocation of ") + selector->name +
                                            " has the types " + data.types + ", the method of " +
                                            cls->name + " has " + method->types.load());
  }
  alignas(16) std::array<std::byte, kSmallResult> word{};
  const bool direct = data.result.size > kSmallResult;
  callWithFrame(data, imp, arguments, direct ? result : word.data());
  if (!direct && data.result.size > 0) std::memcpy(result, word.data(), data.result.size);
}

void forwardMessage(ObjectRecord* receiver, SEL selector, const char* wire, void** arguments,
                    void* result) {
  const id self = borrow<id>(receiver);
  const ClassRecord* cls = receiver->isa.load(std::memory_order_acquire);
  requireForwarding(*cls, selector, receiver);
  if (answers(*cls, brindle::selector<"forwardingTargetForSelector:">())) {
    const id target = send<"forwardingTargetForSelector:", id>(self, selector);
    if (target && !(target == self)) {
      resend(target, selector, wire, arguments, result);
      return;
    }
  }
  const NSMethodSignature signature =
      send<"methodSignatureForSelector:", NSMethodSignature>(self, selector);
  if (!signature) {
    fail(self, selector);
    return;
  }
  const SignatureData& data = *dataOfSignature(signature);
  const NSInvocation invocation = newInvocation(signature, receiver, selector);
  const bool same = sameWire(wire, data.wire.c_str());
  if (same) {
    for (std::size_t i = 2; i < data.arguments.size(); ++i) {
      std::memcpy(argumentOf(invocation, i), arguments[i - 2], data.arguments[i].size);
    }
  } else {
    convertArguments(wire, arguments, data, invocation);
  }
  send<"forwardInvocation:">(self, invocation);
  if (result == nullptr) return;
  if (!same) {
    convertResult(invocation, data, wire, result);
  } else if (data.result.wire == "@") {
    *static_cast<ObjectRecord**>(result) =
        retained(*static_cast<ObjectRecord**>(resultOf(invocation)));
  } else {
    std::memcpy(result, resultOf(invocation), data.result.size);
  }
}

}  // namespace detail

IMP forwardingImplementation(const char* types) {
  detail::SignatureData* data = detail::signatureData(types != nullptr ? types : "@16@0:8");
  if (data == nullptr) data = detail::signatureData("@16@0:8");
  if (IMP known = data->forwarder.load(std::memory_order_acquire)) return known;
  const std::lock_guard guard(detail::closureLock());
  if (IMP known = data->forwarder.load(std::memory_order_acquire)) return known;
  void* code = nullptr;
  auto* closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &code));
  if (closure == nullptr ||
      ffi_prep_closure_loc(closure, &data->cif, &detail::closureEntry, data, code) != FFI_OK) {
    throw std::bad_alloc();
  }
  const IMP imp = detail::implementationAt(code);
  data->forwarder.store(imp, std::memory_order_release);
  return imp;
}

}  // namespace brindle
