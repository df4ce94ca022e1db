#pragma once

// The binary form of a property list, "bplist00": objects one after the other, a table of where
// each begins, and 32 bytes at the end that tell how to read the table. Objects hold each other by
// their number in the table.
//
// The reader trusts nothing: every offset, size and number is checked before it is used; a file
// that holds itself, nests too deeply, or whose objects overlap so that little bytes would become
// much memory is refused.

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/PropertyList.h"

namespace brindle::internal {

/// Whether the bytes begin as any version of the form does.
bool looksLikeBinaryPropertyList(std::string_view bytes) noexcept;

/// The document, whose strings and data look into `bytes`. Nothing, and what is wrong where, when
/// the bytes are no such file. Objects that the top one does not lead to are not looked at.
std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes, std::string& error);

/// The document, which must have a root, as a file. Equal strings, numbers, dates and data become
/// one object; numbers, offsets and references take as few bytes as they can.
std::string writeBinaryPropertyList(const PropertyList& list);

}  // namespace brindle::internal
