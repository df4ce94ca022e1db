#include <Brindle/Platform/Closure.h>

#include <algorithm>
#include <cstring>
#include <deque>
#include <mutex>
#include <new>
#include <string>
#include <unordered_map>

#include <ffi.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Implementation.h>

#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle {
namespace {

constexpr const char* kPlainTypes = "@16@0:8";

/// What stands behind one closure.
struct Closure {
  detail::SignatureData* data;
  ClosureHandler handler;
  void* context;
};

/// All there are: closures live as long as the process.
std::deque<Closure>& closuresLocked() {
  static auto& made = *new std::deque<Closure>;
  return made;
}

void enterClosure(ffi_cif*, void* result, void** arguments, void* user) {
  const auto& closure = *static_cast<const Closure*>(user);
  const ffi_type& type = *closure.data->result.ffi;
  // Small integers travel as whole words. Nothing else has room behind its value.
  const bool isStruct = type.type == FFI_TYPE_STRUCT;
  const std::size_t size = closure.data->result.size;
  if (size > 0) std::memset(result, 0, isStruct ? size : std::max(size, sizeof(ffi_arg)));
  closure.handler(closure.context, arguments, result);
}

IMP makeClosure(detail::SignatureData* data, const char* wire, ClosureHandler handler,
                void* context) {
  std::unique_lock guard(detail::closureLock());
  void* code = nullptr;
  auto* closure = static_cast<ffi_closure*>(ffi_closure_alloc(sizeof(ffi_closure), &code));
  Closure* user = &closuresLocked().emplace_back(Closure{data, handler, context});
  if (closure == nullptr ||
      ffi_prep_closure_loc(closure, &data->cif, &enterClosure, user, code) != FFI_OK) {
    throw std::bad_alloc();
  }
  guard.unlock();
  const IMP imp = detail::implementationAt(code);
  detail::noteImplementation(imp, wire);
  return imp;
}

void answerZero(void*, void**, void*) {}

struct Zeros {
  std::mutex lock;
  std::unordered_map<std::string, IMP> implementations;  // under types, a blank, and wire codes
};

}  // namespace

IMP closureImplementation(const char* types, const char* wire, ClosureHandler handler,
                          void* context) {
  detail::SignatureData* data = detail::signatureData(types);
  if (data == nullptr) return nullptr;
  return makeClosure(data, wire != nullptr ? wire : data->wire.c_str(), handler, context);
}

IMP zeroImplementation(const char* types, const char* wire) {
  static auto& zeros = *new Zeros;
  detail::SignatureData* data = detail::signatureData(types);
  if (data != nullptr && wire == nullptr) wire = data->wire.c_str();
  if (data == nullptr) wire = nullptr;
  std::string key = data != nullptr ? data->types + " " + wire : "";
  const std::lock_guard guard(zeros.lock);
  const auto found = zeros.implementations.find(key);
  if (found != zeros.implementations.end()) return found->second;
  if (data == nullptr) data = detail::signatureData(kPlainTypes);
  const IMP zero = makeClosure(data, wire, &answerZero, nullptr);
  zeros.implementations.emplace(std::move(key), zero);
  return zero;
}

}  // namespace brindle
