#include <Brindle/Platform/NSData.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSCopying.h>
#include <Brindle/Platform/NSMutableData.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/DataStorage.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using detail::bytesOf;

id makeOfClass(const Class& cls, const void* bytes, NSUInteger length) {
  return send<"initWithBytes:length:", id>(send<"alloc", id>(cls), bytes, length);
}

bool areEqual(const NSData& self, const NSData& other) {
  return self == other || (other && self->view() == other->view());
}

bool readFile(const std::string& path, std::string& bytes) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return false;
  char buffer[65536];
  ssize_t count = 0;
  for (;;) {
    count = ::read(file, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
  ::close(file);
  return count == 0;
}

bool writeAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool writeInPlace(const std::string& path, std::string_view bytes) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (file < 0) return false;
  const bool written = writeAll(file, bytes);
  return ::close(file) == 0 && written;
}

// A file beside the target that takes its place and its permissions.
bool writeAtomically(const std::string& path, std::string_view bytes) {
  std::string beside = path + ".XXXXXX";
  const int file = ::mkostemp(beside.data(), O_CLOEXEC);
  if (file < 0) return false;
  struct stat old {};
  mode_t mode = 0;
  if (::stat(path.c_str(), &old) == 0) {
    mode = old.st_mode & 07777U;
  } else {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    mode = 0666U & ~mask;
  }
  bool written = writeAll(file, bytes) && ::fchmod(file, mode) == 0 && ::fsync(file) == 0;
  written = ::close(file) == 0 && written;
  if (written && ::rename(beside.c_str(), path.c_str()) == 0) return true;
  ::unlink(beside.c_str());
  return false;
}

// "<0a0b0c0d 0e>": groups of four bytes.
NSString described(std::string_view bytes) {
  std::string text = "<";
  constexpr char kDigits[] = "0123456789abcdef";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0 && i % 4 == 0) text += ' ';
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 15U];
  }
  return text + ">";
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"data">([](const Class& self) { return makeOfClass(self, nullptr, 0); }),
    classMethod<"dataWithBytes:length:">(
        [](const Class& self, const void* bytes, NSUInteger length) {
          return makeOfClass(self, bytes, length);
        }),
    classMethod<"dataWithData:">([](const Class& self, const NSData& other) {
      return send<"initWithData:", id>(send<"alloc", id>(self), other);
    }),
    classMethod<"dataWithContentsOfFile:">([](const Class& self, const NSString& path) -> id {
      std::string bytes;
      if (!path || !readFile(std::string(path), bytes)) return nullptr;
      return makeOfClass(self, bytes.data(), bytes.size());
    }),
    method<"init">([](const NSData& self) -> id { return self->initWithBytes(nullptr, 0); }),
    method<"initWithBytes:length:">(
        [](const NSData& self, Cmd cmd, const void* bytes, NSUInteger length) -> id {
          if (bytes == nullptr && length > 0) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector, "no bytes");
          }
          bytesOf(self).assign(static_cast<const char*>(bytes), length);
          return self;
        }),
    method<"initWithData:">([](const NSData& self, const NSData& other) -> id {
      const std::string_view bytes = other->view();
      return self->initWithBytes(bytes.data(), bytes.size());
    }),
    method<"length">([](const NSData& self) -> NSUInteger { return bytesOf(self).size(); }),
    method<"bytes">([](const NSData& self) -> const void* { return bytesOf(self).data(); }),
    method<"getBytes:length:">([](const NSData& self, void* buffer, NSUInteger length) {
      const std::string_view bytes = self->view();
      std::copy_n(bytes.data(), std::min<std::size_t>(length, bytes.size()),
                  static_cast<char*>(buffer));
    }),
    method<"getBytes:range:">([](const NSData& self, Cmd cmd, void* buffer, NSRange range) {
      const std::string_view bytes = self->view();
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, bytes.size());
      std::copy_n(bytes.data() + range.location, range.length, static_cast<char*>(buffer));
    }),
    method<"subdataWithRange:">([](const NSData& self, Cmd cmd, NSRange range) {
      const std::string_view bytes = self->view();
      detail::requireRangeWithin(self, cmd.selector, range.location, range.length, bytes.size());
      return detail::makeData(std::string(bytes.substr(range.location, range.length)));
    }),
    method<"isEqual:">([](const NSData& self, const id& other) {
      return self == other || areEqual(self, dynCast<NSData>(other));
    }),
    method<"isEqualToData:">(
        [](const NSData& self, const NSData& other) { return areEqual(self, other); }),
    method<"hash">([](const NSData& self) -> NSUInteger {
      return std::hash<std::string_view>()(self->view());
    }),
    method<"writeToFile:atomically:">([](const NSData& self, const NSString& path,
                                         bool atomically) {
      if (!path) return false;
      const std::string name(path);
      return atomically ? writeAtomically(name, self->view()) : writeInPlace(name, self->view());
    }),
    method<"description">([](const NSData& self) { return described(self->view()); }),
    method<"copyWithZone:">([](const NSData& self, NSZone*) -> id { return self; }),
    method<"mutableCopyWithZone:">([](const NSData& self, NSZone*) -> id {
      const std::string_view bytes = self->view();
      return makeOfClass(NSMutableData::class_(), bytes.data(), bytes.size());
    }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSCopying, &kNSMutableCopying};

constexpr ClassDefinition kDefinition{.name = "NSData",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<std::string>()};

}  // namespace

constinit ClassPair<NSData> NSData::classPair{kDefinition};

namespace detail {

std::string& bytesOf(const NSData& data) { return fieldsOf<std::string>(data); }

NSData makeData(std::string bytes) {
  auto data = adopt<NSData>(createInstance(&NSData::classPair.cls, 0));
  bytesOf(data) = std::move(bytes);
  return data;
}

}  // namespace detail
}  // namespace brindle
