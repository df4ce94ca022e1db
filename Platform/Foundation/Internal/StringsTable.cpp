#include "Platform/Foundation/Internal/StringsTable.h"

#include <algorithm>
#include <utility>

#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

constexpr char16_t kEnd = 0xFFFF;  // no character; in a text it is read as any other

bool isWordUnit(char16_t unit) noexcept {
  return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
         (unit >= '0' && unit <= '9') ||
         (unit < 0x80 &&
          std::string_view("_$/:.-").find(static_cast<char>(unit)) != std::string_view::npos);
}

bool isSpace(char16_t unit) noexcept {
  return (unit >= 9 && unit <= 13) || unit == ' ' || unit == 0x85 || unit == 0xA0 ||
         unit == 0x2028 || unit == 0x2029 || unit == 0xFEFF;
}

// The value of a digit; beyond any base when it is none.
unsigned digitOf(char16_t unit) noexcept {
  if (unit >= '0' && unit <= '9') return unit - '0';
  if (unit >= 'a' && unit <= 'f') return unit - 'a' + 10U;
  if (unit >= 'A' && unit <= 'F') return unit - 'A' + 10U;
  return 99;
}

class Parser {
 public:
  explicit Parser(TextView text) noexcept : text_(text) {}

  std::optional<std::vector<StringsEntry>> read(std::string& error) {
    if (readEntries()) return std::move(entries_);
    error = "strings table: line " + std::to_string(line()) + ": " + problem_;
    return std::nullopt;
  }

 private:
  bool readEntries() {
    skipSpace();
    const bool braced = peek() == '{';
    if (braced) ++place_;
    for (skipSpace(); place_ < text_.size(); skipSpace()) {
      if (braced && peek() == '}') {
        ++place_;
        skipSpace();
        return place_ == text_.size() || fail("something behind the last brace");
      }
      if (!readEntry()) return false;
    }
    return !braced || fail("the last brace is missing");
  }

  bool readEntry() {
    StringsEntry entry;
    if (!readString(entry.key, "a key is missing")) return false;
    skipSpace();
    if (peek() == '=') {
      ++place_;
      skipSpace();
      if (!readString(entry.value, "a value is missing")) return false;
      skipSpace();
    } else {
      entry.value = entry.key;
    }
    if (peek() != ';') return fail("a semicolon is missing");
    ++place_;
    entries_.push_back(std::move(entry));
    return true;
  }

  bool readString(Text& result, const char* otherwise) {
    const char16_t quote = peek();
    if (quote == '"' || quote == '\'') return readQuoted(result, quote);
    const std::size_t start = place_;
    while (isWordUnit(peek()) && !beginsComment('*')) ++place_;
    if (place_ == start) return fail(otherwise);
    result = Text(text_.sub(start, place_ - start));
    return true;
  }

  bool readQuoted(Text& result, char16_t quote) {
    const std::size_t start = place_++;
    while (place_ < text_.size()) {
      const std::size_t run = place_;
      while (place_ < text_.size() && text_[place_] != quote && text_[place_] != '\\') ++place_;
      result.append(text_.sub(run, place_ - run));
      if (place_ == text_.size()) break;
      if (text_[place_++] == quote) return true;
      if (place_ < text_.size()) result.append(readEscape());
    }
    place_ = start;  // where it began, since it ends nowhere
    return fail("a quotation mark is missing");
  }

  char16_t readEscape() {
    const char16_t unit = text_[place_++];
    if (unit == 'U' || unit == 'u') {
      const std::optional<char16_t> value = readDigits(16, 4);
      return value ? *value : unit;
    }
    if (digitOf(unit) < 8) {
      --place_;
      return *readDigits(8, 3);
    }
    constexpr std::string_view kLetters = "abfnrtv";
    constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v";
    const std::size_t letter =
        unit < 0x80 ? kLetters.find(static_cast<char>(unit)) : std::string_view::npos;
    return letter == std::string_view::npos ? unit : static_cast<char16_t>(kMeanings[letter]);
  }

  std::optional<char16_t> readDigits(unsigned base, std::size_t atMost) {
    const std::size_t start = place_;
    unsigned value = 0;
    while (place_ < text_.size() && place_ - start < atMost && digitOf(text_[place_]) < base) {
      value = value * base + digitOf(text_[place_++]);
    }
    if (place_ == start) return std::nullopt;
    return static_cast<char16_t>(value);
  }

  // Passes over white space and comments.
  void skipSpace() {
    while (place_ < text_.size()) {
      if (isSpace(peek())) {
        ++place_;
      } else if (beginsComment('/')) {
        while (place_ < text_.size() && !isLineEnd(text_[place_])) ++place_;
      } else if (beginsComment('*')) {
        place_ += 2;
        while (place_ < text_.size() && !endsComment()) ++place_;
        place_ = std::min(place_ + 2, text_.size());
      } else {
        return;
      }
    }
  }

  // "//" or "/*"; within a word only the latter.
  [[nodiscard]] bool beginsComment(char16_t second) const noexcept {
    return peek() == '/' && place_ + 1 < text_.size() && text_[place_ + 1] == second;
  }
  [[nodiscard]] bool endsComment() const noexcept {
    return text_[place_] == '*' && place_ + 1 < text_.size() && text_[place_ + 1] == '/';
  }
  static bool isLineEnd(char16_t unit) noexcept {
    return unit == '\n' || unit == '\r' || unit == 0x2028 || unit == 0x2029;
  }

  [[nodiscard]] char16_t peek() const noexcept {
    return place_ < text_.size() ? text_[place_] : kEnd;
  }

  // Counted only for a message: lines end with "\n", "\r" or both.
  [[nodiscard]] std::size_t line() const {
    std::size_t lines = 1;
    for (std::size_t i = 0; i < place_; ++i) {
      const bool isPair = text_[i] == '\r' && i + 1 < text_.size() && text_[i + 1] == '\n';
      if (isLineEnd(text_[i]) && !isPair) ++lines;
    }
    return lines;
  }

  bool fail(const char* problem) {
    problem_ = problem;
    return false;
  }

  TextView text_;
  std::size_t place_ = 0;
  std::vector<StringsEntry> entries_;
  const char* problem_ = "";
};

std::optional<std::vector<StringsEntry>> readPropertyListTable(std::string_view bytes,
                                                               std::string& error) {
  const std::optional<PropertyList> list = readPropertyList(bytes, error);
  if (!list) return std::nullopt;
  if (list->root() == PropertyList::kNone || list->kind(list->root()) != PropertyKind::dictionary) {
    error = "strings table: the property list is no dictionary";
    return std::nullopt;
  }
  std::vector<StringsEntry> entries;
  const auto keys = list->keys(list->root());
  const auto values = list->values(list->root());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (list->kind(values[i]) != PropertyKind::string) continue;
    entries.push_back({Text(list->string(keys[i])), Text(list->string(values[i]))});
  }
  return entries;
}

// Every table begins with a unit below 256, of which UTF-16 makes a zero byte.
std::optional<Text> textOf(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    return decodeText(bytes, TextEncoding::utf16);
  }
  if (bytes.size() >= 2 && bytes[0] == 0) return decodeText(bytes, TextEncoding::utf16BigEndian);
  if (bytes.size() >= 2 && bytes[1] == 0) return decodeText(bytes, TextEncoding::utf16LittleEndian);
  return decodeText(bytes, TextEncoding::utf8);
}

}  // namespace

std::optional<std::vector<StringsEntry>> readStringsTable(std::string_view bytes,
                                                          std::string& error) {
  error.clear();
  if (formatOf(bytes)) return readPropertyListTable(bytes, error);
  const std::optional<Text> text = textOf(bytes);
  if (!text) {
    error = "strings table: neither UTF-8 nor UTF-16";
    return std::nullopt;
  }
  return Parser(*text).read(error);
}

}  // namespace brindle::internal
