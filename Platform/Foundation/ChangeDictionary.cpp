// What observers are handed: a dictionary of at most five entries, without a table.
#include "Platform/Foundation/Internal/ChangeDictionary.h"

#include <array>
#include <memory>
#include <utility>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

class ChangeDictionary : public Interface<ChangeDictionary, NSDictionary> {
 public:
  using Interface::Interface;
  static ClassPair<ChangeDictionary> classPair;
};

using Contents = detail::ChangeContents;
const Contents& contents(const ChangeDictionary& self) { return fieldsOf<Contents>(self); }

id boxed(const detail::CapturedValue& value) {
  if (!value.isSet()) return nullptr;
  id object = value.object();
  return object ? object : NSNull::null();
}

struct Entry {
  const NSString& key;
  id (*value)(const Contents&);
};
// In the order in which they are enumerated.
const std::array<Entry, 5>& entries() {
  static const auto& all = *new std::array<Entry, 5>{{
      {NSKeyValueChangeKindKey,
       [](const Contents& c) -> id { return NSNumber(static_cast<NSUInteger>(c.kind)); }},
      {NSKeyValueChangeOldKey, [](const Contents& c) { return boxed(c.before); }},
      {NSKeyValueChangeNewKey, [](const Contents& c) { return boxed(c.after); }},
      {NSKeyValueChangeIndexesKey, [](const Contents& c) -> id { return c.indexes; }},
      {NSKeyValueChangeNotificationIsPriorKey,
       [](const Contents& c) -> id { return c.prior ? NSNumber(true) : NSNumber(); }},
  }};
  return all;
}

NSArray keys(const ChangeDictionary& self) {
  std::vector<id> present;
  for (const Entry& entry : entries()) {
    if (entry.value(contents(self))) present.push_back(entry.key);
  }
  return NSArray::arrayWithObjects(present.data(), present.size());
}

constexpr MethodDefinition kMethods[] = {
    method<"count">([](const ChangeDictionary& self) -> NSUInteger {
      const Contents& c = contents(self);
      return NSUInteger{1} + (c.before.isSet() ? 1U : 0U) + (c.after.isSet() ? 1U : 0U) +
             (c.indexes ? 1U : 0U) + (c.prior ? 1U : 0U);
    }),
    method<"objectForKey:">([](const ChangeDictionary& self, const id& key) -> id {
      // The constants first, as they are.
      for (const Entry& entry : entries()) {
        if (key == entry.key) return entry.value(contents(self));
      }
      for (const Entry& entry : entries()) {
        if (entry.key->isEqual(key)) return entry.value(contents(self));
      }
      return nullptr;
    }),
    method<"keyEnumerator">(
        [](const ChangeDictionary& self) { return keys(self)->objectEnumerator(); }),
    method<"classForCoder">(
        [](const ChangeDictionary&) -> Class { return NSDictionary::class_(); }),
};

constexpr ClassDefinition kDefinition{.name = "NSKeyValueChangeDictionary",
                                      .methods = kMethods,
                                      .fields = fieldsDefinition<Contents>()};

}  // namespace

constinit ClassPair<ChangeDictionary> ChangeDictionary::classPair{kDefinition};

namespace detail {

namespace {

// The dictionary of an earlier change, empty and of nobody. One for each thread.
constinit thread_local ObjectRecord* spare [[gnu::tls_model("initial-exec")]] = nullptr;
constinit thread_local bool threadEnds [[gnu::tls_model("initial-exec")]] = false;

struct EndOfSpare {
  EndOfSpare() = default;
  EndOfSpare(const EndOfSpare&) = delete;
  EndOfSpare& operator=(const EndOfSpare&) = delete;
  ~EndOfSpare() {
    threadEnds = true;
    releaseInDestructor(std::exchange(spare, nullptr));
  }
};

/// Whether nothing knows of the dictionary but the one reference to it.
bool isForgotten(const ObjectRecord* record) noexcept {
  constexpr std::uint32_t kBeside = kFlagAssociations | kFlagObservers | kFlagWeak | kFlagMonitor;
  return record->count.load(std::memory_order_acquire) == 1 &&
         (record->flags.load(std::memory_order_acquire) & kBeside) == 0 &&
         record->isa.load(std::memory_order_acquire) == &ChangeDictionary::classPair.cls;
}

}  // namespace

NSDictionary changeDictionary(ChangeContents contents) {
  ObjectRecord* record = std::exchange(spare, nullptr);
  if (record == nullptr) record = createInstance(&ChangeDictionary::classPair.cls, 0);
  auto dictionary = adopt<ChangeDictionary>(record);
  fieldsOf<Contents>(dictionary) = std::move(contents);
  return dictionary;
}

void reuseChangeDictionary(id dictionary) {
  if (!dictionary || !isForgotten(dictionary.record())) return;
  auto forgotten = uncheckedCast<ChangeDictionary>(std::move(dictionary));
  // The ends of the values may make changes too. What they raise is theirs, as in any destructor.
  Contents& values = fieldsOf<Contents>(forgotten);
  std::destroy_at(&values);
  std::construct_at(&values);
  thread_local const EndOfSpare end;
  if (spare == nullptr && !threadEnds) spare = forgotten.leak();
}

}  // namespace detail
}  // namespace brindle
