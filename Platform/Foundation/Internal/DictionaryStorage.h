// The variables of the dictionary classes.
#pragma once

#include <vector>

#include <Brindle/Platform/NSDictionary.h>

#include "Platform/Foundation/Internal/ObjectTable.h"

namespace brindle::detail {

/// Of a subclass that keeps its entries elsewhere the table stays empty.
ObjectTable& tableOf(const NSDictionary& dictionary);

/// Whether the dictionary is of the library's own classes, so that its table holds its entries.
bool isLibraryDictionary(const NSDictionary& dictionary) noexcept;

/// A copy of a key for a table, by `copyWithZone:`; nil raises NSInvalidArgumentException.
id copyKey(const id& key);

struct DictionaryEntry {
  id key;
  id value;
};

/// The entries, owned: for operations that run a client's code. None for nil.
std::vector<DictionaryEntry> copyEntries(const NSDictionary& dictionary);

}  // namespace brindle::detail
