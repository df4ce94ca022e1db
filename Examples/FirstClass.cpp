// A class of one's own, from its header page to its use, in one file.
#include <iostream>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSString.h>

using namespace brindle;

/// A counter with a name. One thread at a time.
class Counter : public Interface<Counter, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Counter> classPair;

  /// Initialises a new counter at zero.
  Counter initWithName(const NSString& name) const {
    return send<"initWithName:", Counter>(*this, name);
  }
  NSString name() const { return send<"name", NSString>(*this); }
  NSInteger value() const { return send<"value", NSInteger>(*this); }
  void setValue(NSInteger value) const { send<"setValue:">(*this, value); }
  /// Counts one more and answers the new value.
  NSInteger increment() const { return send<"increment", NSInteger>(*this); }
};

namespace {

struct Fields {
  Field<NSString> name;
  NSInteger value = 0;
};
Fields& fields(const Counter& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"initWithName:">([](const Counter& self, const NSString& name) -> Counter {
      Counter counter = self->init();
      if (counter) fields(counter).name = name->copy();
      return counter;
    }),
    method<"name">([](const Counter& self) -> NSString { return fields(self).name; }),
    method<"value">([](const Counter& self) { return fields(self).value; }),
    method<"setValue:">([](const Counter& self, NSInteger value) { fields(self).value = value; }),
    method<"increment">([](const Counter& self) {
      self->setValue(self->value() + 1);  // by message: observers and overrides take part
      return self->value();
    }),
    method<"description">([](const Counter& self) -> NSString {
      return NSString::stringWithFormat("%@: %ld"_ns, self->name(), self->value());
    }),
};
constexpr PropertyDefinition kProperties[] = {
    {"name", "T@\"NSString\",R,C,N,V_name"},
    {"value", "Tq,N,V_value"},
};
constexpr ClassDefinition kDefinition{.name = "Counter",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Counter> Counter::classPair{kDefinition};

int main() {
  const Counter apples = Counter::alloc()->initWithName("apples"_ns);
  for (int i = 0; i < 3; ++i) apples->increment();
  std::cout << apples << '\n';  // apples: 3

  const Counter none;  // nil: every message answers zero or nil
  std::cout << none->increment() << " of " << none << '\n';

  // What is known by name only while the program runs: the same methods.
  std::cout << send<"increment", NSInteger>(apples) << ", "
            << (apples->respondsToSelector(selector<"decrement">()) ? "can" : "cannot")
            << " count down\n";
  return apples->value() == 4 ? 0 : 1;
}
