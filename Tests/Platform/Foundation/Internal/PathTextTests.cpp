#include "Platform/Foundation/Internal/PathText.h"

#include <gtest/gtest.h>

#include <string>

namespace brindle::internal {
namespace {

TextView text(std::string_view bytes) { return TextView::latin1(bytes); }
std::string bytes(TextView text) { return std::string(text.bytes()); }

TEST(PathTextTest, Tour) {
  const TextView path = text("/home//ann/.x.tar.gz/");
  EXPECT_TRUE(isRooted(path));
  EXPECT_EQ(bytes(tidyPath(path)), "/home/ann/.x.tar.gz");
  EXPECT_EQ(bytes(lastPathComponent(path)), ".x.tar.gz");
  EXPECT_EQ(bytes(withoutLastPathComponent(path)), "/home/ann");
  EXPECT_EQ(bytes(pathExtension(path)), "gz");
  EXPECT_EQ(bytes(withoutPathExtension(path)), "/home/ann/.x.tar");
  EXPECT_EQ(bytes(joinPath(path, text("b"))), "/home/ann/.x.tar.gz/b");
  EXPECT_EQ(bytes(addPathExtension(path, text("sig"))), "/home/ann/.x.tar.gz.sig");
  EXPECT_EQ(namesInPath(path).size(), 3U);
}

TEST(PathTextTest, WideTextIsTheSame) {
  const TextView path = TextView::utf16(u"/\u6587/\u5B57.\u8868");
  EXPECT_EQ(pathExtension(path).toUtf16(), u"\u8868");
  EXPECT_EQ(withoutPathExtension(path).view().toUtf16(), u"/\u6587/\u5B57");
  EXPECT_EQ(joinPath(path, text("\xE9")).view().toUtf16(), u"/\u6587/\u5B57.\u8868/\u00E9");
}

TEST(PathTextTest, DotsAreResolvedInRootedPaths) {
  const struct {
    const char* path;
    const char* resolved;
  } kCases[] = {
      {"/a/./b", "/a/b"},   {"/a/../b", "/b"},
      {"/..", "/"},         {"/../../a", "/a"},
      {"a/../b", "a/../b"}, {"./a/./b/", "a/b"},
      {"../a", "../a"},     {".", ""},
      {"/.", "/"},          {"", ""},
      {"/a/...", "/a/..."},
  };
  for (const auto& [path, resolved] : kCases) {
    EXPECT_EQ(bytes(resolveDots(text(path))), resolved) << path;
  }
}

TEST(PathTextTest, ComponentsKeepTheSlashesAtBothEnds) {
  const std::vector<TextView> both = pathComponents(text("//a///b//"));
  ASSERT_EQ(both.size(), 4U);
  EXPECT_EQ(bytes(both.front()), "/");
  EXPECT_EQ(bytes(both.back()), "/");
  EXPECT_EQ(bytes(pathFromComponents(both)), "/a/b/");
  EXPECT_EQ(pathComponents(text("//")).size(), 1U);
  const TextView roots[] = {text("/"), text("/")};
  EXPECT_EQ(bytes(pathFromComponents(roots)), "/");
}

}  // namespace
}  // namespace brindle::internal
