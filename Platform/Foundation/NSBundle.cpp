// The bundle itself: the one object for each path, its folders, its Info.plist, its languages. The
// rest of the class is in categories: NSBundleResources.cpp and NSBundleCode.cpp.
#include <Brindle/Platform/NSBundle.h>

#include <algorithm>
#include <shared_mutex>
#include <unordered_map>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/BundleAccess.h"
#include "Platform/Foundation/Internal/Languages.h"
#include "Platform/Foundation/Internal/LoadedImages.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Foundation/Internal/PreferredLanguages.h"
#include "Platform/Foundation/Internal/PropertyListObjects.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Runtime/Internal/Life.h"

namespace brindle {
namespace {

using detail::BundleFields;
using detail::bundleFields;
using internal::BundleLayout;

/// All bundles, for the life of the process.
struct Registry {
  std::shared_mutex mutex;
  std::unordered_map<std::string, NSBundle> byPath;
  std::vector<NSBundle> inOrder;
};
Registry& registry() {
  static Registry& registry = *new Registry;
  return registry;
}

NSBundle known(const std::string& path) {
  const std::shared_lock lock(registry().mutex);
  const auto found = registry().byPath.find(path);
  return found == registry().byPath.end() ? nullptr : found->second;
}

// The first bundle to come for a path stays.
NSBundle keep(const NSBundle& bundle, BundleLayout layout, std::string program) {
  BundleFields& fields = bundleFields(bundle);
  fields.path = detail::pathString(layout.path);
  fields.layout = std::move(layout);
  fields.program = std::move(program);
  const std::unique_lock lock(registry().mutex);
  const auto [place, isNew] = registry().byPath.emplace(fields.layout.path, bundle);
  if (isNew) {
    detail::makeImmortal(bundle.record());  // whoever asks for it counts nothing
    registry().inOrder.push_back(bundle);
  }
  return place->second;
}

NSBundle makeMainBundle() {
  const std::string program = internal::programPath();
  return keep(NSBundle::alloc()->init(), internal::layoutOfProgram(program), program);
}

// The bundle at a path; `fresh` makes the object for it when there is none.
template <class Fresh>
NSBundle bundleFor(const std::string& path, const Fresh& fresh) {
  detail::theMainBundle();  // it is the bundle at its path
  const NSBundle there = known(path);
  if (there) return there;
  if (!internal::isFolder(path)) return nullptr;
  return keep(fresh(), internal::layoutOf(path), "");
}

NSBundle initWithPath(const NSBundle& self, const NSString& path) {
  const std::string bytes = detail::bytesOfPath(path);
  if (bytes.empty()) return nullptr;
  return bundleFor(internal::absolutePath(bytes), [&self] { return self->init(); });
}

NSString folder(const NSBundle& self, std::string_view name) {
  return detail::pathString(internal::folderIn(bundleFields(self).layout, name));
}

NSString pathOrNil(const std::string& path) {
  return path.empty() ? NSString() : detail::pathString(path);
}

NSString auxiliaryExecutable(const NSBundle& self, const NSString& name) {
  const std::string bytes = detail::bytesOfPath(name);
  if (bytes.empty()) return nullptr;
  return pathOrNil(internal::executableIn(bundleFields(self).layout, bytes));
}

id infoValue(const NSBundle& self, const NSString& key) {
  if (!key) return nullptr;
  const NSString* localized = detail::stringsOf(self).table("InfoPlist"_ns).find(key);
  if (localized != nullptr) return *localized;
  return self->infoDictionary()->objectForKey(key);
}

NSArray arrayOf(const std::vector<std::string>& names) {
  std::vector<id> items;
  items.reserve(names.size());
  for (const std::string& name : names) items.emplace_back(detail::pathString(name));
  return detail::makeArray(std::move(items));
}

NSArray bundlesThat(bool areFrameworks) {
  std::vector<id> bundles;
  for (const NSBundle& bundle : detail::bundlesSoFar()) {
    if (detail::isFramework(bundle) == areFrameworks) bundles.emplace_back(bundle);
  }
  return detail::makeArray(std::move(bundles));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"mainBundle">([](const Class&) { return detail::theMainBundle(); }),
    classMethod<"bundleWithPath:">([](const Class& self, const NSString& path) -> NSBundle {
      const std::string bytes = detail::bytesOfPath(path);
      if (bytes.empty()) return nullptr;
      return bundleFor(internal::absolutePath(bytes),
                       [&self] { return send<"new", NSBundle>(self); });
    }),
    classMethod<"allBundles">([](const Class&) {
      detail::theMainBundle();
      return bundlesThat(false);
    }),
    classMethod<"allFrameworks">([](const Class&) {
      detail::makeLoadedBundles();
      return bundlesThat(true);
    }),
    method<"initWithPath:">(
        [](const NSBundle& self, const NSString& path) -> id { return initWithPath(self, path); }),

    method<"bundlePath">([](const NSBundle& self) { return bundleFields(self).path; }),
    method<"resourcePath">([](const NSBundle& self) {
      return detail::pathString(bundleFields(self).layout.resources);
    }),
    method<"executablePath">(
        [](const NSBundle& self) { return pathOrNil(detail::executableOf(self)); }),
    method<"privateFrameworksPath">(
        [](const NSBundle& self) { return folder(self, "Frameworks"); }),
    method<"sharedFrameworksPath">(
        [](const NSBundle& self) { return folder(self, "SharedFrameworks"); }),
    method<"sharedSupportPath">([](const NSBundle& self) { return folder(self, "SharedSupport"); }),
    method<"builtInPlugInsPath">([](const NSBundle& self) { return folder(self, "PlugIns"); }),
    method<"pathForAuxiliaryExecutable:">(
        [](const NSBundle& self, const NSString& name) { return auxiliaryExecutable(self, name); }),

    method<"bundleIdentifier">([](const NSBundle& self) {
      return dynCast<NSString>(self->infoDictionary()->objectForKey(kCFBundleIdentifierKey));
    }),
    method<"infoDictionary">([](const NSBundle& self) { return detail::infoOf(self); }),
    method<"objectForInfoDictionaryKey:">(
        [](const NSBundle& self, const NSString& key) { return infoValue(self, key); }),

    method<"localizations">(
        [](const NSBundle& self) { return arrayOf(detail::localizationsOf(self)); }),
    method<"preferredLocalizations">(
        [](const NSBundle& self) { return arrayOf(detail::preferredLocalizationsOf(self)); }),
    method<"developmentLocalization">([](const NSBundle& self) -> NSString {
      const NSString region = detail::infoString(self, "CFBundleDevelopmentRegion"_ns);
      return region ? region : "en"_ns;
    }),
    method<"description">([](const NSBundle& self) {
      return NSString::stringWithFormat("%s <%@> (%s)"_ns, class_getName(classOf(self)),
                                        self->bundlePath(),
                                        self->isLoaded() ? "loaded" : "not yet loaded");
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSBundle", .methods = kMethods, .fields = fieldsDefinition<BundleFields>()};

}  // namespace

constinit const NSString kCFBundleIdentifierKey = "CFBundleIdentifier"_ns;

constinit ClassPair<NSBundle> NSBundle::classPair{kDefinition};

namespace detail {

BundleFields& bundleFields(const NSBundle& bundle) { return fieldsOf<BundleFields>(bundle); }

std::string bytesOfPath(const NSString& path) { return fileNameOf(path).value_or(""); }

NSBundle bundleAt(const std::string& path) {
  return bundleFor(path, [] { return NSBundle::alloc()->init(); });
}

std::vector<NSBundle> bundlesSoFar() {
  const std::shared_lock lock(registry().mutex);
  return registry().inOrder;
}

NSBundle theMainBundle() {
  static const NSBundle& bundle = *new NSBundle(makeMainBundle());
  return bundle;
}

bool isFramework(const NSBundle& bundle) {
  return internal::extensionOf(bundleFields(bundle).layout.path) == "framework";
}

NSDictionary infoOf(const NSBundle& bundle) {
  BundleFields& fields = bundleFields(bundle);
  std::call_once(fields.infoRead, [&fields] {
    if (fields.layout.infoFile.empty()) return;
    fields.info = dynCast<NSDictionary>(
        objectOfPropertyList(internal::contentsOfFile(fields.layout.infoFile)));
  });
  return fields.info;
}

NSString infoString(const NSBundle& bundle, const NSString& key) {
  return dynCast<NSString>(infoOf(bundle)->objectForKey(key));
}

std::string executableOf(const NSBundle& bundle) {
  const BundleFields& fields = bundleFields(bundle);
  if (!fields.program.empty()) return fields.program;
  return internal::executableIn(fields.layout,
                                bytesOfPath(infoString(bundle, "CFBundleExecutable"_ns)));
}

const std::vector<std::string>& localizationsOf(const NSBundle& bundle) {
  BundleFields& fields = bundleFields(bundle);
  std::call_once(fields.localizationsRead, [&fields] {
    for (const std::string& name : internal::namesIn(fields.layout.resources)) {
      if (internal::extensionOf(name) != "lproj") continue;
      fields.localizations.emplace_back(internal::withoutExtension(name));
    }
    std::sort(fields.localizations.begin(), fields.localizations.end());
  });
  return fields.localizations;
}

std::vector<std::string> preferredLocalizationsOf(const NSBundle& bundle) {
  const std::vector<std::string>& all = localizationsOf(bundle);
  std::vector<std::size_t> chosen =
      internal::preferredTranslations(internal::preferredLanguages().names, all);
  if (chosen.empty()) {
    chosen = internal::translationsFor(std::string(bundle->developmentLocalization()), all);
  }
  std::vector<std::string> names;
  for (const std::size_t index : chosen) names.push_back(all[index]);
  // One that anybody can read is better than none; Base is for no language.
  for (auto name = all.begin(); names.empty() && name != all.end(); ++name) {
    if (*name != "Base") names.push_back(*name);
  }
  return names;
}

BundleStrings& stringsOf(const NSBundle& bundle) {
  BundleFields& fields = bundleFields(bundle);
  BundleStrings* strings = fields.strings.load(std::memory_order_acquire);
  if (strings != nullptr && strings->generation() == internal::languageGeneration()) {
    return *strings;
  }
  const unsigned long generation = internal::preferredLanguages().generation;
  // Words in no language come last: any translation is better.
  std::vector<std::string> folders = resourceFoldersOf(bundle);
  std::rotate(folders.begin(), folders.begin() + 1, folders.end());
  const std::lock_guard lock(fields.stringsMutex);
  strings = fields.strings.load();
  if (strings == nullptr || strings->generation() < generation) {
    strings = new BundleStrings(std::move(folders), generation, strings);
    fields.strings.store(strings, std::memory_order_release);
  }
  return *strings;
}

}  // namespace detail
}  // namespace brindle
