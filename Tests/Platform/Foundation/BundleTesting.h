// Bundles made for a test, in a folder that goes with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSLocale.h>
#include <Brindle/Platform/NSString.h>
#include <gtest/gtest.h>

namespace brindle::testing_bundles {

class BundleTest : public ::testing::Test {
 protected:
  BundleTest() {
    std::string pattern = std::filesystem::temp_directory_path() / "brindle-bundles-XXXXXX";
    root_ = std::filesystem::canonical(::mkdtemp(pattern.data()));
    NSLocale::setPreferredLanguages({"de"_ns});
  }
  ~BundleTest() override {
    NSLocale::setPreferredLanguages(nullptr);
    std::error_code error;
    std::filesystem::remove_all(root_, error);
  }

  [[nodiscard]] std::string path(const std::string& name) const { return root_ / name; }
  /// The path without the test's own folder.
  [[nodiscard]] std::string inside(const NSString& path) const {
    if (!path) return "nil";
    const std::string whole(path);
    const std::string start = root_.string() + "/";
    return whole.starts_with(start) ? whole.substr(start.size()) : whole;
  }
  [[nodiscard]] std::string inside(const NSArray& paths) const {
    std::string result;
    for (const id& path : paths) {
      result += (result.empty() ? "" : " ") + inside(cast<NSString>(path));
    }
    return result;
  }

  void folder(const std::string& name) const { std::filesystem::create_directories(root_ / name); }
  void file(const std::string& name, const std::string& bytes = "") const {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name, std::ios::binary) << bytes;
  }
  void link(const std::string& name, const std::string& destination) const {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::filesystem::create_symlink(destination, root_ / name);
  }
  void info(const std::string& name, const std::map<std::string, std::string>& entries) const {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>";
    for (const auto& [key, value] : entries) {
      text += "<key>" + key + "</key><string>" + value + "</string>";
    }
    file(name, text + "</dict></plist>\n");
  }

 private:
  std::filesystem::path root_;
};

inline std::string text(const id& object) {
  return object ? std::string(object->description()) : "nil";
}
inline std::string words(const NSArray& array) {
  std::string result;
  for (const id& item : array) result += (result.empty() ? "" : " ") + text(item);
  return result;
}

}  // namespace brindle::testing_bundles
