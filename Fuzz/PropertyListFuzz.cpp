// Property lists from outside: whatever the bytes are, they are read or refused; what was read is
// written in both forms, as far as the form can hold it, and what comes back is equal.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

using namespace brindle::internal;
using Index = PropertyList::Index;

namespace {

// XML has no fractions of seconds, one NaN, and a dictionary where a UID belongs.
bool areEqualReals(double a, double b, bool isXml) {
  if (isXml && std::isnan(a) && std::isnan(b)) return true;
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

std::optional<std::uint64_t> asUid(const PropertyList& list, Index index) {
  if (list.kind(index) == PropertyKind::uid) return list.uid(index);
  if (list.kind(index) != PropertyKind::dictionary || list.keys(index).size() != 1 ||
      list.string(list.keys(index)[0]) != TextView::latin1(kUidKey)) {
    return std::nullopt;
  }
  const Index value = list.values(index)[0];
  if (list.kind(value) != PropertyKind::integer || !list.integer(value).fitsUnsigned()) {
    return std::nullopt;
  }
  return list.integer(value).low;
}

bool areEqualNodes(const PropertyList& a, Index i, const PropertyList& b, Index j, bool isXml) {
  if (isXml && b.kind(j) == PropertyKind::uid) return asUid(a, i) == b.uid(j);
  if (a.kind(i) != b.kind(j) || a.children(i).size() != b.children(j).size()) return false;
  switch (a.kind(i)) {
    case PropertyKind::boolean:
      return a.boolean(i) == b.boolean(j);
    case PropertyKind::integer:
      return a.integer(i) == b.integer(j);
    case PropertyKind::real:
      return areEqualReals(a.real(i), b.real(j), isXml);
    case PropertyKind::date:
      if (isXml) return std::floor(a.date(i)) == b.date(j);
      return areEqualReals(a.date(i), b.date(j), isXml);
    case PropertyKind::string:
      return a.string(i) == b.string(j);
    case PropertyKind::data:
      return a.data(i) == b.data(j);
    case PropertyKind::uid:
      return a.uid(i) == b.uid(j);
    default:
      return true;
  }
}

// The second was made of the first, so each of its nodes stands for one of the first's. In the
// binary form containers stay shared; XML writes them as often as they are held.
bool areEqual(const PropertyList& a, const PropertyList& b, bool isXml) {
  std::vector<bool> seen(b.size());
  std::vector<std::pair<Index, Index>> waiting{{a.root(), b.root()}};
  while (!waiting.empty()) {
    const auto [i, j] = waiting.back();
    waiting.pop_back();
    if (!areEqualNodes(a, i, b, j, isXml)) return false;
    if (seen[j] || (isXml && b.kind(j) == PropertyKind::uid)) continue;
    const bool container = !b.children(j).empty();
    seen[j] = container;
    for (std::size_t k = 0; container && k < b.children(j).size(); ++k) {
      waiting.emplace_back(a.children(i)[k], b.children(j)[k]);
    }
  }
  return true;
}

[[noreturn]] void complain(const char* what, const std::string& error) {
  std::fprintf(stderr, "%s: %s\n", what, error.c_str());
  std::abort();
}

void checkFormat(const PropertyList& list, PropertyListFormat format) {
  const bool isXml = format == PropertyListFormat::xml;
  std::string error;
  const auto written = writePropertyList(list, format, error);
  if (!written && !isXml) complain("not written", error);
  if (!written) {
    if (error.empty()) complain("not written", "without a reason");
    return;
  }
  if (formatOf(*written) != format) complain("not recognised", *written);
  const auto back = readPropertyList(*written, error);
  if (!back) complain("not read back", error);
  if (!areEqual(list, *back, isXml)) complain("read back differently", *written);
  if (isXml) return;
  // Written once more it has nothing left to gain.
  if (writePropertyList(*back, format, error) != written) complain("written differently", *written);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::string error;
  const auto list = readPropertyList(bytes, error);
  if (list.has_value() == !error.empty()) complain("neither read nor refused", error);
  if (!list) return 0;
  checkFormat(*list, PropertyListFormat::binary);
  checkFormat(*list, PropertyListFormat::xml);
  return 0;
}
