// `awake`: what an object does right after it was initialised, whichever initialiser it was.
//
//   constexpr MethodDefinition kMethods[] = {
//       method<"awake">([](const Document& self) { ... }),       // Document's definition
//
//   Document document = Document::alloc()->init();               // runs it
//
// A class that defines an instance operation `awake` has it called on each new object when the
// object's first message, an initialiser, has returned: once for each class of the chain that
// defines it, the topmost first. Overriding is not needed and `super` is not called: each class's
// own `awake` runs in its turn. It runs on the object that was allocated, also when the initialiser
// answered another one, and not when the initialiser raised.
//
// Only code that is linked with this library is called: an `awake` in a library that knows nothing
// of it may mean anything. Objects of classes without `awake` are plain objects.
//
// Until its first message the object is a proxy (BDAwakeProxy.h), so that message must be an
// initialiser. A class that overrides `allocWithZone:` and does not call its superclass's stays
// out of all this. What a class answers is found out once, at its first allocation; any thread.
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSObject.h>

namespace brindle {

/// Whether the class itself, not a superclass, defines `awake` in code that is linked with this
/// library. False for nil.
inline bool supportsAwake(Class cls) { return send<"supportsAwake", bool>(cls); }

/// Whether the class or a superclass does: whether its new objects begin as proxies. Found out once
/// for each class. False for nil.
inline bool performAwake(Class cls) { return send<"performAwake", bool>(cls); }

/// Runs the `awake` of each class from the root to `cls` that supports it, on the object. For
/// objects that were made in other ways than by allocation; allocation does it by itself.
inline void invokeAwake(Class cls, const id& object) { send<"invokeAwake:">(cls, object); }

}  // namespace brindle
