// Blocks: lambdas that are objects.
//
//   Weak<NSObject> weak = object;                  // a block that is kept must not keep its keeper
//   Block<void(const id&)> block = [weak](const id& x) { ... };
//   block(x);
//
// A `Block` is retained, stored, associated and performed like any object. An operation that takes
// a block declares `const BlockArg<R(A...)>&`: a lambda passed there becomes a block on the
// caller's stack, without an allocation, and whoever keeps it owns a heap copy of it. A block is as
// safe for threads as what it captures.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Passing.h>

namespace brindle {
namespace detail {

/// What a kind of lambda needs to live in a block.
struct BlockOperations {
  std::size_t size;
  std::size_t alignment;
  void (*copy)(void* to, const void* from);  // null when the lambda can only be moved
  void (*destroy)(void*);
  const char* types;
  const char* wire;
};

using BlockInvoke = void (*)();

struct BlockRecord : ObjectRecord {
  BlockInvoke invoke;
  const BlockOperations* operations;
  void* lambda;

  constexpr BlockRecord(ClassRecord* cls, std::uint32_t owners, BlockInvoke code,
                        const BlockOperations* ops, void* captured) noexcept
      : ObjectRecord(cls, owners, 0), invoke(code), operations(ops), lambda(captured) {}
};

/// Memory for a heap block with room for its lambda at `lambda`; one owner.
BRINDLE_PLATFORM_EXPORT BlockRecord* allocateBlock(BlockInvoke invoke,
                                                   const BlockOperations* operations);
BRINDLE_PLATFORM_EXPORT void freeUnfinishedBlock(BlockRecord* block) noexcept;
[[noreturn]] BRINDLE_PLATFORM_EXPORT void raiseNilBlock();
[[noreturn]] BRINDLE_PLATFORM_EXPORT void stopForWrongBlockTypes(const char* wanted,
                                                                 const char* found);
BRINDLE_PLATFORM_EXPORT ClassRecord* blockClassRecord() noexcept;

template <class R, class... A>
using BlockFunction = R (*)(ObjectRecord*, A...);

template <class Lambda, class R, class... A>
struct BlockCode {
  static Wire<R> invoke(ObjectRecord* block, Wire<A>... a) {
    auto& lambda = *static_cast<Lambda*>(static_cast<BlockRecord*>(block)->lambda);
    if constexpr (std::is_void_v<R>) {
      lambda(Receive<A>{a}.get()...);
    } else {
      return wireResult<R>(
          [&lambda](auto&&... x) -> R { return lambda(static_cast<decltype(x)>(x)...); },
          Receive<A>{a}.get()...);
    }
  }
  static constexpr auto copier() -> void (*)(void*, const void*) {
    if constexpr (std::is_copy_constructible_v<Lambda>) {
      return
          [](void* to, const void* from) { ::new (to) Lambda(*static_cast<const Lambda*>(from)); };
    } else {
      return nullptr;
    }
  }
  static_assert(alignof(Lambda) <= alignof(std::max_align_t),
                "a block's lambda may not capture anything aligned beyond std::max_align_t");
  static constexpr BlockOperations operations{
      sizeof(Lambda),
      alignof(Lambda),
      copier(),
      [](void* lambda) { static_cast<Lambda*>(lambda)->~Lambda(); },
      blockTypes<R, std::remove_cvref_t<A>...>.c_str(),
      wireTypes<R, std::remove_cvref_t<A>...>.c_str()};
  static BlockInvoke code() {
    return reinterpret_cast<BlockInvoke>(&invoke);  // NOLINT(*-reinterpret-cast)
  }
};

// Objects arrive in a block's lambda as in a method, lent.
template <class A>
using BlockParameter = std::conditional_t<Reference<A>, const std::remove_cvref_t<A>&, A>;

template <class Lambda, class R, class... A>
using BlockCodeFor = BlockCode<Lambda, std::remove_cvref_t<R>, BlockParameter<A>...>;

template <class R, class... A>
R callBlock(ObjectRecord* record, BlockParameter<A>... a) {
  if (record == nullptr) [[unlikely]]
    raiseNilBlock();
  auto* block = static_cast<BlockRecord*>(record);
#if BRINDLE_ASSERTIONS
  const char* wanted = wireTypes<R, std::remove_cvref_t<A>...>.c_str();
  const char* found = block->operations->wire;
  for (std::size_t i = 0;; ++i) {
    if (wanted[i] != found[i]) stopForWrongBlockTypes(wanted, found);
    if (wanted[i] == '\0') break;
  }
#endif
  auto function = reinterpret_cast<BlockFunction<Wire<R>, Wire<A>...>>(block->invoke);  // NOLINT
  if constexpr (std::is_void_v<R>) {
    function(record, Passed<std::remove_cvref_t<A>>(a).wire()...);
  } else {
    return fromWire<R>(function(record, Passed<std::remove_cvref_t<A>>(a).wire()...));
  }
}

/// Keeps a heap block alive while it runs. A block on the stack lives as long as its caller.
class RunningBlock {
 public:
  explicit RunningBlock(ObjectRecord* record)
      : kept_(record == nullptr || record->count.load(std::memory_order_relaxed) == kCountStackBlock
                  ? nullptr
                  : retained(record)) {}
  RunningBlock(const RunningBlock&) = delete;
  RunningBlock& operator=(const RunningBlock&) = delete;
  ~RunningBlock() { releaseInDestructor(kept_); }

 private:
  ObjectRecord* kept_;
};

}  // namespace detail

/// The class of blocks; a block's own type is `Block<R(A...)>`.
class NSBlock : public Interface<NSBlock, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSBlock> classPair;
};

template <class Signature>
class Block;

/// A reference to a block that takes A... and answers R. Objects may be written as `id` or
/// `const id&`; they arrive lent. Calling a nil block raises NSInvalidArgumentException.
template <class R, class... A>
class Block<R(A...)> : public NSBlock {
 public:
  using BlockSignature = R(A...);

  constexpr Block() noexcept = default;
  constexpr Block(std::nullptr_t) noexcept {}  // NOLINT: nil is nullptr
  constexpr Block(Adopt, ObjectRecord* record) noexcept : NSBlock(Adopt{}, record) {}

  /// The lambda as a block on the heap. A copyable or a move-only lambda.
  template <class Lambda>
  requires(!Reference<Lambda> &&
           std::is_invocable_v<std::decay_t<Lambda>&, detail::BlockParameter<A>...>)
      Block(Lambda&& lambda) {  // NOLINT: a lambda is a block
    using L = std::decay_t<Lambda>;
    using Code = detail::BlockCodeFor<L, R, A...>;
    detail::BlockRecord* record = detail::allocateBlock(Code::code(), &Code::operations);
    try {
      ::new (record->lambda) L(static_cast<Lambda&&>(lambda));
    } catch (...) {
      detail::freeUnfinishedBlock(record);
      throw;
    }
    *static_cast<id*>(this) = id(Adopt{}, record);
  }

  /// Runs the block, which stays alive meanwhile.
  R operator()(detail::BlockParameter<A>... a) const {
    const detail::RunningBlock running(record());
    return detail::callBlock<R, A...>(record(), a...);
  }
  const Block* operator->() const noexcept { return this; }
};

/// A block parameter: a `Block`, nil, or a lambda, which becomes a block on the caller's stack for
/// the call. For parameters only: a variable of this type would outlive its lambda.
template <class Signature>
class BlockArg;

template <class R, class... A>
class BlockArg<R(A...)> {
 public:
  using BlockSignature = R(A...);

  BlockArg(std::nullptr_t) noexcept : record_(nullptr) {}                      // NOLINT: nil
  BlockArg(const Block<R(A...)>& block) noexcept : record_(block.record()) {}  // NOLINT

  template <class Lambda>
  requires(!Reference<Lambda> && !std::is_same_v<std::decay_t<Lambda>, BlockArg> &&
           std::is_invocable_v<std::decay_t<Lambda>&, detail::BlockParameter<A>...>)
#if defined(__clang__)
      BlockArg([[clang::lifetimebound]] Lambda&& lambda)
  noexcept  // NOLINT: a lambda is a block
#else
      BlockArg(Lambda&& lambda)
  noexcept  // NOLINT: a lambda is a block
#endif
      : stack_(detail::blockClassRecord(), detail::kCountStackBlock,
               detail::BlockCodeFor<std::decay_t<Lambda>, R, A...>::code(),
               &detail::BlockCodeFor<std::decay_t<Lambda>, R, A...>::operations,
               const_cast<void*>(static_cast<const volatile void*>(&lambda))),  // NOLINT
        record_(nullptr) {
    record_ = &stack_;
  }
  BlockArg(const BlockArg&) = delete;
  BlockArg& operator=(const BlockArg&) = delete;
  ~BlockArg() = default;

  /// The block, lent for the call.
  [[nodiscard]] ObjectRecord* record() const noexcept { return record_; }
  explicit operator bool() const noexcept { return record_ != nullptr; }

  /// Runs the block; a nil one raises.
  R operator()(detail::BlockParameter<A>... a) const {
    const detail::RunningBlock running(record_);
    return detail::callBlock<R, A...>(record_, a...);
  }
  /// The block as an owned reference: a heap copy of a stack block.
  operator Block<R(A...)>() const { return borrow<Block<R(A...)>>(record_); }  // NOLINT

 private:
  detail::BlockRecord stack_{nullptr, 0, nullptr, nullptr, nullptr};
  ObjectRecord* record_;
};

namespace detail {

template <class Signature>
struct TypeTraits<BlockArg<Signature>> {
  using Wire = ObjectRecord*;
  static constexpr FixedString encoding{"@?"};
  static constexpr FixedString wireCode{"@"};
  static constexpr std::size_t frameSize = 8;
};

template <class Signature>
class Passed<BlockArg<Signature>> {
 public:
  explicit Passed(const BlockArg<Signature>& block) noexcept : record_(block.record()) {}
  ObjectRecord* wire() const noexcept { return record_; }

 private:
  ObjectRecord* record_;
};

}  // namespace detail

}  // namespace brindle
