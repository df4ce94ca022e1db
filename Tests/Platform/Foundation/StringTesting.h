// What the tests of strings share: a string class as a client writes one, and the name of what a
// call raises.
#pragma once

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableString.h>

#include <exception>
#include <string>

namespace brindle {

/// The name of the exception that the call raises, or "" when it raises none.
template <class Call>
std::string raisedBy(const Call& call) {
  try {
    call();
  } catch (const std::exception& raised) {
    const std::string what = raised.what();
    return what.substr(0, what.find(':'));
  }
  return "";
}

/// A string that keeps its characters in its own way and overrides the two primitives, no more.
class ClientString : public Interface<ClientString, NSString> {
 public:
  using Interface::Interface;
  static ClassPair<ClientString> classPair;

  static ClientString with(std::u16string units);
};

/// The same for a mutable string, with its third primitive.
class ClientMutableString : public Interface<ClientMutableString, NSMutableString> {
 public:
  using Interface::Interface;
  static ClassPair<ClientMutableString> classPair;

  static ClientMutableString with(std::u16string units);
};

}  // namespace brindle
