// The life of objects: making them, counting their owners, and their end.
#include <Brindle/Platform/Object.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Runtime/Internal/ClassData.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace detail {
namespace {

// Objects that end inside each other's end nest only so deep; a longer chain waits for its turn, so
// that a list of a million objects does not overflow the stack.
constexpr int kMaximalDepth = 200;

/// An end in progress whose class overrides `dealloc`: tells whether the memory is gone already.
struct Ending {
  ObjectRecord* record;
  Ending* outer;
  bool disposed;
};

// Trivial on purpose: every end of an object touches it.
struct ThreadEnds {
  int depth;
  Ending* ending;
  std::exception_ptr* parked;
  std::vector<ObjectRecord*>* waiting;
};
constinit thread_local ThreadEnds ends{};

constinit std::atomic<IMP> plainDealloc{nullptr};

void park(std::exception_ptr raised) {
  if (ends.parked == nullptr) ends.parked = new std::exception_ptr(std::move(raised));
}

void destroyFields(ObjectRecord* record, const ClassData& birth) {
  for (auto link = birth.fields.rbegin(); link != birth.fields.rend(); ++link) {
    if (link->destroy != nullptr) {
      link->destroy(reinterpret_cast<char*>(record) + link->offset);  // NOLINT(*-reinterpret-cast)
    }
  }
}

void endWaiting() {
  while (ends.waiting != nullptr) {
    const std::vector<ObjectRecord*> waiting = std::move(*ends.waiting);
    delete ends.waiting;
    ends.waiting = nullptr;
    for (ObjectRecord* record : waiting) endObjectInDestructor(record);
  }
}

[[gnu::noinline]] void endWithOwnDealloc(ObjectRecord* record, IMP dealloc, SEL selector) {
  Ending ending{record, ends.ending, false};
  ends.ending = &ending;
  try {
    callImplementation<void>(dealloc, record, selector);
  } catch (...) {
    ends.ending = ending.outer;
    // The teardown that the raise cut short is not resumed, but the memory is not lost.
    if (!ending.disposed) disposeObject(record);
    throw;
  }
  ends.ending = ending.outer;
}

}  // namespace

namespace {
void dispose(ObjectRecord* record);
}

void setPlainDealloc(IMP dealloc) noexcept { plainDealloc.store(dealloc); }

ObjectRecord* retainSpecial(ObjectRecord* record) {
  const std::uint32_t count = record->count.load(std::memory_order_relaxed);
  if (count == kCountStackBlock) return copyStackBlock(record);
  if (count >= kCountImmortal) return record;
  if (count < kCountDying) {
    // A thousand million owners: nobody counts down from there.
    record->count.store(kCountImmortal, std::memory_order_relaxed);
    return record;
  }
  record->count.fetch_add(1, std::memory_order_relaxed);
  return record;
}

void endObject(ObjectRecord* record) {
  static const SEL deallocSelector = sel_registerName("dealloc");
  const std::uint32_t flags = record->flags.load(std::memory_order_acquire);
  if ((flags & kFlagWeak) != 0) clearWeakReferences(record);
  record->count.store(kCountDying, std::memory_order_relaxed);
  ClassRecord* cls = record->isa.load(std::memory_order_acquire);
  IMP dealloc = findMethod(cls, deallocSelector)->implementation.load(std::memory_order_acquire);
  if (dealloc == nullptr) {
    std::atomic<SEL> slot{deallocSelector};
    if (MethodRecord* method = resolveMissed(cls, slot, "dealloc")) {
      dealloc = method->implementation.load(std::memory_order_acquire);
    }
  }
  if (dealloc == nullptr || dealloc == plainDealloc.load(std::memory_order_relaxed)) {
    dispose(record);
  } else {
    endWithOwnDealloc(record, dealloc, deallocSelector);
  }
}

void endObjectInDestructor(ObjectRecord* record) noexcept {
  if (ends.depth == 0) {
    endObject(record);
    return;
  }
  if (ends.depth >= kMaximalDepth) {
    if (ends.waiting == nullptr) ends.waiting = new std::vector<ObjectRecord*>;
    ends.waiting->push_back(record);
    return;
  }
  try {
    endObject(record);
  } catch (...) {
    park(std::current_exception());
  }
}

namespace {

void dispose(ObjectRecord* record) {
  const std::uint32_t flags = record->flags.load(std::memory_order_acquire);
  const ClassData* birth = classOfNumber(flags >> kBirthShift);
  const bool destructible = birth != nullptr && birth->destructible;
  if (!destructible && (flags & kFlagAssociations) == 0) {
    std::free(record);  // NOLINT(*-no-malloc)
    return;
  }
  ++ends.depth;
  if (destructible) destroyFields(record, *birth);
  // A value's end may associate another one.
  while ((record->flags.load(std::memory_order_acquire) & kFlagAssociations) != 0) {
    forgetAssociations(record);
  }
  std::free(record);  // NOLINT(*-no-malloc)
  if (ends.depth == 1) endWaiting();
  --ends.depth;
  if (ends.depth == 0 && ends.parked != nullptr) {
    const std::exception_ptr raised = *ends.parked;
    delete ends.parked;
    ends.parked = nullptr;
    std::rethrow_exception(raised);
  }
}

}  // namespace

void disposeObject(ObjectRecord* record) {
  if (ends.ending != nullptr && ends.ending->record == record) ends.ending->disposed = true;
  dispose(record);
}

ObjectRecord* createInstance(ClassRecord* cls, std::size_t extraBytes) {
  const ClassData* data = cls->data.load(std::memory_order_acquire);
  if (data == nullptr) data = realized(cls);
  const std::size_t size = cls->instanceSize + extraBytes;
  if (size < extraBytes) throw std::bad_alloc();
  void* memory = std::malloc(size);  // NOLINT(*-no-malloc)
  if (memory == nullptr) throw std::bad_alloc();
  if (data->rawVariables || extraBytes > 0) std::memset(memory, 0, size);
  auto* record = ::new (memory) ObjectRecord(cls, 1, data->number << kBirthShift);
  std::size_t constructed = 0;
  try {
    for (const FieldsLink& link : data->fields) {
      link.construct(static_cast<char*>(memory) + link.offset);
      ++constructed;
    }
  } catch (...) {
    while (constructed-- > 0) {
      const FieldsLink& link = data->fields[constructed];
      if (link.destroy != nullptr) link.destroy(static_cast<char*>(memory) + link.offset);
    }
    std::free(memory);  // NOLINT(*-no-malloc)
    throw;
  }
  return record;
}

}  // namespace detail

id class_createInstance(Class cls, std::size_t extraBytes) {
  if (!cls || cls.record()->isMeta) return nullptr;
  return adopt<id>(detail::createInstance(cls.record(), extraBytes));
}

Class object_getClass(const id& object) {
  return object ? Class(object.record()->isa.load(std::memory_order_acquire)) : nullptr;
}

Class object_setClass(const id& object, Class cls) {
  if (!object || !cls) return nullptr;
  detail::realized(cls.record());
  return Class(object.record()->isa.exchange(cls.record(), std::memory_order_acq_rel));
}

BOOL object_isClass(const id& object) {
  if (!object) return NO;
  return (object.record()->flags.load(std::memory_order_relaxed) & detail::kFlagClass) != 0 ? YES
                                                                                           : NO;
}

void* object_getIndexedIvars(const id& object) {
  if (!object) return nullptr;
  const ClassRecord* cls = object.record()->isa.load(std::memory_order_acquire);
  return reinterpret_cast<char*>(object.record()) + cls->instanceSize;  // NOLINT
}

}  // namespace brindle
