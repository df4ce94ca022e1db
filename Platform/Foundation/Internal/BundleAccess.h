// The variables of a bundle, and how the parts of its class reach them.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSBundle.h>

#include "Platform/Foundation/Internal/BundleLayout.h"
#include "Platform/Foundation/Internal/BundleStrings.h"

namespace brindle::detail {

struct BundleFields {
  internal::BundleLayout layout;
  NSString path;
  std::string program;  // of the main bundle: its executable

  std::once_flag infoRead;
  NSDictionary info;

  std::once_flag localizationsRead;
  std::vector<std::string> localizations;

  std::mutex stringsMutex;  // while they are made
  std::atomic<BundleStrings*> strings{nullptr};
};
BundleFields& bundleFields(const NSBundle& bundle);

/// The bytes of a path; empty for what no file's name can be.
std::string bytesOfPath(const NSString& path);

/// The bundle at an absolute path, made when there is none yet; nil when that is no folder.
NSBundle bundleAt(const std::string& path);
/// All that were made so far, the main bundle first.
std::vector<NSBundle> bundlesSoFar();
NSBundle theMainBundle();
/// Makes the bundles whose code is loaded.
void makeLoadedBundles();
bool isFramework(const NSBundle& bundle);

/// What the methods answer, without asking a subclass.
NSDictionary infoOf(const NSBundle& bundle);
NSString infoString(const NSBundle& bundle, const NSString& key);
std::string executableOf(const NSBundle& bundle);

const std::vector<std::string>& localizationsOf(const NSBundle& bundle);
/// The names of the translations in the order of the user's languages.
std::vector<std::string> preferredLocalizationsOf(const NSBundle& bundle);
/// Where resources lie: first those of no language, then the preferred translations, those for the
/// development region, and Base. Each a folder's path.
std::vector<std::string> resourceFoldersOf(const NSBundle& bundle);
/// The bundle's words, for the present languages.
BundleStrings& stringsOf(const NSBundle& bundle);

}  // namespace brindle::detail
