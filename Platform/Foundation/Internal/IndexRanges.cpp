#include "Platform/Foundation/Internal/IndexRanges.h"

#include <algorithm>

namespace brindle::internal {

std::size_t IndexRanges::place(std::uint64_t index) const noexcept {
  const auto found = std::upper_bound(
      ranges_.begin(), ranges_.end(), index,
      [](std::uint64_t wanted, const IndexRange& range) { return wanted < range.end; });
  return static_cast<std::size_t>(found - ranges_.begin());
}

std::uint64_t IndexRanges::count() const noexcept {
  std::uint64_t sum = 0;
  for (const IndexRange& range : ranges_) sum += range.end - range.first;
  return sum;
}

std::uint64_t IndexRanges::countWithin(IndexRange range) const noexcept {
  std::uint64_t sum = 0;
  for (std::size_t i = place(range.first); i < ranges_.size(); ++i) {
    if (ranges_[i].first >= range.end) break;
    sum += std::min(ranges_[i].end, range.end) - std::max(ranges_[i].first, range.first);
  }
  return sum;
}

bool IndexRanges::contains(std::uint64_t index) const noexcept {
  const std::size_t i = place(index);
  return i < ranges_.size() && ranges_[i].first <= index;
}

bool IndexRanges::containsAll(IndexRange range) const noexcept {
  if (range.first >= range.end) return false;
  const std::size_t i = place(range.first);
  return i < ranges_.size() && ranges_[i].first <= range.first && range.end <= ranges_[i].end;
}

std::uint64_t IndexRanges::atOrAbove(std::uint64_t index) const noexcept {
  const std::size_t i = place(index);
  return i < ranges_.size() ? std::max(ranges_[i].first, index) : kNone;
}

std::uint64_t IndexRanges::below(std::uint64_t index) const noexcept {
  const std::size_t i = place(index);
  if (i < ranges_.size() && ranges_[i].first < index) return index - 1;
  return i > 0 ? ranges_[i - 1].end - 1 : kNone;
}

void IndexRanges::add(IndexRange range) {
  if (range.first >= range.end) return;
  // A range that ends where this one begins grows.
  std::size_t first = range.first == 0 ? 0 : place(range.first - 1);
  std::size_t last = first;
  for (; last < ranges_.size() && ranges_[last].first <= range.end; ++last) {
    range.first = std::min(range.first, ranges_[last].first);
    range.end = std::max(range.end, ranges_[last].end);
  }
  const auto at = [this](std::size_t i) {
    return ranges_.begin() + static_cast<std::ptrdiff_t>(i);
  };
  if (first == last) {
    ranges_.insert(at(first), range);
    return;
  }
  ranges_[first] = range;
  ranges_.erase(at(first + 1), at(last));
}

void IndexRanges::remove(IndexRange range) {
  if (range.first >= range.end) return;
  const std::size_t first = place(range.first);
  std::vector<IndexRange> left;  // of the ranges that are hit: one piece at either side at most
  std::size_t last = first;
  for (; last < ranges_.size() && ranges_[last].first < range.end; ++last) {
    const IndexRange hit = ranges_[last];
    if (hit.first < range.first) left.push_back({hit.first, range.first});
    if (hit.end > range.end) left.push_back({range.end, hit.end});
  }
  const auto at = [this](std::size_t i) {
    return ranges_.begin() + static_cast<std::ptrdiff_t>(i);
  };
  ranges_.insert(ranges_.erase(at(first), at(last)), left.begin(), left.end());
}

void IndexRanges::shiftUp(std::uint64_t index, std::uint64_t by) {
  IndexRanges moved;
  for (const IndexRange& range : ranges_) {
    if (range.first < index) moved.add({range.first, std::min(range.end, index)});
    const std::uint64_t first = std::max(range.first, index);
    if (first >= range.end || by >= kNone - first) continue;
    moved.add({first + by, by >= kNone - range.end ? kNone : range.end + by});
  }
  *this = std::move(moved);
}

void IndexRanges::shiftDown(std::uint64_t index, std::uint64_t by) {
  IndexRanges moved;
  for (const IndexRange& range : ranges_) {
    if (range.first < index) moved.add({range.first, std::min(range.end, index)});
  }
  moved.remove({index < by ? 0 : index - by, index});
  for (const IndexRange& range : ranges_) {
    const std::uint64_t first = std::max({range.first, index, by});
    if (first < range.end) moved.add({first - by, range.end - by});
  }
  *this = std::move(moved);
}

}  // namespace brindle::internal
