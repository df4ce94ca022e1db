#include <Brindle/Platform/NSNull.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

constinit ObjectRecord theNull(&NSNull::classPair.cls, detail::kCountImmortal, 0);

NSNull theOnlyOne() { return NSNull(Adopt{}, &theNull); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"null">([](const Class&) { return theOnlyOne(); }),
    classMethod<"allocWithZone:">([](const Class&, NSZone*) -> id { return theOnlyOne(); }),
    method<"copyWithZone:">([](const NSNull& self, NSZone*) -> id { return self; }),
    method<"description">([](const NSNull&) -> NSString { return "<null>"_ns; }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying};

constexpr ClassDefinition kDefinition{
    .name = "NSNull", .methods = kMethods, .protocols = kProtocols};

}  // namespace

constinit ClassPair<NSNull> NSNull::classPair{kDefinition};

}  // namespace brindle
