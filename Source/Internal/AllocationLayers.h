// What this library puts before `allocWithZone:` of NSObject.
//
// Two layers, each installed as a store-swizzle over the one before: an allocation runs the
// singleton layer, then the awake layer, then NSObject's own. They ask the class by messages
// (`hasSingletonProtocol`, `performAwake`), so that a class may answer for itself, and leave its
// answers as marks on the class: a class that was asked before costs four calls more than nothing.
#pragma once

#include <Brindle/Platform/Allocation.h>

namespace brindle::internal {

// Marks of a class.
inline constexpr ClassMarks kAnswersNoSingleton{1};
inline constexpr ClassMarks kAwakeDecided{2};
inline constexpr ClassMarks kAwakePerformed{4};

/// Puts the awake layer in front of `allocWithZone:` of NSObject.
void installAwakeLayer();
/// Puts the singleton layer in front of that.
void installSingletonLayer();

}  // namespace brindle::internal
