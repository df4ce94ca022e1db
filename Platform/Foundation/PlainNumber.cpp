#include <Brindle/Platform/PlainNumber.h>

#include <atomic>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/NumberKind.h"
#include "Platform/Foundation/Internal/PlainNumberWatch.h"

namespace brindle {
namespace {

// Of the instances' methods alone: what class operations are added does not matter here.
constinit std::atomic<std::uint64_t> checkedEpoch{~std::uint64_t{0}};
constinit std::atomic<bool> plain{false};
constinit std::uint32_t changesAtLoad = 0;

}  // namespace

void detail::watchNumberMethods() { changesAtLoad = class_getMethodChanges(NSNumber::class_()); }

bool numbersArePlain() noexcept {
  const std::uint64_t epoch = detail::methodEpoch.load(std::memory_order_acquire);
  if (checkedEpoch.load(std::memory_order_acquire) == epoch) [[likely]] {
    return plain.load(std::memory_order_relaxed);
  }
  // Methods are not put back: once changed, the answer stays no.
  const bool now = class_getMethodChanges(NSNumber::class_()) == changesAtLoad;
  plain.store(now, std::memory_order_relaxed);
  checkedEpoch.store(epoch, std::memory_order_release);
  return now;
}

bool readPlainInteger(const ObjectRecord* number, std::uint64_t& bits) noexcept {
  if (number->isa.load(std::memory_order_acquire) != &NSNumber::classPair.cls) return false;
  const detail::Lent<NSNumber> lent(const_cast<ObjectRecord*>(number));  // NOLINT: only read
  const auto& value = fieldsOf<detail::NumberValue>(lent.reference);
  if (value.kind == detail::NumberValue::Kind::real) return false;
  bits = value.bits;
  return true;
}

}  // namespace brindle
