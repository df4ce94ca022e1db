// Keys and key paths of observing, each text once.
#include "Platform/Foundation/Internal/ObservedKeys.h"

#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <unordered_map>

#include <Brindle/Platform/Selector.h>

#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle::detail {
namespace {

struct Texts {
  std::shared_mutex lock;
  std::unordered_map<std::string, ObservedKey*> keys;
  std::unordered_map<std::string, ObservedPath*> paths;
  std::unordered_map<std::string, ObservedPath*> operators;
  std::map<std::pair<const ObservedKey*, const ObservedPath*>, ObservedPath*> ends;
};

Texts& texts() {
  static auto& all = *new Texts;
  return all;
}

ObservedKey* keyLocked(const std::string& text) {
  ObservedKey*& key = texts().keys[text];
  if (key == nullptr) {
    key = new ObservedKey{NSString(text), text, text, {}};
    char& first = key->capitalized[0];
    if (first >= 'a' && first <= 'z') first = static_cast<char>(first - 'a' + 'A');
  }
  return key;
}

/// What an operator is about is left to reading by key path: it is not split.
const ObservedPath* operatorLocked(const std::string& text) {
  ObservedPath*& path = texts().operators[text];
  const std::string first = text.substr(0, text.find('.'));
  if (path == nullptr) path = new ObservedPath{NSString(text), keyLocked(first), nullptr};
  return path;
}

const ObservedPath* pathLocked(const std::string& text) {
  if (ObservedPath* known = texts().paths[text]) return known;
  const std::size_t found = text.find(".@");
  std::size_t end = found == std::string::npos ? text.size() : found;
  const ObservedPath* rest =
      found == std::string::npos ? nullptr : operatorLocked(text.substr(found + 1));
  for (;;) {  // from the last key to the first
    const std::size_t dot = end == 0 ? std::string::npos : text.rfind('.', end - 1);
    const std::size_t begin = dot == std::string::npos ? 0 : dot + 1;
    const ObservedKey* key = keyLocked(text.substr(begin, end - begin));
    ObservedPath*& path = texts().ends[{key, rest}];
    if (path == nullptr) path = new ObservedPath{nullptr, key, rest};
    if (begin == 0) {
      path->text = NSString(text);
      return texts().paths[text] = path;
    }
    rest = path;
    end = dot;
  }
}

// What this thread asked for lately. Literals live for ever, mostly: the text is compared in case
// the library that held one is gone.
template <class T>
struct Recent {
  const ObjectRecord* string;
  const T* found;
};
// Few: what a library keeps for each thread has to fit where a program has room that opens it late.
constexpr std::size_t kRecent = 8;
template <class T>
constinit thread_local Recent<T> recent[kRecent]{};

template <class T, class Find>
const T* recall(const NSString& string, NSString T::*name, Find find) {
  ObjectRecord* record = string.record();
  const bool literal = record->count.load(std::memory_order_relaxed) >= kCountImmortal &&
                       isImmutableLibraryString(record);
  if (!literal) return find(static_cast<std::string>(string));
  auto& place = recent<T>[(reinterpret_cast<std::uintptr_t>(record) >> 4U) % kRecent];  // NOLINT
  if (place.string == record) {
    const StringContents& a = contentsOf(record);
    const StringContents& b = contentsOf((place.found->*name).record());
    if (a.length == b.length && a.isWide == b.isWide &&
        std::char_traits<char>::compare(static_cast<const char*>(a.units),
                                        static_cast<const char*>(b.units),
                                        a.isWide ? a.length * 2 : a.length) == 0) {
      return place.found;
    }
  }
  const T* found = find(static_cast<std::string>(string));
  place = {record, found};
  return found;
}

}  // namespace

const ObservedPath* observedPath(const NSString& string) {
  if (!string || string->length() == 0) return nullptr;
  return recall<ObservedPath>(string, &ObservedPath::text,
                              [](const std::string& text) -> const ObservedPath* {
                                {
                                  const std::shared_lock guard(texts().lock);
                                  const auto found = texts().paths.find(text);
                                  if (found != texts().paths.end() && found->second != nullptr)
                                    return found->second;
                                }
                                const std::unique_lock guard(texts().lock);
                                return pathLocked(text);
                              });
}

NSString textOfPath(const ObservedPath& path) {
  std::string text;
  for (const ObservedPath* p = &path; p != nullptr; p = p->rest) {
    if (p != &path) text += '.';
    const bool isOperator = p->key->text.starts_with('@') && p->text;
    text += isOperator ? static_cast<std::string>(p->text) : p->key->text;
  }
  return NSString(text);
}

const ObservedKey* observedKey(const NSString& string) {
  if (!string) return nullptr;
  return recall<ObservedKey>(string, &ObservedKey::name,
                             [](const std::string& text) -> const ObservedKey* {
                               {
                                 const std::shared_lock guard(texts().lock);
                                 const auto found = texts().keys.find(text);
                                 if (found != texts().keys.end()) return found->second;
                               }
                               const std::unique_lock guard(texts().lock);
                               return keyLocked(text);
                             });
}

SEL keySelector(const ObservedKey& key, const char* before, const char* behind) {
  // In the middle of a selector the key has a capital.
  const std::string& text =
      *before == '\0' || std::string_view(before) == "_" ? key.text : key.capitalized;
  return sel_findName(before + text + behind);
}

}  // namespace brindle::detail
