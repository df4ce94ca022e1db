// Defining classes and categories: constant tables, checked while the compiler runs.
//
//   namespace {
//   struct Fields { std::vector<id> objects; };
//   Fields& fields(const BDStack& self) { return fieldsOf<Fields>(self); }
//
//   constexpr MethodDefinition kMethods[] = {
//       method<"pushObject:">([](const BDStack& self, const id& object) { ... }),
//       classMethod<"stack">([](const ClassOf<BDStack>& self) { return self->alloc()->init(); }),
//   };
//   constexpr ClassDefinition kDefinition{
//       .name = "BDStack", .methods = kMethods, .fields = fieldsDefinition<Fields>()};
//   }  // namespace
//   constinit ClassPair<BDStack> BDStack::classPair{kDefinition};
//
// A body is a captureless lambda: the receiver first, then `Cmd` where the body wants its selector,
// then the arguments; objects as `const T&`. The type encoding is deduced from its C++ type. The
// table stands in an anonymous namespace, so that the code belongs to the library that defines it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <span>
#include <type_traits>

#include <Brindle/Platform/Class.h>
#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/Implementation.h>
#include <Brindle/Platform/Passing.h>
#include <Brindle/Platform/Selector.h>

namespace brindle {

/// The layout of the definitions below. A library built against another layout is refused.
inline constexpr std::uint32_t kDefinitionVersion = 1;

/// The selector a method was called with: a body that wants it takes a `Cmd` after the receiver.
struct Cmd {
  SEL selector;
};

/// One method of a class or category.
struct MethodDefinition {
  const char* name;
  IMP (*implementation)();  // a getter, since the cast is no constant expression
  const char* types;
  const char* wire;
  bool ofClass;
};

/// A declared property: its name and the platform's attribute string, such as
/// `T@"NSDate",&,Vanchor`.
struct PropertyDefinition {
  const char* name;
  const char* attributes;
};

/// An instance variable, for those who look variables up by name: `ivar<NSInteger>("_count",
/// offsetof(Fields, count))`. An object variable is a `Field<T>`.
struct IvarDefinition {
  const char* name;
  const char* encoding;
  std::uint32_t offset;  // within Fields
  std::uint32_t size;
};

/// The memory of a class's own variables.
struct FieldsDefinition {
  std::uint32_t size = 0;
  std::uint32_t alignment = 1;
  void (*construct)(void*) = nullptr;
  void (*destroy)(void*) = nullptr;  // null when there is nothing to do
};

/// A class written in C++.
struct ClassDefinition {
  std::uint32_t version = kDefinitionVersion;
  const char* name = nullptr;
  std::span<const MethodDefinition> methods = {};
  std::span<const PropertyDefinition> properties = {};
  std::span<const IvarDefinition> variables = {};
  std::span<ProtocolRecord* const> protocols = {};
  FieldsDefinition fields = {};
};

/// Methods added to a class of a floor below. They replace methods of the same name and come first
/// in the class's list.
struct CategoryDefinition {
  std::uint32_t version = kDefinitionVersion;
  const char* name = nullptr;
  ClassRecord* cls = nullptr;
  std::span<const MethodDefinition> methods = {};
  std::span<const PropertyDefinition> properties = {};
  std::span<ProtocolRecord* const> protocols = {};
};

/// Everything that a library attaches in one step when it is loaded, superclasses first. Then each
/// class's `load` runs in the order of the list, superclasses first, then each category's.
struct ImageDefinition {
  std::span<ClassRecord* const> classes = {};
  std::span<const CategoryDefinition* const> categories = {};
};

/// Attaches a library's classes and categories. Called once, from the library's start.
BRINDLE_PLATFORM_EXPORT void attachImage(const ImageDefinition& image);

/// Makes a class findable by name before its first use. A class is otherwise made ready by the
/// first message to it.
BRINDLE_PLATFORM_EXPORT void registerClass(ClassRecord& cls);

template <class T>
void registerClass(ClassPair<T>& pair) {
  registerClass(pair.cls);
}

namespace detail {

template <class F, class Type>
struct MethodThunk;

// Hidden, so that a class in a header of two libraries runs each library's own code: whoever asks
// the loader where a method lives must not hear of the other one.
template <class F, class R, class Self, class... A>
struct [[gnu::visibility("hidden")]] MethodThunk<F, R (F::*)(Self, A...) const> {
  using Result = std::remove_cvref_t<R>;
  static Wire<Result> call(ObjectRecord * self, SEL, Wire<A>... a) {
    return wireResult<Result>(F{}, Receive<Self>{self}.get(), Receive<A>{a}.get()...);
  }
  static IMP implementation() { return eraseImplementation(&call); }
  static constexpr const char* types = methodTypes<Result, std::remove_cvref_t<A>...>.c_str();
  static constexpr const char* wire = wireTypes<Result, std::remove_cvref_t<A>...>.c_str();
  static constexpr std::size_t arguments =
      (std::size_t{0} + ... + (VariadicTail<std::remove_cvref_t<A>> ? 0U : 1U));
};

template <class F, class R, class Self, class... A>
struct [[gnu::visibility("hidden")]] MethodThunk<F, R (F::*)(Self, Cmd, A...) const> {
  using Result = std::remove_cvref_t<R>;
  static Wire<Result> call(ObjectRecord * self, SEL sel, Wire<A>... a) {
    return wireResult<Result>(F{}, Receive<Self>{self}.get(), Cmd{sel}, Receive<A>{a}.get()...);
  }
  static IMP implementation() { return eraseImplementation(&call); }
  static constexpr const char* types = methodTypes<Result, std::remove_cvref_t<A>...>.c_str();
  static constexpr const char* wire = wireTypes<Result, std::remove_cvref_t<A>...>.c_str();
  static constexpr std::size_t arguments =
      (std::size_t{0} + ... + (VariadicTail<std::remove_cvref_t<A>> ? 0U : 1U));
};

template <class F>
concept MethodBody = std::is_class_v<F> && requires {
  &F::operator();
};

template <FixedString Name, class F>
constexpr MethodDefinition defineMethod(bool ofClass) {
  static_assert(MethodBody<F>, "a method's body is a lambda without `auto` parameters");
  static_assert(std::is_empty_v<F> && std::is_default_constructible_v<F>,
                "a method's body captures nothing: what it needs is in its receiver's fields");
  using Thunk = MethodThunk<F, decltype(&F::operator())>;
  static_assert(
      colonsOf(Name.view()) == Thunk::arguments,
      "the selector has another number of colons than the body has arguments behind its receiver");
  return {selectorText<Name>.c_str(), &Thunk::implementation, Thunk::types, Thunk::wire, ofClass};
}

}  // namespace detail

/// An instance method of that selector with that body.
template <FixedString Name, class F>
constexpr MethodDefinition method(F) {
  return detail::defineMethod<Name, F>(false);
}

/// A class method: its receiver is a `const Class&` or `const ClassOf<T>&`.
template <FixedString Name, class F>
constexpr MethodDefinition classMethod(F) {
  return detail::defineMethod<Name, F>(true);
}

/// An implementation as the runtime's functions take it, and its encoding.
struct TypedImplementation {
  IMP implementation;
  const char* types;
};

namespace detail {
/// Remembers the wire codes of an implementation, so that sends to it can be checked.
BRINDLE_PLATFORM_EXPORT void noteImplementation(IMP implementation, const char* wire);
}  // namespace detail

/// The implementation of a body that is not in a table, for `class_addMethod`,
/// `method_setImplementation` and swizzles.
template <class F>
TypedImplementation implementation(F) {
  static_assert(detail::MethodBody<F> && std::is_empty_v<F>,
                "an implementation's body is a lambda that captures nothing");
  using Thunk = detail::MethodThunk<F, decltype(&F::operator())>;
  const IMP imp = Thunk::implementation();
  detail::noteImplementation(imp, Thunk::wire);
  return {imp, Thunk::types};
}

/// An instance variable's description.
template <class T>
constexpr IvarDefinition ivar(const char* name, std::size_t offset) {
  return {name, detail::encodingOf<T>.c_str(), static_cast<std::uint32_t>(offset),
          static_cast<std::uint32_t>(sizeof(T))};
}

/// The size and life of a class's variables. They are value-initialised with the object and
/// destroyed with it, subclass first.
template <class F>
constexpr FieldsDefinition fieldsDefinition() {
  static_assert(alignof(F) <= alignof(std::max_align_t), "fields are aligned to 16 bytes at most");
  static_assert(std::is_default_constructible_v<F>, "fields begin with their default values");
  return {sizeof(F), alignof(F), [](void* memory) { ::new (memory) F(); },
          std::is_trivially_destructible_v<F>
              ? nullptr
              : +[](void* memory) { static_cast<F*>(memory)->~F(); }};
}

namespace detail {

template <class T>
struct RootOf : RootOf<typename T::Superclass> {};
template <class T>
requires std::is_same_v<typename T::Superclass, id>
struct RootOf<T> {
  using Type = T;
};

template <class T>
constexpr ClassRecord* superclassOf() {
  if constexpr (std::is_same_v<typename T::Superclass, id>)
    return nullptr;
  else
    return &T::Superclass::classPair.cls;
}

template <class T>
constexpr ClassRecord* superMetaOf() {
  if constexpr (std::is_same_v<typename T::Superclass, id>)
    return &T::classPair.cls;
  else
    return &T::Superclass::classPair.meta;
}

/// Stops the program: a method of `cls` reached for its fields in an object that has none of them.
[[noreturn]] BRINDLE_PLATFORM_EXPORT void stopForForeignFields(ObjectRecord* object,
                                                               const ClassRecord* cls);
/// Stops the program: the definition of `cls` says nothing of the fields that its methods use, or
/// of others.
[[noreturn]] BRINDLE_PLATFORM_EXPORT void stopForUndefinedFields(const ClassRecord* cls,
                                                                 std::size_t wanted);
BRINDLE_PLATFORM_EXPORT bool hasFieldsOf(const ObjectRecord* object, const ClassRecord* cls);

}  // namespace detail

template <class T>
constexpr ClassPair<T>::ClassPair(const ClassDefinition& definition) noexcept
    : cls(&meta, definition.name, detail::superclassOf<T>(), &definition, &meta, false),
      meta(&detail::RootOf<T>::Type::classPair.meta, definition.name, detail::superMetaOf<T>(),
           &definition, &cls, true) {}

/// The variables of T in the object. With assertions on, an object that was not born as a kind of T
/// stops the program.
template <class F, class T>
F& fieldsOf(const T& self) {
  static_assert(std::is_same_v<decltype(T::classPair), ClassPair<T>>,
                "a class declares its own `static ClassPair<Self> classPair;`");
  ObjectRecord* record = self.record();
#if BRINDLE_ASSERTIONS
  if (T::classPair.cls.definition->fields.size != sizeof(F)) [[unlikely]] {
    detail::stopForUndefinedFields(&T::classPair.cls, sizeof(F));
  }
  if (!detail::hasFieldsOf(record, &T::classPair.cls)) [[unlikely]] {
    detail::stopForForeignFields(record, &T::classPair.cls);
  }
#endif
  return *std::launder(reinterpret_cast<F*>(  // NOLINT(*-reinterpret-cast)
      reinterpret_cast<char*>(record) + T::classPair.cls.fieldsOffset));
}

}  // namespace brindle
