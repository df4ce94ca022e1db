#include "Platform/Foundation/Internal/BundleLayout.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace brindle::internal {
namespace {

class BundleLayoutTest : public testing::Test {
 protected:
  BundleLayoutTest() {
    std::string pattern = std::filesystem::temp_directory_path() / "brindle-layout-XXXXXX";
    root_ = std::filesystem::canonical(::mkdtemp(pattern.data())).string() + "/";
  }
  ~BundleLayoutTest() override { std::filesystem::remove_all(root_); }

  [[nodiscard]] std::string path(const std::string& name) const { return root_ + name; }
  void file(const std::string& name, const std::string& bytes = "") const {
    std::filesystem::create_directories(parentOf(path(name)));
    std::ofstream(path(name)) << bytes;
  }
  [[nodiscard]] std::string inside(const std::string& whole) const {
    return whole.starts_with(root_) ? whole.substr(root_.size()) : whole;
  }

 private:
  std::string root_;
};

TEST_F(BundleLayoutTest, Tour) {
  file("A.app/Contents/Info.plist", "bytes");
  file("A.app/Contents/Linux/A");
  const BundleLayout layout = layoutOf(path("A.app"));
  EXPECT_EQ(inside(layout.resources), "A.app/Contents/Resources");
  EXPECT_EQ(inside(executableIn(layout, "")), "A.app/Contents/Linux/A");
  EXPECT_EQ(inside(folderIn(layout, "Frameworks")), "A.app/Contents/Frameworks");
  EXPECT_EQ(contentsOfFile(layout.infoFile), "bytes");
}

TEST_F(BundleLayoutTest, PathsAndNames) {
  EXPECT_EQ(absolutePath("/"), "/");
  EXPECT_EQ(absolutePath("//a/./b//"), "/a/b");
  EXPECT_EQ(absolutePath("/usr/../usr/bin/.."), "/usr");
  EXPECT_EQ(absolutePath("/no/such/.."), "/no/such/..");
  EXPECT_EQ(absolutePath("x"), joined(std::filesystem::current_path().string(), "x"));
  EXPECT_EQ(parentOf("/a/b"), "/a");
  EXPECT_EQ(parentOf("/a"), "/");
  EXPECT_EQ(parentOf("/"), "/");
  EXPECT_EQ(nameOf("/a/b"), "b");
  EXPECT_EQ(extensionOf("/a.b/c"), "");
  EXPECT_EQ(extensionOf("c.tar.gz"), "gz");
  EXPECT_EQ(extensionOf("/.profile"), "");
  EXPECT_EQ(withoutExtension("a.b"), "a");
  EXPECT_EQ(withoutExtension(".b"), ".b");
  EXPECT_EQ(joined("/", "a"), "/a");
}

TEST_F(BundleLayoutTest, WhatIsNotThere) {
  EXPECT_FALSE(isFolder(path("none")));
  EXPECT_FALSE(isFile(path("none")));
  EXPECT_EQ(realPath(path("none")), "");
  EXPECT_TRUE(namesIn(path("none")).empty());
  EXPECT_EQ(contentsOfFile(path("none")), "");
  EXPECT_EQ(contentsOfFile(path("")), "");
  const BundleLayout layout = layoutOf(path("none"));
  EXPECT_EQ(layout.infoFile, "");
  EXPECT_EQ(layout.resources, path("none"));
}

TEST_F(BundleLayoutTest, ProgramsInEveryLayout) {
  file("a/A.app/Contents/Info.plist");
  file("flat/Resources/Info.plist");
  file("prefix/bin/tool");
  file("prefix/share/tool/Info.plist");
  file("plain/bin/tool");
  const struct {
    const char* program;
    const char* path;
    const char* resources;
    const char* frameworks;
    const char* info;
  } kCases[] = {
      {"a/A.app/Contents/Linux/A", "a/A.app", "a/A.app/Contents/Resources",
       "a/A.app/Contents/Frameworks", "a/A.app/Contents/Info.plist"},
      {"a/A.app/Contents/A", "a/A.app", "a/A.app/Contents/Resources", "a/A.app/Contents/Frameworks",
       "a/A.app/Contents/Info.plist"},
      {"flat/tool", "flat", "flat/Resources", "flat/Frameworks", "flat/Resources/Info.plist"},
      {"prefix/bin/tool", "prefix/bin", "prefix/share/tool", "prefix/lib/tool/Frameworks",
       "prefix/share/tool/Info.plist"},
      {"prefix/bin/other", "prefix/bin", "prefix/bin", "prefix/bin/Frameworks", ""},
      {"plain/bin/tool", "plain/bin", "plain/bin", "plain/bin/Frameworks", ""},
  };
  for (const auto& row : kCases) {
    const BundleLayout layout = layoutOfProgram(path(row.program));
    EXPECT_EQ(inside(layout.path), row.path) << row.program;
    EXPECT_EQ(inside(layout.resources), row.resources) << row.program;
    EXPECT_EQ(inside(folderIn(layout, "Frameworks")), row.frameworks) << row.program;
    EXPECT_EQ(inside(layout.infoFile), row.info) << row.program;
  }
}

TEST_F(BundleLayoutTest, NamesOfExecutablesAreNamesOnly) {
  file("B.plugin/B");
  file("outside");
  const BundleLayout layout = layoutOf(path("B.plugin"));
  using namespace std::string_view_literals;
  for (const std::string_view name :
       {"../outside"sv, ".."sv, "."sv, "/etc/passwd"sv, "B\0x"sv, "none"sv}) {
    EXPECT_EQ(executableIn(layout, name), "") << name;
  }
  EXPECT_EQ(inside(executableIn(layout, "B")), "B.plugin/B");
}

TEST_F(BundleLayoutTest, FoldersAroundCode) {
  const auto around = [this](const std::string& image) {
    std::string result;
    for (const std::string& folder : foldersAroundCode(path(image))) {
      result += (result.empty() ? "" : " ") + inside(folder);
    }
    return result;
  };
  file("E.framework/E");
  file("D/Info.plist");
  EXPECT_EQ(around("A.app/Contents/Linux/A"), "A.app");
  EXPECT_EQ(around("A.framework/Versions/1/A"), "A.framework");
  EXPECT_EQ(around("A.app/Contents/A"), "A.app");
  EXPECT_EQ(around("P.plugin/P"), "P.plugin");
  EXPECT_EQ(around("D/D"), "D");
  EXPECT_EQ(around("libE.so.1"), "E.framework");
  EXPECT_EQ(around("lib/libF.so"), "");
}

}  // namespace
}  // namespace brindle::internal
