// Paths between strings and the system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/FileNames.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle::detail {

/// The bytes of a path. Nothing for nil, for the empty string, and for one with a zero character:
/// no file has such a name.
inline std::optional<std::string> fileNameOf(const NSString& path) {
  if (!path) return std::nullopt;
  auto bytes = internal::fileNameFromText(StringText(path));
  if (bytes && bytes->empty()) return std::nullopt;
  return bytes;
}

/// A path of the system's.
inline NSString pathString(std::string_view bytes) {
  return makeString(internal::textFromFileName(bytes));
}

}  // namespace brindle::detail
