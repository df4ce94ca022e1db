#pragma once

// A property list whose form is not known beforehand.

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/PropertyList.h"

namespace brindle::internal {

enum class PropertyListFormat { binary, xml };

/// The form that the first bytes speak of; nothing when it is neither.
std::optional<PropertyListFormat> formatOf(std::string_view bytes) noexcept;

/// The document, whose strings and data may look into `bytes`. Nothing, and what is wrong where,
/// when they are no property list, or one of the old form without marks.
std::optional<PropertyList> readPropertyList(std::string_view bytes, std::string& error);

/// The document as a file. Nothing, and why, when the form cannot hold what is in it.
std::optional<std::string> writePropertyList(const PropertyList& list, PropertyListFormat format,
                                             std::string& error);

}  // namespace brindle::internal
