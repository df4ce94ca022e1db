// The code of bundles: which of them are loaded, what identifiers and classes they have.
#include <dlfcn.h>

#include <atomic>
#include <shared_mutex>
#include <unordered_map>
#include <unordered_set>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/PlainBundle.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/BundleAccess.h"
#include "Platform/Foundation/Internal/BundleStrings.h"
#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/LoadedImages.h"
#include "Platform/Foundation/Internal/PathAccess.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle {
namespace {

using detail::bundleFields;

struct TextHash {
  std::size_t operator()(const internal::Text& text) const noexcept { return text.view().hash(); }
};

/// An identifier whose bundle is settled: its code is never unloaded, so no other comes before it.
struct Settled {
  NSString identifier;
  internal::TextView text;  // the identifier's
  NSBundle bundle;
  const Settled* next;
};

/// What is known about the code in the process. Each image is looked at once.
struct LoadedCode {
  std::atomic<const Settled*> settled{nullptr};  // read without the lock; only grows
  std::shared_mutex mutex;
  unsigned long long generation = 0;                  // of the images that were looked at
  std::unordered_map<std::string, NSBundle> byImage;  // by the loader's path; nil for no bundle
  std::unordered_map<internal::Text, NSBundle, TextHash> byIdentifier;
  std::unordered_set<std::string> files;  // real paths
  std::unordered_map<const ClassRecord*, NSBundle> byClass;
};
LoadedCode& loadedCode() {
  static LoadedCode& code = *new LoadedCode;
  return code;
}

// The bundle that an image is the executable of, as far as its place tells; nil when there is none.
NSBundle bundleOfImage(const std::string& image) {
  const std::string real = internal::realPath(image);
  for (const std::string& place : {image, real}) {
    if (place.empty()) continue;
    for (const std::string& folder : internal::foldersAroundCode(place)) {
      const NSBundle bundle = detail::bundleAt(folder);
      if (!bundle) continue;
      const std::string executable = detail::executableOf(bundle);
      if (!executable.empty() && internal::realPath(executable) == real) return bundle;
    }
    if (real == image) break;
  }
  return nullptr;
}

const Settled* findSettled(const LoadedCode& code, const NSString& identifier) {
  const detail::StringText text(identifier);
  const Settled* settled = code.settled.load(std::memory_order_acquire);
  while (settled != nullptr && settled->text != text) settled = settled->next;
  return settled;
}

// The first for an identifier counts.
void note(LoadedCode& code, const NSBundle& bundle, bool stays) {
  const NSString identifier = detail::infoString(bundle, kCFBundleIdentifierKey);
  if (!identifier) return;
  const bool isFirst =
      code.byIdentifier.emplace(internal::Text(detail::StringText(identifier)), bundle).second;
  if (!isFirst || !stays || findSettled(code, identifier) != nullptr) return;
  const NSString kept = detail::makeString(detail::StringText(identifier));
  code.settled.store(new Settled{kept, detail::textIn(detail::contentsOf(kept.record())), bundle,
                                 code.settled.load()},
                     std::memory_order_release);
}

void lookAtImages(LoadedCode& code) {
  // Asked before looking: what is loaded meanwhile is looked at the next time.
  const unsigned long long generation = internal::imageGeneration();
  const std::unique_lock lock(code.mutex);
  if (code.generation == generation) return;
  const NSBundle main = detail::theMainBundle();
  code.byIdentifier.clear();
  code.files.clear();
  note(code, main, true);
  for (const auto& [image, stays] : internal::loadedImages()) {
    auto known = code.byImage.find(image);
    if (known == code.byImage.end()) {
      known = code.byImage.emplace(image, bundleOfImage(image)).first;
    }
    code.files.insert(internal::realPath(image));
    if (known->second) note(code, known->second, stays);
  }
  code.generation = generation;
}

// The knowledge, brought up to date, while `lock` is held.
LoadedCode& currentCode(std::shared_lock<std::shared_mutex>& lock) {
  LoadedCode& code = loadedCode();
  lock = std::shared_lock(code.mutex);
  if (code.generation == internal::imageGeneration()) return code;
  lock.unlock();
  lookAtImages(code);
  lock.lock();
  return code;
}

NSBundle bundleWithIdentifier(const NSString& identifier) {
  if (!identifier) return nullptr;
  // The loader's lock and ours are spared where nothing can have changed.
  const Settled* settled = findSettled(loadedCode(), identifier);
  if (settled != nullptr) return settled->bundle;
  const internal::Text text{detail::StringText(identifier)};
  std::shared_lock<std::shared_mutex> lock;
  const LoadedCode& code = currentCode(lock);
  const auto found = code.byIdentifier.find(text);
  return found == code.byIdentifier.end() ? nullptr : found->second;
}

NSBundle bundleForClass(const Class& cls) {
  LoadedCode& code = loadedCode();
  {
    const std::shared_lock lock(code.mutex);
    const auto known = code.byClass.find(cls.record());
    if (known != code.byClass.end()) return known->second;
  }
  NSBundle bundle;
  // The class itself may lie in the program, where the linker put a copy of it; its definition does
  // not. A class made at run time has none.
  const void* definition = cls ? cls.record()->definition : nullptr;
  const std::string image = internal::imageOf(definition);
  if (!image.empty()) {
    std::shared_lock<std::shared_mutex> lock;
    const LoadedCode& current = currentCode(lock);
    const auto found = current.byImage.find(image);
    if (found != current.byImage.end()) bundle = found->second;
  }
  if (!bundle) bundle = detail::theMainBundle();
  const std::unique_lock lock(code.mutex);
  code.byClass.emplace(cls.record(), bundle);
  return bundle;
}

bool isLoaded(const NSBundle& self) {
  if (!bundleFields(self).program.empty()) return true;
  const std::string executable = internal::realPath(detail::executableOf(self));
  std::shared_lock<std::shared_mutex> lock;
  return !executable.empty() && currentCode(lock).files.count(executable) != 0;
}

bool fail(NSError* error, NSInteger code, const NSString& path, const std::string& text) {
  if (error == nullptr) return false;
  *error = NSError::errorWithDomain(
      NSCocoaErrorDomain, code,
      {{NSLocalizedDescriptionKey, NSString(text)}, {NSFilePathErrorKey, path}});
  return false;
}

bool load(const NSBundle& self, NSError* error) {
  if (self->isLoaded()) return true;
  const std::string executable = detail::executableOf(self);
  if (executable.empty()) {
    return fail(error, NSFileNoSuchFileError, self->bundlePath(),
                "the bundle " + std::string(self->bundlePath()) + " has no executable");
  }
  if (::dlopen(executable.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr) return true;
  const char* problem = ::dlerror();
  return fail(error, NSExecutableLoadError, detail::pathString(executable),
              problem == nullptr ? "the code cannot be loaded" : problem);
}

Class classNamed(const NSBundle& self, const NSString& name) {
  if (!name || !self->load()) return nullptr;
  const Class cls = objc_getClass(std::string(name).c_str());
  return cls && NSBundle::bundleForClass(cls) == self ? cls : nullptr;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"bundleWithIdentifier:">(
        [](const Class&, const NSString& identifier) { return bundleWithIdentifier(identifier); }),
    classMethod<"bundleForClass:">(
        [](const Class&, const Class& cls) { return bundleForClass(cls); }),
    method<"load">([](const NSBundle& self) { return self->loadAndReturnError(nullptr); }),
    method<"loadAndReturnError:">(
        [](const NSBundle& self, NSError* error) { return load(self, error); }),
    method<"isLoaded">([](const NSBundle& self) { return isLoaded(self); }),
    method<"classNamed:">(
        [](const NSBundle& self, const NSString& name) { return classNamed(self, name); }),
    method<"principalClass">([](const NSBundle& self) {
      return self->classNamed(
          dynCast<NSString>(self->infoDictionary()->objectForKey("NSPrincipalClass"_ns)));
    }),
};

}  // namespace

const NSBundle* settledBundle(const NSString& identifier) {
  const Settled* settled = identifier ? findSettled(loadedCode(), identifier) : nullptr;
  return settled != nullptr ? &settled->bundle : nullptr;
}

namespace detail {

constinit const CategoryDefinition kNSBundleCode{
    .name = "NSBundleCode", .cls = &NSBundle::classPair.cls, .methods = kMethods};

void makeLoadedBundles() {
  std::shared_lock<std::shared_mutex> lock;
  currentCode(lock);
}

}  // namespace detail
}  // namespace brindle
