#include "Platform/Foundation/Internal/PathResolution.h"

#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle::internal {
namespace {

TEST(PathResolutionTest, Tour) {
  const TestFolder folder;
  const TestVariable home("HOME", folder.path().c_str());
  folder.folder("real");
  folder.link("link", "real");
  EXPECT_EQ(expandTilde("~/link"), folder / "link");
  EXPECT_EQ(abbreviateWithTilde(folder / "link"), "~/link");
  EXPECT_EQ(resolveLinks(folder / "link/x"), folder / "real/x");
  EXPECT_EQ(standardizePath("~/./link//"), folder / "link");
}

TEST(PathResolutionTest, WhatDoesNotExistIsTakenByItsText) {
  EXPECT_EQ(resolveLinks("/no/such/./folder/../x"), "/no/such/x");
  EXPECT_EQ(resolveLinks("/"), "/");
  EXPECT_EQ(resolveLinks("relative/./x/.."), "relative/x/..");
  EXPECT_EQ(resolveLinks(""), "");
  const std::string far = "/" + std::string(5000, 'x');
  EXPECT_EQ(resolveLinks(far), far);
}

TEST(PathResolutionTest, AHomeThatIsTheRoot) {
  const TestVariable home("HOME", "/");
  EXPECT_EQ(expandTilde("~/a"), "/a");
  EXPECT_EQ(expandTilde("~"), "/");
  EXPECT_EQ(abbreviateWithTilde("/a"), "/a");
}

}  // namespace
}  // namespace brindle::internal
