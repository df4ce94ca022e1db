// What the guides say about a property, from its sender to its description.
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

namespace todo {
using namespace brindle;

// [example: property]
/// Something with a colour.
class Pen : public Interface<Pen, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Pen> classPair;

  /// "black" until set; copied.
  NSString colour() const { return send<"colour", NSString>(*this); }
  void setColour(const NSString& colour) const { send<"setColour:">(*this, colour); }
  /// Puts "light" before the colour.
  void fade() const { send<"fade">(*this); }
};

namespace {

struct PenFields {
  Field<NSString> colour = "black"_ns;
};
PenFields& fields(const Pen& self) { return fieldsOf<PenFields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"colour">([](const Pen& self) -> NSString { return fields(self).colour; }),
    method<"setColour:">(
        [](const Pen& self, const NSString& colour) { fields(self).colour = colour->copy(); }),
    method<"fade">([](const Pen& self) {
      self->setColour("light "_ns->stringByAppendingString(self->colour()));
    }),
};
constexpr PropertyDefinition kProperties[] = {{"colour", "T@\"NSString\",C,N,V_colour"}};
constexpr ClassDefinition kDefinition{.name = "Pen",
                                      .methods = kMethods,
                                      .properties = kProperties,
                                      .fields = fieldsDefinition<PenFields>()};

}  // namespace

constinit ClassPair<Pen> Pen::classPair{kDefinition};
// [end]

namespace {

TEST(PropertyGuide, AProperty) {
  const Pen pen = Pen::new_();
  pen->fade();
  EXPECT_EQ(std::string(pen->colour()), "light black");
  const objc_property_t property = class_getProperty(Pen::class_(), "colour");
  EXPECT_EQ(std::string(property_getAttributes(property)), "T@\"NSString\",C,N,V_colour");
}

}  // namespace
}  // namespace todo
