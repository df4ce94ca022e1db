#pragma once

// A strings table: the words of a program in one language, as translators write them.
//
//   /* Shown when the disk is full. */
//   "disk full" = "Der Datenträger ist voll.";
//   cancel = Abbrechen;
//
// A property list whose top is a dictionary is a table too. Bytes are not trusted: what is no table
// is refused as a whole, with the line of the first mistake.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

struct StringsEntry {
  Text key;
  Text value;
};

/// The entries in the order of the file; of entries with the same key the last one counts. UTF-8 or
/// UTF-16, with a byte order mark or without; text in quotes of either kind, or words of letters,
/// digits and `_ $ / : . -` without quotes; comments of both kinds, the last of which need not end;
/// an entry without a value means its key; the whole may stand in braces. Behind a backslash:
/// a b f n r t v as in C, U or u with up to four hexadecimal digits, up to three octal digits, any
/// other character itself. Of a property list, binary or XML, the entries that are strings.
/// Nothing, and what is wrong where, for anything else.
std::optional<std::vector<StringsEntry>> readStringsTable(std::string_view bytes,
                                                          std::string& error);

}  // namespace brindle::internal
