#pragma once

// The XML form of a property list: one element for each value, a dictionary's keys in elements of
// their own. It has no element for a UID, which is written as a dictionary of the one key "CF$UID".
//
// This unit alone talks to expat. Bytes are not trusted: entities are not expanded, nothing outside
// the bytes is fetched, nesting is bounded and costs no stack.

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/PropertyList.h"

namespace brindle::internal {

/// Whether the first thing in the bytes is a "<", in UTF-8 or UTF-16, with or without a mark.
bool looksLikeXmlPropertyList(std::string_view bytes) noexcept;

/// The document. Nothing, and what is wrong in which line, when the bytes are no such file.
/// Entities other than those of XML itself, unknown elements and text between values are errors.
std::optional<PropertyList> readXmlPropertyList(std::string_view bytes, std::string& error);

/// The document as a file in UTF-8, indented with tabs. Dates are written in whole seconds. Nothing
/// when it is empty or holds what XML cannot: null, a set, a character that XML forbids, a date
/// that is no number, or containers that are held so often that writing each time would take too
/// much.
std::optional<std::string> writeXmlPropertyList(const PropertyList& list, std::string& error);

}  // namespace brindle::internal
