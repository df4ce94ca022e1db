// Who observes what: registrations, and the table of observed objects.
//
// An object's registrations lie in a list that only grows at its end while anybody else reads it,
// so that whoever tells observers works on what it was when they began. A thread remembers the
// lists that it read lately, and reads them again without a lock: it marks the list, which keeps
// it, and finds that no list of its stripe was changed since. A stripe's lock guards the lists of
// its objects and the change of their classes; no other code runs under it. Registering many with
// one object takes the same for each; removing one looks for it from the latest to the first.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/Weak.h>

#include "Platform/Foundation/Internal/Marks.h"
#include "Platform/Foundation/Internal/ObservedKeys.h"

namespace brindle::detail {

class CapturedValue;
struct ObservingClass;

/// Told of changes without a message: the observer of a registration that has no object for it.
class ChangeHandler {
 public:
  ChangeHandler() = default;
  ChangeHandler(const ChangeHandler&) = delete;
  ChangeHandler& operator=(const ChangeHandler&) = delete;
  virtual ~ChangeHandler() = default;
  virtual void changed(const id& object, const CapturedValue& before,
                       const CapturedValue& after) = 0;
};

/// One place where a registration listens beside its own object and key.
struct ObservedLink {
  ObjectRecord* object;  // an address, perhaps of an object that is gone
  std::uint32_t serial;
};

/// The links of a registration that follows a path or depends on other keys.
struct ObservedChain {
  std::mutex lock;
  std::vector<ObservedLink> links;
  std::uint32_t lastSerial = 0;
  bool building = false;
  bool again = false;
};

struct Registration {
  std::atomic<std::uint32_t> owners{1};
  std::atomic<bool> removed{false};
  const ObservedPath* path;
  NSUInteger options;
  void* context;
  ObjectRecord* object;              // an address: the object may be gone
  ObjectRecord* observer;            // the same
  WeakCell* observerCell = nullptr;  // what is told
  WeakCell* objectCell = nullptr;    // with a chain only
  std::unique_ptr<ObservedChain> chain;
  std::unique_ptr<ChangeHandler> handler;

  Registration(const ObservedPath* p, NSUInteger o, void* c, ObjectRecord* observed,
               ObjectRecord* told) noexcept
      : path(p), options(o), context(c), object(observed), observer(told) {}
  Registration(const Registration&) = delete;
  Registration& operator=(const Registration&) = delete;
  ~Registration() {
    releaseWeakCell(observerCell);
    releaseWeakCell(objectCell);
  }
};

inline Registration* retainRegistration(Registration* r) noexcept {
  r->owners.fetch_add(1, std::memory_order_relaxed);
  return r;
}
inline void releaseRegistration(Registration* r) {
  if (r != nullptr && r->owners.fetch_sub(1, std::memory_order_acq_rel) == 1) delete r;
}

/// An owner of a registration.
class RegistrationOwner {
 public:
  explicit RegistrationOwner(Registration* owned) noexcept : registration_(owned) {}
  RegistrationOwner(const RegistrationOwner&) = delete;
  RegistrationOwner& operator=(const RegistrationOwner&) = delete;
  ~RegistrationOwner() { releaseRegistration(registration_); }
  [[nodiscard]] Registration* get() const noexcept { return registration_; }

 private:
  Registration* registration_;
};

/// A registration in the list of an object.
struct ObservedEntry {
  Registration* registration;
  const ObservedKey* key;
  const ObjectRecord* observer;  // the registration's, here to look for it
  std::uint32_t serial;          // 0 for the registration's own object and key
  bool isWhole;                  // the key is the registration's whole path
};

/// An object's registrations, in their order. Changed under the stripe's lock. It belongs to the
/// table of observed objects and to those who count as its owners; besides, whoever marks it while
/// it is in the table keeps it.
class ObservedList {
 public:
  static ObservedList* make(std::size_t room);
  static void release(ObservedList* list);
  /// Takes it from the table, where it is not any more. It ends when its last reader is done.
  static void retire(ObservedList* list);
  /// Ends the retired lists whose readers are done.
  static void collectRetired();

  ObservedList* retained() noexcept {
    owners_.fetch_add(1, std::memory_order_relaxed);
    return this;
  }
  ObservedEntry* begin() noexcept {
    return reinterpret_cast<ObservedEntry*>(this + 1);  // NOLINT(*-reinterpret-cast)
  }
  ObservedEntry* end() noexcept { return begin() + count_; }
  [[nodiscard]] std::size_t size() const noexcept { return count_; }
  /// Whether nobody reads it. With the stripe's lock held, so that nobody begins.
  [[nodiscard]] bool isUnread() const noexcept {
    return owners_.load(std::memory_order_acquire) == 1 && onlyThisThreadMarks() && !isMarked(this);
  }
  [[nodiscard]] bool isRetired() const noexcept { return retired_.load(std::memory_order_relaxed); }
  [[nodiscard]] bool isFull() const noexcept { return count_ == room_; }
  /// Adds at the end, where readers do not look yet. The registration is the list's from now on.
  void append(const ObservedEntry& entry) noexcept { begin()[count_++] = entry; }
  /// Takes an entry out of an unread list. The registration is the caller's from now on.
  void take(ObservedEntry* place) noexcept;

 private:
  explicit ObservedList(std::size_t room) noexcept : room_(room) {}

  std::atomic<std::size_t> owners_{1};
  std::size_t count_ = 0;
  std::size_t room_;
  std::atomic<bool> retired_{false};
};

/// How long a snapshot lives.
enum class SnapshotLife {
  kScope,  // a scope's, on one thread
  kLong,
};

/// The list of an object at this moment, kept.
class ObservedSnapshot {
 public:
  ObservedSnapshot(ObjectRecord* object, SnapshotLife life);
  ObservedSnapshot(const ObservedSnapshot&) = delete;
  ObservedSnapshot& operator=(const ObservedSnapshot&) = delete;
  ~ObservedSnapshot();
  [[nodiscard]] const ObservedEntry* begin() const noexcept {
    return list_ != nullptr ? list_->begin() : nullptr;
  }
  [[nodiscard]] const ObservedEntry* end() const noexcept {
    return list_ != nullptr ? list_->begin() + count_ : nullptr;
  }
  [[nodiscard]] const ObjectRecord* object() const noexcept { return object_; }

 private:
  const ObjectRecord* object_;
  ObservedList* list_ = nullptr;
  std::size_t count_ = 0;
  Mark mark_;  // an owner of the list when it is not set
};

/// Adds an entry (retaining its registration) and makes the object an observed one: of the class
/// `notifying`, when that is not null and the object is still of the class that it stands for.
void addEntry(ObjectRecord* object, const ObservedEntry& entry, const ObservingClass* notifying);
/// Removes it; an object without entries gets its class back. False when it is not there.
bool removeEntry(ObjectRecord* object, const Registration* registration, std::uint32_t serial);
/// The latest registration of that observer; an owner more. Null when there is none.
Registration* findRegistration(ObjectRecord* object, const id& observer, const ObservedPath* path,
                               bool anyContext, void* context);

/// Registers. The answer is owned by the caller and by the object.
Registration* observe(const id& object, const id& observer, const ObservedPath* path,
                      NSUInteger options, void* context, std::unique_ptr<ChangeHandler> handler);
/// Ends a registration. False when it had ended already.
bool endRegistration(Registration* registration);
/// Follows the path of a registration anew, after something on the way changed.
void followPath(Registration* registration);

/// Raises NSInvalidArgumentException for a collection that is asked to be observed itself.
[[noreturn]] void raiseUnobservable(const id& collection, SEL selector, const NSString& keyPath);

/// Forgets the registrations of an object that ends.
void forgetObservers(ObjectRecord* object) noexcept;

}  // namespace brindle::detail
