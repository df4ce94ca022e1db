#include <Brindle/Platform/PlainNumber.h>

#include <atomic>

#include <Brindle/Platform/AssociationPeek.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/NumberKind.h"
#include "Platform/Foundation/Internal/PlainNumberWatch.h"
#include "Platform/Runtime/Internal/ClassAssociation.h"

namespace brindle {
namespace {

// Of the instances' methods alone: what class operations are added does not matter here.
constinit std::atomic<std::uint64_t> checkedEpoch{~std::uint64_t{0}};
constinit std::atomic<bool> plain{true};
constinit std::uint32_t changesAtLoad = 0;

}  // namespace

void detail::watchNumberMethods() { changesAtLoad = class_getMethodChanges(NSNumber::class_()); }

bool numbersArePlain() noexcept {
  const std::uint64_t epoch = detail::methodEpoch.load(std::memory_order_acquire);
  if (checkedEpoch.load(std::memory_order_acquire) == epoch) [[likely]] {
    return plain.load(std::memory_order_relaxed);
  }
  // Methods are not put back: once changed, the answer stays no, also where a thread that looked
  // before the change comes late.
  const bool now = class_getMethodChanges(NSNumber::class_()) == changesAtLoad;
  if (!now) plain.store(false, std::memory_order_relaxed);
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

bool readAssociatedInteger(ObjectRecord* object, const void* key, std::uint64_t& bits) noexcept {
  if (!hasAssociations(object) || !numbersArePlain()) return false;
  // A class's at once, as most are.
  if ((object->flags.load(std::memory_order_relaxed) & detail::kFlagClass) != 0) {
    const detail::ClassAssociation* slot = detail::classAssociation(object, key);
    ObjectRecord* value = nullptr;
    if (slot != nullptr && slot->tells(value)) {
      return value != nullptr && readPlainInteger(value, bits);
    }
  }
  return peekAssociatedObject(
      object, key,
      [](const ObjectRecord* value, void* result) {
        return readPlainInteger(value, *static_cast<std::uint64_t*>(result));
      },
      &bits);
}

}  // namespace brindle
