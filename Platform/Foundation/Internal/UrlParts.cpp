#include "Platform/Foundation/Internal/UrlParts.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>

namespace brindle::internal {
namespace {

constexpr std::string_view kUnreserved = "-._~";
constexpr std::string_view kSubDelimiters = "!$&'()*+,;=";

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isIn(std::string_view set, char c) { return set.find(c) != std::string_view::npos; }

int hexadecimal(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Letters, digits, what the RFC takes everywhere, those in `more`, and bytes by their number.
bool isMadeOf(std::string_view text, std::string_view more) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (isLetter(c) || isDigit(c) || isIn(kUnreserved, c) || isIn(kSubDelimiters, c) ||
        isIn(more, c)) {
      continue;
    }
    if (c != '%' || text.size() - i < 3 || hexadecimal(text[i + 1]) < 0 ||
        hexadecimal(text[i + 2]) < 0) {
      return false;
    }
    i += 2;
  }
  return true;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [](char c) {
    return isLetter(c) || isDigit(c) || isIn("+-.", c);
  });
}

// What stands between brackets: an IPv6 address, or one of a version to come.
bool isLiteralAddress(std::string_view text) {
  if (text.empty() || !isMadeOf(text, ":")) return false;
  if (text[0] == 'v' || text[0] == 'V') {
    const std::size_t dot = text.find('.');
    if (dot == std::string_view::npos || dot < 2 || dot + 1 == text.size()) return false;
    const std::string_view version = text.substr(1, dot - 1);
    return std::all_of(version.begin(), version.end(),
                       [](char c) { return hexadecimal(c) >= 0; }) &&
           text.find('%') == std::string_view::npos && isMadeOf(text.substr(dot + 1), ":");
  }
  std::array<unsigned char, sizeof(in6_addr)> address{};
  return ::inet_pton(AF_INET6, std::string(text).c_str(), address.data()) == 1;
}

bool parseAuthority(std::string_view text, UrlParts& parts) {
  const std::size_t at = text.find('@');
  if (at != std::string_view::npos) {
    const std::string_view both = text.substr(0, at);
    const std::size_t colon = both.find(':');
    if (!isMadeOf(both, ":")) return false;
    parts.user = both.substr(0, colon);
    if (colon != std::string_view::npos) parts.password = both.substr(colon + 1);
    text.remove_prefix(at + 1);
  }
  std::size_t end = text.find(':');
  if (!text.empty() && text[0] == '[') {
    const std::size_t bracket = text.find(']');
    if (bracket == std::string_view::npos || !isLiteralAddress(text.substr(1, bracket - 1))) {
      return false;
    }
    end = bracket + 1;
    if (end < text.size() && text[end] != ':') return false;
  } else if (!isMadeOf(text.substr(0, end), "")) {
    return false;
  }
  end = std::min(end, text.size());
  parts.host = text.substr(0, end);
  if (end == text.size()) return true;
  const std::string_view port = text.substr(end + 1);
  parts.port = port;
  return std::all_of(port.begin(), port.end(), isDigit);
}

// Cuts off what stands behind the first such character.
std::optional<std::string_view> cutBehind(std::string_view& text, char c) {
  const std::size_t place = text.find(c);
  if (place == std::string_view::npos) return std::nullopt;
  const std::string_view behind = text.substr(place + 1);
  text = text.substr(0, place);
  return behind;
}

std::string mergedPath(const UrlParts& base, const std::string& path) {
  if (base.host && base.path.empty()) return "/" + path;
  const std::size_t slash = base.path.rfind('/');
  return slash == std::string::npos ? path : base.path.substr(0, slash + 1) + path;
}

void takeAuthority(UrlParts& target, const UrlParts& source) {
  target.user = source.user;
  target.password = source.password;
  target.host = source.host;
  target.port = source.port;
}

}  // namespace

std::optional<UrlParts> parseUrl(std::string_view text) {
  UrlParts parts;
  if (const auto fragment = cutBehind(text, '#')) parts.fragment = *fragment;
  if (const auto query = cutBehind(text, '?')) parts.query = *query;
  const std::size_t colon = text.find(':');
  if (colon != std::string_view::npos && colon < text.find('/')) {
    if (!isScheme(text.substr(0, colon))) return std::nullopt;
    parts.scheme = text.substr(0, colon);
    text.remove_prefix(colon + 1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    const std::string_view authority = text.substr(0, text.find('/'));
    if (!parseAuthority(authority, parts)) return std::nullopt;
    text.remove_prefix(authority.size());
  }
  parts.path = text;
  const bool isLegal = isMadeOf(text, ":@/") && isMadeOf(parts.query.value_or(""), ":@/?") &&
                       isMadeOf(parts.fragment.value_or(""), ":@/?");
  return isLegal ? std::optional(parts) : std::nullopt;
}

std::string textOfUrl(const UrlParts& parts) {
  std::string text;
  if (parts.scheme) text += *parts.scheme + ":";
  if (parts.host) {
    text += "//";
    if (parts.user) text += *parts.user;
    if (parts.password) text += ":" + *parts.password;
    if (parts.user) text += "@";
    text += *parts.host;
    if (parts.port) text += ":" + *parts.port;
  } else if (parts.path.starts_with("//")) {
    text += "/.";  // the path must not look like a host
  } else if (!parts.scheme &&
             parts.path.substr(0, parts.path.find('/')).find(':') != std::string::npos) {
    text += "./";  // nor its first segment like a scheme
  }
  text += parts.path;
  if (parts.query) text += "?" + *parts.query;
  if (parts.fragment) text += "#" + *parts.fragment;
  return text;
}

UrlParts resolveUrl(const UrlParts& base, const UrlParts& reference) {
  UrlParts target = reference;
  if (reference.scheme || reference.host) {
    if (!reference.scheme) target.scheme = base.scheme;
    target.path = removeDotSegments(reference.path);
    return target;
  }
  target.scheme = base.scheme;
  takeAuthority(target, base);
  if (reference.path.empty()) {
    target.path = base.path;
    if (!reference.query) target.query = base.query;
  } else {
    target.path = removeDotSegments(
        reference.path.starts_with('/') ? reference.path : mergedPath(base, reference.path));
  }
  return target;
}

std::string removeDotSegments(std::string_view input) {
  std::string output;
  while (!input.empty()) {
    if (input.starts_with("../")) {
      input.remove_prefix(3);
    } else if (input.starts_with("./") || input.starts_with("/./")) {
      input.remove_prefix(2);
    } else if (input == "/.") {
      input = "/";
    } else if (input.starts_with("/../") || input == "/..") {
      input = input.size() == 3 ? "/" : input.substr(3);
      const std::size_t slash = output.rfind('/');
      output.resize(slash == std::string::npos ? 0 : slash);
    } else if (input == "." || input == "..") {
      input = {};
    } else {
      const std::string_view segment = input.substr(0, input.find('/', 1));
      output += segment;
      input.remove_prefix(segment.size());
    }
  }
  return output;
}

std::string percentDecoded(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && text.size() - i > 2 && hexadecimal(text[i + 1]) >= 0 &&
        hexadecimal(text[i + 2]) >= 0) {
      bytes += static_cast<char>(hexadecimal(text[i + 1]) * 16 + hexadecimal(text[i + 2]));
      i += 2;
    } else {
      bytes += text[i];
    }
  }
  return bytes;
}

std::string percentEncodedPath(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char c : bytes) {
    if (isLetter(c) || isDigit(c) || isIn("-._~/!$&'()*+,=@", c)) {
      text += c;
    } else {
      text += '%';
      text += kDigits[static_cast<unsigned char>(c) >> 4U];
      text += kDigits[static_cast<unsigned char>(c) & 15U];
    }
  }
  return text;
}

}  // namespace brindle::internal
