// Threads for work that is handed over and not waited for.
#pragma once

#include <functional>

namespace brindle::internal {

/// Runs the work on a thread of its own, at once: an idle one if there is any, else a new one. A
/// thread that has nothing to do for a while ends. What the work throws ends the program.
void runOnWorker(std::function<void()> work);

}  // namespace brindle::internal
