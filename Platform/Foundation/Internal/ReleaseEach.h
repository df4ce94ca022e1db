// What a collection throws out in one go is released by an operation, not by a closing brace: what
// the end of a member raises leaves the operation.
#pragma once

#include <exception>

namespace brindle::detail {

/// Calls `release` with each item, whatever some of them raise; then raises the first of that.
template <class Items, class Release>
void releaseEach(Items& items, const Release& release) {
  std::exception_ptr raised;
  for (auto& item : items) {
    try {
      release(item);
    } catch (...) {
      if (!raised) raised = std::current_exception();
    }
  }
  if (raised) std::rethrow_exception(raised);
}

}  // namespace brindle::detail
