// Classes: realising them, making them ready, and the register of their names.
#include <Brindle/Platform/Class.h>

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <Brindle/Platform/NSObject.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"

namespace brindle {
namespace detail {
namespace {

struct Register {
  std::unordered_map<std::string_view, ClassRecord*> names;
  std::vector<ClassData*> classes;
  std::unordered_map<std::string_view, const char*> texts;
};

Register& classRegister() {
  static auto& classes = *new Register;
  return classes;
}

constinit std::mutex lock;
std::condition_variable& initialized() {
  static auto& condition = *new std::condition_variable;
  return condition;
}

// Numbers of classes, read without the lock when an object ends.
constexpr std::uint32_t kNumbersPerChunk = 4096;
constinit std::atomic<ClassData**> numberChunks[4096];
std::uint32_t lastNumber = 0;

ClassData* dataOf(ClassRecord* cls) noexcept { return cls->data.load(std::memory_order_acquire); }

std::uint32_t aligned(std::uint32_t offset, std::uint32_t alignment) {
  return (offset + alignment - 1) / alignment * alignment;
}

/// The data of one class or meta-class, not yet published: whoever finds it finds all of it.
ClassData* newDataLocked(ClassRecord* cls, ClassData* super) {
  auto* data = new ClassData;
  data->record = cls;
  data->table = newTableLocked(super);
  data->ownPages.resize(tablePagesLocked());
  if (super != nullptr) super->subclasses.push_back(data);
  classRegister().classes.push_back(data);
  if (!cls->isMeta) {
    data->number = newClassNumberLocked(data);
    cls->instanceSize = sizeof(ObjectRecord);
    if (super != nullptr) {
      cls->instanceSize = cls->superclass->instanceSize;
      data->fields = super->fields;
      data->destructible = super->destructible;
      data->rawVariables = super->rawVariables;
    }
  }
  return data;
}

void addDefinitionLocked(ClassData* data, const ClassDefinition& definition) {
  const bool meta = data->record->isMeta;
  for (const MethodDefinition& m : definition.methods) {
    if (m.ofClass != meta) continue;
    const IMP imp = m.implementation();
    noteImplementationLocked(imp, m.wire);
    addMethodLocked(data, sel_registerName(m.name), imp, m.types, m.wire, false);
  }
  if (meta) return;
  ClassRecord* cls = data->record;
  const FieldsDefinition& fields = definition.fields;
  cls->fieldsOffset = aligned(cls->instanceSize, fields.alignment);
  if (fields.size > 0) {
    cls->instanceSize = cls->fieldsOffset + fields.size;
    data->fields.push_back({cls->fieldsOffset, fields.construct, fields.destroy});
    data->destructible = data->destructible || fields.destroy != nullptr;
  }
  for (const IvarDefinition& v : definition.variables) {
    data->variables.push_back(new IvarRecord{
        v.name, v.encoding, static_cast<std::ptrdiff_t>(cls->fieldsOffset) + v.offset});
  }
  for (const PropertyDefinition& p : definition.properties) {
    data->properties.push_back(new PropertyRecord{p.name, p.attributes});
  }
  data->protocols.assign(definition.protocols.begin(), definition.protocols.end());
}

void checkVersion(const ClassDefinition& definition) {
  if (definition.version == kDefinitionVersion) return;
  std::fprintf(stderr, "brindle: class %s was built for layout %u of definitions, this is %u\n",
               definition.name, definition.version, kDefinitionVersion);
  std::abort();
}

bool overridesInitialize(ClassRecord* cls, IMP& imp) {
  static const SEL initialize = sel_registerName("initialize");
  static const IMP empty = [] {
    MethodRecord* root = lookUpMethod(realized(&NSObject::classPair.meta), initialize);
    return root->implementation.load(std::memory_order_acquire);
  }();
  MethodRecord* method = lookUpMethod(dataOf(cls->other), initialize);
  imp = method != nullptr ? method->implementation.load(std::memory_order_acquire) : nullptr;
  return imp != nullptr && imp != empty;
}

void publish(ClassRecord* cls) { cls->table.store(dataOf(cls)->table, std::memory_order_release); }

}  // namespace

std::mutex& runtimeLock() { return lock; }

std::vector<ClassData*>& allClassesLocked() { return classRegister().classes; }

std::uint32_t newClassNumberLocked(ClassData* data) {
  const std::uint32_t number = ++lastNumber;
  const std::uint32_t chunk = number / kNumbersPerChunk;
  if (chunk >= std::size(numberChunks)) {
    std::fputs("brindle: more than 16777215 classes\n", stderr);
    std::abort();
  }
  ClassData** entries = numberChunks[chunk].load(std::memory_order_relaxed);
  if (entries == nullptr) {
    entries = new ClassData*[kNumbersPerChunk]();
    numberChunks[chunk].store(entries, std::memory_order_release);
  }
  __atomic_store_n(&entries[number % kNumbersPerChunk], data, __ATOMIC_RELEASE);
  return number;
}

ClassData* classOfNumber(std::uint32_t number) noexcept {
  ClassData** entries = numberChunks[number / kNumbersPerChunk].load(std::memory_order_acquire);
  if (entries == nullptr) return nullptr;
  return __atomic_load_n(&entries[number % kNumbersPerChunk], __ATOMIC_ACQUIRE);
}

bool registerNameLocked(ClassRecord* cls) {
  return classRegister().names.emplace(cls->name, cls).second;
}

ClassRecord* classNamedLocked(const char* name) {
  auto found = classRegister().names.find(name);
  return found == classRegister().names.end() ? nullptr : found->second;
}

const char* internedLocked(const std::string& text) {
  auto& texts = classRegister().texts;
  auto found = texts.find(text);
  if (found != texts.end()) return found->second;
  const std::size_t size = text.size() + 1;
  const char* copy = static_cast<char*>(std::memcpy(new char[size], text.c_str(), size));
  texts.emplace(std::string_view(copy, text.size()), copy);
  return copy;
}

ClassData* realizedLocked(ClassRecord* cls) {
  if (ClassData* data = dataOf(cls)) return data;
  // A meta-class is realised with its class, and both after the superclass's pair.
  if (cls->isMeta) {
    realizedLocked(cls->other);
    return dataOf(cls);
  }
  if (cls->definition != nullptr) checkVersion(*cls->definition);
  ClassData* super = cls->superclass != nullptr ? realizedLocked(cls->superclass) : nullptr;
  ClassData* data = newDataLocked(cls, super);
  // The root's meta-class inherits from the root class.
  ClassData* meta =
      newDataLocked(cls->other, super != nullptr ? dataOf(cls->superclass->other) : data);
  if (cls->definition != nullptr) {
    addDefinitionLocked(data, *cls->definition);
    addDefinitionLocked(meta, *cls->definition);
    data->registered = true;
    registerNameLocked(cls);
  }
  cls->other->data.store(meta, std::memory_order_release);
  cls->data.store(data, std::memory_order_release);
  return data;
}

ClassData* realized(ClassRecord* cls) {
  if (ClassData* data = dataOf(cls)) return data;
  const std::lock_guard guard(lock);
  return realizedLocked(cls);
}

void makeReady(ClassRecord* record) {
  // Published last: a table of its own says that everything before it is done.
  if (record->table.load(std::memory_order_acquire) != kEmptyTable.pages) return;
  ClassRecord* cls = record->isMeta ? record->other : record;
  {
    std::unique_lock guard(lock);
    ClassData* data = realizedLocked(cls);
    while (data->readiness == Readiness::kInitializing &&
           data->initializer != std::this_thread::get_id()) {
      initialized().wait(guard);
    }
    if (data->readiness != Readiness::kUntouched) return;
  }
  if (cls->superclass != nullptr) makeReady(cls->superclass);
  {
    std::unique_lock guard(lock);
    ClassData* data = dataOf(cls);
    while (data->readiness == Readiness::kInitializing &&
           data->initializer != std::this_thread::get_id()) {
      initialized().wait(guard);
    }
    if (data->readiness != Readiness::kUntouched) return;
    data->readiness = Readiness::kInitializing;
    data->initializer = std::this_thread::get_id();
  }
  // The tables are published whatever `initialize` does: it runs once, also when it raises.
  struct Publisher {
    ClassRecord* cls;
    ~Publisher() {
      const std::lock_guard guard(lock);
      dataOf(cls)->readiness = Readiness::kReady;
      publish(cls->other);
      publish(cls);
      initialized().notify_all();
    }
  } const publisher{cls};
  IMP imp = nullptr;
  if (overridesInitialize(cls, imp)) {
    detail::callImplementation<void>(imp, cls, sel_registerName("initialize"));
  }
}

MethodRecord* resolveMissed(ClassRecord* cls, std::atomic<SEL>& slot, const char* name) {
  SEL selector = slot.load(std::memory_order_acquire);
  if (selector == &kUnregisteredSelector) selector = registerSlot(slot, name);
  makeReady(cls);
  MethodRecord* method = lookUpMethod(dataOf(cls), selector);
  return method != nullptr && method->implementation.load(std::memory_order_acquire) != nullptr
             ? method
             : nullptr;
}

}  // namespace detail

using detail::ClassData;
using detail::classNamedLocked;
using detail::realized;
using detail::realizedLocked;

void registerClass(ClassRecord& cls) { realized(&cls); }

Class objc_getClass(const char* name) {
  if (name == nullptr) return nullptr;
  const std::lock_guard guard(detail::runtimeLock());
  return Class(classNamedLocked(name));
}

Class objc_lookUpClass(const char* name) { return objc_getClass(name); }

Class objc_getMetaClass(const char* name) {
  const Class cls = objc_getClass(name);
  return cls ? Class(cls.record()->other) : nullptr;
}

std::vector<Class> objc_copyClassList() {
  const std::lock_guard guard(detail::runtimeLock());
  std::vector<Class> list;
  for (const ClassData* data : detail::allClassesLocked()) {
    if (!data->record->isMeta && data->registered) list.emplace_back(data->record);
  }
  return list;
}

Class objc_allocateClassPair(Class superclass, const char* name, std::size_t extraBytes) {
  if (name == nullptr) return nullptr;
  const std::lock_guard guard(detail::runtimeLock());
  if (classNamedLocked(name) != nullptr) return nullptr;
  ClassRecord* super = superclass.record();
  if (super != nullptr) {
    if (super->isMeta) return nullptr;
    realizedLocked(super);
  }
  // Room for both records and the extra bytes; classes never die.
  if (extraBytes > SIZE_MAX - 2 * sizeof(ClassRecord)) throw std::bad_alloc();
  auto* memory = static_cast<char*>(std::calloc(1, 2 * sizeof(ClassRecord) + extraBytes));
  if (memory == nullptr) throw std::bad_alloc();
  auto* cls = reinterpret_cast<ClassRecord*>(memory);  // NOLINT(*-reinterpret-cast)
  ClassRecord* meta = cls + 1;
  const char* text = detail::internedLocked(name);
  ClassRecord* rootMeta = meta;
  if (super != nullptr) rootMeta = super->other->isa.load(std::memory_order_relaxed);
  ::new (cls) ClassRecord(meta, text, super, nullptr, meta, false);
  ::new (meta)
      ClassRecord(rootMeta, text, super != nullptr ? super->other : cls, nullptr, cls, true);
  ClassData* data = realizedLocked(cls);
  data->extraBytes = extraBytes;
  if (super != nullptr) cls->fieldsOffset = cls->instanceSize;
  return Class(cls);
}

void objc_registerClassPair(Class cls) {
  if (!cls || cls.record()->isMeta) return;
  const std::lock_guard guard(detail::runtimeLock());
  ClassData* data = realizedLocked(cls.record());
  if (data->registered) return;
  data->registered = true;
  detail::registerNameLocked(cls.record());
}

const char* class_getName(Class cls) { return cls ? cls.record()->name : "nil"; }

Class class_getSuperclass(Class cls) { return cls ? Class(cls.record()->superclass) : nullptr; }

BOOL class_isMetaClass(Class cls) { return cls && cls.record()->isMeta ? YES : NO; }

std::size_t class_getInstanceSize(Class cls) {
  if (!cls || cls.record()->isMeta) return 0;
  realized(cls.record());
  return cls.record()->instanceSize;
}

void* objc_getIndexedIvars(Class cls) {
  if (!cls || realized(cls.record())->extraBytes == 0) return nullptr;
  return cls.record() + 2;
}

}  // namespace brindle
