// Associated objects: values that anybody hangs on any object.
#include <Brindle/Platform/Runtime.h>

#include <algorithm>
#include <exception>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Brindle/Platform/NSObject.h>

#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Striped.h"

namespace brindle {
namespace {

struct Value {
  const void* key;
  ObjectRecord* object;
  bool owned;
};

struct Stripe {
  std::mutex lock;
  std::unordered_map<ObjectRecord*, std::vector<Value>> values;
};

detail::Striped<Stripe>& stripes() {
  static auto& all = *new detail::Striped<Stripe>;
  return all;
}

id owner(const Value& value) { return value.owned ? adopt<id>(value.object) : id(); }

id take(ObjectRecord* object, const void* key) {
  Stripe& stripe = stripes().of(object);
  const std::lock_guard guard(stripe.lock);
  auto found = stripe.values.find(object);
  if (found == stripe.values.end()) return nullptr;
  auto& values = found->second;
  auto value =
      std::find_if(values.begin(), values.end(), [key](const Value& v) { return v.key == key; });
  if (value == values.end()) return nullptr;
  id old = owner(*value);
  values.erase(value);
  if (values.empty()) {
    stripe.values.erase(found);
    object->flags.fetch_and(~detail::kFlagAssociations, std::memory_order_acq_rel);
  }
  return old;
}

id put(ObjectRecord* object, Value value) {
  Stripe& stripe = stripes().of(object);
  const std::lock_guard guard(stripe.lock);
  auto& values = stripe.values[object];
  object->flags.fetch_or(detail::kFlagAssociations, std::memory_order_acq_rel);
  for (Value& known : values) {
    if (known.key != value.key) continue;
    id old = owner(known);
    known = value;
    return old;
  }
  values.push_back(value);
  return nullptr;
}

std::vector<Value> takeAll(ObjectRecord* object) {
  Stripe& stripe = stripes().of(object);
  const std::lock_guard guard(stripe.lock);
  object->flags.fetch_and(~detail::kFlagAssociations, std::memory_order_acq_rel);
  auto found = stripe.values.find(object);
  if (found == stripe.values.end()) return {};
  std::vector<Value> values = std::move(found->second);
  stripe.values.erase(found);
  return values;
}

}  // namespace

void objc_setAssociatedObject(const id& object, const void* key, const id& value,
                              objc_AssociationPolicy policy) {
  if (!object) return;
  // Whatever is replaced is released here, with no lock held.
  id old;
  if (!value) {
    old = take(object.record(), key);
  } else if (policy == OBJC_ASSOCIATION_ASSIGN) {
    old = put(object.record(), {key, value.record(), false});
  } else {
    const bool copies = (policy & 0xFFU) == OBJC_ASSOCIATION_COPY_NONATOMIC;
    id kept = copies ? send<"copy", id>(value) : value;
    old = put(object.record(), {key, kept.leak(), true});
  }
  old = nullptr;
}

id objc_getAssociatedObject(const id& object, const void* key) {
  if (!object ||
      (object.record()->flags.load(std::memory_order_acquire) & detail::kFlagAssociations) == 0) {
    return nullptr;
  }
  Stripe& stripe = stripes().of(object.record());
  const std::lock_guard guard(stripe.lock);
  auto found = stripe.values.find(object.record());
  if (found == stripe.values.end()) return nullptr;
  for (const Value& value : found->second) {
    if (value.key == key) return borrow<id>(value.object);
  }
  return nullptr;
}

void objc_removeAssociatedObjects(const id& object) {
  if (!object) return;
  std::exception_ptr raised;
  for (const Value& value : takeAll(object.record())) {
    try {
      if (value.owned) detail::release(value.object);
    } catch (...) {
      if (!raised) raised = std::current_exception();
    }
  }
  if (raised) std::rethrow_exception(raised);
}

void detail::forgetAssociations(ObjectRecord* object) noexcept {
  for (const Value& value : takeAll(object)) {
    if (value.owned) releaseInDestructor(value.object);
  }
}

}  // namespace brindle
