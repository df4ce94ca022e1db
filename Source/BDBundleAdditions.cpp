#include <Brindle/BDBundleAdditions.h>

#include <atomic>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSPathUtilities.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

// --- The search
// ------------------------------------------------------------------------------------

/// A bundle on the way through the folders.
struct Visit {
  NSBundle bundle;
  std::string realPath;
  std::shared_ptr<const Visit> from;  // the bundle that it lies in; null for the main bundle
};
using Visits = std::deque<std::shared_ptr<const Visit>>;

// Empty when nothing is there.
std::string realPathOf(const NSString& path) {
  const std::unique_ptr<char, void (*)(void*)> real(
      ::realpath(fileSystemRepresentation(path), nullptr), &std::free);
  return real ? real.get() : "";
}

// Whether a folder is one that the way to it has come through: its contents would be searched
// again and again.
bool isOnTheWay(const Visit* way, const std::string& realPath) {
  while (way != nullptr && way->realPath != realPath) way = way->from.get();
  return way != nullptr;
}

void appendBundlesIn(const NSString& folder, const std::shared_ptr<const Visit>& from,
                     Visits& visits) {
  if (!folder) return;
  const NSArray names = NSFileManager::defaultManager()->contentsOfDirectoryAtPath(folder, nullptr);
  for (const id& entry : names) {
    const NSString path = stringByAppendingPathComponent(folder, uncheckedCast<NSString>(entry));
    const NSBundle bundle = NSBundle::bundleWithPath(path);
    if (!bundle) continue;
    std::string realPath = realPathOf(path);
    if (isOnTheWay(from.get(), realPath)) continue;
    visits.push_back(std::make_shared<const Visit>(Visit{bundle, std::move(realPath), from}));
  }
}

/// Identifiers and bundles: the main bundle, its frameworks and plug-ins, theirs, and so on, level
/// by level.
NSMutableDictionary findBundles() {
  const NSMutableDictionary bundles = NSMutableDictionary::dictionary();
  const NSBundle main = NSBundle::mainBundle();
  Visits visits{
      std::make_shared<const Visit>(Visit{main, realPathOf(main->bundlePath()), nullptr})};
  while (!visits.empty()) {
    const AutoreleasePool pool;
    const std::shared_ptr<const Visit> visit = visits.front();
    visits.pop_front();
    const NSBundle& bundle = visit->bundle;
    appendBundlesIn(bundle->privateFrameworksPath(), visit, visits);
    appendBundlesIn(alternativePrivateFrameworksPath(bundle), visit, visits);
    appendBundlesIn(bundle->builtInPlugInsPath(), visit, visits);
    const id identifier = bundle->objectForInfoDictionaryKey(kCFBundleIdentifierKey);
    if (identifier) bundles->setObject(bundle, identifier);
  }
  return bundles;
}

// Made once and kept. Whoever reads it holds no lock, so one that another thread replaces stays.
std::atomic<const NSDictionary*> foundBundles;

NSDictionary bundlesFoundBy(const Class& cls) {
  const NSDictionary* found = foundBundles.load(std::memory_order_acquire);
  if (found != nullptr) return *found;
  const Synchronized inside(cls);
  found = foundBundles.load(std::memory_order_acquire);
  if (found == nullptr) {
    found = new NSDictionary(findBundles());
    foundBundles.store(found, std::memory_order_release);
  }
  return *found;
}

NSBundle findBundle(const Class& cls, const NSString& identifier, bool* loaded) {
  const NSDictionary found = bundlesFoundBy(cls);
  NSBundle bundle = NSBundle::bundleWithIdentifier(identifier);
  const bool isLoaded = static_cast<bool>(bundle);
  if (!bundle && identifier) bundle = uncheckedCast<NSBundle>(found->objectForKey(identifier));
  if (bundle && loaded != nullptr) *loaded = isLoaded;
  return bundle;
}

// --- Names and folders
// -----------------------------------------------------------------------------

NSString nameOf(const NSBundle& self) {
  for (const NSString& key :
       {"CFBundleDisplayName"_ns, "CFBundleName"_ns, "CFBundleExecutable"_ns}) {
    NSString name = dynCast<NSString>(self->objectForInfoDictionaryKey(key));
    if (name) return name;
  }
  return nullptr;
}

NSString supportFolder(const NSBundle& self) {
  const NSArray folders =
      NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, true);
  const NSString own = name(self);
  if (folders->count() == 0 || !own) return nullptr;
  return stringByAppendingPathComponent(cast<NSString>(folders[0]), own);
}

NSString supportFolderThatExists(const NSBundle& self) {
  const NSString path = applicationSupportDirectory(self);
  if (path) {
    NSFileManager::defaultManager()->createDirectoryAtPath(path, true, nullptr, nullptr);
  }
  return path;
}

NSString frameworksBesideExecutable(const NSBundle& self) {
  if (!pathExtension(self->bundlePath())->isEqualToString("framework"_ns)) return nullptr;
  NSString executable = self->executablePath();
  if (!executable) return nullptr;
  const NSString folder = stringByDeletingLastPathComponent(executable);
  const NSString destination =
      NSFileManager::defaultManager()->destinationOfSymbolicLinkAtPath(executable, nullptr);
  // One link, not what that leads to.
  if (destination->hasPrefix("/"_ns))
    executable = destination;
  else if (destination)
    executable = stringByAppendingPathComponent(folder, destination);
  return stringByAppendingPathComponent(stringByDeletingLastPathComponent(executable),
                                        "Frameworks"_ns);
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"bundleWithIdentifier:loaded:">(
        [](const Class& self, const NSString& identifier, bool* loaded) {
          return findBundle(self, identifier, loaded);
        }),
    method<"name">([](const NSBundle& self) { return nameOf(self); }),
    method<"version">([](const NSBundle& self) {
      return self->objectForInfoDictionaryKey("CFBundleVersion"_ns);
    }),
    method<"applicationSupportDirectory">([](const NSBundle& self) { return supportFolder(self); }),
    method<"alternativePrivateFrameworksPath">(
        [](const NSBundle& self) { return frameworksBesideExecutable(self); }),
};

constexpr MethodDefinition kPersonalMethods[] = {
    classMethod<"frameworkBundleWithIdentifier:">(
        [](const ClassOf<NSBundle>& self, const NSString& identifier) {
          return bundleWithIdentifier(self, identifier, nullptr);
        }),
    method<"applicationSupportDirectoryEnsuringExistence">(
        [](const NSBundle& self) { return supportFolderThatExists(self); }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDBundleAdditions{
    .name = "BDBundleAdditions", .cls = &NSBundle::classPair.cls, .methods = kMethods};
constinit const CategoryDefinition internal::kBDBundleAdditionsPersonal{
    .name = "BDBundleAdditionsPersonal",
    .cls = &NSBundle::classPair.cls,
    .methods = kPersonalMethods};

}  // namespace brindle
