#include "Tests/Platform/Foundation/StringTesting.h"

#include <utility>

namespace brindle {
namespace {

struct Fields {
  std::u16string units;
};
struct MutableFields {
  std::u16string units;
};

constexpr MethodDefinition kMethods[] = {
    method<"length">(
        [](const ClientString& self) -> NSUInteger { return fieldsOf<Fields>(self).units.size(); }),
    method<"characterAtIndex:">([](const ClientString& self, NSUInteger index) -> unichar {
      return fieldsOf<Fields>(self).units.at(index);
    }),
};

constexpr MethodDefinition kMutableMethods[] = {
    method<"length">([](const ClientMutableString& self) -> NSUInteger {
      return fieldsOf<MutableFields>(self).units.size();
    }),
    method<"characterAtIndex:">([](const ClientMutableString& self, NSUInteger index) -> unichar {
      return fieldsOf<MutableFields>(self).units.at(index);
    }),
    method<"replaceCharactersInRange:withString:">(
        [](const ClientMutableString& self, NSRange range, const NSString& string) {
          std::u16string with(string->length(), u'\0');
          string->getCharacters(with.data(), {0, with.size()});
          fieldsOf<MutableFields>(self).units.replace(range.location, range.length, with);
        }),
};

constexpr ClassDefinition kDefinition{
    .name = "ClientString", .methods = kMethods, .fields = fieldsDefinition<Fields>()};
constexpr ClassDefinition kMutableDefinition{.name = "ClientMutableString",
                                             .methods = kMutableMethods,
                                             .fields = fieldsDefinition<MutableFields>()};

}  // namespace

constinit ClassPair<ClientString> ClientString::classPair{kDefinition};
constinit ClassPair<ClientMutableString> ClientMutableString::classPair{kMutableDefinition};

ClientString ClientString::with(std::u16string units) {
  auto string = ClientString::alloc()->init();
  fieldsOf<Fields>(string).units = std::move(units);
  return string;
}

ClientMutableString ClientMutableString::with(std::u16string units) {
  auto string = ClientMutableString::alloc()->init();
  fieldsOf<MutableFields>(string).units = std::move(units);
  return string;
}

}  // namespace brindle
