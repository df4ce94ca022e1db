#include <Brindle/Platform/NSURL.h>

#include <charconv>
#include <cstdint>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSCoder.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Foundation/Internal/UrlParts.h"

namespace brindle {
namespace {

using internal::UrlParts;

struct Fields {
  Field<NSString> relative;
  Field<NSURL> base;
  UrlParts parts;  // of the absolute URL
};

Fields& fields(const NSURL& self) { return fieldsOf<Fields>(self); }
const UrlParts& partsOf(const NSURL& self) { return fields(self).parts; }

NSString text(const std::optional<std::string>& part) { return part ? NSString(*part) : nullptr; }

id initialize(const NSURL& self, const NSString& string, const NSURL& base) {
  const std::string bytes(string);
  if (bytes.empty()) return nullptr;
  auto parts = internal::parseUrl(bytes);
  if (!parts) return nullptr;
  const NSURL absoluteBase = parts->scheme ? nullptr : base->absoluteURL();
  Fields& f = fields(self);
  f.relative = NSString(bytes);
  f.base = absoluteBase;
  const bool canResolve = absoluteBase && partsOf(absoluteBase).scheme;
  f.parts = canResolve ? internal::resolveUrl(partsOf(absoluteBase), *parts) : *std::move(parts);
  return self;
}

NSURL urlFromParts(const UrlParts& parts) {
  return NSURL::URLWithString(NSString(internal::textOfUrl(parts)));
}

NSURL fileUrl(const NSString& path, bool isFolder) {
  NSString whole = path;
  if (!path->hasPrefix("/"_ns)) {
    whole = stringByAppendingPathComponent(NSFileManager::defaultManager()->currentDirectoryPath(),
                                           path);
    if (!whole) return nullptr;  // the current folder is gone
  }
  // Tidied, without a slash at its end.
  whole = stringByAppendingPathComponent(whole, ""_ns);
  const auto bytes = internal::fileNameFromText(detail::StringText(whole));
  if (!bytes) return nullptr;
  std::string encoded = internal::percentEncodedPath(*bytes);
  if (isFolder && !encoded.ends_with('/')) encoded += '/';
  return NSURL::URLWithString(NSString("file://" + encoded));
}

NSString pathOf(const NSURL& self) {
  std::string path = internal::percentDecoded(partsOf(self).path);
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return detail::pathString(path);
}

NSString hostOf(const NSURL& self) {
  const auto& host = partsOf(self).host;
  if (!host || host->empty()) return nullptr;
  return host->front() == '[' ? host->substr(1, host->size() - 2) : *host;
}

NSNumber portOf(const NSURL& self) {
  const auto& port = partsOf(self).port;
  std::int64_t number = 0;
  if (!port) return nullptr;
  const auto [end, error] = std::from_chars(port->data(), port->data() + port->size(), number);
  return error == std::errc() ? NSNumber::numberWithLongLong(number) : nullptr;
}

NSURL appending(const NSURL& self, const NSString& component) {
  const auto bytes = internal::fileNameFromText(detail::StringText(component));
  if (!bytes) return nullptr;
  UrlParts parts = partsOf(self);
  std::string_view added = *bytes;
  while (added.starts_with('/')) added.remove_prefix(1);
  if (!parts.path.ends_with('/') && (parts.host || !parts.path.empty())) parts.path += '/';
  parts.path += internal::percentEncodedPath(added);
  return urlFromParts(parts);
}

NSURL deletingLast(const NSURL& self) {
  UrlParts parts = partsOf(self);
  std::string& path = parts.path;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  const std::size_t slash = path.rfind('/');
  path = slash != std::string::npos ? path.substr(0, slash + 1) : parts.host ? "/" : "./";
  return urlFromParts(parts);
}

bool areEqual(const NSURL& self, const NSURL& other) {
  if (!other || !fields(self).relative->isEqualToString(other->relativeString())) return false;
  const NSURL base = fields(self).base;
  const NSURL otherBase = other->baseURL();
  return base == otherBase || base->isEqual(otherBase);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"URLWithString:">([](const Class& self, const NSString& string) {
      return send<"initWithString:", id>(send<"alloc", id>(self), string);
    }),
    classMethod<"URLWithString:relativeToURL:">(
        [](const Class& self, const NSString& string, const NSURL& base) {
          return send<"initWithString:relativeToURL:", id>(send<"alloc", id>(self), string, base);
        }),
    classMethod<"fileURLWithPath:">([](const Class& self, Cmd cmd, const NSString& path) {
      detail::requireArgument(self, cmd.selector, path);
      bool isFolder = path->hasSuffix("/"_ns);
      if (!isFolder) NSFileManager::defaultManager()->fileExistsAtPath(path, &isFolder);
      return fileUrl(path, isFolder);
    }),
    classMethod<"fileURLWithPath:isDirectory:">(
        [](const Class& self, Cmd cmd, const NSString& path, bool isDirectory) {
          detail::requireArgument(self, cmd.selector, path);
          return fileUrl(path, isDirectory);
        }),
    method<"initWithString:">([](const NSURL& self, const NSString& string) -> id {
      return self->initWithString(string, nullptr);
    }),
    method<"initWithString:relativeToURL:">(
        [](const NSURL& self, Cmd cmd, const NSString& string, const NSURL& base) {
          detail::requireArgument(self, cmd.selector, string);
          return initialize(self, string, base);
        }),

    method<"absoluteString">(
        [](const NSURL& self) { return NSString(internal::textOfUrl(partsOf(self))); }),
    method<"relativeString">([](const NSURL& self) -> NSString { return fields(self).relative; }),
    method<"baseURL">([](const NSURL& self) -> NSURL { return fields(self).base; }),
    method<"absoluteURL">([](const NSURL& self) -> NSURL {
      return fields(self).base ? urlFromParts(partsOf(self)) : self;
    }),
    method<"scheme">([](const NSURL& self) { return text(partsOf(self).scheme); }),
    method<"user">([](const NSURL& self) { return text(partsOf(self).user); }),
    method<"password">([](const NSURL& self) { return text(partsOf(self).password); }),
    method<"host">([](const NSURL& self) { return hostOf(self); }),
    method<"port">([](const NSURL& self) { return portOf(self); }),
    method<"path">([](const NSURL& self) { return pathOf(self); }),
    method<"query">([](const NSURL& self) { return text(partsOf(self).query); }),
    method<"fragment">([](const NSURL& self) { return text(partsOf(self).fragment); }),
    method<"isFileURL">([](const NSURL& self) {
      return self->scheme()->caseInsensitiveCompare("file"_ns) == NSOrderedSame &&
             partsOf(self).scheme.has_value();
    }),

    method<"lastPathComponent">(
        [](const NSURL& self) { return brindle::lastPathComponent(self->path()); }),
    method<"pathExtension">([](const NSURL& self) { return brindle::pathExtension(self->path()); }),
    method<"pathComponents">(
        [](const NSURL& self) { return brindle::pathComponents(self->path()); }),
    method<"URLByAppendingPathComponent:">(
        [](const NSURL& self, Cmd cmd, const NSString& component) {
          detail::requireArgument(self, cmd.selector, component);
          return appending(self, component);
        }),
    method<"URLByDeletingLastPathComponent">([](const NSURL& self) { return deletingLast(self); }),

    method<"isEqual:">([](const NSURL& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSURL>(other));
    }),
    method<"hash">([](const NSURL& self) { return fields(self).relative->hash(); }),
    method<"description">([](const NSURL& self) -> NSString {
      if (!fields(self).base) return fields(self).relative;
      return NSString::stringWithFormat("%@ -- %@"_ns, fields(self).relative.get(),
                                        fields(self).base.get());
    }),
    method<"copyWithZone:">([](const NSURL& self, NSZone*) -> id { return self; }),
    method<"encodeWithCoder:">([](const NSURL& self, const NSCoder& coder) {
      coder->encodeObject(fields(self).relative, "NS.relative"_ns);
      coder->encodeObject(fields(self).base, "NS.base"_ns);
    }),
    method<"initWithCoder:">([](const NSURL& self, const NSCoder& coder) -> id {
      const auto string = dynCast<NSString>(coder->decodeObjectForKey("NS.relative"_ns));
      const auto base = dynCast<NSURL>(coder->decodeObjectForKey("NS.base"_ns));
      const id url = string ? id(self->initWithString(string, base)) : nullptr;
      if (!url) {
        detail::raise("NSInvalidUnarchiveOperationException",
                      "keyed archive: an NSURL without its text");
      }
      return url;
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSCoding};

constexpr ClassDefinition kDefinition{.name = "NSURL",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSURL> NSURL::classPair{kDefinition};

}  // namespace brindle
