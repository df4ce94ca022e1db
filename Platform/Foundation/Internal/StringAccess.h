// How the string classes reach the text of a string, whoever wrote its class.
#pragma once

#include <string>

#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/Text.h"

namespace brindle::detail {

/// The text of a string for the time of a call. The library's own strings lend their storage;
/// others are asked for their characters. Empty for nil. The string must not change meanwhile.
class StringText {
 public:
  explicit StringText(const NSString& string);
  StringText(const StringText&) = delete;
  StringText& operator=(const StringText&) = delete;

  operator internal::TextView() const noexcept { return view_; }  // NOLINT: it is that text
  [[nodiscard]] internal::TextView view() const noexcept { return view_; }

 private:
  std::u16string gathered_;
  internal::TextView view_;
};

/// A new immutable string; the shared one when it is empty.
NSString makeString(internal::TextView text);
/// A new mutable string.
id makeMutableString(internal::TextView text);
/// A string of the receiving class, as its class operations make it.
id makeStringOfClass(const Class& cls, internal::TextView text);
/// Gives a string object its text, in an initialiser.
void setText(const NSString& string, internal::TextView text);

/// The storage of a string: whether it is the library's own and what lies in it can be trusted to
/// be its text.
StringContents& contentsOf(ObjectRecord* record) noexcept;
bool isLibraryString(ObjectRecord* record) noexcept;
bool isImmutableLibraryString(ObjectRecord* record) noexcept;
internal::TextView textIn(const StringContents& contents) noexcept;

/// Gives a mutable string its text, from NSMutableString's initialisers.
bool isKindOfMutableString(ObjectRecord* record) noexcept;
void setMutableText(const NSString& string, internal::TextView text);

/// Appends the text of any object: its description, "(null)" where that is nil.
void describeObject(internal::Text& target, const void* object);

[[noreturn]] void raiseBeyond(const id& self, SEL selector, NSUInteger index, NSUInteger length);
/// Raise NSRangeException beyond the end.
void requireIndex(const id& self, SEL selector, NSUInteger index, NSUInteger length);
void requireRange(const id& self, SEL selector, NSRange range, NSUInteger length);

}  // namespace brindle::detail
