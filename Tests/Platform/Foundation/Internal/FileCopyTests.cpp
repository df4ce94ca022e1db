#include "Platform/Foundation/Internal/FileCopy.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>

#include "Platform/Foundation/Internal/FileOperations.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle::internal {
namespace {

struct stat itemAt(const std::string& path) {
  struct stat item {};
  ::lstat(path.c_str(), &item);
  return item;
}

TEST(FileCopyTest, Tour) {
  const TestFolder folder;
  folder.folder("tree/inner");
  const std::string file = folder.file("tree/inner/file", std::string(100000, 'x'));
  folder.link("tree/link", "inner");
  ::mkfifo((folder / "tree/pipe").c_str(), 0600);
  ::chmod(file.c_str(), 0640);
  const timespec times[2] = {{1000, 5}, {2000, 7}};
  ::utimensat(AT_FDCWD, file.c_str(), times, 0);
  ::utimensat(AT_FDCWD, (folder / "tree").c_str(), times, 0);

  EXPECT_EQ(copyItem(folder / "tree", folder / "copy"), 0);
  EXPECT_EQ(folder.contents("copy/inner/file"), std::string(100000, 'x'));
  EXPECT_EQ(itemAt(folder / "copy/inner/file").st_mode & 07777U, 0640U);
  EXPECT_EQ(itemAt(folder / "copy/inner/file").st_mtim.tv_nsec, 7);
  EXPECT_EQ(itemAt(folder / "copy").st_mtim.tv_sec, 2000);
  EXPECT_TRUE(S_ISFIFO(itemAt(folder / "copy/pipe").st_mode));
  EXPECT_EQ(std::filesystem::read_symlink(folder / "copy/link"), "inner");
}

TEST(FileCopyTest, WhatFailsLeavesNothing) {
  const TestFolder folder;
  folder.folder("tree");
  folder.file("tree/file");
  const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  (folder / "tree/socket").copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ::close(socket);
  EXPECT_EQ(copyItem(folder / "tree", folder / "copy"), ENOTSUP);
  EXPECT_FALSE(fileExists(folder / "copy"));
}

TEST(FileCopyTest, AFolderIsNotCopiedIntoItself) {
  const TestFolder folder;
  folder.folder("tree/inner");
  folder.link("link", "tree/inner");
  EXPECT_EQ(copyItem(folder / "tree", folder / "tree/copy"), EINVAL);
  EXPECT_EQ(copyItem(folder / "tree", folder / "tree/inner/copy"), EINVAL);
  EXPECT_EQ(copyItem(folder / "tree", folder / "link/copy"), EINVAL);
  EXPECT_EQ(copyItem(folder / "tree", folder / "treecopy"), 0);
}

TEST(FileCopyTest, FoldersBecomeWritableAndNothingElse) {
  const TestFolder folder;
  folder.folder("outside");
  folder.folder("tree/inner");
  const std::string file = folder.file("tree/inner/file");
  folder.link("tree/link", "../outside");
  ::chmod(file.c_str(), 0400);
  for (const char* name : {"outside", "tree/inner", "tree"}) {
    ::chmod((folder / name).c_str(), 0500);
  }
  makeFoldersWritable(folder / "tree");
  EXPECT_EQ(itemAt(folder / "tree").st_mode & 07777U, 0700U);
  EXPECT_EQ(itemAt(folder / "tree/inner").st_mode & 07777U, 0700U);
  EXPECT_EQ(itemAt(file).st_mode & 07777U, 0400U);
  EXPECT_EQ(itemAt(folder / "outside").st_mode & 07777U, 0500U);
  makeFoldersWritable(folder / "none");
}

}  // namespace
}  // namespace brindle::internal
