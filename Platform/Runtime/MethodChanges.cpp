#include <Brindle/Platform/MethodChanges.h>

#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle {
namespace {

constexpr std::size_t kKeptChanges = 64;

constinit thread_local const void* origin = nullptr;

}  // namespace

namespace detail {

constinit std::atomic<std::uint64_t> methodEpoch{0};

void noteChangeLocked(ClassData* data) noexcept {
  ++data->changes;
  methodEpoch.fetch_add(1, std::memory_order_release);
}

void noteChangeLocked(ClassData* data, MethodChange change, const void* from) {
  change.when = std::chrono::system_clock::now();
  change.from = origin != nullptr ? origin : from;
  if (data->latestChanges.size() == kKeptChanges) data->latestChanges.pop_front();
  data->latestChanges.push_back(change);
  noteChangeLocked(data);
}

}  // namespace detail

ChangeOrigin::ChangeOrigin(const void* address) noexcept : outermost_(origin == nullptr) {
  if (outermost_) origin = address;
}

ChangeOrigin::~ChangeOrigin() {
  if (outermost_) origin = nullptr;
}

std::uint32_t class_getMethodChanges(Class cls) {
  if (!cls) return 0;
  const std::lock_guard guard(detail::runtimeLock());
  return detail::realizedLocked(cls.record())->changes;
}

std::vector<MethodChange> class_copyMethodChanges(Class cls) {
  if (!cls) return {};
  const std::lock_guard guard(detail::runtimeLock());
  const auto& changes = detail::realizedLocked(cls.record())->latestChanges;
  return {changes.begin(), changes.end()};
}

}  // namespace brindle
