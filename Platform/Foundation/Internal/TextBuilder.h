// Text put together from pieces.
#pragma once

#include <algorithm>
#include <cstddef>

#include "Platform/Foundation/Internal/Text.h"

namespace brindle::internal {

/// Grows at its end. As long as it is short and every unit is below 256 it needs no memory beside
/// itself.
class TextBuilder {
 public:
  TextBuilder() noexcept {}  // NOLINT(modernize-use-equals-default): the room stays as it is
  TextBuilder(const TextBuilder&) = delete;
  TextBuilder& operator=(const TextBuilder&) = delete;

  operator TextView() const noexcept { return view(); }
  /// Valid until more is appended.
  [[nodiscard]] TextView view() const noexcept {
    return isShort_ ? TextView::latin1({room_, size_}) : long_.view();
  }

  /// `text` is no part of this very text.
  [[gnu::always_inline]] void append(const TextView& text) {
    if (isShort_ && text.isNarrow() && text.bytes().size() <= sizeof room_ - size_) [[likely]] {
      std::copy_n(text.bytes().data(), text.bytes().size(), room_ + size_);
      size_ += text.bytes().size();
    } else {
      appendToLong(text);
    }
  }
  /// Appends `unit` `count` times.
  void append(std::size_t count, char16_t unit) {
    if (isShort_ && unit < 256 && count <= sizeof room_ - size_) {
      std::fill_n(room_ + size_, count, static_cast<char>(unit));
      size_ += count;
    } else {
      grow(count);
      long_.append(count, unit);
    }
  }
  void append(char16_t unit) { append(1, unit); }

 private:
  [[gnu::noinline]] void appendToLong(const TextView& text) {
    grow(text.size());
    long_.append(text);
  }
  void grow(std::size_t more) {
    if (!isShort_) return;
    long_.reserve(size_ + more);
    long_.append(view());
    isShort_ = false;
  }

  Text long_;
  std::size_t size_ = 0;
  bool isShort_ = true;
  char room_[192];
};

}  // namespace brindle::internal
