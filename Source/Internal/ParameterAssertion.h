// Preconditions on parameters. A violation goes to the current thread's assertion handler, which
// raises unless it is a client's own; then the operation goes on.
#pragma once

#include <Brindle/Platform/NSAssertionHandler.h>

namespace brindle::internal {

/// Where an assertion stands and what it says. File and line are part of the text that clients see,
/// so they are constants, the same in every build, and do not move with the code.
struct ParameterAssertion {
  NSString file;  // "Source/BDErrorAdditions"
  NSInteger line;
  const char* condition;  // "description"
};

/// Reports the assertion when its condition does not hold.
inline void assertParameter(bool holds, const ParameterAssertion& assertion, SEL selector,
                            const id& receiver) {
  if (holds) return;
  NSAssertionHandler::currentHandler()->handleFailureInMethod(
      selector, receiver, assertion.file, assertion.line, "Invalid parameter not satisfying: %s"_ns,
      assertion.condition);
}

}  // namespace brindle::internal
