#include "Platform/Runtime/Internal/Raise.h"

#include <atomic>
#include <stdexcept>

namespace brindle::detail {
namespace {
constinit std::atomic<RaiseHandler> raiseHandler{nullptr};
}

void setRaiseHandler(RaiseHandler handler) noexcept { raiseHandler.store(handler); }

void raise(const char* name, const std::string& reason) {
  if (RaiseHandler handler = raiseHandler.load()) handler(name, reason);
  throw std::runtime_error(std::string(name) + ": " + reason);
}

}  // namespace brindle::detail
