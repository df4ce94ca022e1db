// The translated words of a bundle. A table is read when it is first asked for and then kept for
// the life of the process, so that looking a word up needs no lock and no file.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::detail {

/// Keys and their words. Read by any thread once it is filled.
class WordTable {
 public:
  WordTable() = default;

  /// Adds the entries of a file, when it can be read, whose keys are not there yet.
  void addFile(const std::string& path);

  /// The word of that key, or null.
  [[nodiscard]] const NSString* find(const NSString& key) const;
  [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }

 private:
  struct Entry {
    NSUInteger hash;
    NSString key;
    internal::TextView text;  // the key's
    NSString word;
  };
  [[nodiscard]] const Entry* find(NSUInteger hash, const internal::TextView& key) const noexcept;
  void occupySlot(std::size_t entry) noexcept;

  std::vector<Entry> entries_;
  std::vector<std::uint32_t> slots_;  // entries; a power of two of them, or none
};

/// The tables of one bundle in one order of languages. Never destroyed: who looks a word up holds
/// nothing that would keep them.
class BundleStrings {
 public:
  /// The folders in which a table may lie, the preferred first: a word is taken from the first that
  /// has it. `generation` is that of the languages, `outdated` the tables of the one before.
  BundleStrings(std::vector<std::string> folders, unsigned long generation,
                const BundleStrings* outdated)
      : folders_(std::move(folders)), generation_(generation), outdated_(outdated) {}

  [[nodiscard]] unsigned long generation() const noexcept { return generation_; }
  /// The tables of the languages before; kept, because somebody may still read them.
  [[nodiscard]] const BundleStrings* outdated() const noexcept { return outdated_; }
  [[nodiscard]] const std::vector<std::string>& folders() const noexcept { return folders_; }

  /// The table of that name; the one named Localizable for nil and "". Empty when there is none.
  const WordTable& table(const NSString& name);
  const WordTable& standardTable();

 private:
  struct Named {
    NSString name;
    WordTable table;
    const Named* next;
  };
  const WordTable& tableNamed(const NSString& name);
  [[nodiscard]] const Named* findNamed(const internal::TextView& name) const noexcept;

  const std::vector<std::string> folders_;
  const unsigned long generation_;
  const BundleStrings* const outdated_;
  std::mutex mutex_;  // while a table is read
  std::atomic<const WordTable*> standard_{nullptr};
  std::atomic<const Named*> named_{nullptr};
};

}  // namespace brindle::detail
