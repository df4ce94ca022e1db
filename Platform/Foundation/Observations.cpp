// Who observes what: registrations, and the table of observed objects.
#include "Platform/Foundation/Internal/Observations.h"

#include <algorithm>
#include <new>
#include <unordered_map>

#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/ObservedChange.h"
#include "Platform/Foundation/Internal/ObservingClasses.h"
#include "Platform/Runtime/Internal/Striped.h"
#include "Platform/Runtime/Internal/WeakCells.h"

namespace brindle::detail {
namespace {

struct Stripe {
  std::mutex lock;
  std::unordered_map<ObjectRecord*, ObservedList*> lists;
};

Striped<Stripe>& stripes() {
  static auto& all = *new Striped<Stripe>;
  return all;
}

// How often the lists of a stripe were changed.
constinit Striped<std::atomic<std::uint64_t>> generations;

void noteChangeLocked(const ObjectRecord* object) noexcept {
  std::atomic<std::uint64_t>& generation = generations.of(object);
  generation.store(generation.load(std::memory_order_relaxed) + 1, std::memory_order_release);
}

/// A list that this thread read, as it was in that generation.
struct RecentList {
  const ObjectRecord* object;
  std::uint64_t generation;
  ObservedList* list;
  std::size_t count;
};
// Few: what a library keeps for each thread has to fit where a program has room that opens it late.
constexpr std::size_t kRecent = 8;
constinit thread_local RecentList recentLists [[gnu::tls_model("initial-exec")]][kRecent]{};

RecentList& recentList(const ObjectRecord* object) noexcept {
  return recentLists[stripeOf(object) % kRecent];
}

/// Lists that are in the table no more, and perhaps still read.
struct RetiredLists {
  // To look for readers interrupts other threads: rather for many lists at once.
  static constexpr std::size_t kMany = 64;

  std::mutex lock;
  std::vector<ObservedList*> lists;
};

RetiredLists& retiredLists() {
  static auto& all = *new RetiredLists;
  return all;
}

bool isObserved(const ObjectRecord* object) noexcept {
  return (object->flags.load(std::memory_order_acquire) & kFlagObservers) != 0;
}

/// A list of the same entries, but for the one at `left` if that is not null.
ObservedList* copied(ObservedList& list, std::size_t room, const ObservedEntry* left) {
  ObservedList* copy = ObservedList::make(room);
  for (const ObservedEntry& entry : list) {
    if (&entry == left) continue;
    retainRegistration(entry.registration);
    copy->append(entry);
  }
  return copy;
}

/// An object without entries is of its own class again, unless somebody gave it another one.
void restoreClassLocked(ObjectRecord* object) {
  ClassRecord* cls = object->isa.load(std::memory_order_acquire);
  if ((cls->flags.load(std::memory_order_acquire) & kFlagObservingClass) == 0) return;
  object->isa.compare_exchange_strong(cls, observingClass(cls)->original,
                                      std::memory_order_acq_rel);
}

}  // namespace

ObservedList* ObservedList::make(std::size_t room) {
  void* memory = ::operator new(sizeof(ObservedList) + room * sizeof(ObservedEntry));
  return ::new (memory) ObservedList(room);
}

void ObservedList::release(ObservedList* list) {
  if (list == nullptr || list->owners_.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
  for (const ObservedEntry& entry : *list) releaseRegistration(entry.registration);
  ::operator delete(list);
}

void ObservedList::retire(ObservedList* list) {
  if (list == nullptr) return;
  if (onlyThisThreadMarks() && !isMarked(list)) {
    release(list);
    return;
  }
  list->retired_.store(true, std::memory_order_relaxed);
  bool many = false;
  {
    RetiredLists& retired = retiredLists();
    const std::lock_guard guard(retired.lock);
    retired.lists.push_back(list);
    many = retired.lists.size() % RetiredLists::kMany == 0;
  }
  if (many) collectRetired();
}

void ObservedList::collectRetired() {
  std::vector<ObservedList*> unread;
  {
    RetiredLists& retired = retiredLists();
    const std::lock_guard guard(retired.lock);
    settleMarks();
    const auto end = std::partition(retired.lists.begin(), retired.lists.end(), &isMarked);
    unread.assign(end, retired.lists.end());
    retired.lists.erase(end, retired.lists.end());
  }
  for (ObservedList* list : unread) release(list);
}

void ObservedList::take(ObservedEntry* place) noexcept {
  std::copy(place + 1, end(), place);
  --count_;
}

ObservedSnapshot::ObservedSnapshot(ObjectRecord* object, SnapshotLife life) : object_(object) {
  if (!isObserved(object)) return;
  RecentList& recent = recentList(object);
  const bool marks = life == SnapshotLife::kScope;
  if (marks && recent.object == object && mark_.set(recent.list)) {
    if (generations.of(object).load(std::memory_order_acquire) == recent.generation) [[likely]] {
      list_ = recent.list;
      count_ = recent.count;
      return;
    }
    mark_.clear();
  }
  Stripe& stripe = stripes().of(object);
  const std::lock_guard guard(stripe.lock);
  const auto found = stripe.lists.find(object);
  if (found == stripe.lists.end() || found->second == nullptr || found->second->size() == 0) return;
  list_ = found->second;
  count_ = list_->size();
  if (marks && mark_.set(list_)) {
    recent = {object, generations.of(object).load(std::memory_order_relaxed), list_, count_};
  } else {
    list_ = list_->retained();
  }
}

ObservedSnapshot::~ObservedSnapshot() {
  if (!mark_.isSet()) {
    ObservedList::release(list_);
    return;
  }
  const bool last = list_->isRetired();
  mark_.clear();
  if (last) ObservedList::collectRetired();
}

void addEntry(ObjectRecord* object, const ObservedEntry& entry, const ObservingClass* notifying) {
  retainRegistration(entry.registration);
  ObservedList* old = nullptr;
  {
    Stripe& stripe = stripes().of(object);
    const std::lock_guard guard(stripe.lock);
    noteChangeLocked(object);
    ObservedList*& list = stripe.lists[object];
    if (list == nullptr) {
      list = ObservedList::make(1);
    } else if (list->isFull()) {
      old = list;
      list = copied(*old, old->size() * 2, nullptr);
    }
    list->append(entry);
    if (!isObserved(object)) object->flags.fetch_or(kFlagObservers, std::memory_order_acq_rel);
    if (notifying != nullptr) {
      ClassRecord* cls = notifying->original;
      object->isa.compare_exchange_strong(cls, notifying->notifying, std::memory_order_acq_rel);
    }
  }
  ObservedList::retire(old);
}

bool removeEntry(ObjectRecord* object, const Registration* registration, std::uint32_t serial) {
  ObservedList* old = nullptr;
  Registration* taken = nullptr;
  {
    Stripe& stripe = stripes().of(object);
    const std::lock_guard guard(stripe.lock);
    const auto found = stripe.lists.find(object);
    if (found == stripe.lists.end() || found->second == nullptr) return false;
    ObservedList*& list = found->second;
    ObservedEntry* place = list->end();
    do {
      if (place == list->begin()) return false;
      --place;
    } while (place->registration != registration || place->serial != serial);
    noteChangeLocked(object);
    if (list->isUnread()) {
      taken = place->registration;
      list->take(place);
    } else {
      old = list;
      list = old->size() > 1 ? copied(*old, old->size() - 1, place) : nullptr;
    }
    if (list == nullptr || list->size() == 0) restoreClassLocked(object);
  }
  releaseRegistration(taken);
  ObservedList::retire(old);
  return true;
}

Registration* findRegistration(ObjectRecord* object, const id& observer, const ObservedPath* path,
                               bool anyContext, void* context) {
  if (!isObserved(object)) return nullptr;
  // An observer may remove itself while it ends; another object at its address may not do it for
  // it.
  const std::uint32_t count =
      observer ? observer.record()->count.load(std::memory_order_relaxed) : kCountDying;
  const bool ending = count >= kCountDying && count < kCountImmortal;
  Stripe& stripe = stripes().of(object);
  const std::lock_guard guard(stripe.lock);
  const auto found = stripe.lists.find(object);
  if (found == stripe.lists.end() || found->second == nullptr) return nullptr;
  ObservedList& list = *found->second;
  for (ObservedEntry* entry = list.end(); entry != list.begin();) {
    --entry;
    Registration* r = entry->registration;
    if (entry->observer != observer.record() || entry->serial != 0 || r->path != path ||
        r->handler != nullptr || (!anyContext && r->context != context) || r->removed.load()) {
      continue;
    }
    if (ending || weakCellIsOf(r->observerCell, observer.record())) return retainRegistration(r);
  }
  return nullptr;
}

void forgetObservers(ObjectRecord* object) noexcept {
  ObservedList* list = nullptr;
  {
    Stripe& stripe = stripes().of(object);
    const std::lock_guard guard(stripe.lock);
    object->flags.fetch_and(~kFlagObservers, std::memory_order_acq_rel);
    const auto found = stripe.lists.find(object);
    if (found == stripe.lists.end()) return;
    noteChangeLocked(object);
    list = found->second;
    stripe.lists.erase(found);
  }
  if (list == nullptr) return;
  for (const ObservedEntry& entry : *list) {
    if (entry.serial == 0) endRegistration(entry.registration);
  }
  ObservedList::retire(list);
}

Registration* observe(const id& object, const id& observer, const ObservedPath* path,
                      NSUInteger options, void* context, std::unique_ptr<ChangeHandler> handler) {
  ObjectRecord* record = object.record();
  auto* registration = new Registration(path, options, context, record, observer.record());
  registration->handler = std::move(handler);
  if (registration->handler == nullptr) {
    registration->observerCell = weakCellOf(observer.record());
  }
  const ObservingPlan& plan =
      observingPlan(record->isa.load(std::memory_order_acquire), *path->key);
  if (path->rest == nullptr && plan.affecting.empty()) {
    addEntry(record, {registration, path->key, observer.record(), 0, true}, plan.notifying);
  } else {
    registration->objectCell = weakCellOf(record);
    registration->chain = std::make_unique<ObservedChain>();
    addEntry(record, {registration, path->key, observer.record(), 0, path->rest == nullptr},
             plan.notifying);
    try {
      followPath(registration);
    } catch (...) {
      endRegistration(registration);
      releaseRegistration(registration);
      throw;
    }
  }
  if ((options & NSKeyValueObservingOptionInitial) != 0) {
    const RegistrationOwner kept(retainRegistration(registration));
    try {
      tellInitially(object, *registration);
    } catch (...) {
      endRegistration(registration);  // nobody could: a path that raises would spoil each setter
      releaseRegistration(registration);
      throw;
    }
  }
  return registration;
}

bool endRegistration(Registration* registration) {
  if (registration->removed.exchange(true)) return false;
  const RegistrationOwner kept(retainRegistration(registration));
  removeEntry(registration->object, registration, 0);
  if (registration->chain != nullptr) {
    std::vector<ObservedLink> links;
    {
      const std::lock_guard guard(registration->chain->lock);
      links.swap(registration->chain->links);
    }
    for (const ObservedLink& link : links) removeEntry(link.object, registration, link.serial);
  }
  return true;
}

namespace {

/// One walk along a path and everything that it depends on.
class PathWalk {
 public:
  PathWalk(Registration& registration, std::vector<ObservedLink>& links)
      : registration_(registration), links_(links) {}

  void follow(const id& start, const ObservedPath* path, bool first = false) {
    id reached = start;
    while (step(reached, path, first)) {
      path = path->rest;
      first = false;
    }
  }

 private:
  struct Step {
    const ObjectRecord* object;
    const ObservedPath* path;
  };

  /// Goes on to the next object, if there is one to go to.
  bool step(id& object, const ObservedPath* path, bool first) {
    const Step here{object.record(), path};
    const auto same = [&here](const Step& s) {
      return s.object == here.object && s.path == here.path;
    };
    if (std::any_of(steps_.begin(), steps_.end(), same)) return false;
    steps_.push_back(here);
    const ObservingPlan& plan =
        observingPlan(object.record()->isa.load(std::memory_order_acquire), *path->key);
    if (!first) link(object, *path->key, plan);
    for (const ObservedPath* affecting : plan.affecting) follow(object, affecting);
    if (path->rest == nullptr || path->rest->key->text.starts_with('@')) return false;
    id next = CapturedValue::ofKey(object, *path->key).object();
    if (!next || next == NSNull::null()) return false;
    if (isa<NSArray>(next) || isa<NSSet>(next)) {
      raiseUnobservable(next, selector<"addObserver:forKeyPath:options:context:">(),
                        textOfPath(*path->rest));
    }
    // A proxy has no class that knows about keys.
    if (!isa<NSObject>(next)) return false;
    kept_.push_back(next);
    object = std::move(next);
    return true;
  }

  void link(const id& object, const ObservedKey& key, const ObservingPlan& plan) {
    std::uint32_t serial = 0;
    {
      const std::lock_guard guard(registration_.chain->lock);
      serial = ++registration_.chain->lastSerial;
    }
    links_.push_back({object.record(), serial});
    addEntry(object.record(), {&registration_, &key, nullptr, serial, false}, plan.notifying);
  }

  Registration& registration_;
  std::vector<ObservedLink>& links_;
  std::vector<Step> steps_;
  std::vector<id> kept_;  // so that no address comes twice
};

}  // namespace

void followPath(Registration* registration) {
  ObservedChain& chain = *registration->chain;
  const RegistrationOwner kept(retainRegistration(registration));
  {
    // Whoever comes meanwhile, from another thread or a getter, has it done once more.
    const std::lock_guard guard(chain.lock);
    if (chain.building) {
      chain.again = true;
      return;
    }
    chain.building = true;
  }
  std::exception_ptr raised;
  for (bool again = true; again;) {
    std::vector<ObservedLink> links;
    const id object = adopt<id>(loadWeakCell(registration->objectCell));
    if (object && !registration->removed.load()) {
      try {
        PathWalk(*registration, links).follow(object, registration->path, true);
      } catch (...) {
        raised = std::current_exception();
      }
    }
    {
      const std::lock_guard guard(chain.lock);
      chain.links.swap(links);
      again = chain.again && raised == nullptr;
      chain.again = false;
      chain.building = again;
      // Who ended it while it was built found the links of before.
      if (!again && registration->removed.load()) {
        links.insert(links.end(), chain.links.begin(), chain.links.end());
        chain.links.clear();
      }
    }
    for (const ObservedLink& link : links) removeEntry(link.object, registration, link.serial);
  }
  if (raised) std::rethrow_exception(raised);
}

}  // namespace brindle::detail
