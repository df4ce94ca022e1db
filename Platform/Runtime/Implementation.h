// The only place where implementations lose and regain their types.
//
// A method's code is a function of wire types: (object record, selector, arguments) in the types of
// `Encoding.h`. It is stored as an `IMP` and called, after a cast to exactly its own type, by a
// sender that agrees with it about the wire types; with assertions on the sender checks that first.
#pragma once

#include <Brindle/Platform/Encoding.h>
#include <Brindle/Platform/Types.h>

namespace brindle::detail {

template <class R, class... A>
using WireFunction = R (*)(ObjectRecord*, SEL, A...);

/// Forgets the types of a method's code.
template <class R, class... A>
IMP eraseImplementation(WireFunction<R, A...> function) noexcept {
  return reinterpret_cast<IMP>(function);  // NOLINT(*-reinterpret-cast)
}

/// Gives a method's code its types back.
template <class R, class... A>
WireFunction<R, A...> typedImplementation(IMP implementation) noexcept {
  return reinterpret_cast<WireFunction<R, A...>>(implementation);  // NOLINT(*-reinterpret-cast)
}

/// An implementation as a plain pointer, for libraries that deal in those, and back.
inline void* implementationAddress(IMP implementation) noexcept {
  return reinterpret_cast<void*>(implementation);  // NOLINT(*-reinterpret-cast)
}
inline IMP implementationAt(void* address) noexcept {
  return reinterpret_cast<IMP>(address);  // NOLINT(*-reinterpret-cast)
}

}  // namespace brindle::detail
