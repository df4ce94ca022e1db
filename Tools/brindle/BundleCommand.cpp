// `brindle bundle`.
#include <iostream>

#include <Brindle/BDBundleAdditions.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Command.h"
#include "Json.h"

namespace tool {
namespace {

using namespace brindle;

constexpr std::string_view kHelp = R"(usage: brindle bundle PATH [--json]
       brindle bundle IDENTIFIER [--json]

What the bundle in a folder is, or the bundle with an identifier: where it lies, what it is called,
which translations it has. A word with a slash, and one that names a folder, is a path. Otherwise the
identifier is searched, first among the bundles whose code is loaded, then in the frameworks and
plug-ins of this program and in theirs.

  found        path: a folder was named; loaded: its code is in the process; search: in a folder
  searched     where it was looked for, one place to a line
  support      the folder for its own files among the user's
  languages    its translations; those of the user's languages come under preferred

  --json       one JSON object; null for what is not there

Languages follow LANGUAGE, LC_ALL, LC_MESSAGES and LANG. The exit status is 1 when there is no such
bundle.
)";

constexpr Option kOptions[] = {{"--json", false}};

struct Line {
  std::string_view name;
  std::vector<std::string> values;
  bool isList;
};

struct Found {
  NSBundle bundle;
  std::string how;
  std::vector<std::string> searched;
};

std::string textOf(const id& object) { return std::string(object->description()); }

std::vector<std::string> oneOf(const id& object) {
  if (!object) return {};
  return {textOf(object)};
}

std::vector<std::string> allOf(const NSArray& objects) {
  std::vector<std::string> texts;
  for (const id& object : objects) texts.push_back(textOf(object));
  return texts;
}

bool isPath(const NSString& word) {
  bool isFolder = false;
  const bool isThere = NSFileManager::defaultManager()->fileExistsAtPath(word, &isFolder);
  return word->containsString("/"_ns) || (isThere && isFolder);
}

Found find(const NSString& word) {
  if (isPath(word)) {
    const NSBundle bundle = NSBundle::bundleWithPath(word);
    return {bundle, bundle ? "path" : "", {textOf(bundle ? bundle->bundlePath() : word)}};
  }
  bool loaded = false;
  const NSBundle bundle = bundleWithIdentifier(NSBundle::class_(), word, &loaded);
  std::vector<std::string> searched{"loaded code"};
  if (!loaded) {
    const NSBundle main = NSBundle::mainBundle();
    searched.push_back(textOf(main->privateFrameworksPath()));
    searched.push_back(textOf(main->builtInPlugInsPath()));
  }
  return {bundle, !bundle ? "" : loaded ? "loaded" : "search", std::move(searched)};
}

std::vector<Line> linesOf(const Found& found) {
  std::vector<Line> lines;
  const auto one = [&lines](std::string_view name, const id& object) {
    lines.push_back({name, oneOf(object), false});
  };
  const NSBundle& bundle = found.bundle;
  one("path", bundle->bundlePath());
  lines.push_back({"found", {found.how}, false});
  lines.push_back({"searched", found.searched, true});
  one("identifier", bundle->bundleIdentifier());
  one("name", name(bundle));
  one("version", version(bundle));
  one("loaded", bundle->isLoaded() ? "yes"_ns : "no"_ns);
  one("executable", bundle->executablePath());
  one("resources", bundle->resourcePath());
  one("frameworks", bundle->privateFrameworksPath());
  one("plug-ins", bundle->builtInPlugInsPath());
  one("support", applicationSupportDirectory(bundle));
  lines.push_back({"languages", allOf(bundle->localizations()), true});
  lines.push_back({"preferred", allOf(bundle->preferredLocalizations()), true});
  return lines;
}

std::string jsonOf(const Line& line) {
  if (!line.isList) return line.values.empty() ? "null" : jsonString(line.values[0]);
  std::string list = "[";
  for (const std::string& value : line.values) {
    list += (list.size() > 1 ? ", " : "") + jsonString(value);
  }
  return list + "]";
}

void printJson(const std::vector<Line>& lines) {
  std::cout << '{';
  for (const Line& line : lines) {
    std::cout << (&line == lines.data() ? "" : ", ") << jsonString(line.name) << ": "
              << jsonOf(line);
  }
  std::cout << "}\n";
}

void printText(const std::vector<Line>& lines) {
  for (const Line& line : lines) {
    std::string_view name = line.name;
    for (const std::string& value : line.values) {
      std::cout << name << std::string(12 - name.size(), ' ') << value << '\n';
      name = "";
    }
  }
}

int run(std::span<const std::string_view> given) {
  const Words words(given, kOptions);
  if (words.rest().size() != 1) throw UsageError("one path or one identifier is wanted");
  const bool json = words.has("--json");
  const std::string word(words.rest().front());
  if (word.empty()) throw UsageError("an empty word is neither a path nor an identifier");
  const Found found = find(NSString(word));
  if (found.bundle) {
    const std::vector<Line> lines = linesOf(found);
    json ? printJson(lines) : printText(lines);
    return kDone;
  }
  if (json) {
    printJson({{"path", {}, false}, {"found", {}, false}, {"searched", found.searched, true}});
  } else {
    std::cout << "there is no bundle " << word << '\n';
    printText({{"searched", found.searched, true}});
  }
  return kNoAnswer;
}

}  // namespace

const Command kBundleCommand{"bundle", "what a bundle is, and where it lies", kHelp, run};

}  // namespace tool
