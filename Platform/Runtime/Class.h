// Classes as plain handles, and the records behind them.
//
// `Class` is one pointer. Classes never die, so nothing is counted. A class is an object too: its
// class is its meta-class, which holds the class operations. `ClassOf<T>`, the answer of
// `T::class_()`, is the same handle with the class operations of T as members.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

#include <Brindle/Platform/Export.h>
#include <Brindle/Platform/Object.h>
#include <Brindle/Platform/Types.h>

namespace brindle {

struct ClassDefinition;

namespace detail {

struct ClassData;

inline constexpr std::size_t kMethodsPerPage = 32;
inline constexpr std::size_t kMaximalPages = 2048;

/// A page of a dispatch table: the methods of 32 selectors. Never null: a selector without a method
/// stands at `kMissingMethod`, whose implementation is null.
struct DispatchPage {
  MethodRecord* methods[kMethodsPerPage];
};

/// The table of a class that is not in use yet: every selector is missing, and the first miss makes
/// the class ready. As long as a table can grow, because nobody could find it to grow it.
struct EmptyTable {
  DispatchPage* pages[kMaximalPages];
};
BRINDLE_PLATFORM_EXPORT extern const EmptyTable kEmptyTable;

}  // namespace detail

/// The memory of a class or meta-class. Constant data for classes written in C++, heap for those
/// made at run time.
struct ClassRecord : ObjectRecord {
  const char* name;
  ClassRecord* superclass;
  std::atomic<detail::DispatchPage* const*> table;  // as senders see it
  std::atomic<detail::ClassData*> data;             // null until the class is realised
  const ClassDefinition* definition;                // null for classes made at run time
  ClassRecord* other;                               // of a class its meta-class, and back
  bool isMeta;
  std::uint32_t fieldsOffset = 0;  // of the class's own fields, once realised
  std::uint32_t instanceSize = 0;

  constexpr ClassRecord(ClassRecord* isaRecord, const char* className, ClassRecord* super,
                        const ClassDefinition* def, ClassRecord* otherHalf, bool metaClass) noexcept
      : ObjectRecord(isaRecord, detail::kCountImmortal, detail::kFlagClass),
        name(className),
        superclass(super),
        table(detail::kEmptyTable.pages),
        data(nullptr),
        definition(def),
        other(otherHalf),
        isMeta(metaClass) {}
};

/// A handle of a class; nil by default. Messages sent to it run class operations.
class Class {
 public:
  constexpr Class() noexcept = default;
  // NOLINTNEXTLINE(google-explicit-constructor): nil is nullptr.
  constexpr Class(std::nullptr_t) noexcept {}
  constexpr explicit Class(ClassRecord* record) noexcept : record_(record) {}
  constexpr Class(Adopt, ObjectRecord* record) noexcept
      : record_(static_cast<ClassRecord*>(record)) {}

  constexpr explicit operator bool() const noexcept { return record_ != nullptr; }
  [[nodiscard]] constexpr ClassRecord* record() const noexcept { return record_; }

  /// The class as an object.
  // NOLINTNEXTLINE(google-explicit-constructor): a class is an object.
  operator id() const noexcept { return id(Adopt{}, record_); }
  const Class* operator->() const noexcept { return this; }

  friend constexpr bool operator==(Class a, Class b) noexcept { return a.record_ == b.record_; }
  friend constexpr bool operator==(Class a, std::nullptr_t) noexcept {
    return a.record_ == nullptr;
  }

 private:
  ClassRecord* record_ = nullptr;
};

/// The class of T, with T's class operations as members: `NSObject::class_()->alloc()`. Converts
/// from any `Class` on request; the conversion is not checked.
template <class T>
class ClassOf : public T::template ClassSide<T> {
 public:
  constexpr ClassOf() noexcept = default;
  constexpr explicit ClassOf(Class c) noexcept { Class::operator=(c); }
  constexpr ClassOf(Adopt, ObjectRecord* record) noexcept : ClassOf(Class(Adopt{}, record)) {}
  const ClassOf* operator->() const noexcept { return this; }
};

/// The class and meta-class of T: constant data, defined once in T's source file.
template <class T>
struct ClassPair {
  ClassRecord cls;
  ClassRecord meta;

  constexpr explicit ClassPair(const ClassDefinition& definition) noexcept;
};

}  // namespace brindle

template <>
struct std::hash<brindle::Class> {
  std::size_t operator()(brindle::Class c) const noexcept {
    return std::hash<const void*>()(c.record());
  }
};
