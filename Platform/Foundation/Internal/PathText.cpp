#include "Platform/Foundation/Internal/PathText.h"

#include <optional>

namespace brindle::internal {
namespace {

constexpr TextView kRoot = TextView::latin1("/");
constexpr TextView kDot = TextView::latin1(".");
constexpr TextView kDots = TextView::latin1("..");

TextRange lastName(TextView path) noexcept {
  std::size_t end = path.size();
  while (end > 0 && path[end - 1] == u'/') --end;
  std::size_t start = end;
  while (start > 0 && path[start - 1] != u'/') --start;
  return {start, end - start};
}

// Where the dot of the extension is.
std::optional<std::size_t> extensionDot(TextView path) noexcept {
  const TextRange name = lastName(path);
  for (std::size_t i = name.end(); i > name.location; --i) {
    if (path[i - 1] != u'.') continue;
    for (std::size_t before = name.location; before < i - 1; ++before) {
      if (path[before] != u'.') return i - 1;
    }
    return std::nullopt;
  }
  return std::nullopt;
}

Text join(bool rooted, std::span<const TextView> names) {
  Text result(rooted ? kRoot : TextView());
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (i > 0) result.append(kRoot);
    result.append(names[i]);
  }
  return result;
}

}  // namespace

Text tidyPath(TextView path) { return join(isRooted(path), namesInPath(path)); }

std::vector<TextView> namesInPath(TextView path) {
  std::vector<TextView> names;
  for (std::size_t i = 0; i < path.size();) {
    std::size_t end = i;
    while (end < path.size() && path[end] != u'/') ++end;
    if (end > i) names.push_back(path.sub(i, end - i));
    i = end + 1;
  }
  return names;
}

TextView lastPathComponent(TextView path) noexcept {
  const TextRange name = lastName(path);
  return name.length == 0 && isRooted(path) ? kRoot : path.sub(name);
}

Text withoutLastPathComponent(TextView path) {
  const TextView before = path.sub(0, lastName(path).location);
  return before.empty() && isRooted(path) ? Text(kRoot) : tidyPath(before);
}

TextView pathExtension(TextView path) noexcept {
  const auto dot = extensionDot(path);
  if (!dot) return {};
  return path.sub(*dot + 1, lastName(path).end() - *dot - 1);
}

Text withoutPathExtension(TextView path) {
  const auto dot = extensionDot(path);
  return tidyPath(dot ? path.sub(0, *dot) : path);
}

Text joinPath(TextView path, TextView component) {
  std::vector<TextView> names = namesInPath(path);
  const std::vector<TextView> more = namesInPath(component);
  names.insert(names.end(), more.begin(), more.end());
  return join(isRooted(path.empty() ? component : path), names);
}

Text addPathExtension(TextView path, TextView extension) {
  Text result = tidyPath(path);
  if (result.empty() || result == Text(kRoot)) return result;
  result.append(kDot);
  result.append(extension);
  return result;
}

std::vector<TextView> pathComponents(TextView path) {
  std::vector<TextView> components = namesInPath(path);
  const bool endsInSlash = !components.empty() && path[path.size() - 1] == u'/';
  if (isRooted(path)) components.insert(components.begin(), kRoot);
  if (endsInSlash) components.push_back(kRoot);
  return components;
}

Text pathFromComponents(std::span<const TextView> components) {
  Text result;
  for (const TextView component : components) result = joinPath(result, component);
  if (components.size() < 2 || result.empty() || result == Text(kRoot)) return result;
  if (components.back().empty() || components.back() == kRoot) result.append(kRoot);
  return result;
}

Text resolveDots(TextView path) {
  std::vector<TextView> kept;
  for (const TextView name : namesInPath(path)) {
    if (name == kDot) continue;
    if (name == kDots && isRooted(path)) {
      if (!kept.empty()) kept.pop_back();
    } else {
      kept.push_back(name);
    }
  }
  return join(isRooted(path), kept);
}

}  // namespace brindle::internal
