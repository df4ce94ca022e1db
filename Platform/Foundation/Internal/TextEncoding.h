// An encoding maps text to bytes. Bytes come from anywhere: whatever is no text in the encoding is
// refused or replaced by U+FFFD, as the caller asks. Text may hold lone surrogates; an encoding
// cannot, so they leave as U+FFFD.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

enum class TextEncoding {
  ascii,
  utf8,
  latin1,
  utf16,  // A mark says the byte order; without one it is the machine's. Written with a mark.
  utf16BigEndian,
  utf16LittleEndian,
};

enum class OnInvalid { refuse, replace };

/// The text that `bytes` are in UTF-8; nothing when they are not and `onInvalid` says refuse.
/// Otherwise each longest start of a character that does not go on becomes one U+FFFD.
std::optional<Text> textFromUtf8(std::string_view bytes, OnInvalid onInvalid = OnInvalid::refuse);

/// The same with every mistake replaced.
Text textFromUtf8Replacing(std::string_view bytes);

/// The text that `bytes` are in `encoding`; a byte order mark at the start is taken off (of UTF-8
/// and `utf16`). Nothing for bytes that are no text in the encoding, or an odd number of them.
std::optional<Text> decodeText(std::string_view bytes, TextEncoding encoding);

/// Without the last character of `bytes` where that is UTF-8 cut off in its middle.
std::string_view withoutCutCharacter(std::string_view bytes) noexcept;

/// UTF-8 of `text`.
std::string utf8FromText(TextView text);

/// The bytes of `text`. Where a unit has none in the encoding: "?" when `lossy`, otherwise nothing
/// is answered.
std::optional<std::string> encodeText(TextView text, TextEncoding encoding, bool lossy = false);

}  // namespace brindle::internal
