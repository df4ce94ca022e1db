#pragma once

// The code in this process: the program and the libraries that it has loaded so far.

#include <string>
#include <vector>

namespace brindle::internal {

/// The real path of the running program's executable; empty when the system does not tell.
std::string programPath();

/// Changes whenever a library is loaded or unloaded.
unsigned long long imageGeneration() noexcept;

struct LoadedImage {
  /// As the loader found it, made absolute.
  std::string path;
  /// Whether it says of itself that it is never unloaded.
  bool stays;
};

/// The loaded libraries in the order of loading; without the program.
std::vector<LoadedImage> loadedImages();

/// The absolute path of the library that the address lies in; empty when it lies in the program or
/// nowhere.
std::string imageOf(const void* address);

}  // namespace brindle::internal
