// Finding bundles by their identifiers, loaded or not, and what a bundle is called.
//
//   bool loaded = false;
//   const NSBundle help = bundleWithIdentifier(NSBundle::class_(), "org.example.Help"_ns, &loaded);
//   if (help && !loaded) help->load();
//   const NSString drafts = applicationSupportDirectory(NSBundle::mainBundle());
#pragma once

#include <Brindle/BDLibrary.h>
#include <Brindle/Platform/NSBundle.h>

namespace brindle {

// --- Identifiers ---------------------------------------------------------------------------------

/// The bundle with that identifier: one whose code is loaded, otherwise one that lies in the main
/// bundle, in its frameworks and plug-ins or in theirs, to any depth. `*loaded` says which of the
/// two it was; it stays as it was when there is none. It may be null.
///
/// The folders are searched once, at the first call in the process, level by level; of several
/// bundles with one identifier the last found counts. What lies there later is found only once its
/// code is loaded. A folder that is reached from within itself, through a link, is not searched
/// again there. Any thread.
inline NSBundle bundleWithIdentifier(const ClassOf<NSBundle>& cls, const NSString& identifier,
                                     bool* loaded) {
  return send<"bundleWithIdentifier:loaded:", NSBundle>(cls, identifier, loaded);
}

/// The same for those who do not ask whether it is loaded.
inline NSBundle frameworkBundleWithIdentifier(const ClassOf<NSBundle>& cls,
                                              const NSString& identifier) {
  return send<"frameworkBundleWithIdentifier:", NSBundle>(cls, identifier);
}

// --- What a bundle is called
// -----------------------------------------------------------------------

/// For people, in the user's language: CFBundleDisplayName, otherwise CFBundleName, otherwise
/// CFBundleExecutable. Nil when none of them is given.
inline NSString name(const NSBundle& bundle) { return send<"name", NSString>(bundle); }

/// The value of CFBundleVersion, which ought to be a string; nil when it is not given.
inline id version(const NSBundle& bundle) { return send<"version", id>(bundle); }

// --- Folders
// ---------------------------------------------------------------------------------------

/// Where the bundle's own files belong: the folder of its name among the user's for application
/// support. Nil for a bundle without a name. It need not exist.
inline NSString applicationSupportDirectory(const NSBundle& bundle) {
  return send<"applicationSupportDirectory", NSString>(bundle);
}

/// The same, and it is made when it is not there; the path is answered also when that fails.
inline NSString applicationSupportDirectoryEnsuringExistence(const NSBundle& bundle) {
  return send<"applicationSupportDirectoryEnsuringExistence", NSString>(bundle);
}

/// Of a framework, the folder "Frameworks" beside its executable, there or not; where that is a
/// link, beside what the link names. So with versions it is the one of the current version. Nil for
/// other bundles, and without an executable.
inline NSString alternativePrivateFrameworksPath(const NSBundle& bundle) {
  return send<"alternativePrivateFrameworksPath", NSString>(bundle);
}

}  // namespace brindle
