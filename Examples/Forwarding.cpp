// A proxy that stands for any object and tells what it is asked, without knowing its class.
#include <iostream>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSInvocation.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSString.h>

using namespace brindle;

/// Stands for an object and prints every message that it passes on.
class Teller : public Interface<Teller, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Teller> classPair;

  static Teller tellerFor(const id& target) { return send<"tellerFor:", Teller>(class_(), target); }
};

namespace {

struct Fields {
  Field<id> target;
};
Fields& fields(const Teller& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    classMethod<"tellerFor:">([](const ClassOf<Teller>& self, const id& target) -> Teller {
      Teller teller = self->alloc();  // a proxy has no `init`
      fields(teller).target = target;
      return teller;
    }),
    // What the arguments are: the target knows.
    method<"methodSignatureForSelector:">([](const Teller& self, SEL s) -> NSMethodSignature {
      return send<"methodSignatureForSelector:", NSMethodSignature>(fields(self).target.get(), s);
    }),
    method<"forwardInvocation:">([](const Teller& self, const NSInvocation& call) {
      std::cout << "  (" << sel_getName(call->selector()) << " with "
                << call->methodSignature()->numberOfArguments() - 2 << " arguments)\n";
      call->invokeWithTarget(fields(self).target);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "Teller", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Teller> Teller::classPair{kDefinition};

int main() {
  const Teller teller = Teller::tellerFor("buy milk"_ns);
  const NSString text = uncheckedCast<NSString>(teller);  // it will do for a string
  const NSUInteger length = text->length();
  const NSString rest = text->substringFromIndex(4);
  std::cout << length << " characters, of which " << rest << '\n';
  std::cout << (isa<NSString>(text) ? "says it is a string" : "says it is no string") << '\n';
  return length == 8 && rest->isEqualToString("milk"_ns) ? 0 : 1;
}
