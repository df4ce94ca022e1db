// A bundle: a folder with resources and code that belong together, such as an application, a
// framework or a plug-in, and an Info.plist that says what it is.
//
//   const NSBundle bundle = NSBundle::mainBundle();
//   label->setText(bundle->localizedStringForKey("disk full"_ns, nullptr, nullptr));
//   const NSString image = bundle->pathForResource("logo"_ns, "png"_ns);
//
// Any existing folder is a bundle. There is one object for each path, and it stays for the life of
// the process; so what it has read once (its Info.plist, its tables of words, which translations
// there are) is not read again. What is missing, broken or unreadable in a bundle is nil. Any
// thread. Documentation/Bundles.md tells the layouts and which translation is chosen.
#pragma once

#include <Brindle/Platform/FoundationErrors.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSDictionary.h>
#include <Brindle/Platform/NSError.h>
#include <Brindle/Platform/NSString.h>

namespace brindle {

extern "C" {
/// The key of a bundle's identifier in its Info.plist: "CFBundleIdentifier".
BRINDLE_PLATFORM_EXPORT extern const NSString kCFBundleIdentifierKey;
}

enum : NSInteger {
  /// The loader refuses the code: its text is the error's description.
  NSExecutableLoadError = 3587,
};

class NSBundle : public Interface<NSBundle, NSObject> {
 public:
  using Interface::Interface;
  BRINDLE_PLATFORM_EXPORT static ClassPair<NSBundle> classPair;

  // --- Bundles ---------------------------------------------------------------------------------

  /// The running program's: the application around its executable, or the folder that it lies in.
  static NSBundle mainBundle() { return send<"mainBundle", NSBundle>(class_()); }
  /// The bundle at the path of an existing folder; nil for anything else. A relative path starts at
  /// the current folder. Links in it stay, so two paths to one folder are two bundles.
  static NSBundle bundleWithPath(const NSString& path) {
    return send<"bundleWithPath:", NSBundle>(class_(), path);
  }
  /// The main bundle, or a bundle whose code is loaded, by the identifier in its Info.plist. Nil
  /// when there is none, also for bundles that were merely made. Of several the one that was loaded
  /// first.
  static NSBundle bundleWithIdentifier(const NSString& identifier) {
    return send<"bundleWithIdentifier:", NSBundle>(class_(), identifier);
  }
  /// The bundle whose code defines the class; the main bundle for classes made at run time, of the
  /// program, and of libraries that lie in no bundle.
  static NSBundle bundleForClass(const Class& cls) {
    return send<"bundleForClass:", NSBundle>(class_(), cls);
  }
  /// The main bundle and all that were made, but no frameworks.
  static NSArray allBundles() { return send<"allBundles", NSArray>(class_()); }
  /// The frameworks that were made or whose code is loaded.
  static NSArray allFrameworks() { return send<"allFrameworks", NSArray>(class_()); }

  /// As `bundleWithPath`: the object that there is for the path, the receiver only when there is
  /// none.
  NSBundle initWithPath(const NSString& path) const {
    return send<"initWithPath:", NSBundle>(*this, path);
  }

  // --- Where it is; a folder's path is answered whether or not the folder is there --------------

  NSString bundlePath() const { return send<"bundlePath", NSString>(*this); }
  NSString resourcePath() const { return send<"resourcePath", NSString>(*this); }
  /// The file that CFBundleExecutable names, or that is named after the bundle. Nil when it is not
  /// there. Of a framework with versions it is a link.
  NSString executablePath() const { return send<"executablePath", NSString>(*this); }
  NSString privateFrameworksPath() const { return send<"privateFrameworksPath", NSString>(*this); }
  NSString sharedFrameworksPath() const { return send<"sharedFrameworksPath", NSString>(*this); }
  NSString sharedSupportPath() const { return send<"sharedSupportPath", NSString>(*this); }
  NSString builtInPlugInsPath() const { return send<"builtInPlugInsPath", NSString>(*this); }
  /// Another program beside the bundle's executable; nil when it is not there.
  NSString pathForAuxiliaryExecutable(const NSString& name) const {
    return send<"pathForAuxiliaryExecutable:", NSString>(*this, name);
  }

  // --- What it is --------------------------------------------------------------------------------

  /// CFBundleIdentifier, a string.
  NSString bundleIdentifier() const { return send<"bundleIdentifier", NSString>(*this); }
  /// The Info.plist; nil without one, or when it is no dictionary.
  NSDictionary infoDictionary() const { return send<"infoDictionary", NSDictionary>(*this); }
  /// Its value for the key: the user's language's from the table InfoPlist where that has it.
  id objectForInfoDictionaryKey(const NSString& key) const {
    return send<"objectForInfoDictionaryKey:", id>(*this, key);
  }

  // --- Languages
  // -----------------------------------------------------------------------------------

  /// The translations that the bundle has, by the names of their folders, sorted.
  NSArray localizations() const { return send<"localizations", NSArray>(*this); }
  /// Those of them for the first language of the user's that there are any for, the best first;
  /// otherwise those for the development region; otherwise the first there is.
  NSArray preferredLocalizations() const { return send<"preferredLocalizations", NSArray>(*this); }
  /// CFBundleDevelopmentRegion; "en" when it is not given.
  NSString developmentLocalization() const {
    return send<"developmentLocalization", NSString>(*this);
  }
  /// The word for a key, from a table `name.strings` ("Localizable" for nil and ""). Where the
  /// tables do not have it: `value`, or the key itself when that is nil or empty. For a nil key
  /// `value`, or "".
  NSString localizedStringForKey(const NSString& key, const NSString& value,
                                 const NSString& table) const {
    return send<"localizedStringForKey:value:table:", NSString>(*this, key, value, table);
  }

  // --- Resources: first those of no language, then the translations in their order
  // -------------------

  /// The path of `name.type`, or of `name` when the type is nil or empty; nil when it is not there.
  /// For a nil or empty name the first of that type.
  NSString pathForResource(const NSString& name, const NSString& type) const {
    return send<"pathForResource:ofType:", NSString>(*this, name, type);
  }
  NSString pathForResource(const NSString& name, const NSString& type,
                           const NSString& folder) const {
    return send<"pathForResource:ofType:inDirectory:", NSString>(*this, name, type, folder);
  }
  /// Of one translation alone, by any name that its language has.
  NSString pathForResource(const NSString& name, const NSString& type, const NSString& folder,
                           const NSString& localization) const {
    return send<"pathForResource:ofType:inDirectory:forLocalization:", NSString>(
        *this, name, type, folder, localization);
  }
  /// All of that type, or all for a nil or empty one: of each name the first. Never nil.
  NSArray pathsForResourcesOfType(const NSString& type, const NSString& folder) const {
    return send<"pathsForResourcesOfType:inDirectory:", NSArray>(*this, type, folder);
  }
  NSArray pathsForResourcesOfType(const NSString& type, const NSString& folder,
                                  const NSString& localization) const {
    return send<"pathsForResourcesOfType:inDirectory:forLocalization:", NSArray>(
        *this, type, folder, localization);
  }

  // --- Code
  // ----------------------------------------------------------------------------------------

  /// Loads the executable into the process, where it stays. True when it is there already.
  bool load() const { return send<"load", bool>(*this); }
  /// When it fails, `*error` says why: NSCocoaErrorDomain with NSFileNoSuchFileError or
  /// NSExecutableLoadError.
  bool loadAndReturnError(NSError* error) const {
    return send<"loadAndReturnError:", bool>(*this, error);
  }
  /// Always true for the main bundle.
  bool isLoaded() const { return send<"isLoaded", bool>(*this); }
  /// The class of that name when the bundle's code, which is loaded, defines it.
  Class classNamed(const NSString& name) const { return send<"classNamed:", Class>(*this, name); }
  /// The class that NSPrincipalClass names; nil without one.
  Class principalClass() const { return send<"principalClass", Class>(*this); }
};

}  // namespace brindle
