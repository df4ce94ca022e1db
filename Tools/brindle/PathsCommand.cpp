// `brindle paths`.
#include <algorithm>
#include <iostream>

#include <Brindle/BDUserDefaultsAdditions.h>
#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Command.h"
#include "Json.h"

namespace tool {
namespace {

using namespace brindle;

constexpr std::string_view kHelp = R"(usage: brindle paths [--json]
       brindle paths PATH... [--json]

Without a PATH: where the user's folders and the system's are. home-record is the home folder of the
user database; everything else follows the environment: HOME, TMPDIR, XDG_DATA_HOME and so on.

With one: the path taken apart.

  absolute     without a tilde, "." and ".."
  resolved     the same without links
  user-home    the tilde replaced by the home folder of the user database
  name, extension, folder
               the last name, what stands behind its last dot, and what is before it

  --json       one JSON object, or with several paths an array of them; null for what is not there
)";

constexpr Option kOptions[] = {{"--json", false}};

struct Line {
  std::string_view name;
  NSString value;
};

// The bytes of the path, whatever they are.
std::string bytesOf(const NSString& path) {
  if (path->length() == 0) return "";
  const AutoreleasePool pool;
  return fileSystemRepresentation(path);
}

void print(const std::vector<Line>& lines, bool json, std::string_view end) {
  std::cout << (json ? "{" : "");
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto& [name, value] = lines[i];
    if (json) {
      std::cout << (i > 0 ? ", " : "") << jsonString(name) << ": "
                << (value ? jsonString(std::string(value)) : "null");
    } else if (value) {
      std::cout << name << std::string(16 - name.size(), ' ') << bytesOf(value) << '\n';
    }
  }
  std::cout << (json ? "}" : "") << end;
}

NSString folder(NSSearchPathDirectory directory, NSSearchPathDomainMask domain) {
  return cast<NSString>(
      NSSearchPathForDirectoriesInDomains(directory, domain, true)->firstObject());
}

std::vector<Line> folders() {
  return {{"user", NSUserName()},
          {"home", NSHomeDirectory()},
          {"home-record", userHomePath(NSUserDefaults::standardUserDefaults())},
          {"temporary", NSTemporaryDirectory()},
          {"support", folder(NSApplicationSupportDirectory, NSUserDomainMask)},
          {"support-local", folder(NSApplicationSupportDirectory, NSLocalDomainMask)},
          {"support-system", folder(NSApplicationSupportDirectory, NSSystemDomainMask)},
          {"caches", folder(NSCachesDirectory, NSUserDomainMask)},
          {"desktop", folder(NSDesktopDirectory, NSUserDomainMask)},
          {"documents", folder(NSDocumentDirectory, NSUserDomainMask)},
          {"downloads", folder(NSDownloadsDirectory, NSUserDomainMask)}};
}

std::vector<Line> parts(const NSString& path) {
  return {{"path", path},
          {"absolute", stringByStandardizingPath(path)},
          {"resolved", stringByResolvingSymlinksInPath(path)},
          {"user-home", stringByExpandingTildeInPathUsingUserHomePath(path)},
          {"name", lastPathComponent(path)},
          {"extension", pathExtension(path)},
          {"folder", stringByDeletingLastPathComponent(path)}};
}

int run(std::span<const std::string_view> given) {
  const Words words(given, kOptions);
  const bool json = words.has("--json");
  if (words.rest().empty()) {
    print(folders(), json, json ? "\n" : "");
    return kDone;
  }
  if (std::any_of(words.rest().begin(), words.rest().end(),
                  [](std::string_view word) { return word.empty(); })) {
    throw UsageError("an empty text is no path");
  }
  const bool several = words.rest().size() > 1;
  if (json && several) std::cout << "[\n";
  for (std::size_t i = 0; i < words.rest().size(); ++i) {
    const bool isLast = i + 1 == words.rest().size();
    const NSString path = words.rest()[i];
    print(parts(path), json, json ? (isLast ? "\n" : ",\n") : (isLast ? "" : "\n"));
  }
  if (json && several) std::cout << "]\n";
  return kDone;
}

}  // namespace

const Command kPathsCommand{"paths", "where folders are, and what a path says", kHelp, run};

}  // namespace tool
