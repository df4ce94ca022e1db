// How the string classes reach the text of a string, whoever wrote its class.
#pragma once

#include <atomic>
#include <string>

#include <Brindle/Platform/ConstantString.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/TextBuilder.h"

namespace brindle::detail {

/// The storage of a string: whether it is the library's own and what lies in it can be trusted to
/// be its text.
inline StringContents& contentsOf(ObjectRecord* record) noexcept {
  return static_cast<StringRecord*>(record)->contents;
}
inline bool isImmutableLibraryString(ObjectRecord* record) noexcept {
  return record->isa.load(std::memory_order_acquire) == &NSString::classPair.cls;
}
inline bool isLibraryString(ObjectRecord* record) noexcept {
  return isImmutableLibraryString(record) ||
         record->isa.load(std::memory_order_acquire) == &NSMutableString::classPair.cls;
}
inline internal::TextView textIn(const StringContents& contents) noexcept {
  if (contents.isWide) {
    return internal::TextView::utf16(
        {static_cast<const char16_t*>(contents.units), contents.length});
  }
  return internal::TextView::latin1({static_cast<const char*>(contents.units), contents.length});
}

/// The text of a string for the time of a call. The library's own strings lend their storage;
/// others are asked for their characters. Empty for nil. The string must not change meanwhile.
class StringText {
 public:
  explicit StringText(const NSString& string) {
    ObjectRecord* record = string.record();
    if (record == nullptr) return;
    if (isLibraryString(record)) {
      view_ = textIn(contentsOf(record));
    } else {
      gather(string);
    }
  }
  StringText(const StringText&) = delete;
  StringText& operator=(const StringText&) = delete;

  operator internal::TextView() const noexcept { return view_; }  // NOLINT: it is that text
  [[nodiscard]] internal::TextView view() const noexcept { return view_; }

 private:
  void gather(const NSString& string);

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

/// Gives a mutable string its text, from NSMutableString's initialisers.
bool isKindOfMutableString(ObjectRecord* record) noexcept;
void setMutableText(const NSString& string, internal::TextView text);

/// Appends the text of any object: its description, "(null)" where that is nil.
void describeObject(internal::TextBuilder& target, const void* object);

[[noreturn]] void raiseBeyond(const id& self, SEL selector, NSUInteger index, NSUInteger length);
/// Raise NSRangeException beyond the end.
void requireIndex(const id& self, SEL selector, NSUInteger index, NSUInteger length);
void requireRange(const id& self, SEL selector, NSRange range, NSUInteger length);

}  // namespace brindle::detail
