// Loaded into a program by `brindle inspect --in PROGRAM`: lists a class when the program ends.
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "Tools/brindle/ClassListing.h"

namespace {

const char* variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

[[gnu::destructor]] void tell() {
  const std::string text =
      tool::listing(variable("BRINDLE_PROBE_CLASS"),
                    std::string_view(variable("BRINDLE_PROBE_FORMAT")) == "json");
  const int file = std::atoi(variable("BRINDLE_PROBE_FILE"));
  std::string_view rest = text;
  while (file > 0 && !rest.empty()) {
    const ssize_t count = ::write(file, rest.data(), rest.size());
    if (count <= 0) return;
    rest.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace
