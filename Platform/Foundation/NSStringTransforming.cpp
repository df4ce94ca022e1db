// Strings made from others: joined, replaced, split, trimmed, in another case, read as numbers.
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSCharacterSet.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/CharacterSetAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/StringOptions.h"
#include "Platform/Foundation/Internal/TextCompare.h"
#include "Platform/Foundation/Internal/TextNumbers.h"
#include "Platform/Foundation/Internal/TextUnicode.h"

namespace brindle {
namespace {

using internal::Text;
using internal::TextRange;
using internal::TextView;

// What lies between the matches that `next` finds in the rest of the text.
template <class Next>
NSArray pieces(TextView text, const Next& next) {
  std::vector<id> found;
  for (;;) {
    const std::optional<TextRange> match = next(text);
    if (!match) break;
    found.push_back(detail::makeString(text.sub(0, match->location)));
    text = text.sub(match->end());
  }
  found.push_back(detail::makeString(text));
  return NSArray::arrayWithObjects(found.data(), found.size());
}

constexpr MethodDefinition kMethods[] = {
    method<"stringByAppendingString:">([](const NSString& self, Cmd cmd, const NSString& other) {
      detail::requireArgument(self, cmd.selector, other);
      const detail::StringText start(self);
      Text text(start.view());
      text.append(detail::StringText(other).view());
      return detail::makeString(text);
    }),
    method<"stringByReplacingOccurrencesOfString:withString:">(
        [](const NSString& self, const NSString& target, const NSString& replacement) {
          return self->stringByReplacingOccurrencesOfString(target, replacement, 0,
                                                            {0, self->length()});
        }),
    method<"stringByReplacingOccurrencesOfString:withString:options:range:">(
        [](const NSString& self, Cmd cmd, const NSString& target, const NSString& replacement,
           NSStringCompareOptions options, NSRange range) -> NSString {
          detail::requireArgument(self, cmd.selector, target);
          detail::requireArgument(self, cmd.selector, replacement);
          detail::requireOptions(self, cmd.selector, options);
          const detail::StringText original(self);
          detail::requireRange(self, cmd.selector, range, original.view().size());
          Text text(original.view());
          const std::size_t count = internal::replaceMatches(
              text, {range.location, range.length}, detail::StringText(target),
              detail::StringText(replacement), detail::textOptions(options));
          return count == 0 ? self->copy() : detail::makeString(text);
        }),
    method<"stringByReplacingCharactersInRange:withString:">(
        [](const NSString& self, Cmd cmd, NSRange range, const NSString& replacement) {
          detail::requireArgument(self, cmd.selector, replacement);
          const detail::StringText original(self);
          detail::requireRange(self, cmd.selector, range, original.view().size());
          Text text(original.view());
          text.replace({range.location, range.length}, detail::StringText(replacement).view());
          return detail::makeString(text);
        }),
    method<"stringByTrimmingCharactersInSet:">(
        [](const NSString& self, Cmd cmd, const NSCharacterSet& set) {
          detail::requireArgument(self, cmd.selector, set);
          const detail::StringText text(self);
          return detail::makeString(text.view().sub(detail::charactersOf(set).trimmed(text)));
        }),
    method<"componentsSeparatedByString:">(
        [](const NSString& self, Cmd cmd, const NSString& separator) {
          detail::requireArgument(self, cmd.selector, separator);
          const detail::StringText text(self);
          const detail::StringText wanted(separator);
          return pieces(text, [&wanted](TextView rest) {
            return internal::findText(rest, wanted, {.literal = true});
          });
        }),
    method<"componentsSeparatedByCharactersInSet:">(
        [](const NSString& self, Cmd cmd, const NSCharacterSet& set) {
          detail::requireArgument(self, cmd.selector, set);
          const detail::StringText text(self);
          const internal::CharacterSet& characters = detail::charactersOf(set);
          return pieces(
              text, [&characters](TextView rest) { return characters.find(rest, false, false); });
        }),

    method<"uppercaseString">([](const NSString& self) {
      return detail::makeString(internal::uppercaseText(detail::StringText(self)));
    }),
    method<"lowercaseString">([](const NSString& self) {
      return detail::makeString(internal::lowercaseText(detail::StringText(self)));
    }),
    method<"capitalizedString">([](const NSString& self) {
      return detail::makeString(internal::capitalizedText(detail::StringText(self)));
    }),

    method<"intValue">([](const NSString& self) -> int {
      return internal::integer32FromText(detail::StringText(self));
    }),
    method<"integerValue">([](const NSString& self) -> NSInteger {
      return internal::integer64FromText(detail::StringText(self));
    }),
    method<"longLongValue">([](const NSString& self) -> long long {
      return internal::integer64FromText(detail::StringText(self));
    }),
    method<"floatValue">(
        [](const NSString& self) { return static_cast<float>(self->doubleValue()); }),
    method<"doubleValue">(
        [](const NSString& self) { return internal::doubleFromText(detail::StringText(self)); }),
    method<"boolValue">(
        [](const NSString& self) { return internal::booleanFromText(detail::StringText(self)); }),
};

}  // namespace

constinit const CategoryDefinition detail::kNSStringTransforming{
    .name = "NSStringTransforming", .cls = &NSString::classPair.cls, .methods = kMethods};

NSArray NSString::componentsSeparatedByString(const NSString& separator) const {
  return send<"componentsSeparatedByString:", NSArray>(*this, separator);
}
NSArray NSString::componentsSeparatedByCharactersInSet(const NSCharacterSet& separators) const {
  return send<"componentsSeparatedByCharactersInSet:", NSArray>(*this, separators);
}
NSString NSString::stringByTrimmingCharactersInSet(const NSCharacterSet& set) const {
  return send<"stringByTrimmingCharactersInSet:", NSString>(*this, set);
}

}  // namespace brindle
