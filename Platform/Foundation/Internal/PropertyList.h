#pragma once

// A property list as a flat document: numbers, dates, strings, data, and the arrays and
// dictionaries that hold them. Nodes lie in one vector and know each other by their index; a
// container's elements are a range of indexes. Nothing here calls itself, so depth costs no stack,
// and a node that is held twice stays one node. A document is written once, leaves first, and then
// only read.
//
// Strings and data are views: of the document's own memory, or of bytes that were lent to it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

enum class PropertyKind : std::uint8_t {
  null,
  boolean,
  integer,
  real,
  date,
  string,
  data,
  array,
  dictionary,
  set,
  uid,
};

/// The kind for a message: "a string", "an array".
const char* nameOf(PropertyKind kind) noexcept;

/// A signed number of 128 bits, which is what the binary format can hold.
struct PropertyInteger {
  std::uint64_t low = 0;
  std::int64_t high = 0;  // -1 for every number below zero that fits into 64 bits

  static constexpr PropertyInteger fromSigned(std::int64_t value) noexcept {
    return {static_cast<std::uint64_t>(value), value < 0 ? -1 : 0};
  }
  static constexpr PropertyInteger fromUnsigned(std::uint64_t value) noexcept { return {value, 0}; }

  [[nodiscard]] constexpr bool isNegative() const noexcept { return high < 0; }
  [[nodiscard]] constexpr bool fitsSigned() const noexcept {
    return high == (static_cast<std::int64_t>(low) < 0 ? -1 : 0);
  }
  [[nodiscard]] constexpr bool fitsUnsigned() const noexcept { return high == 0; }
  /// The low 64 bits: the number itself when it fits.
  [[nodiscard]] constexpr std::int64_t asSigned() const noexcept {
    return static_cast<std::int64_t>(low);
  }
  [[nodiscard]] double asReal() const noexcept;

  friend constexpr bool operator==(PropertyInteger, PropertyInteger) = default;
};

/// Where the text or the bytes of a node lie; the size of text is in units.
struct PropertyContent {
  const void* bytes;
  std::size_t size;
};

/// One node. Which of the unnamed members counts is told by the kind.
struct PropertyNode {
  PropertyKind kind = PropertyKind::null;
  bool flag = false;        // the boolean; of a string, whether its units are wide
  std::uint32_t count = 0;  // elements of an array or set, entries of a dictionary
  union {
    PropertyInteger integer{};  // of an integer; of a UID, its number is `low`
    double real;                // of a real; of a date, the seconds since 2001
    PropertyContent content;    // of a string or data
    std::size_t first;          // of a container: where its elements begin; keys come before values
  };
};

class PropertyList {
 public:
  using Index = std::uint32_t;
  static constexpr Index kNone = 0xFFFFFFFF;
  /// Readers refuse more containers within each other, so that those who make objects may recurse.
  static constexpr std::size_t kMaximalDepth = 512;

  PropertyList() noexcept = default;
  /// Leaves an empty document behind.
  PropertyList(PropertyList&& other) noexcept { swap(other); }
  PropertyList& operator=(PropertyList&& other) noexcept {
    PropertyList(std::move(other)).swap(*this);
    return *this;
  }
  ~PropertyList() = default;

  void swap(PropertyList& other) noexcept;

  // --- Reading ---------------------------------------------------------------------------------

  /// The node that everything else hangs from; `kNone` in an empty document.
  [[nodiscard]] Index root() const noexcept { return root_; }
  /// The number of nodes.
  [[nodiscard]] std::size_t size() const noexcept { return nodes_.size(); }
  [[nodiscard]] const PropertyNode& node(Index index) const noexcept { return nodes_[index]; }
  [[nodiscard]] PropertyKind kind(Index index) const noexcept { return nodes_[index].kind; }

  // Each of the following is for a node of its own kind.
  [[nodiscard]] bool boolean(Index index) const noexcept { return nodes_[index].flag; }
  [[nodiscard]] PropertyInteger integer(Index index) const noexcept {
    return nodes_[index].integer;
  }
  [[nodiscard]] double real(Index index) const noexcept { return nodes_[index].real; }
  /// Seconds since the first instant of 2001, UTC.
  [[nodiscard]] double date(Index index) const noexcept { return nodes_[index].real; }
  [[nodiscard]] TextView string(Index index) const noexcept {
    const PropertyNode& node = nodes_[index];
    if (node.flag) {
      return TextView::utf16({static_cast<const char16_t*>(node.content.bytes), node.content.size});
    }
    return TextView::latin1({static_cast<const char*>(node.content.bytes), node.content.size});
  }
  [[nodiscard]] std::string_view data(Index index) const noexcept;
  [[nodiscard]] std::uint64_t uid(Index index) const noexcept { return nodes_[index].integer.low; }
  /// Of an array or a set.
  [[nodiscard]] std::span<const Index> elements(Index index) const noexcept;
  /// Of a dictionary: its keys, which are strings, and the values in the same order.
  [[nodiscard]] std::span<const Index> keys(Index index) const noexcept;
  [[nodiscard]] std::span<const Index> values(Index index) const noexcept;
  /// Everything that a node holds, keys before values; empty when it is no container.
  [[nodiscard]] std::span<const Index> children(Index index) const noexcept {
    const PropertyNode& node = nodes_[index];
    if (node.kind == PropertyKind::dictionary) {
      return {children_.data() + node.first, std::size_t{node.count} * 2};
    }
    const bool isRow = node.kind == PropertyKind::array || node.kind == PropertyKind::set;
    return isRow ? std::span(children_.data() + node.first, node.count) : std::span<const Index>();
  }
  /// The value of that key, the last when there are several; `kNone` when there is none, or when
  /// the node is no dictionary.
  [[nodiscard]] Index find(Index dictionary, TextView key) const noexcept;

  // --- Writing: each answers the new node ------------------------------------------------------

  void setRoot(Index index) noexcept { root_ = index; }
  /// Makes room for that many nodes more.
  void reserve(std::size_t nodes);

  Index addNull() { return add({}); }
  Index addBoolean(bool value);
  Index addInteger(PropertyInteger value);
  Index addInteger(std::int64_t value) { return addInteger(PropertyInteger::fromSigned(value)); }
  Index addReal(double value);
  Index addDate(double secondsSince2001);
  Index addUid(std::uint64_t value);
  /// Copies the text.
  Index addString(TextView text) { return addLentString(keep(text)); }
  /// Looks at the text, which lives as long as the document.
  Index addLentString(TextView text);
  /// Copies the bytes.
  Index addData(std::string_view bytes) { return addLentData(keep(bytes)); }
  /// Looks at the bytes, which live as long as the document.
  Index addLentData(std::string_view bytes);
  Index addArray(std::span<const Index> elements) {
    return addContainer(PropertyKind::array, elements);
  }
  Index addSet(std::span<const Index> elements) {
    return addContainer(PropertyKind::set, elements);
  }
  /// Keys and values alternate; each key is a string.
  Index addDictionary(std::span<const Index> keysAndValues);

  // --- For readers of a format -----------------------------------------------------------------

  /// Adds that many null nodes.
  void addNodes(std::size_t count) { nodes_.resize(nodes_.size() + count); }
  /// Replaces a node.
  void put(Index index, const PropertyNode& node) noexcept { nodes_[index] = node; }
  /// Room for that many indexes of children, which the caller fills; `first` is where it begins.
  std::span<Index> addChildren(std::size_t count, std::size_t& first);
  /// Memory that lives as long as the document, aligned for char16_t.
  void* allocate(std::size_t bytes);
  /// A copy that lives as long as the document.
  TextView keep(TextView text);
  std::string_view keep(std::string_view bytes);

 private:
  Index add(const PropertyNode& node) {
    nodes_.push_back(node);
    return static_cast<Index>(nodes_.size() - 1);
  }
  Index addContainer(PropertyKind kind, std::span<const Index> elements);

  std::vector<PropertyNode> nodes_;
  std::vector<Index> children_;
  std::vector<std::unique_ptr<char16_t[]>> blocks_;
  char16_t* free_ = nullptr;
  std::size_t room_ = 0;  // units behind `free_`
  Index root_ = kNone;
};

}  // namespace brindle::internal
