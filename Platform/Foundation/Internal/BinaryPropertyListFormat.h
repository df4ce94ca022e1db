#pragma once

// The bytes that the binary form of a property list begins with, and those that its objects do.

#include <cstddef>
#include <string_view>

namespace brindle::internal::binary {

inline constexpr std::string_view kMagic = "bplist00";
inline constexpr std::size_t kTrailerSize = 32;

/// The high half tells what the object is; the low half mostly its size, 15 when that follows.
enum Marker : unsigned {
  kNull = 0x00,
  kFalse = 0x08,
  kTrue = 0x09,
  kInteger = 0x10,
  kReal = 0x20,
  kDate = 0x33,
  kData = 0x40,
  kAscii = 0x50,
  kUtf16 = 0x60,
  kUid = 0x80,
  kArray = 0xA0,
  kSet = 0xC0,
  kDictionary = 0xD0,
};

}  // namespace brindle::internal::binary
