#include <Brindle/Platform/NSInvocation.h>

#include <array>
#include <cstring>
#include <memory>
#include <utility>
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

/// What an invocation that retains its arguments owns for one of them.
struct Kept {
  id object;
  std::unique_ptr<char[]> text;
};

/// The values of a message. Small frames lie in the object, larger ones on the heap.
class Fields {
 public:
  Fields() noexcept {}  // NOLINT(*-use-equals-default): that one would zero everything twice
  Fields(const Fields&) = delete;
  Fields& operator=(const Fields&) = delete;
  ~Fields() { takeResult(); }

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

  /// The object result, which is owned, given up; nil when there is none.
  id takeResult() {
    if (!answersObject()) return nullptr;
    auto& slot = *static_cast<ObjectRecord**>(result());
    return id(Adopt{}, std::exchange(slot, nullptr));
  }

  NSMethodSignature signature;
  std::unique_ptr<Kept[]> kept;  // one for each argument, once they are retained

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
  detail::raise("NSInvalidArgumentException", "argument index " + std::to_string(index) +
                                                  " beyond the last, " +
                                                  std::to_string(f.data().arguments.size() - 1));
}

bool isText(const std::string& encoding) {
  return encoding.back() == '*' && encoding.find('^') == std::string::npos;
}

/// Keeps what one argument points to, in place of what was kept for it before.
void keepArgument(Fields& f, std::size_t index) {
  const detail::TypeData& type = f.data().arguments[index];
  Kept& kept = f.kept[index];
  if (type.wire == "@") {
    id object = borrow<id>(f.object(index));
    f.object(index) = object.record();  // a stack block became a heap block
    kept.object = std::move(object);
  } else if (isText(type.encoding)) {
    auto& text = *static_cast<const char**>(f.argument(index));
    std::unique_ptr<char[]> copy;
    if (text != nullptr) {
      const std::size_t size = std::strlen(text) + 1;
      copy = std::make_unique<char[]>(size);
      text = static_cast<char*>(std::memcpy(copy.get(), text, size));
    }
    kept.text = std::move(copy);
  }
}

void setArgument(Fields& f, const void* bytes, std::size_t index) {
  std::memcpy(f.argument(index), bytes, f.data().arguments[index].size);
  if (f.kept) keepArgument(f, index);
}

void invoke(const NSInvocation& self) {
  Fields& f = fields(self);
  ObjectRecord* target = f.object(0);
  if (target == nullptr) {
    id old = f.takeResult();
    std::memset(f.result(), 0, f.data().result.size);
    old = nullptr;
    return;
  }
  // The target stays alive, and so does this frame, whatever the method releases.
  const id keptTarget = borrow<id>(target);
  const NSInvocation keptSelf = self;
  const SEL selector = *static_cast<SEL*>(f.argument(1));
  std::array<void*, kInlineArguments> few;  // NOLINT(*-member-init): filled below
  std::vector<void*> many;
  void** arguments = few.data();
  const std::size_t count = f.data().arguments.size();
  if (count > few.size()) {
    many.resize(count);
    arguments = many.data();
  }
  for (std::size_t i = 0; i < count; ++i) arguments[i] = f.argument(i);
  if (!f.answersObject()) {
    detail::sendFrame(target, selector, f.data(), arguments, f.result());
    return;
  }
  ObjectRecord* answer = nullptr;
  detail::sendFrame(target, selector, f.data(), arguments, &answer);
  id old = f.takeResult();
  *static_cast<ObjectRecord**>(f.result()) = answer;
  old = nullptr;
}

NSInvocation makeInvocation(ClassRecord* cls, const NSMethodSignature& signature) {
  NSInvocation made = adopt<NSInvocation>(detail::createInstance(cls, 0));
  Fields& f = fields(made);
  f.signature = signature;
  f.setSignature(detail::dataOfSignature(signature));
  return made;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"allocWithZone:">([](const Class&, NSZone*) -> id {
      detail::raise("NSInvalidArgumentException",
                    "an invocation is made by invocationWithMethodSignature:, not by alloc");
    }),
    classMethod<"invocationWithMethodSignature:">(
        [](const Class& self, const NSMethodSignature& signature) -> NSInvocation {
          if (!signature) {
            detail::raise("NSInvalidArgumentException",
                          "an invocation needs a method signature, not nil");
          }
          return makeInvocation(self.record(), signature);
        }),
    method<"methodSignature">([](const NSInvocation& self) { return fields(self).signature; }),
    method<"target">([](const NSInvocation& self) { return borrow<id>(fields(self).object(0)); }),
    method<"setTarget:">([](const NSInvocation& self, const id& target) {
      ObjectRecord* record = target.record();
      setArgument(fields(self), &record, 0);
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
      setArgument(f, bytes, index);
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
        id old = f.takeResult();
        *static_cast<ObjectRecord**>(f.result()) = object;
        old = nullptr;
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
      if (f.kept) return;
      f.kept = std::make_unique<Kept[]>(f.data().arguments.size());
      for (std::size_t i = 0; i < f.data().arguments.size(); ++i) keepArgument(f, i);
    }),
    method<"argumentsRetained">(
        [](const NSInvocation& self) { return fields(self).kept != nullptr; }),
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

void NSInvocation::checkType(NSInteger place, const char* wire, const char* encoding) const {
  if (*this == nullptr) return;
  const Fields& f = fields(*this);
  const bool isResult = place == kResult;
  if (!isResult) checkIndex(f, static_cast<NSUInteger>(place));
  const detail::TypeData& type =
      isResult ? f.data().result : f.data().arguments[static_cast<std::size_t>(place)];
  if (type.wire == wire) return;
  detail::raise("NSInvalidArgumentException",
                (isResult ? std::string("the result") : "argument " + std::to_string(place)) +
                    " of " + sel_getName(selector()) + " is " + type.encoding + ", not " +
                    encoding);
}

namespace detail {

NSInvocation newInvocation(const NSMethodSignature& signature, ObjectRecord* receiver,
                           SEL selector) {
  NSInvocation made = makeInvocation(&NSInvocation::classPair.cls, signature);
  Fields& f = fields(made);
  f.object(0) = receiver;
  *static_cast<SEL*>(f.argument(1)) = selector;
  return made;
}

void* argumentOf(const NSInvocation& invocation, std::size_t index) {
  return fields(invocation).argument(index);
}

void* resultOf(const NSInvocation& invocation) { return fields(invocation).result(); }

}  // namespace detail

}  // namespace brindle
