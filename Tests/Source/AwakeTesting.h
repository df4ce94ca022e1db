// Classes with and without `awake` that write down what happens to them.
#pragma once

#include <string>

#include <Brindle/BDAwake.h>
#include <Brindle/BDAwakeProxy.h>
#include <Brindle/Platform/Definition.h>

namespace brindle {

/// What happened since the last call, in order.
std::string happened();
void happens(const std::string& what);

/// No `awake`: plain objects.
class Plain : public Interface<Plain, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Plain> classPair;
  int count() const { return send<"count", int>(*this); }
};

/// Defines `awake`; `init` writes "init", `initWithName:` the name.
class Waking : public Interface<Waking, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Waking> classPair;

  Waking initWithName(const NSString& name) const {
    return send<"initWithName:", Waking>(*this, name);
  }
  /// Answers another Waking.
  Waking initElsewhere() const { return send<"initElsewhere", Waking>(*this); }
  void initRaising() const { send<"initRaising", id>(*this); }
  int count() const { return send<"count", int>(*this); }
};

/// Inherits `awake`.
class Middle : public Interface<Middle, Waking> {
 public:
  using Interface::Interface;
  static ClassPair<Middle> classPair;
};

/// Defines its own on top.
class Bottom : public Interface<Bottom, Middle> {
 public:
  using Interface::Interface;
  static ClassPair<Bottom> classPair;
};

}  // namespace brindle
