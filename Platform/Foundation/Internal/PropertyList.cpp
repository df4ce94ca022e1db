#include "Platform/Foundation/Internal/PropertyList.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace brindle::internal {
namespace {

PropertyNode nodeOf(PropertyKind kind) {
  PropertyNode node;
  node.kind = kind;
  return node;
}

}  // namespace

const char* nameOf(PropertyKind kind) noexcept {
  switch (kind) {
    case PropertyKind::null:
      return "null";
    case PropertyKind::boolean:
      return "a boolean";
    case PropertyKind::integer:
      return "an integer";
    case PropertyKind::real:
      return "a real";
    case PropertyKind::date:
      return "a date";
    case PropertyKind::string:
      return "a string";
    case PropertyKind::data:
      return "data";
    case PropertyKind::array:
      return "an array";
    case PropertyKind::dictionary:
      return "a dictionary";
    case PropertyKind::set:
      return "a set";
    case PropertyKind::uid:
      return "a UID";
  }
  return "nothing";
}

double PropertyInteger::asReal() const noexcept {
  if (fitsSigned()) return static_cast<double>(asSigned());
  return std::ldexp(static_cast<double>(high), 64) + static_cast<double>(low);
}

void PropertyList::swap(PropertyList& other) noexcept {
  nodes_.swap(other.nodes_);
  children_.swap(other.children_);
  blocks_.swap(other.blocks_);
  std::swap(free_, other.free_);
  std::swap(room_, other.room_);
  std::swap(root_, other.root_);
}

std::string_view PropertyList::data(Index index) const noexcept {
  const PropertyNode& node = nodes_[index];
  return {static_cast<const char*>(node.content.bytes), node.content.size};
}

std::span<const PropertyList::Index> PropertyList::elements(Index index) const noexcept {
  const PropertyNode& node = nodes_[index];
  return {children_.data() + node.first, node.count};
}

std::span<const PropertyList::Index> PropertyList::keys(Index index) const noexcept {
  return elements(index);
}

std::span<const PropertyList::Index> PropertyList::values(Index index) const noexcept {
  const PropertyNode& node = nodes_[index];
  return {children_.data() + node.first + node.count, node.count};
}

PropertyList::Index PropertyList::find(Index dictionary, TextView key) const noexcept {
  if (dictionary == kNone || kind(dictionary) != PropertyKind::dictionary) return kNone;
  const auto all = keys(dictionary);
  for (std::size_t i = all.size(); i-- > 0;) {
    if (nodes_[all[i]].content.size != key.size()) continue;
    if (string(all[i]) == key) return values(dictionary)[i];
  }
  return kNone;
}

void PropertyList::reserve(std::size_t nodes) {
  nodes_.reserve(nodes_.size() + nodes);
  children_.reserve(children_.size() + nodes * 2);
}

PropertyList::Index PropertyList::addBoolean(bool value) {
  PropertyNode node = nodeOf(PropertyKind::boolean);
  node.flag = value;
  return add(node);
}

PropertyList::Index PropertyList::addInteger(PropertyInteger value) {
  PropertyNode node = nodeOf(PropertyKind::integer);
  node.integer = value;
  return add(node);
}

PropertyList::Index PropertyList::addReal(double value) {
  PropertyNode node = nodeOf(PropertyKind::real);
  node.real = value;
  return add(node);
}

PropertyList::Index PropertyList::addDate(double secondsSince2001) {
  PropertyNode node = nodeOf(PropertyKind::date);
  node.real = secondsSince2001;
  return add(node);
}

PropertyList::Index PropertyList::addUid(std::uint64_t value) {
  PropertyNode node = nodeOf(PropertyKind::uid);
  node.integer = PropertyInteger::fromUnsigned(value);
  return add(node);
}

PropertyList::Index PropertyList::addLentString(TextView text) {
  PropertyNode node = nodeOf(PropertyKind::string);
  node.flag = !text.isNarrow();
  node.content = {node.flag ? static_cast<const void*>(text.units().data()) : text.bytes().data(),
                  text.size()};
  return add(node);
}

PropertyList::Index PropertyList::addLentData(std::string_view bytes) {
  PropertyNode node = nodeOf(PropertyKind::data);
  node.content = {bytes.data(), bytes.size()};
  return add(node);
}

PropertyList::Index PropertyList::addContainer(PropertyKind kind, std::span<const Index> elements) {
  PropertyNode node = nodeOf(kind);
  node.count = static_cast<std::uint32_t>(elements.size());
  std::size_t first = 0;
  const auto room = addChildren(elements.size(), first);
  std::copy(elements.begin(), elements.end(), room.begin());
  node.first = first;
  return add(node);
}

PropertyList::Index PropertyList::addDictionary(std::span<const Index> keysAndValues) {
  const std::size_t count = keysAndValues.size() / 2;
  PropertyNode node = nodeOf(PropertyKind::dictionary);
  node.count = static_cast<std::uint32_t>(count);
  std::size_t first = 0;
  const auto room = addChildren(count * 2, first);
  for (std::size_t i = 0; i < count; ++i) {
    room[i] = keysAndValues[2 * i];
    room[count + i] = keysAndValues[2 * i + 1];
  }
  node.first = first;
  return add(node);
}

std::span<PropertyList::Index> PropertyList::addChildren(std::size_t count, std::size_t& first) {
  first = children_.size();
  children_.resize(first + count);
  return {children_.data() + first, count};
}

void* PropertyList::allocate(std::size_t bytes) {
  constexpr std::size_t kBlock = 1024;
  const std::size_t units = bytes / sizeof(char16_t) + bytes % sizeof(char16_t);
  if (units > room_) {
    // What is large gets a block of its own, so that the rest of the present one is not lost.
    const bool large = units > kBlock / 4;
    blocks_.emplace_back(new char16_t[large ? units : kBlock]);
    if (large) return blocks_.back().get();
    free_ = blocks_.back().get();
    room_ = kBlock;
  }
  void* memory = free_;
  free_ += units;
  room_ -= units;
  return memory;
}

TextView PropertyList::keep(TextView text) {
  if (text.isNarrow()) return TextView::latin1(keep(text.bytes()));
  auto* units = static_cast<char16_t*>(allocate(text.size() * sizeof(char16_t)));
  text.copyTo(units);
  return TextView::utf16({units, text.size()});
}

std::string_view PropertyList::keep(std::string_view bytes) {
  auto* copy = static_cast<char*>(allocate(bytes.size()));
  if (!bytes.empty()) std::memcpy(copy, bytes.data(), bytes.size());
  return {copy, bytes.size()};
}

}  // namespace brindle::internal
