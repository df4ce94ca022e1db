#include <Brindle/Platform/NSPathUtilities.h>

#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSData.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/DataStorage.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Foundation/Internal/PathResolution.h"
#include "Platform/Foundation/Internal/PathText.h"
#include "Platform/Foundation/Internal/UserFolders.h"

namespace brindle {
namespace {

using detail::makeString;
using detail::StringText;
using internal::TextView;

// What an operation on bytes makes of the path; a copy of the path when no file has such a name.
NSString converted(const NSString& self, std::string (*operation)(const std::string&)) {
  const auto name = detail::fileNameOf(self);
  return name ? detail::pathString(operation(*name)) : self->copy();
}

const char* representation(const NSString& self, SEL selector) {
  auto name = detail::fileNameOf(self);
  if (!name) {
    detail::raiseIn("NSInvalidArgumentException", self, selector,
                    "no file has a path that is empty or has a zero character");
  }
  const NSData holder = detail::makeData(*std::move(name)).autorelease();
  return static_cast<const char*>(holder->bytes());
}

NSString joined(const NSArray& components) {
  const detail::ArrayItems items(components);
  std::vector<internal::Text> texts;
  for (const id& item : items) texts.emplace_back(StringText(cast<NSString>(item)).view());
  const std::vector<TextView> views(texts.begin(), texts.end());
  return makeString(internal::pathFromComponents(views));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"pathWithComponents:">(
        [](const Class& self, Cmd cmd, const NSArray& components) -> NSString {
          detail::requireArgument(self, cmd.selector, components);
          return joined(components);
        }),
    method<"lastPathComponent">([](const NSString& self) {
      const StringText path(self);
      return makeString(internal::lastPathComponent(path));
    }),
    method<"stringByDeletingLastPathComponent">([](const NSString& self) {
      return makeString(internal::withoutLastPathComponent(StringText(self)));
    }),
    method<"stringByAppendingPathComponent:">(
        [](const NSString& self, Cmd cmd, const NSString& component) {
          detail::requireArgument(self, cmd.selector, component);
          return makeString(internal::joinPath(StringText(self), StringText(component)));
        }),
    method<"pathExtension">([](const NSString& self) {
      const StringText path(self);
      return makeString(internal::pathExtension(path));
    }),
    method<"stringByDeletingPathExtension">([](const NSString& self) {
      return makeString(internal::withoutPathExtension(StringText(self)));
    }),
    method<"stringByAppendingPathExtension:">(
        [](const NSString& self, Cmd cmd, const NSString& extension) {
          detail::requireArgument(self, cmd.selector, extension);
          return makeString(internal::addPathExtension(StringText(self), StringText(extension)));
        }),
    method<"pathComponents">([](const NSString& self) {
      const StringText path(self);
      std::vector<id> components;
      for (const TextView component : internal::pathComponents(path)) {
        components.emplace_back(makeString(component));
      }
      return NSArray::arrayWithObjects(components.data(), components.size());
    }),
    method<"isAbsolutePath">([](const NSString& self) {
      const StringText path(self);
      return internal::isRooted(path) || (!path.view().empty() && path.view()[0] == u'~');
    }),
    method<"stringByExpandingTildeInPath">(
        [](const NSString& self) { return converted(self, &internal::expandTilde); }),
    method<"stringByAbbreviatingWithTildeInPath">(
        [](const NSString& self) { return converted(self, &internal::abbreviateWithTilde); }),
    method<"stringByStandardizingPath">(
        [](const NSString& self) { return converted(self, &internal::standardizePath); }),
    method<"stringByResolvingSymlinksInPath">([](const NSString& self) {
      return converted(self, [](const std::string& path) {
        return internal::resolveLinks(internal::expandTilde(path));
      });
    }),
    method<"fileSystemRepresentation">(
        [](const NSString& self, Cmd cmd) { return representation(self, cmd.selector); }),
};

}  // namespace

constinit const CategoryDefinition detail::kNSStringPaths{
    .name = "NSStringPathExtensions", .cls = &NSString::classPair.cls, .methods = kMethods};

NSArray NSSearchPathForDirectoriesInDomains(NSSearchPathDirectory directory,
                                            NSSearchPathDomainMask domains, bool expandTilde) {
  std::vector<id> folders;
  for (const std::string& folder : internal::foldersFor(static_cast<internal::FolderUse>(directory),
                                                        static_cast<std::uint32_t>(domains))) {
    folders.emplace_back(
        detail::pathString(expandTilde ? folder : internal::abbreviateWithTilde(folder)));
  }
  return NSArray::arrayWithObjects(folders.data(), folders.size());
}

NSString NSTemporaryDirectory() { return detail::pathString(internal::temporaryFolder()); }

NSString NSHomeDirectory() { return detail::pathString(internal::homeFolder()); }

NSString NSHomeDirectoryForUser(const NSString& name) {
  const auto account = detail::fileNameOf(name);
  const auto home = account ? internal::homeFolderOf(*account) : std::nullopt;
  return home ? detail::pathString(*home) : nullptr;
}

NSString NSUserName() { return detail::pathString(internal::userName()); }

}  // namespace brindle
