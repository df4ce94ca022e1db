// What the tests of the runtime share: objects whose life can be counted, classes made on the spot,
// and the text of what is raised.
#pragma once

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

#include <exception>
#include <functional>
#include <string>

namespace brindle {

/// What `body` raises, as text; empty when it raises nothing.
template <class Body>
std::string raised(Body body) {
  try {
    body();
  } catch (const std::exception& e) {
    return e.what();
  }
  return "";
}

/// An object that is counted while its fields live, and may hold another one.
class Mortal : public Interface<Mortal, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Mortal> classPair;

  int tag() const { return send<"tag", int>(*this); }
  void setTag(int tag) const { send<"setTag:">(*this, tag); }
  id held() const { return send<"held", id>(*this); }
  void setHeld(const id& object) const { send<"setHeld:">(*this, object); }

  /// How many there are, subclasses' instances included.
  static int living();
  /// The tags of those that ended since the last call, first to last.
  static std::string ended();
};

/// A Mortal that runs a function in its `dealloc`, before its fields go.
class Ender : public Interface<Ender, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Ender> classPair;

  /// An Ender that runs `atEnd`.
  static Ender with(std::function<void(const Ender&)> atEnd, int tag = 0);
  /// An Ender that raises this text.
  static Ender raising(const char* text, int tag = 0);
};

/// A name that no other class has.
std::string uniqueName(const std::string& prefix);

/// A new registered class.
Class makeClass(Class superclass, const std::string& prefix = "Made");

/// Adds a method to a class; whether it was new.
template <FixedString Name, class F>
bool addMethod(Class cls, F body) {
  const TypedImplementation code = implementation(body);
  return class_addMethod(cls, selector<Name>(), code.implementation, code.types) != NO;
}

/// A selector that nobody has used yet.
SEL uniqueSelector(const std::string& prefix);

}  // namespace brindle
