#include <Brindle/BDPropertyDetails.h>

#include <cctype>
#include <string>
#include <string_view>

#include <Brindle/BDExceptions.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

SEL selectorNamed(std::string_view name) { return sel_getUid(std::string(name).c_str()); }

/// Walks over the attributes and keeps what it reads.
class Attributes {
 public:
  explicit Attributes(const char* text) : text_(text) {}

  void read(BDPropertyDetails& details, bool& readOnly) {
    bool more = !text_.empty();
    while (more && index_ < text_.size()) more = readOne(details, readOnly);
  }

 private:
  /// Whether there may be another one.
  bool readOne(BDPropertyDetails& details, bool& readOnly) {
    switch (text_[index_]) {
      case '&':
        details.isRetain = YES;
        return passLetter();
      case 'C':
        details.isCopy = YES;
        return passLetter();
      case 'D':
      case 'N':
      case 'P':
      case 'W':
        return passLetter();
      case 'R':
        readOnly = true;
        return passLetter();
      case 'T':
        if (isLast()) return false;
        if (text_[index_ + 1] == '@' || text_[index_ + 1] == '^') details.isObject = YES;
        passValue();
        return true;
      case 'G':
        if (isLast()) return false;
        details.getter = selectorNamed(passValue());
        return true;
      case 'S':
        if (readOnly) raiseUnexpected();
        if (isLast()) return false;
        details.setter = selectorNamed(passValue());
        return true;
      case 'V':
        if (isLast()) return false;
        passValue();
        return true;
      default:
        raiseUnexpected();
    }
  }

  [[nodiscard]] bool isLast() const { return index_ + 1 == text_.size(); }

  /// Behind a letter without a value stands a comma, or the reading ends.
  bool passLetter() {
    if (isLast() || text_[index_ + 1] != ',') return false;
    index_ += 2;
    return true;
  }

  /// The value behind the letter, up to the next comma or the end; goes on behind that.
  std::string_view passValue() {
    const std::size_t begin = index_ + 1;
    const std::size_t comma = text_.find(',', begin);
    const std::size_t end = comma == text_.npos ? text_.size() : comma;
    index_ = end + 1;
    return text_.substr(begin, end - begin);
  }

  [[noreturn]] void raiseUnexpected() const {
    NSException::raise(BDInternalInconsistencyException, "Unexpected character at %i in %s"_ns,
                       static_cast<int>(index_), text_.data());
  }

  std::string_view text_;  // ends with a null character
  std::size_t index_ = 0;
};

/// "setTitle:" for "title". Other letters than the C library's own stay as they are.
SEL setterNamed(const char* property) {
  std::string name = std::string("set") + property + ":";
  if (*property != '\0') {
    name[3] = static_cast<char>(std::toupper(static_cast<unsigned char>(*property)));
  }
  return sel_getUid(name.c_str());
}

}  // namespace

BDPropertyDetails property_getDetails(objc_property_t property) {
  BDPropertyDetails details{};
  if (property == nullptr) return details;
  bool readOnly = false;
  Attributes(property_getAttributes(property)).read(details, readOnly);
  if (details.getter == nullptr) details.getter = sel_getUid(property_getName(property));
  if (!readOnly && details.setter == nullptr) {
    details.setter = setterNamed(property_getName(property));
  }
  return details;
}

}  // namespace brindle
