// A scanner reads a string from its start to its end: numbers, given words, runs of characters.
//
//   NSScanner scanner = NSScanner::scannerWithString("width: 12.5"_ns);
//   double width = 0;
//   if (scanner->scanString("width:"_ns, nullptr) && scanner->scanDouble(&width)) ...
//
// Every `scan` operation first passes over the characters to be skipped (white space and line
// breaks unless they are set), then reads what it is asked for. It answers whether that was there;
// if not, it stays where it was and stores nothing. The place to store may be null. Numbers are
// read as NSString's are, whatever the host's language, and beyond their type's range become the
// nearest value. One thread at a time.
#pragma once

#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSScanner : public Interface<NSScanner, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSScanner> classPair;

  /// A scanner at the start of the string, as it is now. Raises NSInvalidArgumentException for nil.
  static NSScanner scannerWithString(const NSString& string) {
    return send<"scannerWithString:", NSScanner>(class_(), string);
  }
  NSScanner initWithString(const NSString& string) const {
    return send<"initWithString:", NSScanner>(*this, string);
  }

  NSString string() const { return send<"string", NSString>(*this); }
  /// Where the next scan begins. Beyond the end raises NSRangeException.
  NSUInteger scanLocation() const { return send<"scanLocation", NSUInteger>(*this); }
  void setScanLocation(NSUInteger location) const { send<"setScanLocation:">(*this, location); }
  /// Whether nothing but characters to be skipped is left.
  bool isAtEnd() const { return send<"isAtEnd", bool>(*this); }

  /// Nil skips nothing.
  NSCharacterSet charactersToBeSkipped() const {
    return send<"charactersToBeSkipped", NSCharacterSet>(*this);
  }
  void setCharactersToBeSkipped(const NSCharacterSet& set) const {
    send<"setCharactersToBeSkipped:">(*this, set);
  }
  /// Whether given strings must match in case; NO at first.
  bool caseSensitive() const { return send<"caseSensitive", bool>(*this); }
  void setCaseSensitive(bool sensitive) const { send<"setCaseSensitive:">(*this, sensitive); }

  /// A sign and decimal digits.
  bool scanInt(int* value) const { return send<"scanInt:", bool>(*this, value); }
  bool scanInteger(NSInteger* value) const { return send<"scanInteger:", bool>(*this, value); }
  bool scanLongLong(long long* value) const { return send<"scanLongLong:", bool>(*this, value); }
  /// Decimal digits without a minus sign.
  bool scanUnsignedLongLong(unsigned long long* value) const {
    return send<"scanUnsignedLongLong:", bool>(*this, value);
  }
  /// Hexadecimal digits, with or without 0x.
  bool scanHexLongLong(unsigned long long* value) const {
    return send<"scanHexLongLong:", bool>(*this, value);
  }
  /// A sign, digits, a point and digits, an exponent.
  bool scanDouble(double* value) const { return send<"scanDouble:", bool>(*this, value); }

  /// The given string.
  bool scanString(const NSString& string, NSString* result) const {
    return send<"scanString:intoString:", bool>(*this, string, result);
  }
  /// Everything before the given string, or to the end; at least one character.
  bool scanUpToString(const NSString& string, NSString* result) const {
    return send<"scanUpToString:intoString:", bool>(*this, string, result);
  }
  /// As many characters of the set as there are; at least one.
  bool scanCharactersFromSet(const NSCharacterSet& set, NSString* result) const {
    return send<"scanCharactersFromSet:intoString:", bool>(*this, set, result);
  }
  /// Everything before the first character of the set, or to the end; at least one character.
  bool scanUpToCharactersFromSet(const NSCharacterSet& set, NSString* result) const {
    return send<"scanUpToCharactersFromSet:intoString:", bool>(*this, set, result);
  }
};

}  // namespace brindle
