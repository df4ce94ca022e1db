// Which wire codes belong to an implementation, for checked sends, and how a definition's are read
// from an encoding that is known only while the program runs.
#include <Brindle/Platform/Implementation.h>

#include <cstdio>
#include <cstdlib>

#include <Brindle/Platform/Definition.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle::detail {
namespace {

std::unordered_map<IMP, const char*>& knownLocked() {
  static auto& known = *new std::unordered_map<IMP, const char*>;
  return known;
}

}  // namespace

void noteImplementationLocked(IMP imp, const char* wire) { knownLocked()[imp] = wire; }

void noteImplementation(IMP imp, const char* wire) {
  const std::lock_guard guard(runtimeLock());
  noteImplementationLocked(imp, wire);
}

const char* wireOfImplementationLocked(IMP imp, const char* types) {
  auto found = knownLocked().find(imp);
  if (found != knownLocked().end()) return found->second;
  std::string wire;
  // Text that is no encoding describes nothing that could be checked.
  if (types == nullptr || !wireOfEncoding(types, wire)) return nullptr;
  return internedLocked(wire);
}

void stopForWrongTypes(ObjectRecord* receiver, const MethodRecord* method, const char* types,
                       const char* wire) {
  const ClassRecord* cls = receiver->isa.load(std::memory_order_acquire);
  const char* found = method->wire.load(std::memory_order_acquire);
  std::fprintf(stderr,
               "brindle: %c[%s %s] was sent with the types %s (%s), but its implementation has %s "
               "(%s)\n",
               cls->isMeta ? '+' : '-', cls->name, method->name->name, types, wire,
               method->types.load(), found != nullptr ? found : "");
  std::abort();
}

bool hasFieldsOf(const ObjectRecord* object, const ClassRecord* cls) {
  if (object == nullptr) return false;
  const std::uint32_t flags = object->flags.load(std::memory_order_relaxed);
  // A class has marks there.
  if ((flags & kFlagClass) != 0) return false;
  const ClassData* birth = classOfNumber(flags >> kBirthShift);
  for (const ClassRecord* c = birth != nullptr ? birth->record : nullptr; c != nullptr;
       c = c->superclass) {
    if (c == cls) return true;
  }
  return false;
}

void stopForForeignFields(ObjectRecord* object, const ClassRecord* cls) {
  const ClassRecord* found = object != nullptr ? object->isa.load() : nullptr;
  std::fprintf(
      stderr, "brindle: a method of %s reached for its fields in %s %s, which has none of them\n",
      cls->name, found != nullptr ? "an instance of" : "nil,", found != nullptr ? found->name : "");
  std::abort();
}

void stopForUndefinedFields(const ClassRecord* cls, std::size_t wanted) {
  std::fprintf(
      stderr,
      "brindle: the methods of %s use fields of %zu bytes, but its ClassDefinition has %u: "
      "give it .fields = fieldsDefinition<Fields>()\n",
      cls->name, wanted, cls->definition->fields.size);
  std::abort();
}

}  // namespace brindle::detail
