#include <Brindle/Platform/NSMutableString.h>

#include <algorithm>

#include <Brindle/Platform/Definition.h>

#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/StringOptions.h"
#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using internal::Text;
using internal::TextView;

// The inherited contents look at this text, so that mutable strings are read like immutable ones.
struct Fields {
  Text text;
};

// More is given only when it is needed: a capacity is a hint, and nobody has checked it.
constexpr NSUInteger kGreatestReserve = 1U << 20U;

void lookAtText(const NSMutableString& self, const Text& text) {
  detail::StringContents& contents = detail::contentsOf(self.record());
  const TextView view = text;
  contents.isWide = !view.isNarrow();
  contents.units = contents.isWide ? static_cast<const void*>(view.units().data())
                                   : static_cast<const void*>(view.bytes().data());
  contents.length = view.size();
  contents.hash.store(0, std::memory_order_relaxed);
}

template <class Change>
void changeText(const NSMutableString& self, const Change& change) {
  Text& text = fieldsOf<Fields>(self).text;
  change(text);
  lookAtText(self, text);
}

bool ownsItsText(const NSMutableString& self) { return detail::isLibraryString(self.record()); }

// `string` may be the receiver: text replaces a part of itself rightly.
void append(const NSMutableString& self, const NSString& string) {
  if (!ownsItsText(self)) {
    return self->replaceCharactersInRange({self->length(), 0}, string);
  }
  const detail::StringText appended(string);
  changeText(self, [&appended](Text& text) { text.append(appended.view()); });
}

NSUInteger replaceOccurrences(const NSMutableString& self, const NSString& target,
                              const NSString& replacement, NSStringCompareOptions options,
                              NSRange range) {
  Text text(detail::StringText(self).view());
  const NSUInteger before = text.size();
  const detail::StringText wanted(target);
  const detail::StringText with(replacement);
  const std::size_t count = internal::replaceMatches(text, {range.location, range.length}, wanted,
                                                     with, detail::textOptions(options));
  if (count > 0) self->replaceCharactersInRange({0, before}, detail::makeString(text));
  return count;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"stringWithCapacity:">([](const Class& self, NSUInteger capacity) -> id {
      return send<"initWithCapacity:", id>(send<"alloc", id>(self), capacity);
    }),
    method<"initWithCapacity:">([](const NSMutableString& self, NSUInteger capacity) -> id {
      changeText(self, [capacity](Text& text) {
        text.reserve(static_cast<std::size_t>(std::min(capacity, kGreatestReserve)));
      });
      return self;
    }),
    method<"replaceCharactersInRange:withString:">(
        [](const NSMutableString& self, Cmd cmd, NSRange range, const NSString& string) {
          detail::requireArgument(self, cmd.selector, string);
          const detail::StringText replacement(string);
          changeText(self, [&](Text& text) {
            detail::requireRange(self, cmd.selector, range, text.size());
            text.replace({range.location, range.length}, replacement.view());
          });
        }),
    method<"appendString:">([](const NSMutableString& self, Cmd cmd, const NSString& string) {
      detail::requireArgument(self, cmd.selector, string);
      append(self, string);
    }),
    method<"appendFormat:">([](const NSMutableString& self, Cmd cmd, const NSString& format,
                               const FormatArguments& arguments) {
      detail::requireArgument(self, cmd.selector, format);
      append(self, detail::formatString(format, arguments.list));
    }),
    method<"insertString:atIndex:">(
        [](const NSMutableString& self, Cmd cmd, const NSString& string, NSUInteger index) {
          detail::requireArgument(self, cmd.selector, string);
          detail::requireIndex(self, cmd.selector, index, self->length());
          self->replaceCharactersInRange({index, 0}, string);
        }),
    method<"deleteCharactersInRange:">([](const NSMutableString& self, Cmd cmd, NSRange range) {
      detail::requireRange(self, cmd.selector, range, self->length());
      self->replaceCharactersInRange(range, ""_ns);
    }),
    method<"setString:">([](const NSMutableString& self, Cmd cmd, const NSString& string) {
      detail::requireArgument(self, cmd.selector, string);
      self->replaceCharactersInRange({0, self->length()}, string);
    }),
    method<"replaceOccurrencesOfString:withString:options:range:">(
        [](const NSMutableString& self, Cmd cmd, const NSString& target,
           const NSString& replacement, NSStringCompareOptions options,
           NSRange range) -> NSUInteger {
          detail::requireArgument(self, cmd.selector, target);
          detail::requireArgument(self, cmd.selector, replacement);
          detail::requireOptions(self, cmd.selector, options);
          detail::requireRange(self, cmd.selector, range, self->length());
          return replaceOccurrences(self, target, replacement, options, range);
        }),
    method<"copyWithZone:">([](const NSMutableString& self, NSZone*) {
      return detail::makeString(detail::StringText(self));
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSMutableString", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSMutableString> NSMutableString::classPair{kDefinition};

namespace detail {

id makeMutableString(TextView text) {
  auto string = adopt<NSMutableString>(createInstance(&NSMutableString::classPair.cls, 0));
  setMutableText(string, text);
  return string;
}

bool isKindOfMutableString(ObjectRecord* record) noexcept {
  const ClassRecord* cls = record->isa.load(std::memory_order_acquire);
  while (cls != nullptr && cls != &NSMutableString::classPair.cls) cls = cls->superclass;
  return cls != nullptr;
}

void setMutableText(const NSString& string, TextView text) {
  changeText(uncheckedCast<NSMutableString>(string), [text](Text& own) {
    own.replace({0, own.size()}, text);
  });
}

}  // namespace detail
}  // namespace brindle
