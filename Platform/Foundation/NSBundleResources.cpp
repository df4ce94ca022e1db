// What lies in a bundle: files and words, in the user's languages.
#include <algorithm>
#include <set>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSBundle.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/BundleAccess.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/Languages.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle {
namespace {

using detail::bundleFields;
using Paths = std::vector<std::string>;

std::string folderOfTranslation(const NSBundle& bundle, const std::string& name) {
  return internal::joined(bundleFields(bundle).layout.resources, name + ".lproj");
}

// Where to look: in all translations, or in one.
Paths foldersFor(const NSBundle& self, const NSString& folder, const NSString& localization) {
  Paths folders;
  if (!localization) {
    folders = detail::resourceFoldersOf(self);
  } else {
    folders.push_back(bundleFields(self).layout.resources);
    const std::string wanted = internal::canonicalLanguage(detail::bytesOfPath(localization));
    for (const std::string& name : detail::localizationsOf(self)) {
      if (internal::canonicalLanguage(name) == wanted) {
        folders.push_back(folderOfTranslation(self, name));
      }
    }
  }
  const std::string inner = detail::bytesOfPath(folder);
  if (inner.empty()) return folders;
  for (std::string& path : folders) path = internal::joined(path, inner);
  return folders;
}

bool isThere(const std::string& path) { return internal::isFile(path) || internal::isFolder(path); }

// A type with or without its point.
std::string typeOf(const NSString& type) {
  std::string bytes = detail::bytesOfPath(type);
  if (bytes.starts_with('.')) bytes.erase(0, 1);
  return bytes;
}

Paths allOfType(const Paths& folders, const std::string& type) {
  Paths found;
  std::set<std::string> seen;
  for (const std::string& folder : folders) {
    for (const std::string& name : internal::namesIn(folder)) {
      const std::string_view extension = internal::extensionOf(name);
      if (type.empty() ? extension == "lproj" : extension != type) continue;
      if (seen.insert(name).second) found.push_back(internal::joined(folder, name));
    }
  }
  return found;
}

NSString pathForResource(const NSBundle& self, const NSString& name, const NSString& type,
                         const NSString& folder, const NSString& localization) {
  const Paths folders = foldersFor(self, folder, localization);
  const std::string extension = typeOf(type);
  std::string file = detail::bytesOfPath(name);
  if (file.empty()) {
    if (extension.empty()) return nullptr;
    const Paths all = allOfType(folders, extension);
    return all.empty() ? NSString() : detail::pathString(all.front());
  }
  if (!extension.empty()) file += "." + extension;
  for (const std::string& place : folders) {
    const std::string path = internal::joined(place, file);
    if (isThere(path)) return detail::pathString(path);
  }
  return nullptr;
}

NSArray pathsOfType(const NSBundle& self, const NSString& type, const NSString& folder,
                    const NSString& localization) {
  std::vector<id> paths;
  for (const std::string& path : allOfType(foldersFor(self, folder, localization), typeOf(type))) {
    paths.emplace_back(detail::pathString(path));
  }
  return detail::makeArray(std::move(paths));
}

// Immutable strings are lent by their owner for good.
NSString kept(const NSString& string) {
  return detail::isImmutableLibraryString(string.record()) ? string : NSString(string->copy());
}

NSString localizedString(const NSBundle& self, const NSString& key, const NSString& value,
                         const NSString& table) {
  if (!key) return value ? kept(value) : ""_ns;
  const NSString* word = detail::stringsOf(self).table(table).find(key);
  if (word != nullptr) return *word;
  return kept(detail::StringText(value).view().empty() ? key : value);
}

constexpr MethodDefinition kMethods[] = {
    method<"localizedStringForKey:value:table:">(
        [](const NSBundle& self, const NSString& key, const NSString& value,
           const NSString& table) { return localizedString(self, key, value, table); }),
    method<"pathForResource:ofType:">(
        [](const NSBundle& self, const NSString& name, const NSString& type) {
          return pathForResource(self, name, type, nullptr, nullptr);
        }),
    method<"pathForResource:ofType:inDirectory:">(
        [](const NSBundle& self, const NSString& name, const NSString& type,
           const NSString& folder) { return pathForResource(self, name, type, folder, nullptr); }),
    method<"pathForResource:ofType:inDirectory:forLocalization:">(
        [](const NSBundle& self, const NSString& name, const NSString& type, const NSString& folder,
           const NSString& localization) {
          return pathForResource(self, name, type, folder, localization);
        }),
    method<"pathsForResourcesOfType:inDirectory:">(
        [](const NSBundle& self, const NSString& type, const NSString& folder) {
          return pathsOfType(self, type, folder, nullptr);
        }),
    method<"pathsForResourcesOfType:inDirectory:forLocalization:">(
        [](const NSBundle& self, const NSString& type, const NSString& folder,
           const NSString& localization) { return pathsOfType(self, type, folder, localization); }),
};

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSBundleResources{
    .name = "NSBundleResources", .cls = &NSBundle::classPair.cls, .methods = kMethods};

Paths resourceFoldersOf(const NSBundle& bundle) {
  const Paths& all = localizationsOf(bundle);
  Paths names = preferredLocalizationsOf(bundle);
  for (const std::size_t index :
       internal::translationsFor(std::string(bundle->developmentLocalization()), all)) {
    names.push_back(all[index]);
  }
  if (std::find(all.begin(), all.end(), "Base") != all.end()) names.emplace_back("Base");
  Paths folders{bundleFields(bundle).layout.resources};
  for (const std::string& name : names) {
    std::string folder = folderOfTranslation(bundle, name);
    if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
      folders.push_back(std::move(folder));
    }
  }
  return folders;
}

}  // namespace detail
}  // namespace brindle
