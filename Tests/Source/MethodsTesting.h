// What the tests of changing methods share: classes made on the spot, and methods that answer
// numbers.
#pragma once

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

#include <atomic>
#include <string>

namespace brindle {

/// A name that nobody has used yet.
inline std::string unusedName(const std::string& prefix) {
  static std::atomic<int> count{0};
  return prefix + std::to_string(++count);
}

/// A new registered class.
inline Class makeClass(Class superclass, const std::string& prefix = "Changed") {
  const Class cls = objc_allocateClassPair(superclass, unusedName(prefix).c_str(), 0);
  objc_registerClassPair(cls);
  return cls;
}

inline id newObject(Class cls) { return send<"new", id>(cls); }

/// A selector without a method.
inline SEL unusedSelector(const std::string& prefix) {
  return sel_registerName(unusedName(prefix).c_str());
}

/// Code that answers N.
template <int N>
TypedImplementation answering() {
  return implementation([](const NSObject&) { return N; });
}

template <int N>
void addAnswer(Class cls, SEL selector) {
  const TypedImplementation code = answering<N>();
  class_addMethod(cls, selector, code.implementation, code.types);
}

/// Adds a method to a class.
template <class F>
void addMethod(Class cls, SEL selector, F body) {
  const TypedImplementation code = implementation(body);
  class_addMethod(cls, selector, code.implementation, code.types);
}

inline int ask(const id& object, SEL selector) { return sendSelector<int>(object, selector); }

/// The selectors of the class's own methods, the last added first.
inline std::string ownMethods(Class cls) {
  std::string text;
  for (const Method method : class_copyMethodList(cls)) {
    text += std::string(sel_getName(method_getName(method))) + " ";
  }
  return text;
}

}  // namespace brindle
