// Changing one class's methods while the program runs, superclasses left alone.
//
//   IMP previous = nullptr;                                     // static, in earnest
//   class_swizzleMethodAndStore(cls, selector<"line">(), replacement, &previous);
//   swizzle(cls, selector<"line">(), selector<"quotedLine">()); // the two change places
//
// Instance methods live on the class, class methods on its meta-class: each function serves for
// class methods when it is given the meta-class. Every one is safe on any thread by itself, and
// none raises; two threads that change the same selector at once may lose a change. Nil classes and
// null selectors have no methods. The plain functions have C linkage; the overloads beside them
// take handles and lambdas. `BDSwizzle.h` has typed slots, and swizzles that end.
#pragma once

#include <cstddef>

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {

extern "C" {

/// The method that the class itself defines; null for one that it only inherits.
BRINDLE_EXPORT Method class_firstLevelMethod(ClassRecord* cls, SEL selector);

/// Gives the class an entry of its own for an inherited method, so that changing it leaves
/// superclasses alone. Answers the class's own method, which is the one it had if it had one; null
/// for null.
BRINDLE_EXPORT Method class_pullUpInstanceMethod(ClassRecord* cls, Method method);

/// Keeps a copy of the implementation, own or inherited, as a method named `bddyn_` and the
/// selector. The first copy wins. For a selector without a method it adds an empty entry, which
/// then is the first: ask before.
BRINDLE_EXPORT void class_cacheMethodImp(ClassRecord* cls, SEL selector);
/// The copy that the class or a superclass keeps, or null.
BRINDLE_EXPORT IMP class_getCachedMethodImp(ClassRecord* cls, SEL selector);
/// The copy that the class itself keeps, or null.
BRINDLE_EXPORT IMP class_firstLevelCachedMethodImp(ClassRecord* cls, SEL selector);

/// Sets the implementation of a method, own or inherited, for this class and those that inherit
/// from it. NO when there is no such method.
BRINDLE_EXPORT BOOL class_replaceMethodImp(ClassRecord* cls, SEL selector, IMP implementation);

/// Exchanges the implementations of two methods, own or inherited: each selector runs the other's
/// code. A target that does not exist is made first and answers zero. NO when the replacement does
/// not exist; a missing target has been made all the same.
BRINDLE_EXPORT BOOL method_swizzle(ClassRecord* cls, SEL target, SEL replacement);

/// Replaces the implementation of a method, own or inherited, and stores the previous one in the
/// slot before the new one can run. NO, with the slot as it was, when there is no such method. A
/// null slot is left out. The new implementation calls the one in the slot with its own receiver,
/// selector and arguments.
BRINDLE_EXPORT BOOL class_swizzleMethodAndStore(ClassRecord* cls, SEL selector, IMP implementation,
                                                IMP* slot);

/// The implementation that the class which the object reports (the message `class`) has for the
/// selector now; a forwarding entry when it has none. Null for nil.
BRINDLE_EXPORT IMP unswizzleImp(ObjectRecord* object, SEL selector);
/// The same for a class operation, on the meta-class registered under the class's name.
BRINDLE_EXPORT IMP unswizzleClassImp(ClassRecord* cls, SEL selector);

/// `object_getClass` as a plain pointer.
BRINDLE_EXPORT ClassRecord* object_getClassPointer(ObjectRecord* object);
/// `objc_getClass` as a plain pointer.
BRINDLE_EXPORT ClassRecord* objc_getClassPointer(const char* name);
/// `objc_allocateClassPair` as a plain pointer.
BRINDLE_EXPORT ClassRecord* objc_allocateClassPairPointer(ClassRecord* superclass, const char* name,
                                                          std::size_t extraBytes);
}

// --- The same with handles and lambdas -----------------------------------------------------------

namespace detail {
/// Who changed a method is told by where the call returns to: a caller whose last step it is stays
/// on the stack until then.
template <class T>
T notLast(T answer) noexcept {
  __asm__ volatile("");
  return answer;
}
}  // namespace detail

inline Method class_firstLevelMethod(Class cls, SEL selector) {
  return class_firstLevelMethod(cls.record(), selector);
}
inline Method class_pullUpInstanceMethod(Class cls, Method method) {
  return class_pullUpInstanceMethod(cls.record(), method);
}
inline void class_cacheMethodImp(Class cls, SEL selector) {
  class_cacheMethodImp(cls.record(), selector);
}
inline IMP class_getCachedMethodImp(Class cls, SEL selector) {
  return class_getCachedMethodImp(cls.record(), selector);
}
inline IMP class_firstLevelCachedMethodImp(Class cls, SEL selector) {
  return class_firstLevelCachedMethodImp(cls.record(), selector);
}
inline BOOL class_replaceMethodImp(Class cls, SEL selector, IMP imp) {
  return detail::notLast(class_replaceMethodImp(cls.record(), selector, imp));
}
/// With the body as a lambda that captures nothing, written as in a table of methods.
template <detail::MethodBody F>
BOOL class_replaceMethodImp(Class cls, SEL selector, F body) {
  return detail::notLast(
      class_replaceMethodImp(cls.record(), selector, implementation(body).implementation));
}
inline BOOL method_swizzle(Class cls, SEL target, SEL replacement) {
  return detail::notLast(method_swizzle(cls.record(), target, replacement));
}
inline BOOL class_swizzleMethodAndStore(Class cls, SEL selector, IMP imp, IMP* slot) {
  return detail::notLast(class_swizzleMethodAndStore(cls.record(), selector, imp, slot));
}
template <detail::MethodBody F>
BOOL class_swizzleMethodAndStore(Class cls, SEL selector, F body, IMP* slot) {
  return class_swizzleMethodAndStore(cls, selector, implementation(body).implementation, slot);
}
inline IMP unswizzleImp(const id& object, SEL selector) {
  return unswizzleImp(object.record(), selector);
}
inline IMP unswizzleClassImp(Class cls, SEL selector) {
  return unswizzleClassImp(cls.record(), selector);
}
inline ClassRecord* object_getClassPointer(const id& object) {
  return object_getClassPointer(object.record());
}
inline ClassRecord* objc_allocateClassPairPointer(Class superclass, const char* name,
                                                  std::size_t extraBytes) {
  return objc_allocateClassPairPointer(superclass.record(), name, extraBytes);
}

// --- As messages to the class --------------------------------------------------------------------

/// `method_swizzle` on the class, as the process finds that function by its name: a definition of a
/// program's or a preloaded library's own takes effect. False for nil.
inline bool swizzle(Class cls, SEL target, SEL replacement) {
  return detail::notLast(send<"swizzle:with:", bool>(cls, target, replacement));
}
/// The same on the meta-class registered under the class's name.
inline bool swizzleClassMethod(Class cls, SEL target, SEL replacement) {
  return detail::notLast(send<"swizzleClassMethod:with:", bool>(cls, target, replacement));
}

/// `class_swizzleMethodAndStore` on the class. False for nil.
inline bool swizzle(Class cls, SEL selector, IMP imp, IMP* slot) {
  return detail::notLast(send<"swizzle:with:store:", bool>(cls, selector, imp, slot));
}
template <detail::MethodBody F>
bool swizzle(Class cls, SEL selector, F body, IMP* slot) {
  return swizzle(cls, selector, implementation(body).implementation, slot);
}
/// The same on the class's meta-class.
inline bool swizzleClassMethod(Class cls, SEL selector, IMP imp, IMP* slot) {
  return detail::notLast(send<"swizzleClassMethod:with:store:", bool>(cls, selector, imp, slot));
}
template <detail::MethodBody F>
bool swizzleClassMethod(Class cls, SEL selector, F body, IMP* slot) {
  return swizzleClassMethod(cls, selector, implementation(body).implementation, slot);
}

}  // namespace brindle
