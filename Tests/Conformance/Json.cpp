#include "Tests/Conformance/Json.h"

#include <stdexcept>

namespace brindle::conformance {
namespace {

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  Json value() {
    switch (peek()) {
      case '{':
        return object();
      case '[':
        return array();
      case '"':
        return {.kind = Json::Kind::string, .text = string()};
      case 't':
        return word("true", {.kind = Json::Kind::boolean, .truth = true});
      case 'f':
        return word("false", {.kind = Json::Kind::boolean});
      case 'n':
        return word("null", {});
      default:
        return number();
    }
  }

 private:
  char peek() {
    while (at_ < text_.size() &&
           (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t')) {
      ++at_;
    }
    if (at_ == text_.size()) throw std::runtime_error("JSON ends too early");
    return text_[at_];
  }
  void expect(char c) {
    if (peek() != c) throw std::runtime_error(std::string("JSON without a ") + c);
    ++at_;
  }
  Json word(std::string_view spelling, Json result) {
    if (text_.substr(at_, spelling.size()) != spelling)
      throw std::runtime_error("JSON with a strange word");
    at_ += spelling.size();
    return result;
  }
  Json number() {
    const std::size_t start = at_;
    while (at_ < text_.size() &&
           std::string_view("+-.eE0123456789").find(text_[at_]) != std::string_view::npos)
      ++at_;
    if (at_ == start) throw std::runtime_error("JSON with a strange character");
    return {.kind = Json::Kind::number, .text = std::string(text_.substr(start, at_ - start))};
  }
  unsigned unit() {
    const unsigned value =
        static_cast<unsigned>(std::stoul(std::string(text_.substr(at_, 4)), nullptr, 16));
    at_ += 4;
    return value;
  }
  void escape(std::string& result) {
    const char c = text_.at(at_++);
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    if (c != 'u') {
      const std::size_t place = kLetters.find(c);
      result += place == std::string_view::npos ? c : kMeanings[place];
      return;
    }
    unsigned point = unit();
    if (point >= 0xD800 && point < 0xDC00 && text_.substr(at_, 2) == "\\u") {
      at_ += 2;
      point = 0x10000 + ((point - 0xD800) << 10U) + (unit() - 0xDC00);
    }
    if (point < 0x80) {
      result += static_cast<char>(point);
      return;
    }
    const int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
    result += static_cast<char>(kLead[more] | point >> (6U * static_cast<unsigned>(more)));
    for (int i = more - 1; i >= 0; --i) {
      result += static_cast<char>(0x80U | ((point >> (6U * static_cast<unsigned>(i))) & 0x3FU));
    }
  }
  std::string string() {
    expect('"');
    std::string result;
    while (at_ < text_.size() && text_[at_] != '"') {
      const char c = text_[at_++];
      if (c == '\\')
        escape(result);
      else
        result += c;
    }
    expect('"');
    return result;
  }
  Json array() {
    Json result{.kind = Json::Kind::array};
    expect('[');
    while (peek() != ']') {
      if (!result.items.empty()) expect(',');
      result.items.push_back(value());
    }
    ++at_;
    return result;
  }
  Json object() {
    Json result{.kind = Json::Kind::object};
    expect('{');
    while (peek() != '}') {
      if (!result.members.empty()) expect(',');
      static_cast<void>(peek());
      std::string name = string();
      expect(':');
      result.members.emplace_back(std::move(name), value());
    }
    ++at_;
    return result;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

Json readJson(std::string_view text) { return Reader(text).value(); }

}  // namespace brindle::conformance
