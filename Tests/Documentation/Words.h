// [example: category-header]
// Words in strings.
#pragma once

#include <Brindle/Platform/NSString.h>

namespace todo {
using namespace brindle;

/// How many words the string has: stretches without a space. Zero for nil.
inline NSUInteger wordCount(const NSString& string) {
  return send<"todo_wordCount", NSUInteger>(string);
}

/// The text as many times as asked, with spaces between. For the class:
/// `repeated(NSString::class_(), "ho"_ns, 3)`.
inline NSString repeated(ClassOf<NSString> cls, const NSString& text, NSUInteger times) {
  return send<"todo_repeated:times:", NSString>(cls, text, times);
}

}  // namespace todo
// [end]
