// A string: a sequence of UTF-16 units ("characters" in what follows), immutable.
//
//   NSString name = "caf\u00E9"_ns;                       // a constant: costs nothing
//   NSString line = NSString::stringWithFormat("%@ has %d items"_ns, name, 3);
//   std::cout << line << std::string(line);
//
// Equality, hash and order are those of the units, however the string is stored. Subclasses that
// override `length` and `characterAtIndex:` work with every operation. Indexes and ranges beyond
// the end raise NSRangeException; a nil string where one is needed raises
// NSInvalidArgumentException. Immutable strings may be used by many threads at once. Left out:
// locales as arguments, regular expressions, width-insensitive search, encodings other than those
// named below.
#pragma once

#include <array>
#include <ostream>
#include <string>
#include <string_view>

#include <Brindle/Platform/ConstantString.h>
#include <Brindle/Platform/FormatArgument.h>
#include <Brindle/Platform/NSObjCRuntime.h>
#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/NSRange.h>

namespace brindle {

class NSArray;
class NSCharacterSet;
class NSData;

/// One UTF-16 unit.
using unichar = char16_t;

using NSStringEncoding = NSUInteger;
enum : NSStringEncoding {
  NSASCIIStringEncoding = 1,
  NSUTF8StringEncoding = 4,
  NSISOLatin1StringEncoding = 5,
  /// A mark tells the byte order; without one it is the machine's. Written with a mark.
  NSUnicodeStringEncoding = 10,
  NSUTF16StringEncoding = NSUnicodeStringEncoding,
  NSUTF16BigEndianStringEncoding = 0x90000100,
  NSUTF16LittleEndianStringEncoding = 0x94000100,
};

/// How strings are compared and searched; values are added. Without NSLiteralSearch canonically
/// equivalent characters match: an accented letter in one unit and in two.
using NSStringCompareOptions = NSUInteger;
enum : NSStringCompareOptions {
  NSCaseInsensitiveSearch = 1,
  NSLiteralSearch = 2,
  NSBackwardsSearch = 4,
  NSAnchoredSearch = 8,
  NSNumericSearch = 64,  // digits by their value; for comparing only
  NSDiacriticInsensitiveSearch = 128,
  NSForcedOrderingSearch = 512,
};

class NSString : public Interface<NSString, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSString> classPair;

  /// From UTF-8; bytes that are none become U+FFFD. Nil for a null pointer.
  NSString(const char* utf8);         // NOLINT: text is a string
  NSString(std::string_view utf8);    // NOLINT
  NSString(const std::string& utf8);  // NOLINT

  /// UTF-8; lone surrogates become U+FFFD. Empty for nil.
  BRINDLE_PLATFORM_EXPORT explicit operator std::string() const;

  // --- Class operations: new strings -----------------------------------------------------------

  template <class Self>
  class ClassSide : public NSObject::ClassSide<Self> {
   public:
    /// An empty string.
    Self string() const { return send<"string", Self>(*this); }
    Self stringWithString(const NSString& string) const {
      return send<"stringWithString:", Self>(*this, string);
    }
    /// Copies `length` units.
    Self stringWithCharacters(const unichar* units, NSUInteger length) const {
      return send<"stringWithCharacters:length:", Self>(*this, units, length);
    }
    /// Nil when the bytes are not UTF-8. Raises NSInvalidArgumentException for null.
    Self stringWithUTF8String(const char* bytes) const {
      return send<"stringWithUTF8String:", Self>(*this, bytes);
    }
    /// Nil when the bytes up to the zero byte are no text in the encoding.
    Self stringWithCString(const char* bytes, NSStringEncoding encoding) const {
      return send<"stringWithCString:encoding:", Self>(*this, bytes, encoding);
    }
    /// Fills a format as printf does, with "%@" for objects. Arguments are references, integers,
    /// floating numbers, `const char*`, std::string, std::string_view and pointers.
    template <class... A>
    Self stringWithFormat(const NSString& format, const A&... arguments) const {
      const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
      return send<"stringWithFormat:", Self>(*this, format, FormatArguments{list});
    }
    /// NSUTF8StringEncoding.
    NSStringEncoding defaultCStringEncoding() const {
      return send<"defaultCStringEncoding", NSStringEncoding>(*this);
    }
  };

  static NSString string() { return class_()->string(); }
  static NSString stringWithString(const NSString& s) { return class_()->stringWithString(s); }
  static NSString stringWithCharacters(const unichar* units, NSUInteger length) {
    return class_()->stringWithCharacters(units, length);
  }
  static NSString stringWithUTF8String(const char* bytes) {
    return class_()->stringWithUTF8String(bytes);
  }
  static NSString stringWithCString(const char* bytes, NSStringEncoding encoding) {
    return class_()->stringWithCString(bytes, encoding);
  }
  template <class... A>
  static NSString stringWithFormat(const NSString& format, const A&... arguments) {
    return class_()->stringWithFormat(format, arguments...);
  }
  static NSStringEncoding defaultCStringEncoding() { return class_()->defaultCStringEncoding(); }

  /// As the class operations, for a new object.
  NSString initWithString(const NSString& s) const {
    return send<"initWithString:", NSString>(*this, s);
  }
  NSString initWithCharacters(const unichar* units, NSUInteger length) const {
    return send<"initWithCharacters:length:", NSString>(*this, units, length);
  }
  NSString initWithUTF8String(const char* bytes) const {
    return send<"initWithUTF8String:", NSString>(*this, bytes);
  }
  NSString initWithCString(const char* bytes, NSStringEncoding encoding) const {
    return send<"initWithCString:encoding:", NSString>(*this, bytes, encoding);
  }
  /// Nil when the bytes are no text in the encoding. A mark in front of UTF-8 is taken off.
  NSString initWithBytes(const void* bytes, NSUInteger length, NSStringEncoding encoding) const {
    return send<"initWithBytes:length:encoding:", NSString>(*this, bytes, length, encoding);
  }
  BRINDLE_PLATFORM_EXPORT NSString initWithData(const NSData& data,
                                                NSStringEncoding encoding) const;
  template <class... A>
  NSString initWithFormat(const NSString& format, const A&... arguments) const {
    const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
    return send<"initWithFormat:", NSString>(*this, format, FormatArguments{list});
  }

  // --- Characters and parts --------------------------------------------------------------------

  NSUInteger length() const { return send<"length", NSUInteger>(*this); }
  unichar characterAtIndex(NSUInteger index) const {
    return send<"characterAtIndex:", unichar>(*this, index);
  }
  /// Copies the units of the range.
  void getCharacters(unichar* buffer, NSRange range) const {
    send<"getCharacters:range:">(*this, buffer, range);
  }
  NSString substringFromIndex(NSUInteger index) const {
    return send<"substringFromIndex:", NSString>(*this, index);
  }
  NSString substringToIndex(NSUInteger index) const {
    return send<"substringToIndex:", NSString>(*this, index);
  }
  NSString substringWithRange(NSRange range) const {
    return send<"substringWithRange:", NSString>(*this, range);
  }
  /// The pieces between the separators; the whole string when there is none. Literal.
  BRINDLE_PLATFORM_EXPORT NSArray componentsSeparatedByString(const NSString& separator) const;
  BRINDLE_PLATFORM_EXPORT NSArray
  componentsSeparatedByCharactersInSet(const NSCharacterSet& separators) const;

  // --- Comparing -------------------------------------------------------------------------------

  /// Whether the units are the same. False for nil.
  bool isEqualToString(const NSString& other) const {
    return send<"isEqualToString:", bool>(*this, other);
  }
  /// In no language's order; nil comes first.
  NSComparisonResult compare(const NSString& other) const {
    return send<"compare:", NSComparisonResult>(*this, other);
  }
  NSComparisonResult compare(const NSString& other, NSStringCompareOptions options) const {
    return send<"compare:options:", NSComparisonResult>(*this, other, options);
  }
  /// Compares that range of the receiver with the other string.
  NSComparisonResult compare(const NSString& other, NSStringCompareOptions options,
                             NSRange range) const {
    return send<"compare:options:range:", NSComparisonResult>(*this, other, options, range);
  }
  NSComparisonResult caseInsensitiveCompare(const NSString& other) const {
    return send<"caseInsensitiveCompare:", NSComparisonResult>(*this, other);
  }
  /// In the order of the user's language.
  NSComparisonResult localizedCompare(const NSString& other) const {
    return send<"localizedCompare:", NSComparisonResult>(*this, other);
  }
  NSComparisonResult localizedCaseInsensitiveCompare(const NSString& other) const {
    return send<"localizedCaseInsensitiveCompare:", NSComparisonResult>(*this, other);
  }

  // --- Searching -------------------------------------------------------------------------------

  /// Literal. False for the empty string.
  bool hasPrefix(const NSString& prefix) const { return send<"hasPrefix:", bool>(*this, prefix); }
  bool hasSuffix(const NSString& suffix) const { return send<"hasSuffix:", bool>(*this, suffix); }
  /// Whether `rangeOfString` finds it.
  bool containsString(const NSString& other) const {
    return send<"containsString:", bool>(*this, other);
  }
  /// Where the other string is; {NSNotFound, 0} when it is not there, or empty.
  NSRange rangeOfString(const NSString& other) const {
    return send<"rangeOfString:", NSRange>(*this, other);
  }
  NSRange rangeOfString(const NSString& other, NSStringCompareOptions options) const {
    return send<"rangeOfString:options:", NSRange>(*this, other, options);
  }
  NSRange rangeOfString(const NSString& other, NSStringCompareOptions options,
                        NSRange range) const {
    return send<"rangeOfString:options:range:", NSRange>(*this, other, options, range);
  }
  /// Where the first (or last) character of the set is: one unit, or two for a pair.
  BRINDLE_PLATFORM_EXPORT NSRange rangeOfCharacterFromSet(const NSCharacterSet& set) const;
  BRINDLE_PLATFORM_EXPORT NSRange rangeOfCharacterFromSet(const NSCharacterSet& set,
                                                          NSStringCompareOptions options) const;
  BRINDLE_PLATFORM_EXPORT NSRange rangeOfCharacterFromSet(const NSCharacterSet& set,
                                                          NSStringCompareOptions options,
                                                          NSRange range) const;

  // --- Made from this one ----------------------------------------------------------------------

  NSString stringByAppendingString(const NSString& other) const {
    return send<"stringByAppendingString:", NSString>(*this, other);
  }
  template <class... A>
  NSString stringByAppendingFormat(const NSString& format, const A&... arguments) const {
    const std::array<FormatArgument, sizeof...(A)> list{FormatArgument(arguments)...};
    return send<"stringByAppendingFormat:", NSString>(*this, format, FormatArguments{list});
  }
  NSString stringByReplacingOccurrencesOfString(const NSString& target,
                                                const NSString& replacement) const {
    return send<"stringByReplacingOccurrencesOfString:withString:", NSString>(*this, target,
                                                                              replacement);
  }
  NSString stringByReplacingOccurrencesOfString(const NSString& target, const NSString& replacement,
                                                NSStringCompareOptions options,
                                                NSRange range) const {
    return send<"stringByReplacingOccurrencesOfString:withString:options:range:", NSString>(
        *this, target, replacement, options, range);
  }
  NSString stringByReplacingCharactersInRange(NSRange range, const NSString& replacement) const {
    return send<"stringByReplacingCharactersInRange:withString:", NSString>(*this, range,
                                                                            replacement);
  }
  /// Without the characters of the set at both ends.
  BRINDLE_PLATFORM_EXPORT NSString stringByTrimmingCharactersInSet(const NSCharacterSet& set) const;
  /// By the rules that belong to no language.
  NSString uppercaseString() const { return send<"uppercaseString", NSString>(*this); }
  NSString lowercaseString() const { return send<"lowercaseString", NSString>(*this); }
  /// The first letter after white space in upper case, all others in lower case.
  NSString capitalizedString() const { return send<"capitalizedString", NSString>(*this); }

  // --- Bytes -----------------------------------------------------------------------------------

  /// UTF-8 with a zero byte behind it. Lives as long as an immutable string; of other strings,
  /// until the current pool is drained.
  const char* UTF8String() const { return send<"UTF8String", const char*>(*this); }
  /// The same in another encoding, until the current pool is drained; null when the string cannot
  /// be encoded in it.
  const char* cStringUsingEncoding(NSStringEncoding encoding) const {
    return send<"cStringUsingEncoding:", const char*>(*this, encoding);
  }
  /// Nil when the string cannot be encoded; with lossy conversion "?" stands for what cannot.
  BRINDLE_PLATFORM_EXPORT NSData dataUsingEncoding(NSStringEncoding encoding) const;
  BRINDLE_PLATFORM_EXPORT NSData dataUsingEncoding(NSStringEncoding encoding,
                                                   bool allowLossyConversion) const;
  bool canBeConvertedToEncoding(NSStringEncoding encoding) const {
    return send<"canBeConvertedToEncoding:", bool>(*this, encoding);
  }
  /// The size of its bytes; 0 when it cannot be encoded.
  NSUInteger lengthOfBytesUsingEncoding(NSStringEncoding encoding) const {
    return send<"lengthOfBytesUsingEncoding:", NSUInteger>(*this, encoding);
  }

  // --- Numbers ---------------------------------------------------------------------------------

  /// The number at the start, after white space, with a point for fractions; 0 when there is none.
  /// Beyond the type's range: the nearest value.
  int intValue() const { return send<"intValue", int>(*this); }
  NSInteger integerValue() const { return send<"integerValue", NSInteger>(*this); }
  long long longLongValue() const { return send<"longLongValue", long long>(*this); }
  float floatValue() const { return send<"floatValue", float>(*this); }
  double doubleValue() const { return send<"doubleValue", double>(*this); }
  /// Whether it begins (after white space, a sign and zeros) with one of Y, y, T, t, 1 to 9.
  bool boolValue() const { return send<"boolValue", bool>(*this); }
};

namespace detail {

/// A new string from UTF-8, owned; wrong bytes replaced.
BRINDLE_PLATFORM_EXPORT ObjectRecord* stringFromUtf8(const char* bytes, std::size_t size);

/// The filled format; "" for a nil format.
BRINDLE_PLATFORM_EXPORT NSString formatString(const NSString& format,
                                              std::span<const FormatArgument> arguments);

template <FixedString Text>
BRINDLE_LOCAL inline constinit StringRecord literalRecord{
    &NSString::classPair.cls, literalText<Text>.data(), literalText<Text>.size() - 1,
    sizeof(literalText<Text>[0]) == sizeof(unichar)};

template <FixedString Text>
BRINDLE_LOCAL inline constexpr NSString literal{Adopt{}, &literalRecord<Text>};

}  // namespace detail

/// A constant string, from UTF-8. The same text is the same object within a library; usable for
/// exported constants: `constinit const NSString kKey = "key"_ns;`.
template <FixedString Text>
constexpr const NSString& operator""_ns() noexcept {
  return detail::literal<Text>;
}

inline NSString::NSString(std::string_view utf8)
    : NSString(Adopt{}, detail::stringFromUtf8(utf8.data(), utf8.size())) {}
inline NSString::NSString(const std::string& utf8) : NSString(std::string_view(utf8)) {}
inline NSString::NSString(const char* utf8)
    : NSString(Adopt{}, utf8 == nullptr
                            ? nullptr
                            : detail::stringFromUtf8(utf8, std::char_traits<char>::length(utf8))) {}

inline NSString id::description() const { return send<"description", NSString>(*this); }
inline NSString id::debugDescription() const { return send<"debugDescription", NSString>(*this); }

/// Writes the object's description; "(null)" for nil.
BRINDLE_PLATFORM_EXPORT std::ostream& operator<<(std::ostream& stream, const id& object);

}  // namespace brindle
