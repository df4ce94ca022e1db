#include <Brindle/Platform/NSInvocation.h>

#include <array>
#include <memory>
#include <vector>

#include <Brindle/Platform/Definition.h>

#include "Platform/Runtime/Internal/Forwarding.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Raise.h"
#include "Platform/Runtime/Internal/SignatureObject.h"

namespace brindle {
namespace {

using detail::SignatureData;

constexpr std::size_t kInlineFrame = 64;
constexpr std::size_t kInlineResult = 32;
constexpr std::size_t kInlineArguments = 8;

/// The values of a message. Small frames lie in the object, larger ones on the heap.
class Fields {
 public:
  Fields() = default;
  Fields(const Fields&) = delete;
  Fields& operator=(const Fields&) = delete;
  ~Fields() { dropResult(); }

  void setSignature(SignatureData* data) {
    data_ = data;
    if (data->frameSize > kInlineFrame) heapFrame_.reset(new std::byte[data->frameSize]());
    if (data->result.size > kInlineResult) heapResult_.reset(new std::byte[data->result.size]());
  }

  [[nodiscard]] SignatureData& data() const { return *data_; }
  [[nodiscard]] void* argument(std::size_t index) {
    return (heapFrame_ ? heapFrame_.get() : frame_.data()) + data_->offsets[index];
  }
  [[nodiscard]] ObjectRecord*& object(std::size_t index) {
    return *static_cast<ObjectRecord**>(argument(index));
  }
  [[nodiscard]] void* result() { return heapResult_ ? heapResult_.get() : result_.data(); }
  [[nodiscard]] bool answersObject() const { return data_ != nullptr && data_->result.wire == "@"; }

  /// An object result is owned.
  void dropResult() {
    if (!answersObject()) return;
    auto& slot = *static_cast<ObjectRecord**>(result());
    const id old(Adopt{}, slot);
    slot = nullptr;
  }

  NSMethodSignature signature;
  bool retained = false;
  std::vector<id> kept;
  std::vector<std::string> keptText;

 private:
  SignatureData* data_ = nullptr;
  alignas(16) std::array<std::byte, kInlineFrame> frame_{};
  alignas(16) std::array<std::byte, kInlineResult> result_{};
  std::unique_ptr<std::byte[]> heapFrame_;
  std::unique_ptr<std::byte[]> heapResult_;
};

Fields& fields(const NSInvocation& self) { return fieldsOf<Fields>(self); }

void checkIndex(const Fields& f, NSUInteger index) {
  if (index < f.data().arguments.size()) return;
  detail::raise("NSInvalidArgumentException",
                "argument index " + std::to_string(index) + " beyond the last, " +
                    std::to_string(f.data().arguments.size() - 1));
}

/// Keeps what one argument points to, from now on.
void keepArgument(Fields& f, std::size_t index) {
  const detail::TypeData& type = f.data().arguments[index];
  if (type.wire == "@") {
    f.kept.push_back(borrow<id>(f.object(index)));
    f.object(index) = f.kept.back().record();  // a stack block became a heap block
  } else if (type.encoding == "*" || type.encoding == "r*") {
    auto& text = *static_cast<const char**>(f.argument(index));
    if (text == nullptr) return;
    f.keptText.emplace_back(text);
    text = f.keptText.back().c_str();
  }
}

void invoke(const NSInvocation& self) {
  Fields& f = fields(self);
  f.dropResult();
  ObjectRecord* target = f.object(0);
  if (target == nullptr) {
    std::memset(f.result(), 0, f.data().result.size);
    return;
  }
  // The target stays alive, and so does this frame, whatever the method releases.
  const id keptTarget = borrow<id>(target);
  const NSInvocation keptSelf = self;
  const SEL selector = *static_cast<SEL*>(f.argument(1));
  std::array<void*, kInlineArguments> few{};
  std::vector<void*> many;
  void** arguments = few.data();
  const std::size_t count = f.data().arguments.size();
  if (count > few.size()) {
    many.resize(count);
    arguments = many.data();
  }
  for (std::size_t i = 0; i < count; ++i) arguments[i] = f.argument(i);
  detail::sendFrame(target, selector, f.data(), arguments, f.result());
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"invocationWithMethodSignature:">(
        [](const Class& self, const NSMethodSignature& signature) -> NSInvocation {
          if (!signature) {
            detail::raise("NSInvalidArgumentException",
                          "an invocation needs a method signature, not nil");
          }
          NSInvocation made = adopt<NSInvocation>(detail::createInstance(self.record(), 0));
          Fields& f = fields(made);
          f.signature = signature;
          f.setSignature(detail::dataOfSignature(signature));
          return made;
        }),
    method<"methodSignature">([](const NSInvocation& self) { return fields(self).signature; }),
    method<"target">([](const NSInvocation& self) { return borrow<id>(fields(self).object(0)); }),
    method<"setTarget:">([](const NSInvocation& self, const id& target) {
      Fields& f = fields(self);
      if (f.retained) f.kept.push_back(target);
      f.object(0) = target.record();
    }),
    method<"selector">([](const NSInvocation& self) -> SEL {
      return *static_cast<SEL*>(fields(self).argument(1));
    }),
    method<"setSelector:">([](const NSInvocation& self, SEL selector) {
      *static_cast<SEL*>(fields(self).argument(1)) = selector;
    }),
    method<"setArgument:atIndex:">([](const NSInvocation& self, void* bytes, NSUInteger index) {
      Fields& f = fields(self);
      checkIndex(f, index);
      std::memcpy(f.argument(index), bytes, f.data().arguments[index].size);
      if (f.retained) keepArgument(f, index);
    }),
    method<"getArgument:atIndex:">([](const NSInvocation& self, void* bytes, NSUInteger index) {
      Fields& f = fields(self);
      checkIndex(f, index);
      std::memcpy(bytes, f.argument(index), f.data().arguments[index].size);
    }),
    method<"setReturnValue:">([](const NSInvocation& self, void* bytes) {
      Fields& f = fields(self);
      if (f.answersObject()) {
        ObjectRecord* object = detail::retained(*static_cast<ObjectRecord**>(bytes));
        f.dropResult();
        *static_cast<ObjectRecord**>(f.result()) = object;
      } else {
        std::memcpy(f.result(), bytes, f.data().result.size);
      }
    }),
    method<"getReturnValue:">([](const NSInvocation& self, void* bytes) {
      Fields& f = fields(self);
      std::memcpy(bytes, f.result(), f.data().result.size);
    }),
    method<"retainArguments">([](const NSInvocation& self) {
      Fields& f = fields(self);
      if (f.retained) return;
      f.retained = true;
      for (std::size_t i = 0; i < f.data().arguments.size(); ++i) keepArgument(f, i);
    }),
    method<"argumentsRetained">([](const NSInvocation& self) { return fields(self).retained; }),
    method<"invoke">([](const NSInvocation& self) { invoke(self); }),
    method<"invokeWithTarget:">([](const NSInvocation& self, const id& target) {
      self->setTarget(target);
      self->invoke();
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSInvocation", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSInvocation> NSInvocation::classPair{kDefinition};

}  // namespace brindle
