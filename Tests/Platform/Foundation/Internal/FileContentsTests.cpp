#include "Platform/Foundation/Internal/FileContents.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle::internal {
namespace {

unsigned modeOf(const std::string& path) {
  struct stat item {};
  return ::stat(path.c_str(), &item) == 0 ? item.st_mode & 07777U : 0;
}

TEST(FileContentsTest, Tour) {
  const TestFolder folder;
  for (const bool atomically : {false, true}) {
    EXPECT_EQ(writeFile(folder / "file", std::string(200000, 'x'), atomically), 0);
    EXPECT_EQ(writeFile(folder / "file", std::string("a\0b", 3), atomically), 0);
    std::string bytes = "> ";
    EXPECT_EQ(readFile(folder / "file", bytes), 0);
    EXPECT_EQ(bytes, std::string("> a\0b", 5));
  }
}

TEST(FileContentsTest, ReplacingKeepsThePermissions) {
  const TestFolder folder;
  const mode_t mask = ::umask(022);
  EXPECT_EQ(writeFile(folder / "new", "", true), 0);
  ::umask(mask);
  EXPECT_EQ(modeOf(folder / "new"), 0644U);
  ::chmod((folder / "new").c_str(), 0600);
  EXPECT_EQ(writeFile(folder / "new", "1", true), 0);
  EXPECT_EQ(modeOf(folder / "new"), 0600U);
}

TEST(FileContentsTest, Links) {
  const TestFolder folder;
  folder.link("link", "file");
  EXPECT_EQ(writeFile(folder / "link", "1", false), 0);
  EXPECT_EQ(folder.contents("file"), "1");
  EXPECT_EQ(writeFile(folder / "link", "2", true), 0);
  EXPECT_EQ(folder.contents("file"), "1");
  EXPECT_FALSE(std::filesystem::is_symlink(folder / "link"));
}

TEST(FileContentsTest, FailuresTellWhyAndLeaveNothing) {
  const TestFolder folder;
  const std::string inner = folder.folder("inner");
  std::string bytes;
  EXPECT_EQ(readFile(folder / "none", bytes), ENOENT);
  EXPECT_EQ(readFile(inner, bytes), EISDIR);
  EXPECT_EQ(writeFile(folder / "none/x", "", true), ENOENT);
  EXPECT_EQ(writeFile(folder / "none/x", "", false), ENOENT);
  EXPECT_EQ(writeFile(inner, "", true), EISDIR);
  EXPECT_EQ(writeFile(inner, "", false), EISDIR);
  EXPECT_EQ(writeAll(-1, "x"), EBADF);
  EXPECT_EQ(writeFile("/dev/full", "x", false), ENOSPC);
  std::size_t count = 0;
  for (const auto& item : std::filesystem::directory_iterator(folder.path())) {
    count += item.path() == inner ? 0U : 1U;
  }
  EXPECT_EQ(count, 0U);
}

}  // namespace
}  // namespace brindle::internal
