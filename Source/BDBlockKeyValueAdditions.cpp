#include <Brindle/BDBlockKeyValueAdditions.h>

#include <atomic>
#include <utility>

#include <Brindle/BDCleanup.h>
#include <Brindle/BDRuntimeAdditions.h>
#include <Brindle/Platform/Allocation.h>
#include <Brindle/Platform/ConstantString.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/Runtime.h>
#include <Brindle/Platform/Weak.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

using ChangeBlock = Block<void(const NSDictionary&)>;

// An object of its own, so that no literal of a client's is the same one.
constinit detail::StringRecord callContextRecord{&NSString::classPair.cls, "BDBlockCallContext", 18,
                                                 false};
void* callContext() noexcept { return &callContextRecord; }

constexpr NSUInteger kPlatformOptions = 0x7FFFFFFF;
constexpr NSUInteger kRemoveOnDealloc = 0xFFFFFFFF80000000;

const char kUnobservers = 0;

IMP previousObserve = nullptr;
IMP previousDealloc = nullptr;

NSMutableArray unobserversOf(const NSObject& self) {
  NSMutableArray list =
      uncheckedCast<NSMutableArray>(objc_getAssociatedObject(self, &kUnobservers));
  if (!list) {
    list = NSMutableArray::new_();
    objc_setAssociatedObject(self, &kUnobservers, list, OBJC_ASSOCIATION_RETAIN);
  }
  return list;
}

Block<void()> nothing() {
  static const auto& block = *new Block<void()>([] {});
  return block;
}

// The objects whose removals this thread runs at this moment, the innermost first: weak references
// to them read nil already, but they can still be messaged.
struct EndingObject {
  ObjectRecord* record;
  const EndingObject* outer;
};
constinit thread_local const EndingObject* ending = nullptr;

/// One side of an observation, not kept.
class Side {
 public:
  explicit Side(const id& object) : weak_(object), address_(object.record()) {}

  /// The object, also in the course of its own removals; nil when it is gone.
  [[nodiscard]] id lock() const {
    if (id object = weak_.lock()) return object;
    for (const EndingObject* e = ending; e != nullptr; e = e->outer) {
      if (e->record == address_) return borrow<id>(address_);
    }
    return nullptr;
  }

 private:
  Weak<id> weak_;
  ObjectRecord* address_;
};

/// What a removal block holds: both sides weakly, the rest strongly.
struct Removal {
  Side observed;
  Side observer;
  ChangeBlock block;
  id again;  // what the observer keeps instead of the block, when it had the block before
  NSString keyPath;
  Block<void()> extra;

  void operator()() const {
    if (const id object = observed.lock()) removeObserver(object, block, keyPath);
    if (extra) extra();
    if (const id object = observer.lock()) {
      const ObjectRecord* attached = again ? again.record() : block.record();
      objc_setAssociatedObject(object, attached, nullptr, OBJC_ASSOCIATION_RETAIN);
    }
  }
};

Block<void()> observe(const NSObject& self, const id& observer, const NSString& keyPath,
                      NSUInteger options, const ChangeBlock& block, const Block<void()>& extra) {
  auto kept = uncheckedCast<ChangeBlock>(send<"copy", id>(block));
  addObserver(self, kept, keyPath, options & kPlatformOptions, callContext());
  // A block that is registered once more is kept once more, so that each removal takes its own.
  id again;
  if (objc_getAssociatedObject(observer, kept.record())) again = NSArray::arrayWithObject(kept);
  const id& attached = again ? again : kept;
  objc_setAssociatedObject(observer, attached.record(), attached, OBJC_ASSOCIATION_RETAIN);
  Block<void()> removal =
      Removal{Side(self), Side(observer), std::move(kept), std::move(again), keyPath, extra};
  if ((options & kRemoveOnDealloc) != kRemoveOnDealloc) return removal;
  send<"_deallocUnobservers", NSMutableArray>(observer)->addObject(removal);
  return nothing();
}

// --- Collections ---------------------------------------------------------------------------------

bool isUsable(const id& value) {
  if (!value || value == NSNull::null()) return false;
  if (value->respondsToSelector(selector<"length">()) && send<"length", NSUInteger>(value) == 0) {
    return false;
  }
  return !value->respondsToSelector(selector<"count">()) || send<"count", NSUInteger>(value) != 0;
}

NSIndexSet allIndexes(const id& collection) {
  return NSIndexSet::indexSetWithIndexesInRange({0, send<"count", NSUInteger>(collection)});
}

void stopObservingMembers(const id& collection, const id& block, const NSString& keyPath) {
  if (!collection) return;
  send<"removeObserver:fromObjectsAtIndexes:forKeyPath:">(collection, block, allIndexes(collection),
                                                          keyPath);
}

Block<void()> observeCollection(const NSObject& self, const id& observer, const NSString& key,
                                const NSString& memberPath, NSUInteger options,
                                const ChangeBlock& block) {
  const ChangeBlock kept = uncheckedCast<ChangeBlock>(send<"copy", id>(block));
  // The collection observed last, held by the cleanup as long as the block below lives.
  auto* snapshot = new Field<id>;
  const BDCleanup cleanup = BDCleanup::cleanupWithCall([snapshot] {
    const id last = snapshot->take();
    delete snapshot;
  });
  const Side observed(self);
  const auto observeAnew = [=](const NSDictionary&) {
    cleanup->capture();
    const id object = observed.lock();
    stopObservingMembers(snapshot->get(), kept, memberPath);
    const id value = send<"valueForKey:", id>(object, key);
    if (!isUsable(value)) {
      *snapshot = id();
      return;
    }
    send<"addObserver:toObjectsAtIndexes:forKeyPath:options:context:">(
        value, kept, allIndexes(value), memberPath, options, callContext());
    if (const id last = snapshot->take()) send<"autorelease", id>(last);
    *snapshot = send<"copy", id>(value);
  };
  const Block<void()> extra = [observed, kept, key, memberPath] {
    const id object = observed.lock();
    const id value = send<"valueForKey:", id>(object, key);
    if (isUsable(value)) stopObservingMembers(value, kept, memberPath);
  };
  constexpr NSUInteger kAll = NSKeyValueObservingOptionNew | NSKeyValueObservingOptionOld |
                              NSKeyValueObservingOptionInitial;
  return addObserver(self, observer, key, kAll, observeAnew, extra);
}

// --- The two operations that every object has already --------------------------------------------

void observeValue(const NSObject& self, Cmd cmd, const NSString& keyPath, const id& object,
                  const NSDictionary& change, void* context) {
  if (context == callContext()) {
    // Whoever sends this keeps the block while it runs.
    detail::callBlock<void, const NSDictionary&>(self.record(), change);
    return;
  }
  callImplementation<void>(previousObserve, self, cmd.selector, keyPath, object, change, context);
}

void runUnobservers(const NSObject& self) {
  const id list = objc_getAssociatedObject(self, &kUnobservers);
  if (!list) return;
  struct Scope {
    EndingObject entry;
    explicit Scope(ObjectRecord* record) : entry{record, ending} { ending = &entry; }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { ending = entry.outer; }
  } const scope(self.record());
  for (const id& removal : uncheckedCast<NSMutableArray>(list)) {
    uncheckedCast<Block<void()>>(removal)();
  }
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"load">([](const Class& self) {
      // A class whose own `load` runs its superclass's comes here too.
      static std::atomic<bool> installed{false};
      if (installed.exchange(true)) return;
      swizzle(
          self, selector<"observeValueForKeyPath:ofObject:change:context:">(),
          [](const NSObject& object, Cmd cmd, const NSString& keyPath, const id& observed,
             const NSDictionary& change,
             void* context) { observeValue(object, cmd, keyPath, observed, change, context); },
          &previousObserve);
      swizzle(
          self, selector<"dealloc">(),
          [](const NSObject& object, Cmd cmd) {
            runUnobservers(object);
            callImplementation<void>(previousDealloc, object, cmd.selector);
          },
          &previousDealloc);
      setAssociationsDealloc(class_getMethodImplementation(self, selector<"dealloc">()),
                             previousDealloc);
    }),
    method<"addObserver:forKeyPath:options:block:extraRemoval:">(
        [](const NSObject& self, const id& observer, const NSString& keyPath, NSUInteger options,
           const ChangeBlock& block, const Block<void()>& extra) {
          return observe(self, observer, keyPath, options, block, extra);
        }),
    method<"addObserver:forKeyPath:options:block:">([](const NSObject& self, const id& observer,
                                                       const NSString& keyPath, NSUInteger options,
                                                       const ChangeBlock& block) {
      return addObserver(self, observer, keyPath, options, block, nullptr);
    }),
    method<"addObserverForKeyPath:options:block:">(
        [](const NSObject& self, const NSString& keyPath, NSUInteger options,
           const ChangeBlock& block) { return addObserver(self, self, keyPath, options, block); }),
    method<"addObserver:forCollection:objectKeyPath:options:block:">(
        [](const NSObject& self, const id& observer, const NSString& key, const NSString& path,
           NSUInteger options, const ChangeBlock& block) {
          return observeCollection(self, observer, key, path, options, block);
        }),
    method<"addObserverForCollection:objectKeyPath:options:block:">(
        [](const NSObject& self, const NSString& key, const NSString& path, NSUInteger options,
           const ChangeBlock& block) {
          return addObserverForCollection(self, self, key, path, options, block);
        }),
    method<"_deallocUnobservers">([](const NSObject& self) { return unobserversOf(self); }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDBlockKeyValueAdditions{
    .name = "BDBlockKeyValueAdditions", .cls = &NSObject::classPair.cls, .methods = kMethods};

}  // namespace brindle
