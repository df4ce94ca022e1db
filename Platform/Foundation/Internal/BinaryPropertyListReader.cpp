#include "Platform/Foundation/Internal/BinaryPropertyList.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/BinaryPropertyListFormat.h"

namespace brindle::internal {
namespace {

using namespace binary;
using Index = PropertyList::Index;

// A number whose highest byte comes first.
std::uint64_t bigEndian(const char* bytes, std::size_t count) noexcept {
  if (count == 1) return static_cast<unsigned char>(*bytes);  // nearly always
  std::uint64_t value = 0;
  if (count == 8) {
    std::memcpy(&value, bytes, 8);
    return __builtin_bswap64(value);
  }
  for (std::size_t i = 0; i < count; ++i) {
    value = value << 8U | static_cast<unsigned char>(bytes[i]);
  }
  return value;
}

class Reader {
 public:
  Reader(std::string_view bytes, std::string& error) : bytes_(bytes), error_(error) {}

  std::optional<PropertyList> read() {
    if (!readTrailer() || !readObjects()) return std::nullopt;
    list_.setRoot(static_cast<Index>(top_));
    return std::move(list_);
  }

 private:
  // A container whose elements are being read.
  struct Frame {
    Index container;
    std::uint32_t next;
    std::uint16_t height;  // of the highest element so far
  };

  // Of each object: not read yet, its elements being read, or one more than the containers that
  // are nested in it, itself counted.
  static constexpr std::uint16_t kUnread = 0;
  static constexpr std::uint16_t kOpen = 0xFFFF;
  static_assert(PropertyList::kMaximalDepth + 1 < kOpen);

  bool fail(const std::string& what) {
    error_ = "binary property list: " + what;
    return false;
  }
  bool failAt(Index object, const std::string& what) {
    return fail("object " + std::to_string(object) + " at byte " +
                std::to_string(offsetOf(object)) + ": " + what);
  }

  bool readTrailer() {
    if (!bytes_.starts_with(kMagic)) return fail("it does not begin with bplist00");
    if (bytes_.size() < kMagic.size() + kTrailerSize + 2) return fail("it is too short");
    const char* trailer = bytes_.data() + bytes_.size() - kTrailerSize;
    offsetSize_ = static_cast<unsigned char>(trailer[6]);
    referenceSize_ = static_cast<unsigned char>(trailer[7]);
    count_ = bigEndian(trailer + 8, 8);
    top_ = bigEndian(trailer + 16, 8);
    table_ = bigEndian(trailer + 24, 8);
    const std::size_t end = bytes_.size() - kTrailerSize;
    if (offsetSize_ < 1 || offsetSize_ > 8) return fail("offsets are not of 1 to 8 bytes");
    if (referenceSize_ < 1 || referenceSize_ > 8) return fail("references are not of 1 to 8 bytes");
    if (table_ <= kMagic.size() || table_ >= end) return fail("the offset table is not in it");
    if (count_ == 0 || count_ > (end - table_) / offsetSize_ || count_ >= PropertyList::kNone) {
      return fail("the offset table has no room for " + std::to_string(count_) + " objects");
    }
    if (top_ >= count_) return fail("the top object " + std::to_string(top_) + " does not exist");
    return true;
  }

  // Reads the top object and all that it leads to, depth first, and measures how deep that is.
  bool readObjects() {
    list_.reserve(count_);
    list_.addNodes(count_);
    frames_.reserve(8);
    heights_.assign(count_, kUnread);
    room_ = 4 * bytes_.size();
    if (!readObject(static_cast<Index>(top_))) return false;
    while (!frames_.empty()) {
      Frame& frame = frames_.back();
      const auto children = list_.children(frame.container);
      if (frame.next == children.size()) {
        closeContainer();
        continue;
      }
      const Index child = children[frame.next];
      const std::uint16_t height = heights_[child];
      if (height == kUnread) {  // and then looked at again
        if (!readObject(child)) return false;
        continue;
      }
      if (height == kOpen) return failAt(child, "it holds itself");
      if (height > PropertyList::kMaximalDepth) return failAt(child, "it is nested too deeply");
      const bool isKey = list_.kind(frame.container) == PropertyKind::dictionary &&
                         frame.next < list_.node(frame.container).count;
      if (isKey && list_.kind(child) != PropertyKind::string) {
        return failAt(frame.container, "a key is no string");
      }
      frame.height = std::max(frame.height, height);
      ++frame.next;
    }
    return true;
  }

  void closeContainer() {
    const Frame frame = frames_.back();
    frames_.pop_back();
    heights_[frame.container] = static_cast<std::uint16_t>(frame.height + 1);
  }

  [[nodiscard]] std::uint64_t offsetOf(Index object) const noexcept {
    return bigEndian(bytes_.data() + table_ + object * offsetSize_, offsetSize_);
  }

  // Takes `count` bytes from the object area.
  bool take(std::uint64_t count, const char*& start) {
    if (count > table_ - position_) return false;
    start = bytes_.data() + position_;
    position_ += count;
    return true;
  }

  // The size that a marker tells in its low half, or in an integer that follows it.
  bool takeSize(unsigned low, std::uint64_t& size) {
    size = low;
    if (low != 0xF) return true;
    const char* start = nullptr;
    if (!take(1, start)) return false;
    const auto marker = static_cast<unsigned char>(*start);
    if ((marker & 0xF0U) != kInteger || (marker & 0xFU) > 3) return false;
    const std::size_t bytes = std::size_t{1} << (marker & 0xFU);
    if (!take(bytes, start)) return false;
    size = bigEndian(start, bytes);
    return true;
  }

  // Counts what an object takes: all that is copied, looked through, or copied by those who make
  // objects of the nodes. A file whose objects do not overlap cannot use up what there is.
  bool charge(std::uint64_t bytes) {
    if (bytes > room_) return false;
    room_ -= bytes;
    return true;
  }

  bool readObject(Index object) {
    position_ = offsetOf(object);
    if (position_ < kMagic.size() || position_ >= table_) {
      return failAt(object, "it is not among the objects");
    }
    const auto marker = static_cast<unsigned char>(bytes_[position_++]);
    PropertyNode node;
    if (!readNode(marker, node)) {
      if (problem_ != nullptr) return failAt(object, problem_);
      return failAt(object, std::string(nameOf(node.kind)) + " goes beyond the end of the objects");
    }
    list_.put(object, node);
    const bool container = node.kind == PropertyKind::array || node.kind == PropertyKind::set ||
                           node.kind == PropertyKind::dictionary;
    heights_[object] = container ? kOpen : 1;
    if (container) frames_.push_back({object, 0, 1});
    return true;
  }

  bool problem(const char* what) {
    problem_ = what;
    return false;
  }

  bool readNode(unsigned marker, PropertyNode& node) {
    const unsigned low = marker & 0xFU;
    switch (marker & 0xF0U) {
      case 0x00:
        return readSimple(marker, node);
      case kInteger:
        return readInteger(low, node);
      case kReal:
        return readReal(low, node);
      case kDate & 0xF0U:
        return readDate(marker, node);
      case kData:
        return readBytes(PropertyKind::data, low, node);
      case kAscii:
        return readBytes(PropertyKind::string, low, node);
      case kUtf16:
        return readUtf16(low, node);
      case kUid:
        return readUid(low, node);
      case kArray:
        return readContainer(PropertyKind::array, low, node);
      case kSet:
        return readContainer(PropertyKind::set, low, node);
      case kDictionary:
        return readContainer(PropertyKind::dictionary, low, node);
      default:
        return problem("its marker is unknown");
    }
  }

  bool readSimple(unsigned marker, PropertyNode& node) {
    if (marker == kNull) return true;
    if (marker != kFalse && marker != kTrue) return problem("its marker is unknown");
    node.kind = PropertyKind::boolean;
    node.flag = marker == kTrue;
    return true;
  }

  bool readInteger(unsigned low, PropertyNode& node) {
    node.kind = PropertyKind::integer;
    if (low > 4) return problem("its number is of more than 16 bytes");
    const std::size_t size = std::size_t{1} << low;
    const char* start = nullptr;
    if (!take(size, start)) return false;
    if (size == 16) {
      node.integer = {bigEndian(start + 8, 8), static_cast<std::int64_t>(bigEndian(start, 8))};
    } else if (size == 8) {
      node.integer = PropertyInteger::fromSigned(static_cast<std::int64_t>(bigEndian(start, 8)));
    } else {
      node.integer = PropertyInteger::fromUnsigned(bigEndian(start, size));
    }
    return true;
  }

  bool readReal(unsigned low, PropertyNode& node) {
    node.kind = PropertyKind::real;
    const char* start = nullptr;
    if (low == 2) {
      if (!take(4, start)) return false;
      node.real = std::bit_cast<float>(static_cast<std::uint32_t>(bigEndian(start, 4)));
      return true;
    }
    if (low != 3) return problem("its number is of neither 4 nor 8 bytes");
    if (!take(8, start)) return false;
    node.real = std::bit_cast<double>(bigEndian(start, 8));
    return true;
  }

  bool readDate(unsigned marker, PropertyNode& node) {
    if (marker != kDate) return problem("its marker is unknown");
    node.kind = PropertyKind::date;
    const char* start = nullptr;
    if (!take(8, start)) return false;
    node.real = std::bit_cast<double>(bigEndian(start, 8));
    if (!std::isfinite(node.real)) return problem("its date is no number");
    return true;
  }

  // Data, and text of one byte per unit.
  bool readBytes(PropertyKind kind, unsigned low, PropertyNode& node) {
    node.kind = kind;
    std::uint64_t size = 0;
    const char* start = nullptr;
    if (!takeSize(low, size) || !take(size, start)) return false;
    if (!charge(size)) return problem("objects overlap");
    if (kind == PropertyKind::string && !TextView::latin1({start, size}).isAscii()) {
      return problem("its text is not ASCII");
    }
    node.content = {start, size};
    return true;
  }

  bool readUtf16(unsigned low, PropertyNode& node) {
    node.kind = PropertyKind::string;
    std::uint64_t size = 0;
    const char* start = nullptr;
    if (!takeSize(low, size) || size > bytes_.size() || !take(size * 2, start)) return false;
    if (!charge(size * 2)) return problem("objects overlap");
    auto* units = static_cast<char16_t*>(list_.allocate(size * sizeof(char16_t)));
    for (std::size_t i = 0; i < size; ++i) {
      units[i] = static_cast<char16_t>(bigEndian(start + 2 * i, 2));
    }
    node.flag = true;
    node.content = {units, size};
    return true;
  }

  bool readUid(unsigned low, PropertyNode& node) {
    node.kind = PropertyKind::uid;
    if (low > 7) return problem("its UID is of more than 8 bytes");
    const char* start = nullptr;
    if (!take(low + 1, start)) return false;
    node.integer = PropertyInteger::fromUnsigned(bigEndian(start, low + 1));
    return true;
  }

  bool readContainer(PropertyKind kind, unsigned low, PropertyNode& node) {
    node.kind = kind;
    std::uint64_t count = 0;
    const char* start = nullptr;
    const std::uint64_t references = kind == PropertyKind::dictionary ? 2 : 1;
    if (!takeSize(low, count) || count > bytes_.size() ||
        !take(count * references * referenceSize_, start)) {
      return false;
    }
    if (!charge(count * references * sizeof(Index))) return problem("objects overlap");
    const auto children = list_.addChildren(count * references, node.first);
    const std::size_t size = referenceSize_;
    for (std::size_t i = 0; i < children.size(); ++i) {
      const std::uint64_t child = bigEndian(start + i * size, size);
      if (child >= count_) return problem("it holds an object that does not exist");
      children[i] = static_cast<Index>(child);
    }
    node.count = static_cast<std::uint32_t>(count);
    return true;
  }

  std::string_view bytes_;
  std::string& error_;
  PropertyList list_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t top_ = 0;
  std::uint64_t table_ = 0;     // where the offset table begins, and the objects end
  std::uint64_t position_ = 0;  // within the objects
  std::uint64_t room_ = 0;
  const char* problem_ = nullptr;
  std::vector<std::uint16_t> heights_;
  std::vector<Frame> frames_;
};

}  // namespace

bool looksLikeBinaryPropertyList(std::string_view bytes) noexcept {
  return bytes.starts_with(kMagic.substr(0, 6));
}

std::optional<PropertyList> readBinaryPropertyList(std::string_view bytes, std::string& error) {
  return Reader(bytes, error).read();
}

}  // namespace brindle::internal
