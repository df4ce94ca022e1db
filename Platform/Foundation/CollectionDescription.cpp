#include "Platform/Foundation/Internal/CollectionDescription.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/DictionaryStorage.h"
#include "Platform/Foundation/Internal/SetStorage.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle::detail {
namespace {

using internal::Text;
using internal::TextView;

constexpr NSUInteger kDeepest = 100;
constexpr std::size_t kIndent = 4;

TextView plain(std::string_view text) { return TextView::latin1(text); }

bool isPlain(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'a' && unit <= u'z') || unit == u'.' || unit == u'_' || unit == u'$' ||
         unit == u'/' || unit == u':';
}

void appendUnit(Text& text, char16_t unit) {
  switch (unit) {
    case u'"':
      return text.append(plain("\\\""));
    case u'\\':
      return text.append(plain("\\\\"));
    case u'\n':
      return text.append(plain("\\n"));
    case u'\t':
      return text.append(plain("\\t"));
    case u'\r':
      return text.append(plain("\\r"));
    default:
      break;
  }
  if (unit >= 0x20 && unit < 0x7F) {
    const char c = static_cast<char>(unit);
    return text.append(plain({&c, 1}));
  }
  std::array<char, 8> escape{};
  std::snprintf(escape.data(), escape.size(), "\\U%04x", static_cast<unsigned>(unit));
  text.append(plain(escape.data()));
}

void appendString(Text& text, TextView string) {
  bool quoted = string.empty();
  for (std::size_t i = 0; i < string.size() && !quoted; ++i) quoted = !isPlain(string[i]);
  if (!quoted) return text.append(string);
  text.append(plain("\""));
  for (std::size_t i = 0; i < string.size(); ++i) appendUnit(text, string[i]);
  text.append(plain("\""));
}

void appendIndent(Text& text, NSUInteger level) {
  text.append(plain(std::string(static_cast<std::size_t>(level) * kIndent, ' ')));
}

void appendMember(Text& text, const id& member, NSUInteger level) {
  if (isa<NSString>(member)) {
    return appendString(text, StringText(static_cast<const NSString&>(member)).view());
  }
  const SEL indented = selector<"descriptionWithLocale:indent:">();
  if (send<"respondsToSelector:", bool>(member, indented)) {
    const auto nested =
        send<"descriptionWithLocale:indent:", NSString>(member, id(), NSUInteger{level});
    return text.append(StringText(nested).view());
  }
  const auto description = send<"description", NSString>(member);
  appendString(text, StringText(description).view());
}

// "(", members with commas, ")".
void appendRow(Text& text, const std::vector<id>& members, NSUInteger level, const char* open,
               const char* close) {
  text.append(plain(open));
  bool first = true;
  for (const id& member : members) {
    text.append(plain(first ? "\n" : ",\n"));
    first = false;
    appendIndent(text, level + 1);
    appendMember(text, member, level + 1);
  }
  text.append(plain("\n"));
  appendIndent(text, level);
  text.append(plain(close));
}

void appendEntries(Text& text, const NSDictionary& dictionary, NSUInteger level) {
  text.append(plain("{\n"));
  for (const auto& [key, value] : copyEntries(dictionary)) {
    appendIndent(text, level + 1);
    appendMember(text, key, level + 1);
    text.append(plain(" = "));
    appendMember(text, value, level + 1);
    text.append(plain(";\n"));
  }
  appendIndent(text, level);
  text.append(plain("}"));
}

// The collections that this thread is describing, from the outermost on.
class Described {
 public:
  explicit Described(const id& collection)
      : again_(std::find(path().begin(), path().end(), collection.record()) != path().end()) {
    path().push_back(collection.record());
  }
  Described(const Described&) = delete;
  Described& operator=(const Described&) = delete;
  ~Described() { path().pop_back(); }

  [[nodiscard]] bool again() const noexcept { return again_; }

 private:
  static std::vector<const ObjectRecord*>& path() {
    thread_local std::vector<const ObjectRecord*> path;
    return path;
  }

  bool again_;
};

}  // namespace

NSString describeCollection(const id& collection, NSUInteger level) {
  const Described described(collection);
  Text text;
  if (level > kDeepest || described.again()) {
    text.append(plain("..."));
  } else if (isa<NSDictionary>(collection)) {
    appendEntries(text, uncheckedCast<NSDictionary>(collection), level);
  } else if (isa<NSSet>(collection)) {
    appendRow(text, copyMembers(uncheckedCast<NSSet>(collection)), level, "{(", ")}");
  } else {
    appendRow(text, copyItems(uncheckedCast<NSArray>(collection)), level, "(", ")");
  }
  return makeString(text);
}

}  // namespace brindle::detail
