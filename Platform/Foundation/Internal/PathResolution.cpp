#include "Platform/Foundation/Internal/PathResolution.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/PathText.h"
#include "Platform/Foundation/Internal/UserFolders.h"

namespace brindle::internal {
namespace {

// Every byte is one unit here: slashes and dots are what they are in any encoding of names.
TextView asText(std::string_view bytes) { return TextView::latin1(bytes); }
std::string asBytes(const Text& text) { return std::string(text.view().bytes()); }

std::string tidy(std::string_view path) { return asBytes(tidyPath(asText(path))); }

}  // namespace

std::string resolveLinks(const std::string& path) {
  if (!isRooted(asText(path))) return asBytes(resolveDots(asText(path)));
  std::string start = path;
  std::string rest;
  for (;;) {
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(start.c_str(), nullptr),
                                                      &std::free);
    if (real) return asBytes(resolveDots(asText(std::string(real.get()) + "/" + rest)));
    const std::string name = asBytes(Text(lastPathComponent(asText(start))));
    if (name == "/") return asBytes(resolveDots(asText(path)));
    rest = name + "/" + rest;
    start = asBytes(withoutLastPathComponent(asText(start)));
  }
}

std::string expandTilde(const std::string& path) {
  if (path.empty() || path.front() != '~') return path;
  const std::size_t end = std::min(path.find('/'), path.size());
  const std::string account = path.substr(1, end - 1);
  const auto home = account.empty() ? homeFolder() : homeFolderOf(account);
  return home ? tidy(*home + path.substr(end)) : path;
}

std::string abbreviateWithTilde(const std::string& path) {
  const std::string home = tidy(homeFolder());
  const std::string tidied = tidy(path);
  if (home == "/" || !tidied.starts_with(home)) return path;
  const std::string rest = tidied.substr(home.size());
  return rest.empty() || rest.front() == '/' ? "~" + rest : path;
}

std::string standardizePath(const std::string& path) {
  const std::string expanded = expandTilde(path);
  for (const TextView name : namesInPath(asText(expanded))) {
    if (name == asText("..")) return resolveLinks(expanded);
  }
  return asBytes(resolveDots(asText(expanded)));
}

}  // namespace brindle::internal
