// Comparing strings and finding one in another.
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/CharacterSetAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/StringOptions.h"
#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle {
namespace {

using internal::TextRange;

NSComparisonResult result(int order) { return static_cast<NSComparisonResult>(order); }

NSRange wholeOf(const NSString& string) { return {0, string->length()}; }

NSRange found(std::optional<TextRange> match, NSUInteger offset) {
  if (!match) return {static_cast<NSUInteger>(NSNotFound), 0};
  return {offset + match->location, match->length};
}

std::string userLanguage() { return std::string(NSLocale::currentLocale()->localeIdentifier()); }

NSComparisonResult compareLocalized(const NSString& self, const NSString& other,
                                    bool caseInsensitive) {
  return result(internal::compareInLocale(detail::StringText(self), detail::StringText(other),
                                          userLanguage(), caseInsensitive));
}

constexpr internal::TextOptions kLiteralPrefix{.literal = true, .anchored = true};
constexpr internal::TextOptions kLiteralSuffix{
    .literal = true, .backwards = true, .anchored = true};

constexpr MethodDefinition kMethods[] = {
    method<"compare:">([](const NSString& self, const NSString& other) {
      return self->compare(other, 0, wholeOf(self));
    }),
    method<"compare:options:">(
        [](const NSString& self, const NSString& other, NSStringCompareOptions options) {
          return self->compare(other, options, wholeOf(self));
        }),
    method<"compare:options:range:">([](const NSString& self, Cmd cmd, const NSString& other,
                                        NSStringCompareOptions options, NSRange range) {
      detail::requireOptions(self, cmd.selector, options);
      const detail::StringText text(self);
      detail::requireRange(self, cmd.selector, range, text.view().size());
      if (!other) return NSOrderedDescending;
      return result(internal::compareText(text.view().sub(range.location, range.length),
                                          detail::StringText(other), detail::textOptions(options)));
    }),
    method<"caseInsensitiveCompare:">([](const NSString& self, const NSString& other) {
      return self->compare(other, NSCaseInsensitiveSearch);
    }),
    method<"localizedCompare:">([](const NSString& self, const NSString& other) {
      return compareLocalized(self, other, false);
    }),
    method<"localizedCaseInsensitiveCompare:">([](const NSString& self, const NSString& other) {
      return compareLocalized(self, other, true);
    }),

    method<"hasPrefix:">([](const NSString& self, Cmd cmd, const NSString& prefix) {
      detail::requireArgument(self, cmd.selector, prefix);
      return internal::findText(detail::StringText(self), detail::StringText(prefix),
                                kLiteralPrefix)
          .has_value();
    }),
    method<"hasSuffix:">([](const NSString& self, Cmd cmd, const NSString& suffix) {
      detail::requireArgument(self, cmd.selector, suffix);
      return internal::findText(detail::StringText(self), detail::StringText(suffix),
                                kLiteralSuffix)
          .has_value();
    }),
    method<"containsString:">([](const NSString& self, const NSString& other) {
      return self->rangeOfString(other).location != static_cast<NSUInteger>(NSNotFound);
    }),
    method<"rangeOfString:">([](const NSString& self, const NSString& other) {
      return self->rangeOfString(other, 0, wholeOf(self));
    }),
    method<"rangeOfString:options:">(
        [](const NSString& self, const NSString& other, NSStringCompareOptions options) {
          return self->rangeOfString(other, options, wholeOf(self));
        }),
    method<"rangeOfString:options:range:">([](const NSString& self, Cmd cmd, const NSString& other,
                                              NSStringCompareOptions options, NSRange range) {
      detail::requireArgument(self, cmd.selector, other);
      detail::requireOptions(self, cmd.selector, options);
      const detail::StringText text(self);
      detail::requireRange(self, cmd.selector, range, text.view().size());
      return found(internal::findText(text.view().sub(range.location, range.length),
                                      detail::StringText(other), detail::textOptions(options)),
                   range.location);
    }),
    method<"rangeOfCharacterFromSet:">([](const NSString& self, const NSCharacterSet& set) {
      return self->rangeOfCharacterFromSet(set, 0, wholeOf(self));
    }),
    method<"rangeOfCharacterFromSet:options:">(
        [](const NSString& self, const NSCharacterSet& set, NSStringCompareOptions options) {
          return self->rangeOfCharacterFromSet(set, options, wholeOf(self));
        }),
    method<"rangeOfCharacterFromSet:options:range:">(
        [](const NSString& self, Cmd cmd, const NSCharacterSet& set, NSStringCompareOptions options,
           NSRange range) {
          detail::requireArgument(self, cmd.selector, set);
          detail::requireOptions(self, cmd.selector, options);
          const detail::StringText text(self);
          detail::requireRange(self, cmd.selector, range, text.view().size());
          return found(detail::charactersOf(set).find(text.view().sub(range.location, range.length),
                                                      (options & NSBackwardsSearch) != 0,
                                                      (options & NSAnchoredSearch) != 0),
                       range.location);
        }),
};

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSStringSearching{
    .name = "NSStringSearching", .cls = &NSString::classPair.cls, .methods = kMethods};

void requireOptions(const id& self, SEL selector, NSStringCompareOptions options) {
  constexpr NSStringCompareOptions kOffered =
      NSCaseInsensitiveSearch | NSLiteralSearch | NSBackwardsSearch | NSAnchoredSearch |
      NSNumericSearch | NSDiacriticInsensitiveSearch | NSForcedOrderingSearch;
  if ((options & ~kOffered) == 0) return;
  raiseIn("NSInvalidArgumentException", self, selector,
          "options " + std::to_string(options) + " hold one that is not offered");
}

}  // namespace detail

NSRange NSString::rangeOfCharacterFromSet(const NSCharacterSet& set) const {
  return send<"rangeOfCharacterFromSet:", NSRange>(*this, set);
}
NSRange NSString::rangeOfCharacterFromSet(const NSCharacterSet& set,
                                          NSStringCompareOptions options) const {
  return send<"rangeOfCharacterFromSet:options:", NSRange>(*this, set, options);
}
NSRange NSString::rangeOfCharacterFromSet(const NSCharacterSet& set, NSStringCompareOptions options,
                                          NSRange range) const {
  return send<"rangeOfCharacterFromSet:options:range:", NSRange>(*this, set, options, range);
}

}  // namespace brindle
