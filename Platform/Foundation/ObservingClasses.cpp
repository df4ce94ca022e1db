// The classes that observed objects have meanwhile: their setters tell.
#include "Platform/Foundation/Internal/ObservingClasses.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <mutex>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include <Brindle/Platform/Closure.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/NSIndexSet.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/ObservedChange.h"
#include "Platform/Runtime/Internal/SignatureData.h"

namespace brindle::detail {
namespace {

struct Setter {
  SEL selector;
  const ObservedKey* key;
  SetterKind kind;
  SignatureData* signature;
  const Setter* next;
};

/// Behind the records of an observing class.
struct Annex : ObservingClass {
  std::atomic<const Setter*> setters;  // pushed at the front, read without a lock
};

struct PlanKey {
  const ClassRecord* cls;
  const ObservedKey* key;
  bool operator==(const PlanKey&) const = default;
};
struct PlanKeyHash {
  std::size_t operator()(const PlanKey& k) const noexcept {
    return std::hash<const void*>()(k.cls) * 31 + std::hash<const void*>()(k.key);
  }
};

struct Plans {
  std::mutex lock;
  std::unordered_map<PlanKey, const ObservingPlan*, PlanKeyHash> plans;
  std::vector<const ObservingPlan*> outdated;  // somebody may still read them
  std::mutex classesLock;
  std::unordered_map<const ClassRecord*, Annex*> classes;  // by the original
};
Plans& plans() {
  static auto& all = *new Plans;
  return all;
}

// --- Setters -------------------------------------------------------------------------------------

/// One call of a setter: which key it changes, and what the setter itself is at this moment.
class SetterCall {
 public:
  SetterCall(ObjectRecord* self, SEL selector) {
    const ClassRecord* cls = self->isa.load(std::memory_order_acquire);
    // Another thread may have given the object its own class back meanwhile.
    if (const ObservingClass* observing = observingClass(cls)) {
      cls = observing->original;
      for (setter_ = static_cast<const Annex*>(observing)->setters.load(std::memory_order_acquire);
           setter_ != nullptr && setter_->selector != selector;) {
        setter_ = setter_->next;
      }
    }
    previous_ = findMethod(cls, selector)->implementation.load(std::memory_order_acquire);
    if (previous_ == nullptr) {
      previous_ = class_getMethodImplementation(Class(const_cast<ClassRecord*>(cls)),  // NOLINT
                                                selector);
    }
  }

  [[nodiscard]] const Setter* setter() const noexcept { return setter_; }
  [[nodiscard]] IMP previous() const noexcept { return previous_; }

 private:
  const Setter* setter_ = nullptr;
  IMP previous_;
};

template <class T>
void setAndTell(ObjectRecord* self, SEL selector, T value) {
  const SetterCall call(self, selector);
  const auto previous = typedImplementation<void, T>(call.previous());
  if (call.setter() == nullptr) {
    previous(self, selector, value);
    return;
  }
  const id object = borrow<id>(self);  // observers may let go of it, and of the new value
  id argument;
  if constexpr (std::is_same_v<T, ObjectRecord*>) argument = borrow<id>(value);
  ObservedChange change(object, *call.setter()->key, {}, SnapshotLife::kScope);
  previous(self, selector, value);
  change.finish(object);
}

template <class T>
IMP setterOf(const char* wire) {
  const IMP imp = eraseImplementation(&setAndTell<T>);
  noteImplementation(imp, wire);
  return imp;
}

id objectArgument(void* argument) { return borrow<id>(*static_cast<ObjectRecord**>(argument)); }
NSIndexSet indexesArgument(void* argument) {
  return uncheckedCast<NSIndexSet>(objectArgument(argument));
}
NSIndexSet indexArgument(void* argument) {
  return NSIndexSet::indexSetWithIndex(*static_cast<NSUInteger*>(argument));
}

ChangeDetails detailsOf(SetterKind kind, void** arguments) {
  ChangeDetails details;
  const auto ofSet = [&details](NSKeyValueSetMutationKind mutation, const NSSet& members) {
    details.ofSet = true;
    details.mutation = mutation;
    details.members = members;
  };
  const auto at = [&details](NSKeyValueChange change, const NSIndexSet& indexes) {
    if (!indexes) return;
    details.kind = change;
    details.indexes = indexes;
  };
  const auto one = [](void* argument) {
    const id object = objectArgument(argument);
    return object ? NSSet::setWithObject(object) : NSSet::set();
  };
  const auto many = [&ofSet](NSKeyValueSetMutationKind mutation, void* argument) {
    const id members = objectArgument(argument);
    if (isa<NSSet>(members)) ofSet(mutation, uncheckedCast<NSSet>(members));
  };
  switch (kind) {
    case SetterKind::kValue:
      break;
    case SetterKind::kInsertObject:
      at(NSKeyValueChangeInsertion, indexArgument(arguments[3]));
      break;
    case SetterKind::kInsertObjects:
      at(NSKeyValueChangeInsertion, indexesArgument(arguments[3]));
      break;
    case SetterKind::kRemoveObject:
      at(NSKeyValueChangeRemoval, indexArgument(arguments[2]));
      break;
    case SetterKind::kRemoveObjects:
      at(NSKeyValueChangeRemoval, indexesArgument(arguments[2]));
      break;
    case SetterKind::kReplaceObject:
      at(NSKeyValueChangeReplacement, indexArgument(arguments[2]));
      break;
    case SetterKind::kReplaceObjects:
      at(NSKeyValueChangeReplacement, indexesArgument(arguments[2]));
      break;
    case SetterKind::kAddMember:
      ofSet(NSKeyValueUnionSetMutation, one(arguments[2]));
      break;
    case SetterKind::kAddMembers:
      many(NSKeyValueUnionSetMutation, arguments[2]);
      break;
    case SetterKind::kRemoveMember:
      ofSet(NSKeyValueMinusSetMutation, one(arguments[2]));
      break;
    case SetterKind::kRemoveMembers:
      many(NSKeyValueMinusSetMutation, arguments[2]);
      break;
    case SetterKind::kIntersect:
      many(NSKeyValueIntersectSetMutation, arguments[2]);
      break;
    case SetterKind::kSetMembers:
      many(NSKeyValueSetSetMutation, arguments[2]);
      break;
  }
  return details;
}

/// Setters of the less common types and forms. The signature comes from the closure's context,
/// since the setter may be gone from the object's class meanwhile.
void setAnyAndTell(void* context, void** arguments, void* result) {
  auto& signature = *static_cast<SignatureData*>(context);
  ObjectRecord* self = *static_cast<ObjectRecord**>(arguments[0]);
  const SetterCall call(self, *static_cast<SEL*>(arguments[1]));
  alignas(16) std::array<std::byte, 64> word{};
  const bool small = signature.result.size <= sizeof(std::uint64_t);
  const auto callPrevious = [&] {
    callWithFrame(signature, call.previous(), arguments, small ? word.data() : result);
    if (small) std::memcpy(result, word.data(), signature.result.size);
  };
  if (call.setter() == nullptr) {
    callPrevious();
    return;
  }
  const id object = borrow<id>(self);  // observers may let go of it
  ObservedChange change(object, *call.setter()->key, detailsOf(call.setter()->kind, arguments),
                        SnapshotLife::kScope);
  callPrevious();
  change.finish(object);
}

IMP tellingImplementation(SetterKind kind, const char* types, const SignatureData& data) {
  if (kind == SetterKind::kValue) {
    const std::string& wire = data.wire;
    if (wire == "v@") return setterOf<ObjectRecord*>("v@");
    if (wire == "vb") return setterOf<std::uint8_t>("vb");
    if (wire == "vs") return setterOf<std::uint16_t>("vs");
    if (wire == "vi") return setterOf<std::uint32_t>("vi");
    if (wire == "vq") return setterOf<std::uint64_t>("vq");
    if (wire == "vf") return setterOf<float>("vf");
    if (wire == "vd") return setterOf<double>("vd");
    if (wire == "vp") return setterOf<void*>("vp");
  }
  return closureImplementation(types, nullptr, &setAnyAndTell,
                               const_cast<SignatureData*>(&data));  // NOLINT(*-const-cast)
}

struct SetterPattern {
  const char* before;
  const char* behind;
  SetterKind kind;
  const char* arguments;  // wire codes; null for any one
};
constexpr SetterPattern kPatterns[] = {
    {"set", ":", SetterKind::kValue, nullptr},
    {"_set", ":", SetterKind::kValue, nullptr},
    {"insertObject:in", "AtIndex:", SetterKind::kInsertObject, "@q"},
    {"insert", ":atIndexes:", SetterKind::kInsertObjects, "@@"},
    {"removeObjectFrom", "AtIndex:", SetterKind::kRemoveObject, "q"},
    {"remove", "AtIndexes:", SetterKind::kRemoveObjects, "@"},
    {"replaceObjectIn", "AtIndex:withObject:", SetterKind::kReplaceObject, "q@"},
    {"add", "Object:", SetterKind::kAddMember, "@"},
    {"add", ":", SetterKind::kAddMembers, "@"},
    {"remove", "Object:", SetterKind::kRemoveMember, "@"},
    {"remove", ":", SetterKind::kRemoveMembers, "@"},
    {"intersect", ":", SetterKind::kIntersect, "@"},
};

// --- Classes -------------------------------------------------------------------------------------

Annex* makeAnnex(ClassRecord* original) {
  const std::string name = std::string("NSKVONotifying_") + original->name;
  Class cls = objc_allocateClassPair(Class(original), name.c_str(), sizeof(Annex));
  for (int number = 2; !cls; ++number) {
    cls = objc_allocateClassPair(Class(original), (name + "_" + std::to_string(number)).c_str(),
                                 sizeof(Annex));
  }
  auto* annex = ::new (objc_getIndexedIvars(cls)) Annex{{original, cls.record()}, nullptr};
  cls.record()->flags.fetch_or(kFlagObservingClass, std::memory_order_acq_rel);
  // The class is a disguise: objects report the one below it, which may be in disguise too.
  const auto report = implementation([](const NSObject& self) -> Class {
    return Class(reportedClass(self.record()->isa.load(std::memory_order_acquire)));
  });
  class_addMethod(cls, selector<"class">(), report.implementation, report.types);
  const auto isMember = implementation([](const NSObject& self, Class other) {
    return other && send<"class", Class>(self) == other;
  });
  class_addMethod(cls, selector<"isMemberOfClass:">(), isMember.implementation, isMember.types);
  const auto super = implementation([](const NSObject& self) -> Class {
    return class_getSuperclass(send<"class", Class>(self));
  });
  class_addMethod(cls, selector<"superclass">(), super.implementation, super.types);
  // The original has had its own.
  const auto initialize = implementation([](const Class&) {});
  class_addMethod(Class(cls.record()->other), selector<"initialize">(), initialize.implementation,
                  initialize.types);
  objc_registerClassPair(cls);
  return annex;
}

/// Has the setters of the key tell, those that the class has now. Null when there are none.
const ObservingClass* tellingClass(ClassRecord* original, const ObservedKey& key) {
  const std::lock_guard guard(plans().classesLock);
  Annex*& annex = plans().classes[original];
  bool any = false;
  const auto setter = [&](const SetterPattern& pattern, SEL selector) -> const MethodRecord* {
    if (selector == nullptr) return nullptr;
    const MethodRecord* method = class_getInstanceMethod(Class(original), selector);
    if (method == nullptr || method->implementation.load() == nullptr) return nullptr;
    const SignatureData* data = signatureData(method->types.load());
    if (data == nullptr || data->arguments.size() < 3) return nullptr;
    const std::string arguments = data->wire.substr(data->result.wire.size());
    const bool fits =
        pattern.arguments == nullptr ? data->arguments.size() == 3 : arguments == pattern.arguments;
    return fits ? method : nullptr;
  };
  const auto hook = [&](SetterKind kind, const MethodRecord& method) {
    any = true;
    if (annex == nullptr) annex = makeAnnex(original);
    const SEL selector = method.name;
    for (const Setter* known = annex->setters.load(); known != nullptr; known = known->next) {
      if (known->selector == selector) return;
    }
    const char* types = method.types.load();
    SignatureData* data = signatureData(types);
    annex->setters.store(new Setter{selector, &key, kind, data, annex->setters.load()},
                         std::memory_order_release);
    class_addMethod(Class(annex->notifying), selector, tellingImplementation(kind, types, *data),
                    types);
  };
  std::vector<std::pair<SetterKind, const MethodRecord*>> found;
  bool adds = false;
  bool removes = false;
  for (const SetterPattern& pattern : kPatterns) {
    const MethodRecord* method = setter(pattern, keySelector(key, pattern.before, pattern.behind));
    if (method == nullptr) continue;
    found.emplace_back(pattern.kind, method);
    adds =
        adds || pattern.kind == SetterKind::kAddMember || pattern.kind == SetterKind::kAddMembers;
    removes = removes || pattern.kind == SetterKind::kRemoveMember ||
              pattern.kind == SetterKind::kRemoveMembers;
  }
  // Methods named like this are for a set only where members can be added and removed: many a class
  // has an `addObserver:`.
  for (const auto& [kind, method] : found) {
    if ((adds && removes) || kind < SetterKind::kAddMember) hook(kind, *method);
  }
  // This one has the key twice.
  const std::string replace =
      "replace" + key.capitalized + "AtIndexes:with" + key.capitalized + ":";
  if (const MethodRecord* method =
          setter({"", "", SetterKind::kReplaceObjects, "@@"}, sel_findName(replace))) {
    hook(SetterKind::kReplaceObjects, *method);
  }
  return any ? annex : nullptr;
}

std::unique_ptr<ObservingPlan> makePlan(ClassRecord* original, const ObservedKey& key) {
  auto plan = std::make_unique<ObservingPlan>();
  const Class cls(original);
  if (!original->isMeta && automaticallyNotifiesObserversForKey(cls, key.name)) {
    plan->notifying = tellingClass(original, key);
  }
  const NSSet affecting = keyPathsForValuesAffectingValueForKey(cls, key.name);
  for (const id& path : affecting->allObjects()) {
    if (const ObservedPath* known = observedPath(dynCast<NSString>(path))) {
      plan->affecting.push_back(known);
    }
  }
  return plan;
}

struct RecentPlan {
  const ClassRecord* cls;
  const ObservedKey* key;
  const ObservingPlan* plan;
};
// Few: what a library keeps for each thread has to fit where a program has room that opens it late.
constexpr std::size_t kRecent = 8;
constinit thread_local RecentPlan recentPlans[kRecent]{};

}  // namespace

const ObservingPlan& observingPlan(ClassRecord* cls, const ObservedKey& key) {
  if ((cls->flags.load(std::memory_order_acquire) & kFlagObservingClass) != 0) {
    cls = observingClass(cls)->original;
  }
  const std::uint64_t epoch = methodEpoch.load(std::memory_order_acquire);
  const auto mixed = reinterpret_cast<std::uintptr_t>(cls) ^  // NOLINT(*-reinterpret-cast)
                     reinterpret_cast<std::uintptr_t>(&key);  // NOLINT(*-reinterpret-cast)
  RecentPlan& recent = recentPlans[(mixed >> 4U) % kRecent];
  if (recent.cls == cls && recent.key == &key && recent.plan->epoch == epoch) return *recent.plan;
  const ObservingPlan* plan = nullptr;
  {
    const std::lock_guard guard(plans().lock);
    const auto found = plans().plans.find({cls, &key});
    if (found != plans().plans.end()) plan = found->second;
  }
  if (plan == nullptr || plan->epoch != epoch) {
    std::unique_ptr<ObservingPlan> made = makePlan(cls, key);
    const std::lock_guard guard(plans().lock);
    const ObservingPlan*& known = plans().plans[{cls, &key}];
    if (known == nullptr || known->notifying != made->notifying ||
        known->affecting != made->affecting) {
      if (known != nullptr) plans().outdated.push_back(known);
      known = made.release();
    }
    // As of before it was made: what changed meanwhile, the making of its class too, makes the next
    // call look again.
    known->epoch.store(epoch, std::memory_order_release);
    plan = known;
  }
  recent = {cls, &key, plan};
  return *plan;
}

}  // namespace brindle::detail
