#include <Brindle/BDSwizzle.h>

#include <mutex>
#include <unordered_map>

#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/MethodSwizzle.h"

namespace brindle {

/// One scoped swizzle, under the code that it installed. Never freed: that code may have been
/// copied to other methods, slots and caches.
struct SwizzleToken::Replacement {
  Class cls;
  SEL selector = nullptr;
  const char* types = nullptr;
  ClosureHandler handler = nullptr;
  IMP previous = nullptr;
  bool ended = false;  // under the lock of all replacements

  std::mutex lock;  // over the body
  std::shared_ptr<const void> body;
};

namespace {

struct Replacements {
  std::mutex lock;
  std::unordered_map<IMP, SwizzleToken::Replacement*> byCode;
};

Replacements& replacements() {
  static auto& all = *new Replacements;
  return all;
}

/// The implementation itself, or what is under it when it has ended.
IMP lastingLocked(IMP imp) {
  const auto& byCode = replacements().byCode;
  for (auto found = byCode.find(imp); found != byCode.end() && found->second->ended;
       found = byCode.find(imp)) {
    imp = found->second->previous;
  }
  return imp;
}

}  // namespace

IMP internal::codeBehind(IMP imp) {
  const std::lock_guard guard(replacements().lock);
  const auto& byCode = replacements().byCode;
  const auto found = byCode.find(imp);
  if (found == byCode.end()) return imp;
  return reinterpret_cast<IMP>(found->second->handler);  // NOLINT(*-reinterpret-cast)
}

void SwizzleToken::end() noexcept {
  Replacement* replacement = std::exchange(replacement_, nullptr);
  if (replacement == nullptr) return;
  const ChangeOrigin origin(__builtin_return_address(0));
  std::shared_ptr<const void> body;  // destroyed last, outside the locks
  const std::lock_guard guard(replacements().lock);
  {
    const std::lock_guard bodyGuard(replacement->lock);
    body.swap(replacement->body);
  }
  replacement->ended = true;
  const Method method = class_firstLevelMethod(replacement->cls, replacement->selector);
  const IMP now = method_getImplementation(method);
  const IMP lasting = lastingLocked(now);
  if (lasting != now) method_setImplementation(method, lasting);
}

namespace detail {

std::shared_ptr<const void> bodyOf(Replacement& replacement) {
  const std::lock_guard guard(replacement.lock);
  return replacement.body;
}

IMP replacedBy(const Replacement& replacement) {
  return replacement.previous != nullptr ? replacement.previous
                                         : forwardingImplementation(replacement.types);
}

SwizzleToken beginReplacement(Class cls, SEL selector, const char* types, const char* wire,
                              ClosureHandler handler, std::shared_ptr<const void> body, IMP* slot) {
  const Method method = class_getInstanceMethod(cls, selector);
  if (method == nullptr) return {};
  const ChangeOrigin origin(__builtin_return_address(0));
  auto* replacement = new Replacement;
  replacement->cls = cls;
  replacement->selector = selector;
  replacement->types = types;
  replacement->handler = handler;
  replacement->body = std::move(body);
  const IMP code = closureImplementation(types, wire, handler, replacement);
  const std::lock_guard guard(replacements().lock);
  replacements().byCode.emplace(code, replacement);
  // An empty method leaves slots alone.
  IMP* place = slot != nullptr && method_getImplementation(method) != nullptr
                   ? slot
                   : &replacement->previous;
  class_swizzleMethodAndStore(cls, selector, code, place);
  replacement->previous = *place;
  return SwizzleToken(replacement);
}

}  // namespace detail
}  // namespace brindle
