#include <Brindle/Platform/NSStringFiles.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSData.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/FileContents.h"
#include "Platform/Foundation/Internal/FileErrors.h"
#include "Platform/Foundation/Internal/PathAccess.h"

namespace brindle {
namespace {

using detail::FileAccess;

bool write(const NSString& self, const NSString& path, bool atomically, NSStringEncoding encoding,
           NSError* error) {
  const auto name = detail::fileNameOf(path);
  if (!name) return detail::failForName(error, FileAccess::write, path);
  const NSData bytes = self->dataUsingEncoding(encoding);
  if (!bytes) return detail::failWithCode(error, NSFileWriteInapplicableStringEncodingError, path);
  const int code = internal::writeFile(*name, bytes->view(), atomically);
  return code == 0 || detail::fail(error, FileAccess::write, code, path);
}

id read(const Class& cls, const NSString& path, NSStringEncoding encoding, NSError* error) {
  const auto name = detail::fileNameOf(path);
  std::string bytes;
  if (!name) {
    detail::failForName(error, FileAccess::read, path);
    return nullptr;
  }
  if (const int code = internal::readFile(*name, bytes)) {
    detail::fail(error, FileAccess::read, code, path);
    return nullptr;
  }
  const id string = send<"initWithBytes:length:encoding:", id>(
      send<"alloc", id>(cls), static_cast<const void*>(bytes.data()), NSUInteger{bytes.size()},
      encoding);
  if (!string) detail::failWithCode(error, NSFileReadInapplicableStringEncodingError, path);
  return string;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"stringWithContentsOfFile:encoding:error:">(
        [](const Class& self, const NSString& path, NSStringEncoding encoding, NSError* error) {
          return read(self, path, encoding, error);
        }),
    method<"writeToFile:atomically:encoding:error:">(
        [](const NSString& self, const NSString& path, bool atomically, NSStringEncoding encoding,
           NSError* error) { return write(self, path, atomically, encoding, error); }),
    method<"writeToURL:atomically:encoding:error:">([](const NSString& self, const NSURL& url,
                                                       bool atomically, NSStringEncoding encoding,
                                                       NSError* error) {
      const NSString path = url->isFileURL() ? url->path() : nullptr;
      return write(self, path, atomically, encoding, error);
    }),
};

}  // namespace

constinit const CategoryDefinition detail::kNSStringFiles{
    .name = "NSStringFiles", .cls = &NSString::classPair.cls, .methods = kMethods};

}  // namespace brindle
