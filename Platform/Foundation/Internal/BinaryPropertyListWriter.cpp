#include "Platform/Foundation/Internal/BinaryPropertyList.h"

#include <bit>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/BinaryPropertyListFormat.h"

namespace brindle::internal {
namespace {

using namespace binary;
using Index = PropertyList::Index;

// Gives each object of the file its number, containers before what they hold, and writes them.
class Writer {
 public:
  explicit Writer(const PropertyList& list) : list_(list) {}

  std::string write() {
    number();
    referenceSize_ = bytesFor(objects_.size() - 1);
    out_.reserve(objects_.size() * 24 + 128);
    out_ = kMagic;
    std::vector<std::size_t> offsets;
    offsets.reserve(objects_.size());
    for (const Index object : objects_) {
      offsets.push_back(out_.size());
      writeObject(object);
    }
    const std::size_t table = out_.size();
    const std::size_t offsetSize = bytesFor(table);
    for (const std::size_t offset : offsets) put(offset, offsetSize);
    out_.append(6, '\0');
    out_.push_back(static_cast<char>(offsetSize));
    out_.push_back(static_cast<char>(referenceSize_));
    put(objects_.size(), 8);
    put(0, 8);  // the top object
    put(table, 8);
    return std::move(out_);
  }

 private:
  static constexpr Index kUnnumbered = PropertyList::kNone;

  static std::size_t bytesFor(std::uint64_t value) noexcept {
    return value <= 0xFF ? 1 : value <= 0xFFFF ? 2 : value <= 0xFFFFFFFF ? 4 : 8;
  }

  void number() {
    numbers_.assign(list_.size(), kUnnumbered);
    slots_.assign(std::bit_ceil(list_.size() + list_.size() / 2 + 2), kUnnumbered);
    objects_.reserve(list_.size());
    std::vector<Index> waiting;
    waiting.reserve(list_.size() + 1);
    waiting.push_back(list_.root());
    while (!waiting.empty()) {
      const Index node = waiting.back();
      waiting.pop_back();
      if (numbers_[node] != kUnnumbered) continue;
      const auto next = static_cast<Index>(objects_.size());
      numbers_[node] = isUniqued(list_.kind(node)) ? numberOfEqual(node, next) : next;
      if (numbers_[node] == next) objects_.push_back(node);
      const auto children = list_.children(node);
      if (!children.empty()) waiting.insert(waiting.end(), children.rbegin(), children.rend());
    }
  }

  static bool isUniqued(PropertyKind kind) noexcept {
    return kind != PropertyKind::array && kind != PropertyKind::dictionary &&
           kind != PropertyKind::set;
  }

  // The number of the first node that is equal to this one, which may be this one with `next`.
  Index numberOfEqual(Index node, Index next) {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash(node) & mask;
    while (slots_[slot] != kUnnumbered) {
      if (areEqual(slots_[slot], node)) return numbers_[slots_[slot]];
      slot = (slot + 1) & mask;
    }
    slots_[slot] = node;
    return next;
  }

  [[nodiscard]] std::size_t hash(Index index) const noexcept {
    const PropertyNode& node = list_.node(index);
    std::uint64_t value = 0;
    switch (node.kind) {
      case PropertyKind::boolean:
        value = node.flag ? 1 : 0;
        break;
      case PropertyKind::integer:
      case PropertyKind::uid:
        value = node.integer.low ^ static_cast<std::uint64_t>(node.integer.high);
        break;
      case PropertyKind::real:
      case PropertyKind::date:
        value = std::bit_cast<std::uint64_t>(node.real);
        break;
      case PropertyKind::string:
        value = list_.string(index).hash();
        break;
      case PropertyKind::data:
        value = std::hash<std::string_view>()(list_.data(index));
        break;
      default:
        break;
    }
    value = (value + static_cast<std::uint64_t>(node.kind)) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(value >> 32U);
  }

  [[nodiscard]] bool areEqual(Index a, Index b) const noexcept {
    const PropertyNode& x = list_.node(a);
    const PropertyNode& y = list_.node(b);
    if (x.kind != y.kind) return false;
    switch (x.kind) {
      case PropertyKind::boolean:
        return x.flag == y.flag;
      case PropertyKind::integer:
      case PropertyKind::uid:
        return x.integer == y.integer;
      case PropertyKind::real:
      case PropertyKind::date:  // bit by bit: zeros have signs, and what is no number is kept
        return std::bit_cast<std::uint64_t>(x.real) == std::bit_cast<std::uint64_t>(y.real);
      case PropertyKind::string:
        return list_.string(a) == list_.string(b);
      case PropertyKind::data:
        return list_.data(a) == list_.data(b);
      default:
        return true;  // null
    }
  }

  void put(std::uint64_t value, std::size_t bytes) {
    if (bytes == 1) return out_.push_back(static_cast<char>(value));  // nearly always
    const std::uint64_t swapped = __builtin_bswap64(value);
    char buffer[8];
    std::memcpy(buffer, &swapped, 8);
    out_.append(buffer + 8 - bytes, bytes);
  }

  void putMarker(unsigned marker) { out_.push_back(static_cast<char>(marker)); }

  void putUnsigned(std::uint64_t value) {
    const std::size_t bytes = bytesFor(value);
    putMarker(kInteger | static_cast<unsigned>(std::countr_zero(bytes)));
    put(value, bytes);
  }

  void putMarkerAndSize(unsigned marker, std::size_t size) {
    if (size < 0xF) return putMarker(marker | static_cast<unsigned>(size));
    putMarker(marker | 0xFU);
    putUnsigned(size);
  }

  void writeObject(Index index) {
    const PropertyNode& node = list_.node(index);
    switch (node.kind) {
      case PropertyKind::null:
        return putMarker(kNull);
      case PropertyKind::boolean:
        return putMarker(node.flag ? kTrue : kFalse);
      case PropertyKind::integer:
        return writeInteger(node.integer);
      case PropertyKind::real:
        putMarker(kReal | 3U);
        return put(std::bit_cast<std::uint64_t>(node.real), 8);
      case PropertyKind::date:
        putMarker(kDate);
        return put(std::bit_cast<std::uint64_t>(node.real), 8);
      case PropertyKind::string:
        return writeString(list_.string(index));
      case PropertyKind::data:
        putMarkerAndSize(kData, node.content.size);
        out_.append(list_.data(index));
        return;
      case PropertyKind::uid: {
        const std::size_t bytes = bytesFor(node.integer.low);
        putMarker(kUid | static_cast<unsigned>(bytes - 1));
        return put(node.integer.low, bytes);
      }
      case PropertyKind::array:
        return writeContainer(kArray, index);
      case PropertyKind::set:
        return writeContainer(kSet, index);
      case PropertyKind::dictionary:
        return writeContainer(kDictionary, index);
    }
  }

  // Numbers of up to 4 bytes are read without a sign, those of 8 with one.
  void writeInteger(PropertyInteger value) {
    if (value.fitsSigned() && !value.isNegative()) return putUnsigned(value.low);
    if (value.fitsSigned()) {
      putMarker(kInteger | 3U);
      return put(value.low, 8);
    }
    putMarker(kInteger | 4U);
    put(static_cast<std::uint64_t>(value.high), 8);
    put(value.low, 8);
  }

  void writeString(TextView text) {
    if (text.isAscii()) {
      putMarkerAndSize(kAscii, text.size());
      if (text.isNarrow()) {
        out_.append(text.bytes());
      } else {
        for (const char16_t unit : text.units()) out_.push_back(static_cast<char>(unit));
      }
      return;
    }
    putMarkerAndSize(kUtf16, text.size());
    for (std::size_t i = 0; i < text.size(); ++i) put(text[i], 2);
  }

  void writeContainer(unsigned marker, Index index) {
    putMarkerAndSize(marker, list_.node(index).count);
    const auto children = list_.children(index);
    if (referenceSize_ > 1) {
      for (const Index child : children) put(numbers_[child], referenceSize_);
      return;
    }
    std::size_t at = out_.size();
    out_.resize(at + children.size());
    for (const Index child : children) out_[at++] = static_cast<char>(numbers_[child]);
  }

  const PropertyList& list_;
  std::vector<Index> numbers_;  // of each node its object's number
  std::vector<Index> objects_;  // of each object its node
  std::vector<Index> slots_;    // a hash table of the nodes that others may be equal to
  std::size_t referenceSize_ = 1;
  std::string out_;
};

}  // namespace

std::string writeBinaryPropertyList(const PropertyList& list) { return Writer(list).write(); }

}  // namespace brindle::internal
