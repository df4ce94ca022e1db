// Swizzles with types, and swizzles that end.
//
//   ImplementationSlot<NSString(Task)> previous;                  // static
//   swizzle(Task::class_(), selector<"line">(), [](const Task& self, Cmd cmd) -> NSString {
//     return previous(self, cmd)->uppercaseString();
//   }, previous);
//
// A slot belongs to one swizzle of one method: two that share one would call the same code.
#pragma once

#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/Closure.h>

namespace brindle {

/// Where a replacement finds the implementation that it replaced: the types of result, receiver and
/// arguments are those of the method. Lives at least as long as the replacement may run, so most
/// are static. Read on any thread.
template <class Signature>
class ImplementationSlot;

template <class R, class Self, class... A>
class ImplementationSlot<R(Self, A...)> {
 public:
  constexpr ImplementationSlot() noexcept = default;
  ImplementationSlot(const ImplementationSlot&) = delete;
  ImplementationSlot& operator=(const ImplementationSlot&) = delete;

  /// Runs the previous implementation with the selector that the replacement was called with.
  /// Answers zero or nil as long as the slot is empty.
  R operator()(const Self& self, SEL selector, const std::remove_cvref_t<A>&... arguments) const {
    const IMP imp = implementation();
    if (imp == nullptr) return detail::nilResult<R>();
    return callImplementation<R>(imp, self, selector, arguments...);
  }
  R operator()(const Self& self, Cmd cmd, const std::remove_cvref_t<A>&... arguments) const {
    return (*this)(self, cmd.selector, arguments...);
  }

  [[nodiscard]] IMP implementation() const noexcept {
    return __atomic_load_n(&implementation_, __ATOMIC_ACQUIRE);
  }
  explicit operator bool() const noexcept { return implementation() != nullptr; }

  /// For functions that fill a slot without types.
  IMP* address() noexcept { return &implementation_; }

  static constexpr std::string_view wire() { return detail::wireTypes<R, A...>.view(); }

 private:
  IMP implementation_ = nullptr;
};

/// A swizzle that lasts as long as this token. Answered by `scopedSwizzle`.
///
/// Tokens end in any order, also with other swizzles of the method made in between: the replacement
/// is taken out of the chain, or, where another implementation has kept it, passes its messages on
/// to what it had replaced. A message that runs at that moment keeps the body until it is done.
class [[nodiscard]] SwizzleToken {
 public:
  constexpr SwizzleToken() noexcept = default;
  SwizzleToken(SwizzleToken&& other) noexcept
      : replacement_(std::exchange(other.replacement_, nullptr)) {}
  SwizzleToken& operator=(SwizzleToken&& other) noexcept {
    std::swap(replacement_, other.replacement_);
    if (this != &other) other.end();
    return *this;
  }
  ~SwizzleToken() { end(); }

  /// Ends the swizzle now. Once is enough.
  BRINDLE_EXPORT void end() noexcept;
  /// Whether there is a swizzle that lasts. False where the class had no such method.
  explicit operator bool() const noexcept { return replacement_ != nullptr; }

  struct Replacement;
  explicit SwizzleToken(Replacement* replacement) noexcept : replacement_(replacement) {}

 private:
  Replacement* replacement_ = nullptr;
};

namespace detail {

using Replacement = SwizzleToken::Replacement;

/// The body of a replacement that has not ended, else null.
BRINDLE_EXPORT std::shared_ptr<const void> bodyOf(Replacement& replacement);
/// What a replacement that has ended passes its messages on to.
BRINDLE_EXPORT IMP replacedBy(const Replacement& replacement);
BRINDLE_EXPORT SwizzleToken beginReplacement(Class cls, SEL selector, const char* types,
                                             const char* wire, ClosureHandler handler,
                                             std::shared_ptr<const void> body, IMP* slot);

/// Serves the messages to a replacement: by its body, which may capture, or, once it has ended, by
/// what was there before.
template <class F, class Type>
struct ReplacementThunk;

template <class F, class R, class Self, bool wantsCmd, class... A>
struct ReplacementServer {
  static constexpr const char* types = methodTypes<R, std::remove_cvref_t<A>...>.c_str();
  static constexpr const char* wire = wireTypes<R, std::remove_cvref_t<A>...>.c_str();
  static_assert((true && ... && !VariadicTail<std::remove_cvref_t<A>>),
                "a variadic method has no scoped swizzle");

  static Wire<R> answer(Replacement& replacement, ObjectRecord* self, SEL selector, Wire<A>... a) {
    const auto body = std::static_pointer_cast<const F>(bodyOf(replacement));
    if (!body) {
      return typedImplementation<Wire<R>, Wire<A>...>(replacedBy(replacement))(self, selector,
                                                                               a...);
    }
    if constexpr (wantsCmd) {
      return wireResult<R>(*body, Receive<Self>{self}.get(), Cmd{selector}, Receive<A>{a}.get()...);
    } else {
      return wireResult<R>(*body, Receive<Self>{self}.get(), Receive<A>{a}.get()...);
    }
  }

  static void serve(void* context, void** arguments, void* result) {
    auto& replacement = *static_cast<Replacement*>(context);
    auto* self = *static_cast<ObjectRecord**>(arguments[0]);
    const SEL selector = *static_cast<SEL*>(arguments[1]);
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      if constexpr (std::is_void_v<R>) {
        answer(replacement, self, selector, *static_cast<Wire<A>*>(arguments[I + 2])...);
      } else {
        const Wire<R> wired =
            answer(replacement, self, selector, *static_cast<Wire<A>*>(arguments[I + 2])...);
        std::memcpy(result, &wired, sizeof wired);
      }
    }
    (std::index_sequence_for<A...>{});
  }
};

template <class F, class R, class Self, class... A>
struct ReplacementThunk<F, R (F::*)(Self, A...) const>
    : ReplacementServer<F, std::remove_cvref_t<R>, Self, false, A...> {};
template <class F, class R, class Self, class... A>
struct ReplacementThunk<F, R (F::*)(Self, Cmd, A...) const>
    : ReplacementServer<F, std::remove_cvref_t<R>, Self, true, A...> {};

template <class F>
using ReplacementOf = ReplacementThunk<F, decltype(&F::operator())>;

template <class F, class S>
constexpr void checkSlot() {
  static_assert(std::string_view(ReplacementOf<F>::wire) == ImplementationSlot<S>::wire(),
                "the replacement has other types than its slot");
}

template <class F>
SwizzleToken scoped(Class cls, SEL selector, F body, IMP* slot) {
  using Thunk = ReplacementOf<F>;
  return beginReplacement(cls, selector, Thunk::types, Thunk::wire, &Thunk::serve,
                          std::make_shared<const F>(static_cast<F&&>(body)), slot);
}

}  // namespace detail

/// `swizzle:with:store:` with a typed slot. False when there is no such method.
template <detail::MethodBody F, class S>
bool swizzle(Class cls, SEL selector, F body, ImplementationSlot<S>& slot) {
  detail::checkSlot<F, S>();
  return swizzle(cls, selector, body, slot.address());
}
/// `swizzleClassMethod:with:store:` with a typed slot.
template <detail::MethodBody F, class S>
bool swizzleClassMethod(Class cls, SEL selector, F body, ImplementationSlot<S>& slot) {
  detail::checkSlot<F, S>();
  return swizzleClassMethod(cls, selector, body, slot.address());
}

/// Replaces a method, own or inherited, until the token ends; for class methods, give the
/// meta-class. The body is a lambda written as in a table of methods, and may capture. A class that
/// inherited the method keeps an entry of its own. Every call leaves some memory behind for ever,
/// since nobody can know who still holds its code: meant for tests and for swizzles that last, not
/// for a loop. An empty token when there is no such method.
template <detail::MethodBody F>
SwizzleToken scopedSwizzle(Class cls, SEL selector, F body) {
  return detail::scoped(cls, selector, static_cast<F&&>(body), nullptr);
}
/// The same with a slot for the previous implementation. It has to outlive the token, and the calls
/// under way on other threads: where there are such, the body captures a shared pointer to it.
template <detail::MethodBody F, class S>
SwizzleToken scopedSwizzle(Class cls, SEL selector, F body, ImplementationSlot<S>& slot) {
  detail::checkSlot<F, S>();
  return detail::scoped(cls, selector, static_cast<F&&>(body), slot.address());
}

}  // namespace brindle
