#include "Tests/Platform/Runtime/RuntimeTesting.h"

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <utility>

#include <Brindle/Platform/Field.h>

namespace brindle {
namespace {

std::atomic<int> living{0};
std::mutex endedLock;
std::string endedTags;

struct MortalFields {
  int tag = 0;
  Field<id> held;

  MortalFields() { ++living; }
  MortalFields(const MortalFields&) = delete;
  MortalFields& operator=(const MortalFields&) = delete;
  ~MortalFields() {
    --living;
    if (tag == 0) return;
    const std::lock_guard guard(endedLock);
    endedTags += std::to_string(tag) + " ";
  }
};

MortalFields& fields(const Mortal& self) { return fieldsOf<MortalFields>(self); }

constexpr MethodDefinition kMortalMethods[] = {
    method<"tag">([](const Mortal& self) { return fields(self).tag; }),
    method<"setTag:">([](const Mortal& self, int tag) { fields(self).tag = tag; }),
    method<"held">([](const Mortal& self) -> id { return fields(self).held; }),
    method<"setHeld:">([](const Mortal& self, const id& held) { fields(self).held = held; }),
};
constexpr ClassDefinition kMortal{
    .name = "Mortal", .methods = kMortalMethods, .fields = fieldsDefinition<MortalFields>()};

struct EnderFields {
  std::function<void(const Ender&)> atEnd;
};

constexpr MethodDefinition kEnderMethods[] = {
    method<"dealloc">([](const Ender& self) {
      const auto atEnd = std::move(fieldsOf<EnderFields>(self).atEnd);
      if (atEnd) atEnd(self);
      sendSuper<Ender, "dealloc">(self);
    }),
};
constexpr ClassDefinition kEnder{
    .name = "Ender", .methods = kEnderMethods, .fields = fieldsDefinition<EnderFields>()};

std::atomic<int> names{0};

}  // namespace

constinit ClassPair<Mortal> Mortal::classPair{kMortal};
constinit ClassPair<Ender> Ender::classPair{kEnder};

int Mortal::living() { return brindle::living; }

std::string Mortal::ended() {
  const std::lock_guard guard(endedLock);
  return std::exchange(endedTags, "");
}

Ender Ender::with(std::function<void(const Ender&)> atEnd, int tag) {
  Ender made = new_();
  made->setTag(tag);
  fieldsOf<EnderFields>(made).atEnd = std::move(atEnd);
  return made;
}

Ender Ender::raising(const char* text, int tag) {
  return with([text](const Ender&) { throw std::runtime_error(text); }, tag);
}

std::string uniqueName(const std::string& prefix) { return prefix + std::to_string(++names); }

Class makeClass(Class superclass, const std::string& prefix) {
  const Class made = objc_allocateClassPair(superclass, uniqueName(prefix).c_str(), 0);
  objc_registerClassPair(made);
  return made;
}

SEL uniqueSelector(const std::string& prefix) {
  return sel_registerName(uniqueName(prefix).c_str());
}

}  // namespace brindle
