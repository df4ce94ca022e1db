#include "Platform/Foundation/Internal/PropertyListFormat.h"

#include "Platform/Foundation/Internal/BinaryPropertyList.h"
#include "Platform/Foundation/Internal/XmlPropertyList.h"

namespace brindle::internal {

std::optional<PropertyListFormat> formatOf(std::string_view bytes) noexcept {
  if (looksLikeBinaryPropertyList(bytes)) return PropertyListFormat::binary;
  if (looksLikeXmlPropertyList(bytes)) return PropertyListFormat::xml;
  return std::nullopt;
}

std::optional<PropertyList> readPropertyList(std::string_view bytes, std::string& error) {
  const auto format = formatOf(bytes);
  if (format == PropertyListFormat::binary) return readBinaryPropertyList(bytes, error);
  if (format == PropertyListFormat::xml) return readXmlPropertyList(bytes, error);
  error = "property list: it begins neither as a binary one nor as one in XML";
  return std::nullopt;
}

std::optional<std::string> writePropertyList(const PropertyList& list, PropertyListFormat format,
                                             std::string& error) {
  if (format == PropertyListFormat::xml) return writeXmlPropertyList(list, error);
  if (list.root() == PropertyList::kNone) {
    error = "binary property list: there is no value";
    return std::nullopt;
  }
  return writeBinaryPropertyList(list);
}

}  // namespace brindle::internal
