// A set of characters, immutable: what is looked for in a string, or trimmed from it.
//
//   NSString word = line->stringByTrimmingCharactersInSet(
//       NSCharacterSet::whitespaceAndNewlineCharacterSet());
//
// Members are Unicode characters up to U+10FFFF. Sets may be used by many threads at once.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSCharacterSet : public Interface<NSCharacterSet, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSCharacterSet> classPair;

  /// The characters of the string. Raises NSInvalidArgumentException for nil.
  static NSCharacterSet characterSetWithCharactersInString(const NSString& string) {
    return send<"characterSetWithCharactersInString:", NSCharacterSet>(class_(), string);
  }
  /// `length` characters from the one at `location` on.
  static NSCharacterSet characterSetWithRange(NSRange range) {
    return send<"characterSetWithRange:", NSCharacterSet>(class_(), range);
  }

  /// The sets below are one object each.
  /// Spaces and the tab.
  static NSCharacterSet whitespaceCharacterSet() { return shared<"whitespaceCharacterSet">(); }
  /// Spaces, the tab and line breaks.
  static NSCharacterSet whitespaceAndNewlineCharacterSet() {
    return shared<"whitespaceAndNewlineCharacterSet">();
  }
  static NSCharacterSet newlineCharacterSet() { return shared<"newlineCharacterSet">(); }
  static NSCharacterSet decimalDigitCharacterSet() { return shared<"decimalDigitCharacterSet">(); }
  /// Letters and marks.
  static NSCharacterSet letterCharacterSet() { return shared<"letterCharacterSet">(); }
  static NSCharacterSet lowercaseLetterCharacterSet() {
    return shared<"lowercaseLetterCharacterSet">();
  }
  /// Upper and title case.
  static NSCharacterSet uppercaseLetterCharacterSet() {
    return shared<"uppercaseLetterCharacterSet">();
  }
  /// Letters, marks and numbers of every kind.
  static NSCharacterSet alphanumericCharacterSet() { return shared<"alphanumericCharacterSet">(); }
  static NSCharacterSet punctuationCharacterSet() { return shared<"punctuationCharacterSet">(); }
  static NSCharacterSet symbolCharacterSet() { return shared<"symbolCharacterSet">(); }
  static NSCharacterSet controlCharacterSet() { return shared<"controlCharacterSet">(); }

  /// Every character that is not in the receiver.
  NSCharacterSet invertedSet() const { return send<"invertedSet", NSCharacterSet>(*this); }

  /// Whether the unit, taken as a character, is in the set.
  bool characterIsMember(unichar unit) const {
    return send<"characterIsMember:", bool>(*this, unit);
  }
  bool longCharacterIsMember(char32_t character) const {
    return send<"longCharacterIsMember:", bool>(*this, character);
  }
  /// Whether every member of `other` is one of the receiver.
  bool isSupersetOfSet(const NSCharacterSet& other) const {
    return send<"isSupersetOfSet:", bool>(*this, other);
  }

 private:
  template <FixedString Name>
  static NSCharacterSet shared() {
    return send<Name, NSCharacterSet>(class_());
  }
};

}  // namespace brindle
