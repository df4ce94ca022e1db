// Text is a sequence of UTF-16 units. Most text needs only units below 256, so such text is kept in
// one byte per unit (Latin-1, hence also ASCII) and everything else in two. Which storage a text
// has is never visible in a result: equality, hash and order are those of the units. Surrogates
// need not be paired.
//
// TextView lends text, Text owns it. Neither is for several threads at once while one changes it.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace brindle::internal {

/// A part of a text: `length` units from `location` on.
struct TextRange {
  std::size_t location = 0;
  std::size_t length = 0;

  [[nodiscard]] constexpr std::size_t end() const noexcept { return location + length; }
  friend constexpr bool operator==(TextRange, TextRange) = default;
};

/// Text that lies somewhere else. Copied freely; valid as long as what it looks at.
class TextView {
 public:
  constexpr TextView() noexcept : bytes_("") {}
  /// Looks at one byte per unit.
  static constexpr TextView latin1(std::string_view bytes) noexcept { return TextView(bytes); }
  /// Looks at UTF-16 units, in the machine's order.
  static constexpr TextView utf16(std::u16string_view units) noexcept { return TextView(units); }

  [[nodiscard]] constexpr std::size_t size() const noexcept {
    return narrow_ ? bytes_.size() : units_.size();
  }
  [[nodiscard]] constexpr bool empty() const noexcept { return size() == 0; }
  /// Whether there is one byte per unit. Otherwise there are two, whatever the units are.
  [[nodiscard]] constexpr bool isNarrow() const noexcept { return narrow_; }
  /// The bytes of narrow text; undefined for wide text.
  [[nodiscard]] constexpr std::string_view bytes() const noexcept { return bytes_; }
  /// The units of wide text; undefined for narrow text.
  [[nodiscard]] constexpr std::u16string_view units() const noexcept { return units_; }

  /// The unit at `index`, which must be below the size.
  [[nodiscard]] constexpr char16_t operator[](std::size_t index) const noexcept {
    return narrow_ ? static_cast<unsigned char>(bytes_[index]) : units_[index];
  }

  /// At most `count` units from `position` on, which must not be beyond the end.
  [[nodiscard]] constexpr TextView sub(std::size_t position,
                                       std::size_t count = std::string_view::npos) const noexcept {
    return narrow_ ? TextView(bytes_.substr(position, count))
                   : TextView(units_.substr(position, count));
  }
  [[nodiscard]] constexpr TextView sub(TextRange range) const noexcept {
    return sub(range.location, range.length);
  }

  /// Writes all units to `target`, which has room for them.
  void copyTo(char16_t* target) const noexcept;
  [[nodiscard]] std::u16string toUtf16() const;

  /// Whether every unit is below 128.
  [[nodiscard]] bool isAscii() const noexcept;
  /// Whether every unit is below 256.
  [[nodiscard]] bool fitsLatin1() const noexcept;

  /// Calls `function` with the units as a span of `const unsigned char` or `const char16_t`.
  template <class Function>
  decltype(auto) visit(const Function& function) const {
    if (narrow_) {
      return function(std::span<const unsigned char>(
          reinterpret_cast<const unsigned char*>(bytes_.data()), bytes_.size()));
    }
    return function(std::span<const char16_t>(units_.data(), units_.size()));
  }

  /// Equal texts have equal hashes, whatever their storage.
  [[nodiscard]] std::size_t hash() const noexcept;

  /// Whether the units are the same.
  friend bool operator==(TextView a, TextView b) noexcept {
    if (a.size() != b.size()) return false;
    return a.narrow_ && b.narrow_ ? a.bytes_ == b.bytes_ : haveEqualUnits(a, b);
  }
  /// The order of the units.
  friend std::strong_ordering operator<=>(TextView a, TextView b) noexcept;

 private:
  constexpr explicit TextView(std::string_view bytes) noexcept : bytes_(bytes) {}
  constexpr explicit TextView(std::u16string_view units) noexcept : units_(units), narrow_(false) {}
  /// Of texts of one size, not both narrow.
  static bool haveEqualUnits(TextView a, TextView b) noexcept;

  union {
    std::string_view bytes_;
    std::u16string_view units_;
  };
  bool narrow_ = true;
};

/// Text that owns its storage and can be changed.
class Text {
 public:
  Text() noexcept = default;
  explicit Text(TextView text);
  /// Takes one byte per unit over as it is.
  static Text latin1(std::string bytes) noexcept;
  /// Takes units over; narrow when they allow it.
  static Text utf16(std::u16string units);

  operator TextView() const noexcept { return view(); }
  [[nodiscard]] TextView view() const noexcept {
    if (const auto* bytes = std::get_if<std::string>(&storage_)) return TextView::latin1(*bytes);
    return TextView::utf16(*std::get_if<std::u16string>(&storage_));
  }
  [[nodiscard]] std::size_t size() const noexcept { return view().size(); }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  [[nodiscard]] char16_t operator[](std::size_t index) const noexcept { return view()[index]; }

  /// Makes room for `count` units of the present width.
  void reserve(std::size_t count);
  void append(TextView text) {
    auto* bytes = std::get_if<std::string>(&storage_);
    if (bytes != nullptr && text.isNarrow()) {
      bytes->append(text.bytes());
    } else {
      replace({size(), 0}, text);
    }
  }
  void append(char16_t unit);
  /// Appends `unit` `count` times.
  void append(std::size_t count, char16_t unit);
  /// Puts `text`, which may be a part of this very text, in place of `range`, which lies within.
  void replace(TextRange range, TextView text);

  friend bool operator==(const Text& a, const Text& b) noexcept { return a.view() == b.view(); }

 private:
  std::u16string& widen(std::size_t room);

  std::variant<std::string, std::u16string> storage_;
};

}  // namespace brindle::internal
