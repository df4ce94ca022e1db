// The system knows files by bytes, programs by text. Bytes that are UTF-8 become that text. A byte
// that is not becomes the lone unit U+DC00 + byte (U+DC80 to U+DCFF), which no UTF-8 stands for,
// and goes back as that byte: the name of every file that exists comes back as it was.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

Text textFromFileName(std::string_view bytes);

/// The bytes of a name or a path. Other lone surrogates become U+FFFD. Nothing for text with a zero
/// unit, which no name has.
std::optional<std::string> fileNameFromText(TextView text);

}  // namespace brindle::internal
