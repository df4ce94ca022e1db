// What the tests of files share: a folder of their own, and what is in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace brindle {

/// A new folder that goes at the end with all that is in it.
class TestFolder {
 public:
  TestFolder() {
    std::string name = std::filesystem::temp_directory_path() / "brindle-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    path_ = std::filesystem::canonical(name);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  ~TestFolder() {
    std::error_code ignored;
    for (std::filesystem::recursive_directory_iterator item(path_, ignored), end; item != end;
         item.increment(ignored)) {
      if (item->is_directory(ignored) && !item->is_symlink(ignored)) {
        std::filesystem::permissions(item->path(), std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::add, ignored);
      }
    }
    std::filesystem::remove_all(path_, ignored);
  }

  [[nodiscard]] const std::string& path() const { return path_; }
  /// The path of something in the folder.
  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

  /// Makes a file, and answers its path.
  std::string file(const std::string& name, const std::string& contents = "") const {
    std::ofstream(*this / name, std::ios::binary) << contents;
    return *this / name;
  }
  /// Makes a folder.
  std::string folder(const std::string& name) const {
    std::filesystem::create_directories(*this / name);
    return *this / name;
  }
  /// Makes a link.
  std::string link(const std::string& name, const std::string& destination) const {
    std::filesystem::create_symlink(destination, *this / name);
    return *this / name;
  }
  /// What is in a file of the folder; "(none)" when there is none.
  [[nodiscard]] std::string contents(const std::string& name) const {
    std::ifstream stream(*this / name, std::ios::binary);
    if (!stream) return "(none)";
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::string path_;
};

/// Sets a variable of the environment for a while; without a value it is unset.
class TestVariable {
 public:
  TestVariable(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    set(value);
  }
  TestVariable(const TestVariable&) = delete;
  TestVariable& operator=(const TestVariable&) = delete;
  ~TestVariable() { set(old_ ? old_->c_str() : nullptr); }

 private:
  void set(const char* value) const {
    if (value == nullptr) {
      ::unsetenv(name_);
    } else {
      ::setenv(name_, value, 1);
    }
  }

  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace brindle
