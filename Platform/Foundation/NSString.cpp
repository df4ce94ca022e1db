#include <Brindle/Platform/NSString.h>

#include <cstdlib>
#include <cstring>
#include <new>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Runtime/Internal/Life.h"
#include "Platform/Runtime/Internal/Raise.h"

namespace brindle {
namespace {

using internal::TextView;

// An object's contents own their units when an initialiser put them there; otherwise the units lie
// behind the object, in a literal, or in a mutable string's own storage.
struct Fields : detail::StringContents {
  Fields() = default;
  Fields(const Fields&) = delete;
  Fields& operator=(const Fields&) = delete;
  ~Fields() { dropUnits(); }

  void dropUnits() noexcept {
    if (ownsUnits) std::free(const_cast<void*>(units));  // NOLINT: from malloc
    ownsUnits = false;
    // Nobody else has it while it is made or ends: no exchange, which would cost as much as the
    // rest.
    if (const char* bytes = utf8.load(std::memory_order_acquire)) {
      std::free(const_cast<char*>(bytes));  // NOLINT: from malloc
      utf8.store(nullptr, std::memory_order_relaxed);
    }
    hash.store(0, std::memory_order_relaxed);
  }
};

std::size_t bytesFor(TextView text, bool wide) {
  return (text.size() + 1) * (wide ? sizeof(char16_t) : 1);
}

// Copies text to memory of that many bytes, with a zero unit behind it.
void copyUnits(void* memory, TextView text, bool wide) {
  if (wide) {
    auto* units = static_cast<char16_t*>(memory);
    text.copyTo(units);
    units[text.size()] = 0;
  } else {
    auto* bytes = static_cast<unsigned char*>(memory);
    text.visit([bytes](auto units) { std::copy(units.begin(), units.end(), bytes); });
    bytes[text.size()] = 0;
  }
}

void setContents(detail::StringContents& contents, const void* units, TextView text, bool wide) {
  contents.units = units;
  contents.length = text.size();
  contents.isWide = wide;
}

NSUInteger hashOf(const NSString& self) {
  if (!detail::isLibraryString(self.record())) return detail::StringText(self).view().hash();
  detail::StringContents& contents = detail::contentsOf(self.record());
  std::size_t hash = contents.hash.load(std::memory_order_relaxed);
  if (hash == 0) {
    hash = detail::textIn(contents).hash();
    contents.hash.store(hash, std::memory_order_relaxed);
  }
  return hash;
}

bool areEqual(const NSString& self, const NSString& other) {
  if (self == other) return true;
  if (!other) return false;
  return detail::StringText(self).view() == detail::StringText(other).view();
}

NSString substring(const NSString& self, NSRange range) {
  return detail::makeString(detail::StringText(self).view().sub(range.location, range.length));
}

// The range of a text may be anywhere in it: nothing is added up before it is known to be there.
NSRange from(NSUInteger index, NSUInteger length) { return {index, length - index}; }

constexpr MethodDefinition kMethods[] = {
    classMethod<"string">([](const Class& self) { return detail::makeStringOfClass(self, {}); }),
    classMethod<"stringWithString:">([](const Class& self, Cmd cmd, const NSString& string) {
      detail::requireArgument(self, cmd.selector, string);
      return detail::makeStringOfClass(self, detail::StringText(string));
    }),
    classMethod<"stringWithCharacters:length:">(
        [](const Class& self, const unichar* units, NSUInteger length) {
          return detail::makeStringOfClass(self, TextView::utf16({units, length}));
        }),

    method<"initWithString:">([](const NSString& self, Cmd cmd, const NSString& string) -> id {
      detail::requireArgument(self, cmd.selector, string);
      detail::setText(self, detail::StringText(string));
      return self;
    }),
    method<"initWithCharacters:length:">(
        [](const NSString& self, const unichar* units, NSUInteger length) -> id {
          detail::setText(self, TextView::utf16({units, length}));
          return self;
        }),

    method<"length">([](const NSString& self) -> NSUInteger {
      return detail::contentsOf(self.record()).length;
    }),
    method<"characterAtIndex:">([](const NSString& self, Cmd cmd, NSUInteger index) -> unichar {
      const TextView text = detail::textIn(detail::contentsOf(self.record()));
      if (index >= text.size()) detail::raiseBeyond(self, cmd.selector, index, text.size());
      return text[index];
    }),
    method<"getCharacters:range:">(
        [](const NSString& self, Cmd cmd, unichar* buffer, NSRange range) {
          if (detail::isLibraryString(self.record())) {
            const TextView text = detail::textIn(detail::contentsOf(self.record()));
            detail::requireRange(self, cmd.selector, range, text.size());
            return text.sub(range.location, range.length).copyTo(buffer);
          }
          detail::requireRange(self, cmd.selector, range, self->length());
          for (NSUInteger i = 0; i < range.length; ++i) {
            buffer[i] = self->characterAtIndex(range.location + i);
          }
        }),

    method<"substringFromIndex:">([](const NSString& self, Cmd cmd, NSUInteger index) {
      const NSUInteger length = self->length();
      detail::requireIndex(self, cmd.selector, index, length);
      return substring(self, from(index, length));
    }),
    method<"substringToIndex:">([](const NSString& self, Cmd cmd, NSUInteger index) {
      detail::requireIndex(self, cmd.selector, index, self->length());
      return substring(self, {0, index});
    }),
    method<"substringWithRange:">([](const NSString& self, Cmd cmd, NSRange range) {
      detail::requireRange(self, cmd.selector, range, self->length());
      return substring(self, range);
    }),

    method<"isEqual:">([](const NSString& self, const id& other) {
      if (!other) return false;
      if (detail::isLibraryString(other.record())) {
        return areEqual(self, static_cast<const NSString&>(other));
      }
      return self == other || areEqual(self, dynCast<NSString>(other));
    }),
    method<"isEqualToString:">(
        [](const NSString& self, const NSString& other) { return areEqual(self, other); }),
    method<"hash">([](const NSString& self) { return hashOf(self); }),
    method<"description">([](const NSString& self) { return self; }),
    method<"copyWithZone:">([](const NSString& self, NSZone*) { return self; }),
    method<"mutableCopyWithZone:">([](const NSString& self, NSZone*) {
      return detail::makeMutableString(detail::StringText(self));
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying};

constexpr ClassDefinition kDefinition{.name = "NSString",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSString> NSString::classPair{kDefinition};

NSString::operator std::string() const { return internal::utf8FromText(detail::StringText(*this)); }

std::ostream& operator<<(std::ostream& stream, const id& object) {
  if (!object) return stream << "(null)";
  internal::TextBuilder text;
  detail::describeObject(text, object.record());
  return stream << internal::utf8FromText(text);
}

namespace detail {

void StringText::gather(const NSString& string) {
  gathered_.resize(string->length());
  string->getCharacters(gathered_.data(), {0, gathered_.size()});
  view_ = TextView::utf16(gathered_);
}

NSString makeString(TextView text) {
  if (text.empty()) return ""_ns;
  const bool wide = !text.fitsLatin1();
  ClassRecord* cls = &NSString::classPair.cls;
  auto string = adopt<NSString>(createInstance(cls, bytesFor(text, wide)));
  void* memory = reinterpret_cast<char*>(string.record()) + cls->instanceSize;  // NOLINT
  copyUnits(memory, text, wide);
  setContents(contentsOf(string.record()), memory, text, wide);
  return string;
}

id makeStringOfClass(const Class& cls, TextView text) {
  if (cls.record() == &NSString::classPair.cls) return makeString(text);
  if (cls.record() == &NSMutableString::classPair.cls) return makeMutableString(text);
  return send<"initWithString:", id>(send<"alloc", id>(cls), makeString(text));
}

void setText(const NSString& string, TextView text) {
  if (isKindOfMutableString(string.record())) return setMutableText(string, text);
  const bool wide = !text.fitsLatin1();
  void* memory = std::malloc(bytesFor(text, wide));
  if (memory == nullptr) throw std::bad_alloc();
  copyUnits(memory, text, wide);
  auto& fields = static_cast<Fields&>(contentsOf(string.record()));
  fields.dropUnits();
  setContents(fields, memory, text, wide);
  fields.ownsUnits = true;
}

ObjectRecord* stringFromUtf8(const char* bytes, std::size_t size) {
  const TextView ascii = TextView::latin1({bytes, size});
  if (ascii.isAscii()) return makeString(ascii).leak();
  return makeString(internal::textFromUtf8Replacing({bytes, size})).leak();
}

void requireIndex(const id& self, SEL selector, NSUInteger index, NSUInteger length) {
  if (index > length) raiseBeyond(self, selector, index, length);
}

void raiseBeyond(const id& self, SEL selector, NSUInteger index, NSUInteger length) {
  raiseIn("NSRangeException", self, selector,
          "index " + std::to_string(index) + " beyond the end of a string of length " +
              std::to_string(length));
}

void requireRange(const id& self, SEL selector, NSRange range, NSUInteger length) {
  if (range.location <= length && range.length <= length - range.location) return;
  raiseIn("NSRangeException", self, selector,
          "range {" + std::to_string(range.location) + ", " + std::to_string(range.length) +
              "} beyond the end of a string of length " + std::to_string(length));
}

}  // namespace detail
}  // namespace brindle
