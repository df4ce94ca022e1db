#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/XmlPropertyList.h"
#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

namespace brindle::internal {
namespace {

using Index = PropertyList::Index;

constexpr std::string_view kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFoot = "</plist>\n";

// Whether a surrogate has no partner.
bool hasHalfCharacter(TextView text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned kind = text[i] & 0xFC00U;
    if (kind == 0xDC00) return true;
    if (kind != 0xD800) continue;
    if (++i == text.size() || (text[i] & 0xFC00U) != 0xDC00) return true;
  }
  return false;
}

class Writer {
 public:
  Writer(const PropertyList& list, std::string& error) : list_(list), error_(error) {}

  std::optional<std::string> write() {
    if (list_.root() == PropertyList::kNone) {
      fail("there is no value");
      return std::nullopt;
    }
    out_ = kHead;
    if (!begin(list_.root())) return std::nullopt;
    const std::size_t limit = sizeLimit();
    while (!frames_.empty()) {
      if (out_.size() > limit) {
        fail("what is held many times would become too large");
        return std::nullopt;
      }
      const auto [container, next] = frames_.back();
      const bool isArray = list_.kind(container) == PropertyKind::array;
      if (next == list_.node(container).count) {
        frames_.pop_back();
        line(isArray ? "</array>" : "</dict>");
        continue;
      }
      ++frames_.back().next;
      if (!isArray && !writeText("key", list_.keys(container)[next])) return std::nullopt;
      if (!begin((isArray ? list_.elements(container) : list_.values(container))[next])) {
        return std::nullopt;
      }
    }
    out_ += kFoot;
    return std::move(out_);
  }

 private:
  // A container whose elements are being written.
  struct Frame {
    Index container;
    std::size_t next;
  };

  // More than any document takes in which nothing is held twice. What is held twice is written
  // twice, so a few containers that hold the next one twice could fill every memory.
  [[nodiscard]] std::size_t sizeLimit() const {
    constexpr std::size_t kAlways = std::size_t{1} << 24U;
    constexpr std::size_t kLine = 2 * PropertyList::kMaximalDepth;
    std::size_t limit = kAlways;
    for (Index i = 0; i < list_.size(); ++i) {
      const PropertyNode& node = list_.node(i);
      limit += 4 * kLine * (1 + list_.children(i).size());
      if (node.kind == PropertyKind::string || node.kind == PropertyKind::data) {
        limit += kLine * node.content.size;
      }
    }
    return limit;
  }

  bool fail(const std::string& what) {
    error_ = "XML property list: " + what;
    return false;
  }

  bool line(std::string_view text) {
    out_.append(frames_.size(), '\t').append(text).push_back('\n');
    return true;
  }

  bool element(std::string_view name, std::string_view text, std::size_t deeper = 0) {
    out_.append(frames_.size() + deeper, '\t');
    out_.append("<").append(name).append(">").append(text);
    out_.append("</").append(name).append(">\n");
    return true;
  }

  // Writes a value, of a container only its first line.
  bool begin(Index index) {
    const PropertyNode& node = list_.node(index);
    switch (node.kind) {
      case PropertyKind::boolean:
        return line(node.flag ? "<true/>" : "<false/>");
      case PropertyKind::integer:
        return element("integer", formatXmlInteger(node.integer));
      case PropertyKind::real:
        return element("real", formatXmlReal(node.real));
      case PropertyKind::date:
        if (const auto text = formatXmlDate(node.real)) return element("date", *text);
        return fail("a date is too far away to be written");
      case PropertyKind::string:
        return writeText("string", index);
      case PropertyKind::data:
        return writeData(list_.data(index));
      case PropertyKind::array:
        return beginContainer(index, "<array>", "<array/>");
      case PropertyKind::dictionary:
        return beginContainer(index, "<dict>", "<dict/>");
      case PropertyKind::uid:
        return writeUid(node.integer);
      case PropertyKind::null:
      case PropertyKind::set:
        break;
    }
    return fail(std::string(nameOf(node.kind)) + " cannot be written");
  }

  bool beginContainer(Index index, std::string_view first, std::string_view empty) {
    if (list_.node(index).count == 0) return line(empty);
    line(first);
    frames_.push_back({index, 0});
    return true;
  }

  bool writeUid(PropertyInteger number) {
    line("<dict>");
    element("key", kUidKey, 1);
    element("integer", formatXmlInteger(number), 1);
    return line("</dict>");
  }

  bool writeData(std::string_view bytes) {
    line("<data>");
    const std::size_t width = frames_.size() > 7 ? 16 : 76 - 8 * frames_.size();
    const std::string text = encodeBase64(bytes);
    for (std::size_t i = 0; i < text.size(); i += width) {
      line(std::string_view(text).substr(i, width));
    }
    return line("</data>");
  }

  bool writeText(std::string_view name, Index index) {
    const TextView text = list_.string(index);
    escaped_.clear();
    if (text.isAscii() && text.isNarrow()) {
      if (!escape(text.bytes())) return false;
    } else {
      // Half a character is no text, and would come back as another one.
      if (hasHalfCharacter(text)) return fail("half a character cannot be written");
      if (!escape(utf8FromText(text))) return false;
    }
    return element(name, escaped_);
  }

  bool escape(std::string_view utf8) {
    for (std::size_t i = 0; i < utf8.size(); ++i) {
      const char c = utf8[i];
      switch (c) {
        case '<':
          escaped_ += "&lt;";
          break;
        case '>':
          escaped_ += "&gt;";
          break;
        case '&':
          escaped_ += "&amp;";
          break;
        case '\r':
          escaped_ += "&#13;";
          break;  // as it is it would be read as a line feed
        case '\t':
        case '\n':
          escaped_.push_back(c);
          break;
        default:
          const std::string_view rest = utf8.substr(i);
          if ((c >= 0 && c < ' ') || rest.starts_with("\xEF\xBF\xBE") ||
              rest.starts_with("\xEF\xBF\xBF")) {
            return fail("a control character cannot be written");
          }
          escaped_.push_back(c);
      }
    }
    return true;
  }

  const PropertyList& list_;
  std::string& error_;
  std::vector<Frame> frames_;
  std::string out_;
  std::string escaped_;
};

}  // namespace

std::optional<std::string> writeXmlPropertyList(const PropertyList& list, std::string& error) {
  return Writer(list, error).write();
}

}  // namespace brindle::internal
