#include <Brindle/BDUserDefaultsAdditions.h>

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <new>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

constexpr std::size_t kFirstSize = 1024;
constexpr std::size_t kLastSize = std::size_t{64} << 20U;

NSString homeOfUser() {
  for (std::size_t size = kFirstSize; size <= kLastSize; size *= 2) {
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[size]);
    if (!buffer) return nullptr;
    passwd record{};
    passwd* found = nullptr;
    // The code is what it answers; errno is not touched.
    const int code = ::getpwuid_r(::getuid(), &record, buffer.get(), size, &found);
    if (code == ERANGE) continue;
    if (code != 0 || found == nullptr || found->pw_dir == nullptr) return nullptr;
    return NSFileManager::defaultManager()->stringWithFileSystemRepresentation(
        found->pw_dir, std::strlen(found->pw_dir));
  }
  return nullptr;
}

constexpr MethodDefinition kDefaultsMethods[] = {
    method<"userHomePath">([](const NSUserDefaults&) { return homeOfUser(); }),
};

constexpr MethodDefinition kStringMethods[] = {
    method<"stringByExpandingTildeInPathUsingUserHomePath">([](const NSString& self) -> NSString {
      if (self->length() == 0 || self->characterAtIndex(0) != u'~') return self;
      return stringByAppendingPathComponent(userHomePath(NSUserDefaults::standardUserDefaults()),
                                            self->substringFromIndex(1));
    }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDUserDefaultsAdditions{
    .name = "BDUserDefaultsAdditions",
    .cls = &NSUserDefaults::classPair.cls,
    .methods = kDefaultsMethods};
constinit const CategoryDefinition internal::kBDUserDefaultsAdditionsOfStrings{
    .name = "BDUserDefaultsAdditions", .cls = &NSString::classPair.cls, .methods = kStringMethods};

}  // namespace brindle
