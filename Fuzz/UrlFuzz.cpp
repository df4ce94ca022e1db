// Bytes as a URL: what is accepted comes back as it was, and what it means in a document, and with
// its path changed, is a URL again.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/UrlParts.h"

using namespace brindle::internal;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

void checkAgain(const UrlParts& parts) {
  const std::string text = textOfUrl(parts);
  const auto again = parseUrl(text);
  require(again && textOfUrl(*again) == text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string path = percentEncodedPath(text);
  require(percentDecoded(path) == text);
  (void)percentDecoded(text);
  (void)removeDotSegments(text);

  const auto parts = parseUrl(text);
  if (!parts) return 0;
  require(textOfUrl(*parts) == text);
  for (const char* document : {"http://a/b/c/d;p?q", "file:///a/b", "x:y", "x:"}) {
    const UrlParts resolved = resolveUrl(*parseUrl(document), *parts);
    require(resolved.scheme.has_value());
    checkAgain(resolved);
    if (parts->scheme) checkAgain(resolveUrl(*parts, *parseUrl("../g")));
  }
  UrlParts changed = *parts;
  changed.path = (changed.host ? "/" : "") + path;
  checkAgain(changed);
  return 0;
}
