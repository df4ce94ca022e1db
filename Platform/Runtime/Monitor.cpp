// Per-object recursive monitors. A monitor exists while somebody is inside or waits; two objects
// never share one, since recursive locks that are shared and taken in opposite orders wait for
// ever.
#include <Brindle/Platform/Runtime.h>

#include <mutex>
#include <thread>
#include <unordered_map>

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
    if (place == nullptr) place = new Monitor;
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

}  // namespace brindle
