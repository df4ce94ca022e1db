// One change of a key, from its announcement to the last observer that is told.
#pragma once

#include <array>
#include <bit>
#include <vector>

#include <Brindle/Platform/NSKeyValueObserving.h>

#include "Platform/Foundation/Internal/Observations.h"

namespace brindle::detail {

/// A value as it was read: boxed when somebody wants an object.
class CapturedValue {
 public:
  CapturedValue() noexcept = default;
  explicit CapturedValue(id object) noexcept : type_('@'), object_(static_cast<id&&>(object)) {}

  /// The value of a key, read as valueForKey: reads it.
  static CapturedValue ofKey(const id& object, const ObservedKey& key);

  /// Called once while the library starts: getters stand for this reading by key and no other.
  static void learnPlainReading() noexcept;

  [[nodiscard]] bool isSet() const noexcept { return type_ != 0; }
  /// As an object; nil for nil.
  [[nodiscard]] id object() const;
  /// The encoding of its type, `@` for objects.
  [[nodiscard]] char type() const noexcept { return type_; }
  [[nodiscard]] std::int64_t integer() const noexcept { return bits_; }
  [[nodiscard]] double real() const noexcept { return std::bit_cast<double>(bits_); }

 private:
  char type_ = 0;
  std::int64_t bits_ = 0;  // of whole numbers and of others
  id object_;
};

/// What is known of a change besides its key.
struct ChangeDetails {
  NSKeyValueChange kind = NSKeyValueChangeSetting;
  NSIndexSet indexes;
  NSKeyValueSetMutationKind mutation = NSKeyValueSetSetMutation;
  NSSet members;
  bool ofSet = false;
};

/// A change that was announced. Tells prior observers when it is made. The object is its owner's to
/// keep until all are told.
class ObservedChange {
 public:
  ObservedChange(const id& object, const ObservedKey& key, ChangeDetails details,
                 SnapshotLife life);
  ObservedChange(const ObservedChange&) = delete;
  ObservedChange& operator=(const ObservedChange&) = delete;
  ~ObservedChange() = default;

  /// Tells the observers.
  void finish(const id& object);

  [[nodiscard]] const ObservedKey& key() const noexcept { return key_; }

 private:
  /// A registration whose path meets the key on its way.
  struct Waiting {
    const ObservedEntry* entry;
    CapturedValue before;
  };

  void noteOnTheWay(const ObservedEntry& entry);
  void tellPrior(const id& object);
  void followPaths(std::exception_ptr& raised);
  CapturedValue membersBefore(const id& object) const;
  CapturedValue membersAfter(const id& object) const;
  [[nodiscard]] NSKeyValueChange toldKind() const noexcept;
  [[nodiscard]] bool ofMembers() const noexcept {
    return details_.ofSet || details_.kind != NSKeyValueChangeSetting;
  }
  id dictionary(bool whole, NSUInteger options, const CapturedValue& before,
                const CapturedValue& after, bool prior) const;

  const ObservedKey& key_;
  ChangeDetails details_;
  ObservedSnapshot snapshot_;
  CapturedValue before_;   // shared by all that observe the key itself
  id membersBefore_;       // of a set, where what is new is worked out from
  NSUInteger wanted_ = 0;  // by those, together
  bool isObserved_ = false;
  bool followsPaths_ = false;
  std::vector<Waiting> waiting_;  // in the order of their entries
};

/// Tells an observer of the present value, for the initial option.
void tellInitially(const id& object, Registration& registration);

}  // namespace brindle::detail
