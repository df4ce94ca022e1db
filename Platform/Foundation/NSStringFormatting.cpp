// Strings filled from formats, and what every object says of itself.
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/TextFormat.h"

namespace brindle {
namespace {

using internal::TextView;

/// The text of a filled format.
class Filled : public internal::TextBuilder {
 public:
  Filled(const NSString& format, FormatArguments arguments) {
    internal::formatText(*this, detail::StringText(format), arguments.list,
                         &detail::describeObject);
  }
};

NSString plainDescription(const id& self) {
  return NSString::stringWithFormat("<%@: %p>"_ns, NSStringFromClass(classOf(self)), self);
}

constexpr MethodDefinition kStringMethods[] = {
    classMethod<"stringWithFormat:">([](const Class& self, Cmd cmd, const NSString& format,
                                        const FormatArguments& arguments) -> id {
      detail::requireArgument(self, cmd.selector, format);
      return detail::makeStringOfClass(self, Filled(format, arguments));
    }),
    method<"initWithFormat:">([](const NSString& self, Cmd cmd, const NSString& format,
                                 const FormatArguments& arguments) -> id {
      detail::requireArgument(self, cmd.selector, format);
      return self->initWithString(detail::makeString(Filled(format, arguments)));
    }),
    method<"stringByAppendingFormat:">([](const NSString& self, Cmd cmd, const NSString& format,
                                          const FormatArguments& arguments) {
      detail::requireArgument(self, cmd.selector, format);
      internal::TextBuilder text;
      text.append(detail::StringText(self).view());
      text.append(Filled(format, arguments));
      return detail::makeString(text);
    }),
};

constexpr MethodDefinition kObjectMethods[] = {
    method<"description">([](const NSObject& self) { return plainDescription(self); }),
    method<"debugDescription">([](const NSObject& self) { return self->description(); }),
    classMethod<"description">([](const Class& self) { return NSStringFromClass(self); }),
};

constexpr MethodDefinition kProxyMethods[] = {
    method<"description">([](const NSProxy& self) { return plainDescription(self); }),
    method<"debugDescription">(
        [](const NSProxy& self) { return send<"description", NSString>(self); }),
    classMethod<"description">([](const Class& self) { return NSStringFromClass(self); }),
    classMethod<"debugDescription">([](const Class& self) { return NSStringFromClass(self); }),
};

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSStringFormatting{
    .name = "NSStringFormatting", .cls = &NSString::classPair.cls, .methods = kStringMethods};
constinit const CategoryDefinition kNSObjectDescriptions{
    .name = "NSObjectDescriptions", .cls = &NSObject::classPair.cls, .methods = kObjectMethods};
constinit const CategoryDefinition kNSProxyDescriptions{
    .name = "NSProxyDescriptions", .cls = &NSProxy::classPair.cls, .methods = kProxyMethods};

NSString formatString(const NSString& format, std::span<const FormatArgument> arguments) {
  return makeString(Filled(format, {arguments}));
}

void describeObject(internal::TextBuilder& target, const void* object) {
  // Lent by the caller for as long as this takes.
  auto* record = static_cast<ObjectRecord*>(const_cast<void*>(object));  // NOLINT
  const Lent<id> lent(record);
  const auto description = send<"description", NSString>(lent.reference);
  target.append(description ? StringText(description).view() : TextView::latin1("(null)"));
}

}  // namespace detail
}  // namespace brindle
