#include "Platform/Foundation/Internal/BundleStrings.h"

#include <utility>

#include "Platform/Foundation/Internal/BundleLayout.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/StringsTable.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle::detail {
namespace {

using internal::TextView;

constexpr std::uint32_t kEmpty = 0xFFFFFFFF;

std::size_t startOf(NSUInteger hash, std::size_t slots) noexcept {
  return (hash * 0x9E3779B97F4A7C15U >> 32U) & (slots - 1);
}

/// A string of the library's remembers its hash.
NSUInteger hashOf(const NSString& string, const TextView& text) {
  if (!isLibraryString(string.record())) return text.hash();
  const std::size_t known = contentsOf(string.record()).hash.load(std::memory_order_relaxed);
  return known != 0 ? known : send<"hash", NSUInteger>(string);
}

constexpr const NSString& kStandardName = "Localizable"_ns;

}  // namespace

inline const WordTable::Entry* WordTable::find(NSUInteger hash,
                                               const TextView& key) const noexcept {
  if (slots_.empty()) return nullptr;
  for (std::size_t slot = startOf(hash, slots_.size()); slots_[slot] != kEmpty;
       slot = (slot + 1) & (slots_.size() - 1)) {
    const Entry& entry = entries_[slots_[slot]];
    if (entry.hash == hash && entry.text == key) return &entry;
  }
  return nullptr;
}

void WordTable::addFile(const std::string& path) {
  std::string error;
  const auto read = internal::readStringsTable(internal::contentsOfFile(path), error);
  if (!read) return;
  // Backwards: of equal keys in one file the last counts, of several files the first.
  for (auto entry = read->rbegin(); entry != read->rend(); ++entry) {
    const NSUInteger hash = entry->key.view().hash();
    if (find(hash, entry->key) != nullptr) continue;
    const NSString word = makeString(entry->value);
    makeImmortal(word.record());  // lent to many, who count nothing
    const NSString key = makeString(entry->key);
    entries_.push_back({hash, key, textIn(contentsOf(key.record())), word});
    if (slots_.size() < entries_.size() * 2) {
      slots_.assign(slots_.empty() ? 16 : slots_.size() * 2, kEmpty);
      for (std::size_t i = 0; i < entries_.size(); ++i) occupySlot(i);
    } else {
      occupySlot(entries_.size() - 1);
    }
  }
}

void WordTable::occupySlot(std::size_t entry) noexcept {
  std::size_t slot = startOf(entries_[entry].hash, slots_.size());
  while (slots_[slot] != kEmpty) slot = (slot + 1) & (slots_.size() - 1);
  slots_[slot] = static_cast<std::uint32_t>(entry);
}

const NSString* WordTable::find(const NSString& key) const {
  if (slots_.empty()) return nullptr;
  const StringText text(key);
  const Entry* entry = find(hashOf(key, text), text);
  return entry == nullptr ? nullptr : &entry->word;
}

const WordTable& BundleStrings::standardTable() {
  const WordTable* standard = standard_.load(std::memory_order_acquire);
  return standard != nullptr ? *standard : tableNamed(kStandardName);
}

const WordTable& BundleStrings::table(const NSString& name) {
  if (!name) return standardTable();
  const StringText text(name);
  if (text.view().empty()) return standardTable();
  const Named* known = findNamed(text);
  return known != nullptr ? known->table : tableNamed(makeString(text));
}

const BundleStrings::Named* BundleStrings::findNamed(const TextView& name) const noexcept {
  const Named* named = named_.load(std::memory_order_acquire);
  while (named != nullptr && textIn(contentsOf(named->name.record())) != name) named = named->next;
  return named;
}

const WordTable& BundleStrings::tableNamed(const NSString& name) {
  const std::lock_guard lock(mutex_);
  const Named* known = findNamed(StringText(name));
  if (known == nullptr) {
    auto* named = new Named{name, {}, named_.load()};
    const std::string file = std::string(name) + ".strings";
    for (const std::string& folder : folders_) named->table.addFile(internal::joined(folder, file));
    named_.store(named, std::memory_order_release);
    known = named;
  }
  if (name->isEqualToString(kStandardName)) {
    standard_.store(&known->table, std::memory_order_release);
  }
  return known->table;
}

}  // namespace brindle::detail
