// The names that everything else is made of: objects, classes, selectors, implementations, and the
// platform's integer types. Only declarations; `Object.h` and `Class.h` say what they can do.
#pragma once

#include <cstddef>
#include <cstdint>

namespace brindle {

struct ObjectRecord;
struct ClassRecord;
struct MethodRecord;
struct SelectorRecord;
struct IvarRecord;
struct PropertyRecord;
struct ProtocolRecord;

class id;
class Class;

/// A registered selector: equal texts are one pointer, so selectors are compared with `==`.
/// Null is the selector of nothing. Selectors live as long as the process.
using SEL = const SelectorRecord*;

/// The code of a method with its types forgotten. Never called as it is: `Implementation.h` knows
/// how to give it its types back.
using IMP = void (*)();

/// A method of one class: selector, implementation and type encoding. A handle stays valid for the
/// life of the process, also while its class grows. Null is no method.
using Method = MethodRecord*;

/// An instance variable's description. Lives as long as the process. Null is none.
using Ivar = const IvarRecord*;

/// A declared property's description. Lives as long as the process. Null is none.
using objc_property_t = const PropertyRecord*;

/// The platform's boolean in tables, records and C functions; encoded `c`. Typed senders take and
/// answer `bool`.
using BOOL = signed char;
inline constexpr BOOL YES = 1;
inline constexpr BOOL NO = 0;

/// The platform's pointer-wide integers.
using NSInteger = std::int64_t;
using NSUInteger = std::uint64_t;

/// A memory zone: kept in signatures for the platform's sake, always null, never read.
struct NSZone {};

/// Takes ownership of a count that the caller already holds, in constructors of references.
struct Adopt {};

}  // namespace brindle
