// Observing a model: a view that is always right, without the model knowing of it.
#include <iostream>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Observation.h>

using namespace brindle;

/// A thermostat. One thread at a time.
class Thermostat : public Interface<Thermostat, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Thermostat> classPair;

  double celsius() const { return send<"celsius", double>(*this); }
  void setCelsius(double degrees) const { send<"setCelsius:">(*this, degrees); }
  /// The temperature in words.
  NSString display() const { return send<"display", NSString>(*this); }
};

namespace {

struct Fields {
  double celsius = 20;
};

constexpr MethodDefinition kMethods[] = {
    method<"celsius">([](const Thermostat& self) { return fieldsOf<Fields>(self).celsius; }),
    method<"setCelsius:">(
        [](const Thermostat& self, double degrees) { fieldsOf<Fields>(self).celsius = degrees; }),
    method<"display">([](const Thermostat& self) -> NSString {
      return NSString::stringWithFormat("%.1f degrees"_ns, self->celsius());
    }),
    // A change of the one is a change of the other.
    classMethod<"keyPathsForValuesAffectingDisplay">(
        [](const ClassOf<Thermostat>&) { return NSSet::setWithObject("celsius"_ns); }),
};
constexpr ClassDefinition kDefinition{
    .name = "Thermostat", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Thermostat> Thermostat::classPair{kDefinition};

int main() {
  const Thermostat thermostat = Thermostat::new_();
  std::string shown;
  double step = 0;
  {
    // Each token observes until it goes.
    const Observation view = observe<std::string>(
        thermostat, "display"_ns, [&shown](const std::string& old, const std::string& now) {
          std::cout << "the view shows " << now << ", not " << old << '\n';
          shown = now;
        });
    const Observation heating = observe<double>(
        thermostat, "celsius"_ns, [&step](double old, double now) { step = now - old; });
    thermostat->setCelsius(21.5);  // an ordinary setter
    std::cout << "the heating goes up by " << step << '\n';
  }
  thermostat->setCelsius(30);
  std::cout << "nobody looks: " << thermostat->display() << '\n';
  return shown == "21.5 degrees" && step == 1.5 ? 0 : 1;
}
