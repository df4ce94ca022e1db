// Per-object recursive monitors. A monitor exists while somebody is inside or waits; two objects
// never share one, since recursive locks that are shared and taken in opposite orders wait for
// ever.
#include <Brindle/Platform/Runtime.h>

#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Striped.h"

namespace brindle {
namespace {

struct Monitor {
  std::recursive_mutex mutex;
  std::size_t users = 0;    // inside or waiting; under the stripe's lock
  std::thread::id owner;    // under the stripe's lock
  std::size_t entered = 0;  // by the owner; under the stripe's lock
};

struct Stripe {
  std::mutex lock;
  std::unordered_map<ObjectRecord*, Monitor*> monitors;
  std::vector<Monitor*> abandoned;  // of objects that ended while a thread was inside
};

detail::Striped<Stripe>& stripes() {
  static auto& all = *new detail::Striped<Stripe>;
  return all;
}

}  // namespace

int objc_sync_enter(const id& object) {
  if (!object) return OBJC_SYNC_SUCCESS;
  Stripe& stripe = stripes().of(object.record());
  Monitor* monitor = nullptr;
  {
    const std::lock_guard guard(stripe.lock);
    Monitor*& place = stripe.monitors[object.record()];
    if (place == nullptr) {
      place = new Monitor;
      object.record()->flags.fetch_or(detail::kFlagMonitor, std::memory_order_acq_rel);
    }
    monitor = place;
    ++monitor->users;
  }
  monitor->mutex.lock();
  const std::lock_guard guard(stripe.lock);
  monitor->owner = std::this_thread::get_id();
  ++monitor->entered;
  return OBJC_SYNC_SUCCESS;
}

int objc_sync_exit(const id& object) {
  if (!object) return OBJC_SYNC_SUCCESS;
  Stripe& stripe = stripes().of(object.record());
  const std::lock_guard guard(stripe.lock);
  auto found = stripe.monitors.find(object.record());
  if (found == stripe.monitors.end()) return OBJC_SYNC_NOT_OWNING_THREAD_ERROR;
  Monitor* monitor = found->second;
  if (monitor->entered == 0 || monitor->owner != std::this_thread::get_id()) {
    return OBJC_SYNC_NOT_OWNING_THREAD_ERROR;
  }
  if (--monitor->entered == 0) monitor->owner = std::thread::id();
  monitor->mutex.unlock();
  if (--monitor->users == 0) {
    stripe.monitors.erase(found);
    delete monitor;
  }
  return OBJC_SYNC_SUCCESS;
}

void detail::forgetMonitor(ObjectRecord* record) noexcept {
  // Not inherited by the next object at this address, which nobody would ever leave.
  Stripe& stripe = stripes().of(record);
  const std::lock_guard guard(stripe.lock);
  auto found = stripe.monitors.find(record);
  if (found == stripe.monitors.end()) return;
  Monitor* monitor = found->second;
  stripe.monitors.erase(found);
  if (monitor->owner != std::this_thread::get_id() || monitor->users != monitor->entered) {
    // Whoever else is inside, or waits, still uses it.
    stripe.abandoned.push_back(monitor);
    return;
  }
  for (; monitor->entered > 0; --monitor->entered) monitor->mutex.unlock();
  delete monitor;
}

}  // namespace brindle
