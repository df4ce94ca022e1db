#include <Brindle/Platform/Weak.h>

#include <mutex>
#include <unordered_map>

#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/SpinLock.h"
#include "Platform/Runtime/Internal/Striped.h"
#include "Platform/Runtime/Internal/WeakCells.h"

namespace brindle::detail {

/// Shared by all weak references to one object. The object's table entry owns it too.
struct WeakCell {
  std::atomic<std::uint32_t> owners;
  const std::uint32_t stripe;
  std::atomic<ObjectRecord*> object;  // changed under the stripe's lock
};

namespace {

struct Stripe {
  SpinLock lock;
  std::unordered_map<ObjectRecord*, WeakCell*> cells;
};

Striped<Stripe>& stripes() {
  static auto& all = *new Striped<Stripe>;
  return all;
}

bool ended(const ObjectRecord* record) {
  const std::uint32_t count = record->count.load(std::memory_order_acquire);
  return count == 0 || (count >= kCountDying && count < kCountImmortal);
}

/// One owner more, unless the last one is gone.
bool tryRetain(ObjectRecord* record) {
  std::uint32_t count = record->count.load(std::memory_order_acquire);
  while (count != 0 && count < kCountNearLimit) {
    if (record->count.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel))
      return true;
  }
  return count >= kCountImmortal;
}

}  // namespace

WeakCell* weakCellOf(ObjectRecord* record) {
  if (record == nullptr || record->count.load() == kCountStackBlock) return nullptr;
  const std::uint32_t number = stripeOf(record);
  Stripe& stripe = stripes()[number];
  const std::lock_guard guard(stripe.lock);
  if (ended(record)) return nullptr;
  auto [place, added] = stripe.cells.try_emplace(record, nullptr);
  if (added) {
    place->second = new WeakCell{1, number, record};
    record->flags.fetch_or(kFlagWeak, std::memory_order_acq_rel);
  }
  return retainWeakCell(place->second);
}

WeakCell* retainWeakCell(WeakCell* cell) noexcept {
  if (cell != nullptr) cell->owners.fetch_add(1, std::memory_order_relaxed);
  return cell;
}

void releaseWeakCell(WeakCell* cell) noexcept {
  if (cell != nullptr && cell->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) delete cell;
}

ObjectRecord* loadWeakCell(WeakCell* cell) noexcept {
  if (cell == nullptr) return nullptr;
  Stripe& stripe = stripes()[cell->stripe];
  const std::lock_guard guard(stripe.lock);
  ObjectRecord* object = cell->object.load(std::memory_order_relaxed);
  return object != nullptr && tryRetain(object) ? object : nullptr;
}

bool weakCellIsOf(const WeakCell* cell, const ObjectRecord* record) noexcept {
  return cell != nullptr && cell->object.load(std::memory_order_acquire) == record;
}

void clearWeakReferences(ObjectRecord* record) {
  Stripe& stripe = stripes()[stripeOf(record)];
  WeakCell* cell = nullptr;
  {
    const std::lock_guard guard(stripe.lock);
    auto found = stripe.cells.find(record);
    if (found == stripe.cells.end()) return;
    cell = found->second;
    cell->object.store(nullptr, std::memory_order_release);
    stripe.cells.erase(found);
  }
  releaseWeakCell(cell);
}

}  // namespace brindle::detail
