// A string that can be changed. One thread at a time.
//
//   NSMutableString list = NSMutableString::string();
//   list->appendFormat("%@\n"_ns, name);
//   list->insertString("* "_ns, 0);
//
// Subclasses that override `length`, `characterAtIndex:` and `replaceCharactersInRange:withString:`
// work with every operation. A range beyond the end raises NSRangeException, a nil string
// NSInvalidArgumentException.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace brindle {

class NSMutableString : public Interface<NSMutableString, NSString> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSMutableString> classPair;

  /// From UTF-8; bytes that are none become U+FFFD.
  explicit NSMutableString(std::string_view utf8)
      : NSMutableString(class_()->stringWithString(NSString(utf8))) {}

  template <class Self>
  class ClassSide : public NSString::ClassSide<Self> {
   public:
    /// An empty string with room for that many characters; it can grow beyond.
    Self stringWithCapacity(NSUInteger capacity) const {
      return send<"stringWithCapacity:", Self>(*this, capacity);
    }
  };

  static NSMutableString string() { return class_()->string(); }
  static NSMutableString stringWithString(const NSString& s) {
    return class_()->stringWithString(s);
  }
  static NSMutableString stringWithCapacity(NSUInteger capacity) {
    return class_()->stringWithCapacity(capacity);
  }
  template <class... A>
  static NSMutableString stringWithFormat(const NSString& format, const A&... arguments) {
    return class_()->stringWithFormat(format, arguments...);
  }

  NSMutableString initWithCapacity(NSUInteger capacity) const {
    return send<"initWithCapacity:", NSMutableString>(*this, capacity);
  }

  /// Puts `string` in place of the range: what all other changes are made of.
  void replaceCharactersInRange(NSRange range, const NSString& string) const {
    send<"replaceCharactersInRange:withString:">(*this, range, string);
  }
  void appendString(const NSString& string) const { send<"appendString:">(*this, string); }
  template <class... A>
  void appendFormat(const NSString& format, const A&... arguments) const {
    const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
    send<"appendFormat:">(*this, format, FormatArguments{list});
  }
  void insertString(const NSString& string, NSUInteger index) const {
    send<"insertString:atIndex:">(*this, string, index);
  }
  void deleteCharactersInRange(NSRange range) const {
    send<"deleteCharactersInRange:">(*this, range);
  }
  void setString(const NSString& string) const { send<"setString:">(*this, string); }
  /// Replaces every match within the range; answers how many there were.
  NSUInteger replaceOccurrencesOfString(const NSString& target, const NSString& replacement,
                                        NSStringCompareOptions options, NSRange range) const {
    return send<"replaceOccurrencesOfString:withString:options:range:", NSUInteger>(
        *this, target, replacement, options, range);
  }
};

}  // namespace brindle
