#include "Platform/Foundation/Internal/KeyValueAccessors.h"

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <Brindle/Platform/MethodChanges.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle::detail {
namespace {

using Kind = KeyAccessor::Kind;

// --- The search ----------------------------------------------------------------------------------

/// A key as it stands in names, and with its first unit in upper case.
struct KeyNames {
  std::string key;
  std::string capital;
  bool isPlain;  // may be a part of a method's or a variable's name

  explicit KeyNames(const NSString& text) : key(text) {
    isPlain = !key.empty() && key.find_first_of(std::string_view(":\0", 2)) == std::string::npos;
    if (!isPlain) return;
    if (static_cast<unsigned char>(key[0]) < 0x80) {
      capital = key;
      if (key[0] >= 'a' && key[0] <= 'z') capital[0] = static_cast<char>(key[0] - 'a' + 'A');
    } else {
      const NSString first = text->substringToIndex(1)->uppercaseString();
      capital = std::string(first->stringByAppendingString(text->substringFromIndex(1)));
    }
  }
};

class Search {
 public:
  Search(ClassRecord* cls, const NSString& key) : class_(cls), names_(key) {}

  bool find(KeyPurpose purpose, KeyAccessor& found) {
    if (!names_.isPlain) return false;
    switch (purpose) {
      case KeyPurpose::kGet:
        return getter(found) || collection(found) || variable(found);
      case KeyPurpose::kSet:
        return setter(found) || variable(found);
      case KeyPurpose::kMutableArray:
        return mutableArray(found) || setter(found) || variable(found);
      case KeyPurpose::kMutableSet:
        return mutableSet(found) || setter(found) || variable(found);
      default:
        found.selector = named("validate", names_.capital, ":error:", "b&&");
        return found.selector != nullptr;
    }
  }

 private:
  // The selector of that name when instances have such a method, of exactly these wire types.
  SEL named(std::string_view before, std::string_view key, std::string_view after,
            std::string_view wire) const {
    std::string name(before);
    name.append(key).append(after);
    const SEL selector = sel_findName(name);
    const SignatureData* data = selector != nullptr ? signatureOf(selector) : nullptr;
    return data != nullptr && data->wire == wire ? selector : nullptr;
  }

  // The types of a method that instances have; null when they have none.
  SignatureData* signatureOf(SEL selector) const {
    const Method method = class_getInstanceMethod(Class(class_), selector);
    if (method == nullptr || method_getImplementation(method) == nullptr) return nullptr;
    return signatureData(method_getTypeEncoding(method));
  }

  // The first of the methods that takes so many arguments and has a type that can be a value: its
  // result, or its last argument.
  template <std::size_t Count>
  bool method(const std::string (&names)[Count], std::size_t arguments, KeyAccessor& found) const {
    for (const std::string& name : names) {
      const SEL selector = sel_findName(name);
      SignatureData* data = selector != nullptr ? signatureOf(selector) : nullptr;
      if (data == nullptr || data->arguments.size() != arguments + 2) continue;
      const TypeData& value = arguments == 0 ? data->result : data->arguments.back();
      KeyValueType type = keyValueType(value.encoding.c_str());
      if (type.size == 0) continue;
      type.signature = data;
      found.selector = selector;
      found.type = std::move(type);
      return true;
    }
    return false;
  }

  bool getter(KeyAccessor& found) const {
    static constexpr std::string_view kManaging[] = {"retain", "release", "autorelease"};
    for (const std::string_view name : kManaging) {
      if (names_.key == name) return false;
    }
    const std::string names[] = {"get" + names_.capital, names_.key, "is" + names_.capital,
                                 "_get" + names_.capital, "_" + names_.key};
    return method(names, 0, found);
  }

  bool setter(KeyAccessor& found) const {
    const std::string names[] = {"set" + names_.capital + ":", "_set" + names_.capital + ":",
                                 "setIs" + names_.capital + ":"};
    return method(names, 1, found);
  }

  bool variable(KeyAccessor& found) const {
    if (class_->isMeta || !send<"accessInstanceVariablesDirectly", bool>(Class(class_))) {
      return false;
    }
    const std::string names[] = {"_" + names_.key, "_is" + names_.capital, names_.key,
                                 "is" + names_.capital};
    for (const std::string& name : names) {
      const Ivar ivar = class_getInstanceVariable(Class(class_), name.c_str());
      if (ivar == nullptr) continue;
      KeyValueType type = keyValueType(ivar_getTypeEncoding(ivar));
      if (type.size == 0) continue;
      found.kind = Kind::kVariable;
      found.type = std::move(type);
      found.offset = ivar_getOffset(ivar);
      return true;
    }
    return false;
  }

  // The parts of a relationship that are read.
  void readers(KeyAccessor& found) const {
    const std::string& key = names_.capital;
    auto& parts = found.parts;
    parts[KeyAccessor::kCount] = named("countOf", key, "", "q");
    if (!found.has(KeyAccessor::kCount)) return;
    parts[KeyAccessor::kObjectAt] = named("objectIn", key, "AtIndex:", "@q");
    parts[KeyAccessor::kObjectsAt] = named("", names_.key, "AtIndexes:", "@@");
    parts[KeyAccessor::kEnumerator] = named("enumeratorOf", key, "", "@");
    parts[KeyAccessor::kMember] = named("memberOf", key, ":", "@@");
  }

  bool collection(KeyAccessor& found) const {
    readers(found);
    found.kind = Kind::kCollection;
    return found.has(KeyAccessor::kObjectAt) || found.has(KeyAccessor::kObjectsAt) ||
           (found.has(KeyAccessor::kEnumerator) && found.has(KeyAccessor::kMember)) || reset(found);
  }

  bool mutableArray(KeyAccessor& found) const {
    const std::string& key = names_.capital;
    auto& parts = found.parts;
    parts[KeyAccessor::kInsert] = named("insertObject:in", key, "AtIndex:", "v@q");
    parts[KeyAccessor::kInsertMany] = named("insert", key, ":atIndexes:", "v@@");
    parts[KeyAccessor::kRemove] = named("removeObjectFrom", key, "AtIndex:", "vq");
    parts[KeyAccessor::kRemoveMany] = named("remove", key, "AtIndexes:", "v@");
    if (!(found.has(KeyAccessor::kInsert) || found.has(KeyAccessor::kInsertMany)) ||
        !(found.has(KeyAccessor::kRemove) || found.has(KeyAccessor::kRemoveMany))) {
      return reset(found);
    }
    parts[KeyAccessor::kReplace] = named("replaceObjectIn", key, "AtIndex:withObject:", "vq@");
    parts[KeyAccessor::kReplaceMany] = named("replace" + key + "AtIndexes:with", key, ":", "v@@");
    readers(found);
    found.kind = Kind::kCollection;
    return true;
  }

  bool mutableSet(KeyAccessor& found) const {
    const std::string& key = names_.capital;
    auto& parts = found.parts;
    parts[KeyAccessor::kInsert] = named("add", key, "Object:", "v@");
    parts[KeyAccessor::kInsertMany] = named("add", key, ":", "v@");
    parts[KeyAccessor::kRemove] = named("remove", key, "Object:", "v@");
    parts[KeyAccessor::kRemoveMany] = named("remove", key, ":", "v@");
    if (!(found.has(KeyAccessor::kInsert) || found.has(KeyAccessor::kInsertMany)) ||
        !(found.has(KeyAccessor::kRemove) || found.has(KeyAccessor::kRemoveMany))) {
      return reset(found);
    }
    parts[KeyAccessor::kIntersect] = named("intersect", key, ":", "v@");
    parts[KeyAccessor::kSetAll] = named("set", key, ":", "v@");
    readers(found);
    found.kind = Kind::kCollection;
    return true;
  }

  static bool reset(KeyAccessor& found) {
    found = KeyAccessor();
    return false;
  }

  ClassRecord* class_;
  KeyNames names_;
};

// --- What was found ------------------------------------------------------------------------------

/// What one class has for one key and purpose, as of a count of the process's method changes.
struct Entry {
  Entry* next;
  ClassRecord* cls;
  KeyPurpose purpose;
  std::size_t hash;
  internal::Text key;
  std::atomic<const KeyAccessor*> accessor;
  std::atomic<std::uint64_t> epoch;
};

// Entries are never removed: there are as many as accessors that were found.
constexpr std::size_t kBuckets = 4096;
constinit std::atomic<Entry*> buckets[kBuckets];
constinit std::mutex writing;

// Accessors that are out of date: proxies and other threads may still go by them.
std::vector<const KeyAccessor*>& retired() {
  static auto& list = *new std::vector<const KeyAccessor*>;
  return list;
}

Entry* entryFor(ClassRecord* cls, internal::TextView key, std::size_t hash, KeyPurpose purpose) {
  for (Entry* entry = buckets[hash % kBuckets].load(std::memory_order_acquire); entry != nullptr;
       entry = entry->next) {
    if (entry->hash == hash && entry->cls == cls && entry->purpose == purpose &&
        entry->key == key) {
      return entry;
    }
  }
  return nullptr;
}

const KeyAccessor* searched(ClassRecord* cls, const NSString& key, std::size_t hash,
                            KeyPurpose purpose, std::uint64_t epoch) {
  KeyAccessor found;
  if (!Search(cls, key).find(purpose, found)) return nullptr;
  const StringText text(key);
  const std::lock_guard guard(writing);
  Entry* entry = entryFor(cls, text, hash, purpose);
  const auto* accessor = new KeyAccessor(std::move(found));
  if (entry == nullptr) {
    std::atomic<Entry*>& bucket = buckets[hash % kBuckets];
    bucket.store(new Entry{bucket.load(std::memory_order_relaxed), cls, purpose, hash,
                           internal::Text(text), accessor, epoch},
                 std::memory_order_release);
    return accessor;
  }
  const KeyAccessor* known = entry->accessor.load(std::memory_order_relaxed);
  // What another thread found later stays.
  const bool isNewest = entry->epoch.load(std::memory_order_relaxed) <= epoch;
  if (*known == *accessor) {
    delete accessor;
    accessor = known;
  } else {
    retired().push_back(isNewest ? known : accessor);
    if (isNewest) entry->accessor.store(accessor, std::memory_order_relaxed);
  }
  if (isNewest) entry->epoch.store(epoch, std::memory_order_release);
  return accessor;
}

}  // namespace

const KeyAccessor* keyAccessor(const id& object, const NSString& key, KeyPurpose purpose) {
  ClassRecord* cls = object.record()->isa.load(std::memory_order_acquire);
  // Before the search, so that a change meanwhile makes what it finds out of date.
  const std::uint64_t epoch = methodEpoch.load(std::memory_order_acquire);
  std::size_t hash = 0;
  {
    const StringText text(key);
    hash = text.view().hash() ^ (std::hash<const void*>()(cls) >> 4U) * 31 ^
           static_cast<std::size_t>(purpose) * 0x9E3779B1U;
    const Entry* entry = entryFor(cls, text, hash, purpose);
    if (entry != nullptr && entry->epoch.load(std::memory_order_acquire) == epoch) {
      return entry->accessor.load(std::memory_order_relaxed);
    }
  }
  return searched(cls, key, hash, purpose, epoch);
}

}  // namespace brindle::detail
