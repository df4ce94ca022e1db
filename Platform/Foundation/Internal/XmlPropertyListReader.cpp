#include <expat.h>

#include <cmath>
#include <exception>
#include <limits>
#include <utility>
#include <vector>

#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Platform/Foundation/Internal/XmlPropertyList.h"
#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

namespace brindle::internal {
namespace {

using Index = PropertyList::Index;

enum class Element { none, plist, dict, array, key, string, integer, real, date, data, yes, no };

constexpr struct {
  std::string_view name;
  Element element;
} kElements[] = {
    {"plist", Element::plist}, {"dict", Element::dict},     {"array", Element::array},
    {"key", Element::key},     {"string", Element::string}, {"integer", Element::integer},
    {"real", Element::real},   {"date", Element::date},     {"data", Element::data},
    {"true", Element::yes},    {"false", Element::no},
};

Element elementOf(std::string_view name) {
  for (const auto& known : kElements) {
    if (known.name == name) return known.element;
  }
  return Element::none;
}

constexpr const char* kTooDeep = "it is nested too deeply";

std::string_view nameOf(Element element) {
  for (const auto& known : kElements) {
    if (known.element == element) return known.name;
  }
  return "";
}

class Reader {
 public:
  explicit Reader(std::string& error) : parser_(XML_ParserCreate(nullptr)), error_(error) {
    if (parser_ == nullptr) throw std::bad_alloc();
    XML_SetUserData(parser_, this);
    XML_SetElementHandler(
        parser_,
        [](void* self, const char* name, const char**) { guard(self, &Reader::begin, name); },
        [](void* self, const char*) { guard(self, &Reader::end); });
    XML_SetCharacterDataHandler(parser_, [](void* self, const char* text, int size) {
      guard(self, &Reader::characters, std::string_view(text, static_cast<std::size_t>(size)));
    });
    XML_SetEntityDeclHandler(
        parser_, [](void* self, const char*, int, const char*, int, const char*, const char*,
                    const char*, const char*) { guard(self, &Reader::entity); });
    XML_SetSkippedEntityHandler(parser_,
                                [](void* self, const char*, int) { guard(self, &Reader::entity); });
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { XML_ParserFree(parser_); }

  std::optional<PropertyList> read(std::string_view bytes) {
    constexpr std::size_t kAtOnce = std::size_t{1} << 30U;
    bool more = true;
    while (more) {
      const std::string_view part = bytes.substr(0, kAtOnce);
      bytes.remove_prefix(part.size());
      more = !bytes.empty();
      const auto status = XML_Parse(parser_, part.data(), static_cast<int>(part.size()), !more);
      if (raised_ != nullptr) std::rethrow_exception(raised_);
      if (status != XML_STATUS_OK) {
        fail(XML_ErrorString(XML_GetErrorCode(parser_)));
        return std::nullopt;
      }
    }
    if (list_.root() == PropertyList::kNone) {
      fail("there is no value");
      return std::nullopt;
    }
    return std::move(list_);
  }

 private:
  // A container that is not closed yet: its elements are the last ones in `pending_`.
  struct Frame {
    Element element;
    std::size_t first;
  };

  // What C++ raises must not pass through the parser, which is in C.
  template <class... P, class... A>
  static void guard(void* self, void (Reader::*handler)(P...), A... arguments) {
    auto& reader = *static_cast<Reader*>(self);
    if (reader.stopped_) return;
    try {
      (reader.*handler)(arguments...);
    } catch (...) {
      reader.raised_ = std::current_exception();
      reader.stop();
    }
  }

  void stop() {
    stopped_ = true;
    XML_StopParser(parser_, XML_FALSE);
  }

  // The first thing that goes wrong is what is told.
  void fail(const std::string& what) {
    if (!stopped_) {
      error_ = "XML property list: line " + std::to_string(XML_GetCurrentLineNumber(parser_)) +
               ": " + what;
    }
    stop();
  }

  void entity() { fail("entities are not allowed"); }

  [[nodiscard]] bool expectsKey() const {
    return !frames_.empty() && frames_.back().element == Element::dict &&
           (pending_.size() - frames_.back().first) % 2 == 0;
  }

  void begin(const char* name) {
    const Element element = elementOf(name);
    if (element == Element::none) return fail("<" + std::string(name) + "> is unknown");
    if (leaf_ != Element::none) {
      return fail("<" + std::string(name) + "> in <" + std::string(nameOf(leaf_)) + ">");
    }
    if (element == Element::plist) {
      if (inPlist_ || !frames_.empty()) return fail("<plist> in a property list");
      inPlist_ = true;
      return;
    }
    if (frames_.empty() && list_.root() != PropertyList::kNone) {
      return fail("there is more than one value");
    }
    if (expectsKey() && element != Element::key) return fail("a value without a key");
    if (!expectsKey() && element == Element::key) return fail("a key where a value belongs");
    if (element == Element::dict || element == Element::array) {
      // One more than allowed may be a UID; what is none is found when it ends.
      if (frames_.size() > PropertyList::kMaximalDepth) return fail(kTooDeep);
      frames_.push_back({element, pending_.size()});
      return;
    }
    leaf_ = element;
    text_.clear();
  }

  void characters(std::string_view text) {
    if (leaf_ != Element::none && leaf_ != Element::yes && leaf_ != Element::no) {
      text_ += text;
    } else if (!trimmed(text).empty()) {
      fail("text where a value belongs");
    }
  }

  void end() {
    if (leaf_ != Element::none) {
      endLeaf(std::exchange(leaf_, Element::none));
    } else if (!frames_.empty()) {
      endContainer();
    }
  }

  void endLeaf(Element element) {
    switch (element) {
      case Element::key:
      case Element::string:
        return give(addText());
      case Element::integer:
        if (const auto value = parseXmlInteger(text_)) return give(list_.addInteger(*value));
        break;
      case Element::real:
        if (const auto value = parseXmlReal(text_)) return give(list_.addReal(*value));
        break;
      case Element::date:
        if (const auto value = parseXmlDate(text_)) return give(list_.addDate(*value));
        break;
      case Element::data:
        if (const auto value = decodeBase64(text_)) return give(list_.addData(*value));
        break;
      default:
        return give(list_.addBoolean(element == Element::yes));
    }
    constexpr std::size_t kShown = 40;
    fail("\"" + std::string(withoutCutCharacter(std::string_view(text_).substr(0, kShown))) +
         "\" is no <" + std::string(nameOf(element)) + ">");
  }

  Index addText() {
    const TextView ascii = TextView::latin1(text_);
    if (ascii.isAscii()) return list_.addString(ascii);
    return list_.addString(textFromUtf8Replacing(text_));
  }

  void endContainer() {
    const Frame frame = frames_.back();
    frames_.pop_back();
    const std::span<const Index> elements(pending_.data() + frame.first,
                                          pending_.size() - frame.first);
    if (frame.element == Element::dict && elements.size() % 2 != 0) {
      return fail("a key without a value");
    }
    const bool uid = frame.element == Element::dict && isUid(elements);
    if (!uid && frames_.size() >= PropertyList::kMaximalDepth) return fail(kTooDeep);
    const Index node = uid ? list_.addUid(list_.integer(elements[1]).low)
                       : frame.element == Element::array ? list_.addArray(elements)
                                                         : list_.addDictionary(elements);
    pending_.resize(frame.first);
    give(node);
  }

  [[nodiscard]] bool isUid(std::span<const Index> entries) const {
    return entries.size() == 2 && list_.kind(entries[1]) == PropertyKind::integer &&
           list_.integer(entries[1]).fitsUnsigned() &&
           list_.string(entries[0]) == TextView::latin1(kUidKey);
  }

  void give(Index node) {
    if (frames_.empty()) {
      list_.setRoot(node);
    } else {
      pending_.push_back(node);
    }
  }

  XML_Parser parser_;
  std::string& error_;
  PropertyList list_;
  std::vector<Frame> frames_;
  std::vector<Index> pending_;
  Element leaf_ = Element::none;  // the element without elements that is not closed yet
  std::string text_;              // and its text
  bool inPlist_ = false;
  bool stopped_ = false;
  std::exception_ptr raised_;
};

}  // namespace

bool looksLikeXmlPropertyList(std::string_view bytes) noexcept {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) bytes.remove_prefix(2);
  for (const char byte : bytes) {
    // UTF-16 has a zero byte beside each ASCII character.
    if (byte == '\0' || trimmed({&byte, 1}).empty()) continue;
    return byte == '<';
  }
  return false;
}

std::optional<PropertyList> readXmlPropertyList(std::string_view bytes, std::string& error) {
  return Reader(error).read(bytes);
}

}  // namespace brindle::internal
