// The life of objects: making them, counting their owners, and their end.
#include <Brindle/Platform/Object.h>

#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <vector>

#include <Brindle/Platform/Allocation.h>
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
constinit thread_local ThreadEnds ends [[gnu::tls_model("initial-exec")]]{};

constinit std::atomic<IMP> plainDealloc{nullptr};
constinit std::atomic<IMP> associationsDealloc{nullptr};
constinit std::atomic<void (*)(ObjectRecord*) noexcept> forgetObservers{nullptr};
constexpr std::uint32_t kFlagsBeside = kFlagAssociations | kFlagObservers | kFlagMonitor;

/// Keeps the raise until the object that is ending now is done. The first one is told.
void park() {
  if (ends.parked == nullptr) ends.parked = new std::exception_ptr(std::current_exception());
}

/// The stretch in which one object ends: what raises meanwhile is kept, and raised by `finish`.
class EndScope {
 public:
  EndScope() noexcept : outer_(ends.parked) {
    ends.parked = nullptr;
    ++ends.depth;
  }
  EndScope(const EndScope&) = delete;
  EndScope& operator=(const EndScope&) = delete;

  void finish() {
    while (ends.depth == 1 && ends.waiting != nullptr) {
      const std::unique_ptr<std::vector<ObjectRecord*>> waiting(ends.waiting);
      ends.waiting = nullptr;
      for (ObjectRecord* record : *waiting) endObjectInDestructor(record);
    }
    const std::unique_ptr<std::exception_ptr> own(ends.parked);
    ends.parked = outer_;
    --ends.depth;
    if (own != nullptr) std::rethrow_exception(*own);
  }

 private:
  std::exception_ptr* outer_;
};

void destroyFields(ObjectRecord* record, const ClassData& birth) {
  for (auto link = birth.fields.rbegin(); link != birth.fields.rend(); ++link) {
    if (link->destroy != nullptr) {
      link->destroy(reinterpret_cast<char*>(record) + link->offset);  // NOLINT(*-reinterpret-cast)
    }
  }
}

/// Where extra bytes begin: aligned for everything.
std::size_t extraOffset(const ClassRecord& cls) {
  constexpr std::size_t kAlignment = alignof(std::max_align_t);
  return (cls.instanceSize + kAlignment - 1) / kAlignment * kAlignment;
}

/// Destroys and frees, inside the object's EndScope.
void dismantle(ObjectRecord* record) {
  const ClassData* birth = classOfNumber(record->flags.load() >> kBirthShift);
  if (birth != nullptr && birth->destructible) destroyFields(record, *birth);
  // A value's end may associate another one, or observe.
  for (;;) {
    const std::uint32_t flags = record->flags.load(std::memory_order_acquire);
    if ((flags & kFlagObservers) != 0) {
      forgetObservers.load(std::memory_order_acquire)(record);
    } else if ((flags & kFlagAssociations) != 0) {
      forgetAssociations(record);
    } else {
      break;
    }
  }
  if ((record->flags.load(std::memory_order_acquire) & kFlagMonitor) != 0) forgetMonitor(record);
  std::free(record);  // NOLINT(*-no-malloc)
}

void dispose(ObjectRecord* record) {
  const std::uint32_t flags = record->flags.load(std::memory_order_acquire);
  const ClassData* birth = classOfNumber(flags >> kBirthShift);
  if ((birth == nullptr || !birth->destructible) && (flags & kFlagsBeside) == 0) {
    std::free(record);  // NOLINT(*-no-malloc)
    return;
  }
  if (birth != nullptr && birth->endsQuietly && (flags & kFlagsBeside) == 0) {
    destroyFields(record, *birth);
    std::free(record);  // NOLINT(*-no-malloc)
    return;
  }
  EndScope scope;
  dismantle(record);
  scope.finish();
}

[[gnu::noinline]] void endWithOwnDealloc(ObjectRecord* record, IMP dealloc, SEL selector) {
  EndScope scope;
  Ending ending{record, ends.ending, false};
  ends.ending = &ending;
  try {
    callImplementation<void>(dealloc, record, selector);
  } catch (...) {
    park();
    // The teardown that the raise cut short is not resumed, but the memory is not lost.
    if (!ending.disposed) dismantle(record);
  }
  ends.ending = ending.outer;
  scope.finish();
}

}  // namespace

void setForgetObservers(void (*forget)(ObjectRecord* record) noexcept) noexcept {
  forgetObservers.store(forget);
}

void setEndsQuietly(ClassRecord* cls) noexcept { realized(cls)->endsQuietly = true; }

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
  // Also while it waits: who reaches it without owning it must not end it a second time.
  record->count.store(kCountDying, std::memory_order_relaxed);
  if (ends.depth >= kMaximalDepth) {
    if (ends.waiting == nullptr) ends.waiting = new std::vector<ObjectRecord*>;
    ends.waiting->push_back(record);
    return;
  }
  ClassRecord* cls = record->isa.load(std::memory_order_acquire);
  IMP dealloc = findMethod(cls, deallocSelector)->implementation.load(std::memory_order_acquire);
  if (dealloc == nullptr) {
    std::atomic<SEL> slot{deallocSelector};
    if (MethodRecord* method = resolveMissed(cls, slot, "dealloc")) {
      dealloc = method->implementation.load(std::memory_order_acquire);
    }
  }
  if (dealloc == nullptr || dealloc == plainDealloc.load(std::memory_order_relaxed) ||
      (dealloc == associationsDealloc.load(std::memory_order_relaxed) &&
       (flags & kFlagAssociations) == 0)) {
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
  try {
    endObject(record);
  } catch (...) {
    park();
  }
}

void disposeObject(ObjectRecord* record) {
  if (ends.ending != nullptr && ends.ending->record == record) {
    ends.ending->disposed = true;
    dismantle(record);
  } else {
    dispose(record);
  }
}

ObjectRecord* createInstance(ClassRecord* cls, std::size_t extraBytes) {
  const ClassData* data = cls->data.load(std::memory_order_acquire);
  if (data == nullptr) data = realized(cls);
  const std::size_t size =
      extraBytes > 0 ? extraOffset(*cls) + extraBytes : std::size_t{cls->instanceSize};
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

void setAssociationsDealloc(IMP dealloc, IMP previous) noexcept {
  if (previous == detail::plainDealloc.load()) detail::associationsDealloc.store(dealloc);
}

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
  if (object_isClass(object) != NO) {
    return objc_getIndexedIvars(Class(static_cast<ClassRecord*>(object.record())));
  }
  const std::uint32_t flags = object.record()->flags.load(std::memory_order_relaxed);
  const detail::ClassData* birth = detail::classOfNumber(flags >> detail::kBirthShift);
  if (birth == nullptr) return nullptr;
  return reinterpret_cast<char*>(object.record()) + detail::extraOffset(*birth->record);  // NOLINT
}

}  // namespace brindle
