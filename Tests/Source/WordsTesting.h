// Words for the length of a scope: the library's own in one language, or a table of the test's.
#pragma once

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <utility>

#include <unistd.h>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {

/// A folder of its own, gone with the scope.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "brindle-words-XXXXXX";
    path_ = ::mkdtemp(name.data()) == nullptr ? std::string() : name;
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Until the end of the scope the bundle of every identifier is the one of a folder.
class OwnBundleScope {
 public:
  explicit OwnBundleScope(const std::filesystem::path& folder)
      : method_(class_getClassMethod(NSBundle::class_(), selector<"bundleWithIdentifier:">())) {
    shown() = NSBundle::bundleWithPath(NSString(folder.string()));
    auto answer = implementation([](const Class&, const NSString&) -> NSBundle { return shown(); });
    previous_ = method_setImplementation(method_, answer.implementation);
  }
  ~OwnBundleScope() {
    method_setImplementation(method_, previous_);
    shown() = nullptr;
  }
  OwnBundleScope(const OwnBundleScope&) = delete;
  OwnBundleScope& operator=(const OwnBundleScope&) = delete;

 private:
  static NSBundle& shown() {
    static auto& bundle = *new NSBundle();
    return bundle;
  }

  Method method_;
  IMP previous_;
};

/// The user reads this language until the end of the scope: `const Language polish("pl");`
class Language {
 public:
  explicit Language(const char* name) { NSLocale::setPreferredLanguages({NSString(name)}); }
  ~Language() { NSLocale::setPreferredLanguages(nullptr); }
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;
};

/// Words of the test's own: `const OwnWords words({{"ago", "ere now"}});`
class OwnWords {
 public:
  OwnWords(std::initializer_list<std::pair<const char*, const char*>> words)
      : bundle_(write(folder_.path(), words)) {}

 private:
  static const std::filesystem::path& write(
      const std::filesystem::path& folder,
      std::initializer_list<std::pair<const char*, const char*>> words) {
    std::ofstream table(folder / "Localizable.strings");
    for (const auto& [key, word] : words) table << '"' << key << "\" = \"" << word << "\";\n";
    return folder;
  }

  TemporaryFolder folder_;
  OwnBundleScope bundle_;
};

}  // namespace brindle
