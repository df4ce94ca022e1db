#include "Tests/Source/AwakeTesting.h"

#include <utility>

#include <Brindle/Platform/Field.h>

#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {
namespace {

std::string& story() {
  static auto& text = *new std::string;
  return text;
}

struct PlainFields {
  int count = 7;
};

constexpr MethodDefinition kPlainMethods[] = {
    method<"count">([](const Plain& self) { return fieldsOf<PlainFields>(self).count; }),
};
constexpr ClassDefinition kPlain{
    .name = "Plain", .methods = kPlainMethods, .fields = fieldsDefinition<PlainFields>()};

struct WakingFields {
  Field<NSString> name;
  int count = 3;
};

constexpr MethodDefinition kWakingMethods[] = {
    method<"init">([](const Waking& self) -> id {
      happens("init");
      return sendSuper<Waking, "init", id>(self);
    }),
    method<"initWithName:">([](const Waking& self, const NSString& name) -> id {
      fieldsOf<WakingFields>(self).name = name;
      happens(name->UTF8String());
      return sendSuper<Waking, "init", id>(self);
    }),
    method<"initElsewhere">([](const Waking&) -> id {
      const Waking other = Waking::alloc()->initWithName("other"_ns);
      happens("elsewhere");
      return other;
    }),
    method<"initRaising">([](const Waking&) -> id {
      NSException::raise("WakingException"_ns, "no initialising today"_ns);
    }),
    method<"awake">([](const Waking& self) {
      const NSString name = fieldsOf<WakingFields>(self).name;
      happens(name ? std::string("awake") + name->UTF8String() : "awake");
    }),
    method<"count">([](const Waking& self) { return fieldsOf<WakingFields>(self).count; }),
};
constexpr ClassDefinition kWaking{
    .name = "Waking", .methods = kWakingMethods, .fields = fieldsDefinition<WakingFields>()};

constexpr ClassDefinition kMiddle{.name = "Middle"};

constexpr MethodDefinition kBottomMethods[] = {
    method<"awake">([](const Bottom&) { happens("awakeBottom"); }),
};
constexpr ClassDefinition kBottom{.name = "Bottom", .methods = kBottomMethods};

}  // namespace

std::string happened() { return std::exchange(story(), ""); }

void happens(const std::string& what) {
  if (!story().empty()) story() += ' ';
  story() += what;
}

constinit ClassPair<Plain> Plain::classPair{kPlain};
constinit ClassPair<Waking> Waking::classPair{kWaking};
constinit ClassPair<Middle> Middle::classPair{kMiddle};
constinit ClassPair<Bottom> Bottom::classPair{kBottom};

}  // namespace brindle
