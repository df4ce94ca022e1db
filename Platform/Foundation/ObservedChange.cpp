// One change of a key, from its announcement to the last observer that is told.
#include "Platform/Foundation/Internal/ObservedChange.h"

#include <algorithm>

#include <Brindle/Platform/NSArrayIndexing.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/ChangeDictionary.h"
#include "Platform/Foundation/Internal/ObservingClasses.h"

namespace brindle::detail {
namespace {

/// The value at the end of a registration's path.
CapturedValue valueAt(const id& object, const ObservedPath* path) {
  if (path->rest == nullptr) return CapturedValue::ofKey(object, *path->key);
  id reached = object;
  for (; path->rest != nullptr; path = path->rest) {
    reached = CapturedValue::ofKey(reached, *path->key).object();
    if (!reached) return CapturedValue(id());
    if (path->rest->key->text.starts_with('@')) {
      return CapturedValue(send<"valueForKeyPath:", id>(reached, path->rest->text));
    }
  }
  return CapturedValue::ofKey(reached, *path->key);
}

/// Sends the message to the observer. False when it is gone for good.
bool tell(Registration& registration, const id& object, const id& change) {
  const id observer = adopt<id>(loadWeakCell(registration.observerCell));
  if (!observer) return registration.observer == nullptr;
  send<"observeValueForKeyPath:ofObject:change:context:">(observer, registration.path->text, object,
                                                          uncheckedCast<NSDictionary>(change),
                                                          registration.context);
  return true;
}

bool isRemoved(const Registration& registration) noexcept {
  return registration.removed.load(std::memory_order_acquire);
}

/// Whether its observer has gone: the path is none of its business any more, also where it raises.
bool isAbandoned(const Registration& r) {
  return r.handler == nullptr && r.observer != nullptr && !adopt<id>(loadWeakCell(r.observerCell));
}

constexpr NSUInteger kOld = NSKeyValueObservingOptionOld;
constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;
constexpr NSUInteger kPrior = NSKeyValueObservingOptionPrior;

std::vector<id> membersOf(const id& set, const id& other, bool inOther) {
  std::vector<id> members;
  if (!set) return members;
  for (const id& member : uncheckedCast<NSSet>(set)->allObjects()) {
    if (uncheckedCast<NSSet>(other)->containsObject(member) == inOther) members.push_back(member);
  }
  return members;
}

CapturedValue setOf(const std::vector<id>& members) {
  return CapturedValue(NSSet::setWithObjects(members.data(), members.size()));
}

}  // namespace

ObservedChange::ObservedChange(const id& object, const ObservedKey& key, ChangeDetails details,
                               SnapshotLife life)
    : key_(key), details_(std::move(details)), snapshot_(object.record(), life) {
  bool hasPrior = false;
  for (const ObservedEntry& entry : snapshot_) {
    const Registration& r = *entry.registration;
    if (entry.key != &key || isRemoved(r)) continue;
    isObserved_ = true;
    if (entry.isWhole) wanted_ |= r.handler != nullptr ? kOld | kNew : r.options;
    if (!entry.isWhole) noteOnTheWay(entry);
    followsPaths_ = followsPaths_ || r.chain != nullptr;
    hasPrior = hasPrior || (r.options & kPrior) != 0;
  }
  if (!isObserved_) return;
  if (details_.ofSet && wanted_ != 0) {
    const id set = CapturedValue::ofKey(object, key).object();
    if (set && isa<NSSet>(set)) membersBefore_ = NSSet::setWithSet(uncheckedCast<NSSet>(set));
  }
  if ((wanted_ & kOld) != 0) {
    before_ = ofMembers() ? membersBefore(object) : CapturedValue::ofKey(object, key);
  }
  for (Waiting& waiting : waiting_) {
    const Registration& r = *waiting.entry->registration;
    if (isAbandoned(r) || (r.handler == nullptr && (r.options & kOld) == 0)) continue;
    if (const id root = adopt<id>(loadWeakCell(r.objectCell))) {
      waiting.before = valueAt(root, r.path);
    }
  }
  if (hasPrior) tellPrior(object);
}

void ObservedChange::noteOnTheWay(const ObservedEntry& entry) {
  // A path may meet the key more than once.
  const Registration* r = entry.registration;
  if (r->path->rest == nullptr && r->path->key == &key_ && r->object == snapshot_.object()) return;
  for (const Waiting& waiting : waiting_) {
    if (waiting.entry->registration == r) return;
  }
  waiting_.push_back({&entry, {}});
}

void ObservedChange::tellPrior(const id& object) {
  auto waiting = waiting_.begin();
  for (const ObservedEntry& entry : snapshot_) {
    const bool onTheWay = waiting != waiting_.end() && waiting->entry == &entry;
    const CapturedValue& before = onTheWay ? waiting++->before : before_;
    if (entry.key != &key_ || (!onTheWay && !entry.isWhole)) continue;
    Registration& r = *entry.registration;
    if ((r.options & kPrior) == 0 || r.handler != nullptr || isRemoved(r)) continue;
    if (!onTheWay) {
      tell(r, object, dictionary(true, r.options, before, {}, true));
    } else if (const id root = adopt<id>(loadWeakCell(r.objectCell))) {
      tell(r, root, dictionary(false, r.options, before, {}, true));
    }
  }
}

void ObservedChange::followPaths(std::exception_ptr& raised) {
  for (const ObservedEntry& entry : snapshot_) {
    Registration& r = *entry.registration;
    if (entry.key != &key_ || r.chain == nullptr || isRemoved(r) || isAbandoned(r)) continue;
    try {
      followPath(&r);
    } catch (...) {
      if (!raised) raised = std::current_exception();
    }
  }
}

void ObservedChange::finish(const id& object) {
  if (!isObserved_) return;
  // Paths are followed anew before anybody is told, so that observers find all in order.
  std::exception_ptr raised;
  if (followsPaths_) followPaths(raised);
  CapturedValue after;
  if ((wanted_ & kNew) != 0) {
    after = ofMembers() ? membersAfter(object) : CapturedValue::ofKey(object, key_);
  }
  // One dictionary for all that want the same.
  std::array<id, 4> shared;
  std::vector<Registration*> abandoned;
  auto waiting = waiting_.begin();
  for (const ObservedEntry& entry : snapshot_) {
    const bool onTheWay = waiting != waiting_.end() && waiting->entry == &entry;
    const CapturedValue& before = onTheWay ? waiting++->before : before_;
    Registration& r = *entry.registration;
    if (entry.key != &key_ || (!onTheWay && !entry.isWhole) || isRemoved(r)) continue;
    bool told = true;
    if (!onTheWay && r.handler != nullptr) {
      r.handler->changed(object, before, after);
    } else if (!onTheWay) {
      id& change = shared[r.options & (kOld | kNew)];
      if (!change) change = dictionary(true, r.options, before, after, false);
      told = tell(r, object, change);
    } else if (isAbandoned(r)) {
      told = false;
    } else if (const id root = adopt<id>(loadWeakCell(r.objectCell))) {
      CapturedValue now;
      if (r.handler != nullptr || (r.options & kNew) != 0) now = valueAt(root, r.path);
      if (r.handler != nullptr) {
        r.handler->changed(root, before, now);
      } else {
        told = tell(r, root, dictionary(false, r.options, before, now, false));
      }
    }
    if (!told) abandoned.push_back(&r);
  }
  for (id& change : shared) reuseChangeDictionary(std::move(change));
  for (Registration* r : abandoned) endRegistration(r);
  if (raised) std::rethrow_exception(raised);
}

NSKeyValueChange ObservedChange::toldKind() const noexcept {
  if (!details_.ofSet) return details_.kind;
  switch (details_.mutation) {
    case NSKeyValueUnionSetMutation:
      return NSKeyValueChangeInsertion;
    case NSKeyValueMinusSetMutation:
    case NSKeyValueIntersectSetMutation:
      return NSKeyValueChangeRemoval;
    case NSKeyValueSetSetMutation:
      break;
  }
  return NSKeyValueChangeReplacement;
}

CapturedValue ObservedChange::membersBefore(const id& object) const {
  if (toldKind() == NSKeyValueChangeInsertion) return {};
  if (details_.ofSet) {
    const bool inMembers = details_.mutation == NSKeyValueMinusSetMutation;
    return setOf(membersOf(membersBefore_, details_.members, inMembers));
  }
  const id value = CapturedValue::ofKey(object, key_).object();
  if (!value) return CapturedValue(id());
  return CapturedValue(objectsAtIndexes(uncheckedCast<NSArray>(value), details_.indexes));
}

CapturedValue ObservedChange::membersAfter(const id& object) const {
  if (toldKind() == NSKeyValueChangeRemoval) return {};
  if (details_.ofSet) {
    const id before = membersBefore_ ? membersBefore_ : id(NSSet::set());
    return setOf(membersOf(details_.members, before, false));
  }
  const id value = CapturedValue::ofKey(object, key_).object();
  if (!value) return CapturedValue(id());
  return CapturedValue(objectsAtIndexes(uncheckedCast<NSArray>(value), details_.indexes));
}

id ObservedChange::dictionary(bool whole, NSUInteger options, const CapturedValue& before,
                              const CapturedValue& after, bool prior) const {
  ChangeContents contents;
  contents.kind = whole ? toldKind() : NSKeyValueChangeSetting;
  if ((options & kOld) != 0) contents.before = before;
  if ((options & kNew) != 0 && !prior) contents.after = after;
  if (whole && !details_.ofSet) contents.indexes = details_.indexes;
  contents.prior = prior;
  return changeDictionary(std::move(contents));
}

void tellInitially(const id& object, Registration& registration) {
  const bool wantsValue = registration.handler != nullptr || (registration.options & kNew) != 0;
  const CapturedValue now = wantsValue ? valueAt(object, registration.path) : CapturedValue();
  if (registration.handler != nullptr) {
    registration.handler->changed(object, {}, now);
    return;
  }
  ChangeContents contents;
  contents.after = now;
  tell(registration, object, changeDictionary(std::move(contents)));
}

}  // namespace brindle::detail
