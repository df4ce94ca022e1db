// Associated objects: values that anybody hangs on any object.
//
// Those of instances lie in tables beside them, in so many stripes that threads which deal with
// different objects do not meet; a read holds its stripe's lock for one look-up. A class never ends
// and has few values that are read often, so they lie in slots of its own: the slots are found, and
// a value that is immortal is read, without a lock.
#include <Brindle/Platform/Runtime.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include <Brindle/Platform/AssociationPeek.h>
#include <Brindle/Platform/NSObject.h>

#include "Platform/Runtime/Internal/ClassAssociation.h"
#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/SpinLock.h"

namespace brindle {
namespace {

using detail::classAssociation;
using detail::ClassAssociation;
using detail::ClassData;

struct Value {
  const void* key;
  ObjectRecord* object;
  bool owned;
};

id owner(const Value& value) { return value.owned ? adopt<id>(value.object) : id(); }

struct Entry {
  ObjectRecord* object = nullptr;
  std::vector<Value> values;
};

/// The values of some objects, by address: open addressing, with room to spare. Never destroyed:
/// objects end after `main`.
class Table {
 public:
  Entry* find(const ObjectRecord* object) const noexcept {
    if (capacity_ == 0) return nullptr;
    for (std::size_t i = home(object);; i = next(i)) {
      if (entries_[i].object == object) return &entries_[i];
      if (entries_[i].object == nullptr) return nullptr;
    }
  }

  Entry& findOrAdd(ObjectRecord* object) {
    if (Entry* known = find(object)) return *known;
    if ((count_ + 1) * 4 > capacity_ * 3) grow();
    Entry& entry = freeEntry(object);
    entry.object = object;
    ++count_;
    return entry;
  }

  /// Whoever lies behind the gap and belongs before it moves up.
  void remove(Entry& entry) noexcept {
    auto gap = static_cast<std::size_t>(&entry - entries_);
    for (std::size_t i = next(gap); entries_[i].object != nullptr; i = next(i)) {
      if (((i - home(entries_[i].object)) & (capacity_ - 1)) < ((i - gap) & (capacity_ - 1))) {
        continue;
      }
      entries_[gap] = std::move(entries_[i]);
      gap = i;
    }
    entries_[gap] = Entry();
    --count_;
  }

  static std::size_t scrambled(const void* object) noexcept {
    return reinterpret_cast<std::uintptr_t>(object) * 0x9E3779B97F4A7C15U;  // NOLINT
  }

 private:
  [[nodiscard]] std::size_t home(const ObjectRecord* object) const noexcept {
    return (scrambled(object) >> 20U) & (capacity_ - 1);
  }
  [[nodiscard]] std::size_t next(std::size_t i) const noexcept { return (i + 1) & (capacity_ - 1); }

  Entry& freeEntry(const ObjectRecord* object) noexcept {
    std::size_t i = home(object);
    while (entries_[i].object != nullptr) i = next(i);
    return entries_[i];
  }

  void grow() {
    const std::size_t capacity = std::max<std::size_t>(4, capacity_ * 2);
    auto* entries = new Entry[capacity];
    std::swap(entries, entries_);
    const std::size_t before = std::exchange(capacity_, capacity);
    for (std::size_t i = 0; i < before; ++i) {
      if (entries[i].object != nullptr) freeEntry(entries[i].object) = std::move(entries[i]);
    }
    delete[] entries;
  }

  Entry* entries_ = nullptr;
  std::size_t capacity_ = 0;  // none, or a power of two
  std::size_t count_ = 0;
};

struct alignas(64) Stripe {
  detail::SpinLock lock;
  Table table;
};

constexpr unsigned kStripeBits = 10;
constinit Stripe stripes[std::size_t{1} << kStripeBits];

Stripe& stripeOf(const void* object) noexcept {
  return stripes[Table::scrambled(object) >> (64U - kStripeBits)];
}

/// An owned reference; what is immortal is not counted.
id lent(ObjectRecord* object) {
  const std::uint32_t count = object->count.load(std::memory_order_relaxed);
  if (count >= detail::kCountImmortal && count != detail::kCountStackBlock) {
    return adopt<id>(object);
  }
  return borrow<id>(object);
}

std::uint32_t flagsOf(const ObjectRecord* object) noexcept {
  return object->flags.load(std::memory_order_acquire);
}

void setFlag(ObjectRecord* object) noexcept {
  if ((flagsOf(object) & detail::kFlagAssociations) != 0) return;
  object->flags.fetch_or(detail::kFlagAssociations, std::memory_order_acq_rel);
}

void clearFlag(ObjectRecord* object) noexcept {
  object->flags.fetch_and(~detail::kFlagAssociations, std::memory_order_acq_rel);
}

std::vector<Value>::iterator place(std::vector<Value>& values, const void* key) {
  return std::find_if(values.begin(), values.end(), [key](const Value& v) { return v.key == key; });
}

// --- Instances -----------------------------------------------------------------------------------

/// Sets or, with a null object, removes. Answers the owner of what was there.
id exchangeOfInstance(ObjectRecord* object, const Value& value) {
  Stripe& stripe = stripeOf(object);
  const std::lock_guard guard(stripe.lock);
  if (value.object != nullptr) {
    std::vector<Value>& values = stripe.table.findOrAdd(object).values;
    setFlag(object);
    const auto known = place(values, value.key);
    if (known != values.end()) return owner(std::exchange(*known, value));
    values.push_back(value);
    return nullptr;
  }
  Entry* entry = stripe.table.find(object);
  if (entry == nullptr) return nullptr;
  const auto known = place(entry->values, value.key);
  if (known == entry->values.end()) return nullptr;
  id old = owner(*known);
  entry->values.erase(known);
  if (entry->values.empty()) {
    stripe.table.remove(*entry);
    clearFlag(object);
  }
  return old;
}

/// Null for none. With the stripe's lock held.
ObjectRecord* findOfInstance(const Stripe& stripe, const ObjectRecord* object, const void* key) {
  const Entry* entry = stripe.table.find(object);
  if (entry == nullptr) return nullptr;
  for (const Value& value : entry->values) {
    if (value.key == key) return value.object;
  }
  return nullptr;
}

id valueOfInstance(ObjectRecord* object, const void* key) {
  Stripe& stripe = stripeOf(object);
  const std::lock_guard guard(stripe.lock);
  ObjectRecord* value = findOfInstance(stripe, object, key);
  return value != nullptr ? lent(value) : id();
}

std::vector<Value> takeAllOfInstance(ObjectRecord* object) {
  Stripe& stripe = stripeOf(object);
  const std::lock_guard guard(stripe.lock);
  clearFlag(object);
  Entry* entry = stripe.table.find(object);
  if (entry == nullptr) return {};
  std::vector<Value> values = std::move(entry->values);
  stripe.table.remove(*entry);
  return values;
}

// --- Classes -------------------------------------------------------------------------------------

bool isClass(const ObjectRecord* object) noexcept {
  return (object->flags.load(std::memory_order_relaxed) & detail::kFlagClass) != 0;
}

ClassAssociation& addSlotLocked(ClassData& data, const void* key) {
  auto* slot =
      new ClassAssociation{key, data.associations.load(std::memory_order_relaxed), {}, {}, {}};
  data.associations.store(slot, std::memory_order_release);
  return *slot;
}

/// Puts a value, or none, into a slot. Answers the owner of what was there.
id exchangeLocked(ClassAssociation& slot, ObjectRecord* object, bool owned) noexcept {
  id old = owner({slot.key, slot.object, slot.owned});
  slot.object = object;
  slot.owned = owned;
  const bool immortal =
      object != nullptr && object->count.load(std::memory_order_relaxed) >= detail::kCountImmortal;
  void* const locked = object != nullptr ? &slot : nullptr;
  slot.published.store(immortal ? object : locked, std::memory_order_release);
  return old;
}

id exchangeOfClass(ObjectRecord* object, const Value& value) {
  ClassData& data = *detail::realized(static_cast<ClassRecord*>(object));
  const std::lock_guard guard(stripeOf(object).lock);
  ClassAssociation* slot = classAssociation(object, value.key);
  if (slot == nullptr) {
    if (value.object == nullptr) return nullptr;
    slot = &addSlotLocked(data, value.key);
    setFlag(object);
  }
  return exchangeLocked(*slot, value.object, value.owned);
}

id valueOfClass(ObjectRecord* object, const void* key) {
  ClassAssociation* slot = classAssociation(object, key);
  if (slot == nullptr) return nullptr;
  ObjectRecord* value = nullptr;
  // What is immortal is not counted.
  if (slot->tells(value)) return adopt<id>(value);
  const std::lock_guard guard(stripeOf(object).lock);
  return borrow<id>(slot->object);
}

std::vector<Value> takeAllOfClass(ObjectRecord* object) {
  std::vector<Value> values;
  const ClassData& data = *detail::realized(static_cast<ClassRecord*>(object));
  const std::lock_guard guard(stripeOf(object).lock);
  ClassAssociation* slot = data.associations.load(std::memory_order_relaxed);
  for (; slot != nullptr; slot = slot->next) {
    if (slot->owned) values.push_back({slot->key, slot->object, true});
    slot->owned = false;
    exchangeLocked(*slot, nullptr, false);
  }
  return values;
}

id exchange(ObjectRecord* object, const Value& value) {
  return isClass(object) ? exchangeOfClass(object, value) : exchangeOfInstance(object, value);
}

}  // namespace

void objc_setAssociatedObject(const id& object, const void* key, const id& value,
                              objc_AssociationPolicy policy) {
  if (!object) return;
  // Whatever is replaced is released here, with no lock held.
  id old;
  if (!value || policy == OBJC_ASSOCIATION_ASSIGN) {
    old = exchange(object.record(), {key, value.record(), false});
  } else {
    const bool copies = (policy & 0xFFU) == OBJC_ASSOCIATION_COPY_NONATOMIC;
    id kept = copies ? send<"copy", id>(value) : value;
    if (kept) {
      old = exchange(object.record(), {key, kept.record(), true});
      (void)kept.leak();
    } else {
      old = exchange(object.record(), {key, nullptr, false});
    }
  }
  old = nullptr;
}

id objc_getAssociatedObject(const id& object, const void* key) {
  ObjectRecord* record = object.record();
  if (record == nullptr) return nullptr;
  const std::uint32_t flags = flagsOf(record);
  if ((flags & detail::kFlagAssociations) == 0) return nullptr;
  if ((flags & detail::kFlagClass) != 0) return valueOfClass(record, key);
  return valueOfInstance(record, key);
}

bool peekAssociatedObject(ObjectRecord* object, const void* key,
                          bool (*look)(const ObjectRecord*, void*), void* result) {
  if (!hasAssociations(object)) return false;
  const ClassAssociation* slot = nullptr;
  if (isClass(object)) {
    slot = classAssociation(object, key);
    if (slot == nullptr) return false;
    ObjectRecord* value = nullptr;
    if (slot->tells(value)) return value != nullptr && look(value, result);
  }
  Stripe& stripe = stripeOf(object);
  const std::lock_guard guard(stripe.lock);
  const ObjectRecord* value = slot != nullptr ? slot->object : findOfInstance(stripe, object, key);
  return value != nullptr && look(value, result);
}

void objc_removeAssociatedObjects(const id& object) {
  ObjectRecord* record = object.record();
  if (record == nullptr) return;
  std::exception_ptr raised;
  for (const Value& value : isClass(record) ? takeAllOfClass(record) : takeAllOfInstance(record)) {
    try {
      if (value.owned) detail::release(value.object);
    } catch (...) {
      if (!raised) raised = std::current_exception();
    }
  }
  if (raised) std::rethrow_exception(raised);
}

void detail::forgetAssociations(ObjectRecord* object) noexcept {
  for (const Value& value : takeAllOfInstance(object)) {
    if (value.owned) releaseInDestructor(value.object);
  }
}

}  // namespace brindle
