// A key path: keys with points between them.
#pragma once

#include <Brindle/Platform/NSString.h>

#include "Platform/Foundation/Internal/Arguments.h"

namespace brindle::detail {

/// The first key of a path, and what is behind its point; nil when there is no point.
struct KeyPath {
  NSString first;
  NSString rest;
};
inline KeyPath splitKeyPath(const NSString& path) {
  const NSRange point = path->rangeOfString("."_ns);
  if (point.location == static_cast<NSUInteger>(NSNotFound)) return {path, nullptr};
  return {path->substringToIndex(point.location), path->substringFromIndex(point.location + 1)};
}

inline void requireKey(const id& self, SEL selector, const NSString& key) {
  if (!key) raiseIn("NSInvalidArgumentException", self, selector, "nil key");
}

/// Holds off collections that hold themselves: raises NSInvalidArgumentException when more of these
/// than any honest path needs are alive in the thread.
class KeyValueNesting {
 public:
  explicit KeyValueNesting(const id& self, SEL selector) {
    if (depth_ >= kMaximalDepth) {
      raiseIn("NSInvalidArgumentException", self, selector, "collections are nested too deeply");
    }
    ++depth_;
  }
  ~KeyValueNesting() { --depth_; }
  KeyValueNesting(const KeyValueNesting&) = delete;
  KeyValueNesting& operator=(const KeyValueNesting&) = delete;

 private:
  static constexpr int kMaximalDepth = 500;
  static inline thread_local int depth_ = 0;
};

}  // namespace brindle::detail
