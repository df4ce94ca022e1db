// Variables, properties and protocols of classes.
#include <Brindle/Platform/Runtime.h>

#include <cstring>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle {

using detail::ClassData;
using detail::realizedLocked;

namespace {

/// Calls `find` with the data of the class and its superclasses until it answers something.
template <class Find>
auto findInChain(Class cls, Find find) -> decltype(find(*static_cast<ClassData*>(nullptr))) {
  const std::lock_guard guard(detail::runtimeLock());
  for (ClassRecord* c = cls.record(); c != nullptr; c = c->superclass) {
    if (auto found = find(*realizedLocked(c))) return found;
  }
  return nullptr;
}

template <class Record>
const Record* named(const std::vector<Record*>& records, const char* name) {
  for (const Record* record : records) {
    if (std::strcmp(record->name, name) == 0) return record;
  }
  return nullptr;
}

bool includes(const ProtocolRecord* protocol, const ProtocolRecord* other) {
  if (protocol == other) return true;
  for (const ProtocolRecord* included : protocol->included) {
    if (included != nullptr && includes(included, other)) return true;
  }
  return false;
}

ProtocolRecord* recordOf(const Protocol& protocol) {
  return static_cast<ProtocolRecord*>(protocol.record());
}

ProtocolRecord* protocolNamed(ProtocolRecord* protocol, const char* name) {
  if (std::strcmp(protocol->name, name) == 0) return protocol;
  for (ProtocolRecord* included : protocol->included) {
    if (included == nullptr) continue;
    if (ProtocolRecord* found = protocolNamed(included, name)) return found;
  }
  return nullptr;
}

}  // namespace

BOOL class_addIvar(Class cls, const char* name, std::size_t size, std::uint8_t alignment,
                   const char* types) {
  if (!cls || name == nullptr || cls.record()->isMeta || cls.record()->definition != nullptr ||
      alignment > 4 || size > UINT32_MAX / 2) {
    return NO;
  }
  const std::lock_guard guard(detail::runtimeLock());
  ClassRecord* record = cls.record();
  ClassData* data = realizedLocked(record);
  // A subclass's variables lie behind these.
  if (data->registered || !data->subclasses.empty() || named(data->variables, name) != nullptr) {
    return NO;
  }
  const std::size_t align = std::size_t{1} << alignment;
  const std::size_t offset = (std::size_t{record->instanceSize} + align - 1) / align * align;
  if (offset + size > UINT32_MAX) return NO;
  record->instanceSize = static_cast<std::uint32_t>(offset + size);
  data->rawVariables = true;
  data->variables.push_back(new IvarRecord{detail::internedLocked(name),
                                           detail::internedLocked(types != nullptr ? types : ""),
                                           static_cast<std::ptrdiff_t>(offset)});
  return YES;
}

std::vector<Ivar> class_copyIvarList(Class cls) {
  if (!cls) return {};
  const std::lock_guard guard(detail::runtimeLock());
  const auto& variables = realizedLocked(cls.record())->variables;
  return {variables.begin(), variables.end()};
}

Ivar class_getInstanceVariable(Class cls, const char* name) {
  if (name == nullptr) return nullptr;
  return findInChain(cls, [name](const ClassData& data) { return named(data.variables, name); });
}

const char* ivar_getName(Ivar ivar) { return ivar != nullptr ? ivar->name : nullptr; }
const char* ivar_getTypeEncoding(Ivar ivar) { return ivar != nullptr ? ivar->types : nullptr; }
std::ptrdiff_t ivar_getOffset(Ivar ivar) { return ivar != nullptr ? ivar->offset : 0; }

std::vector<objc_property_t> class_copyPropertyList(Class cls) {
  if (!cls) return {};
  const std::lock_guard guard(detail::runtimeLock());
  const auto& properties = realizedLocked(cls.record())->properties;
  return {properties.begin(), properties.end()};
}

objc_property_t class_getProperty(Class cls, const char* name) {
  if (name == nullptr) return nullptr;
  return findInChain(cls, [name](const ClassData& data) { return named(data.properties, name); });
}

BOOL class_addProperty(Class cls, const char* name, const char* attributes) {
  if (!cls || name == nullptr || attributes == nullptr) return NO;
  const std::lock_guard guard(detail::runtimeLock());
  ClassData* data = realizedLocked(cls.record());
  if (named(data->properties, name) != nullptr) return NO;
  data->properties.push_back(
      new PropertyRecord{detail::internedLocked(name), detail::internedLocked(attributes)});
  return YES;
}

const char* property_getName(objc_property_t property) {
  return property != nullptr ? property->name : nullptr;
}
const char* property_getAttributes(objc_property_t property) {
  return property != nullptr ? property->attributes : nullptr;
}

const char* protocol_getName(const Protocol& protocol) {
  return protocol ? recordOf(protocol)->name : nullptr;
}

BOOL protocol_conformsToProtocol(const Protocol& protocol, const Protocol& other) {
  return protocol && other && includes(recordOf(protocol), recordOf(other)) ? YES : NO;
}

BOOL class_conformsToProtocol(Class cls, const Protocol& protocol) {
  if (!cls || !protocol) return NO;
  const std::lock_guard guard(detail::runtimeLock());
  for (const ProtocolRecord* own : realizedLocked(cls.record())->protocols) {
    if (includes(own, recordOf(protocol))) return YES;
  }
  return NO;
}

std::vector<Protocol> class_copyProtocolList(Class cls) {
  if (!cls) return {};
  const std::lock_guard guard(detail::runtimeLock());
  std::vector<Protocol> protocols;
  for (ProtocolRecord* own : realizedLocked(cls.record())->protocols) protocols.emplace_back(*own);
  return protocols;
}

BOOL class_addProtocol(Class cls, const Protocol& protocol) {
  if (!cls || !protocol || class_conformsToProtocol(cls, protocol) != NO) return NO;
  const std::lock_guard guard(detail::runtimeLock());
  realizedLocked(cls.record())->protocols.push_back(recordOf(protocol));
  return YES;
}

Protocol objc_getProtocol(const char* name) {
  if (name == nullptr) return nullptr;
  const std::lock_guard guard(detail::runtimeLock());
  for (const ClassData* data : detail::allClassesLocked()) {
    for (ProtocolRecord* protocol : data->protocols) {
      if (ProtocolRecord* found = protocolNamed(protocol, name)) return *found;
    }
  }
  return nullptr;
}

}  // namespace brindle
