#include <Brindle/Platform/Selector.h>

#include <cstring>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace brindle {
namespace detail {
constinit const SelectorRecord kUnregisteredSelector{"<unregistered selector>", 0};
}

namespace {

// Selectors live for ever, and so do the texts that are their keys.
struct Register {
  std::shared_mutex lock;
  std::unordered_map<std::string_view, SEL> selectors;
};

Register& selectorRegister() {
  static auto& selectors = *new Register;
  return selectors;
}

}  // namespace

SEL sel_findName(std::string_view name) {
  Register& r = selectorRegister();
  const std::shared_lock guard(r.lock);
  auto found = r.selectors.find(name);
  return found == r.selectors.end() ? nullptr : found->second;
}

SEL sel_registerName(const char* name) {
  if (name == nullptr) return nullptr;
  if (SEL known = sel_findName(name)) return known;
  Register& r = selectorRegister();
  const std::unique_lock guard(r.lock);
  auto found = r.selectors.find(name);
  if (found != r.selectors.end()) return found->second;
  const std::size_t size = std::strlen(name) + 1;
  char* text = static_cast<char*>(std::memcpy(new char[size], name, size));
  SEL selector = new SelectorRecord{text, 0};
  r.selectors.emplace(std::string_view(text, size - 1), selector);
  return selector;
}

SEL sel_getUid(const char* name) { return sel_registerName(name); }

const char* sel_getName(SEL selector) {
  return selector != nullptr ? selector->name : "<null selector>";
}

SEL detail::registerSlot(std::atomic<SEL>& slot, const char* name) {
  SEL selector = sel_registerName(name);
  slot.store(selector, std::memory_order_release);
  return selector;
}

}  // namespace brindle
