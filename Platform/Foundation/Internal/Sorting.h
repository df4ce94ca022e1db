// A stable sort that a comparison which contradicts itself cannot lead out of bounds.
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

namespace brindle::detail {

/// Sorts by merging, from runs of one on. `after(a, b)` says whether a comes after b; it may throw,
/// and then the vector is as it was.
template <class T, class After>
void mergeSort(std::vector<T>& items, const After& after) {
  const std::size_t size = items.size();
  std::vector<T> source = items;
  std::vector<T> target(size);
  for (std::size_t run = 1; run < size; run *= 2) {
    for (std::size_t start = 0; start < size; start += 2 * run) {
      std::size_t left = start;
      const std::size_t middle = std::min(start + run, size);
      std::size_t right = middle;
      const std::size_t end = std::min(start + 2 * run, size);
      for (std::size_t at = start; at < end; ++at) {
        const bool takeRight =
            left == middle || (right < end && after(source[left], source[right]));
        target[at] = std::move(source[takeRight ? right++ : left++]);
      }
    }
    source.swap(target);
  }
  items.swap(source);
}

}  // namespace brindle::detail
