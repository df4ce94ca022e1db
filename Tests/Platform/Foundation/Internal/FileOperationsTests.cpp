#include "Platform/Foundation/Internal/FileOperations.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "Tests/Platform/Foundation/FileTesting.h"

namespace {
bool volumesDiffer = false;
}

// Takes the C library's place: as long as `volumesDiffer`, nothing can be moved by renaming it.
extern "C" [[gnu::visibility("default")]] int renameat2(int fromFolder, const char* from,
                                                        int toFolder, const char* to,
                                                        unsigned flags) noexcept {
  if (volumesDiffer) {
    struct stat item {};
    errno = ::fstatat(toFolder, to, &item, AT_SYMLINK_NOFOLLOW) == 0 ? EEXIST : EXDEV;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

namespace brindle::internal {
namespace {

// What `body` answers as a user whom permissions hold back.
template <class Body>
int asSomebody(const TestFolder& folder, const Body& body) {
  if (::getuid() != 0) return body();
  if (::chown(folder.path().c_str(), 65534, 65534) != 0) return -1;
  const pid_t child = ::fork();
  if (child == 0) ::_exit(::setuid(65534) == 0 ? body() : 255);
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

unsigned modeOf(const std::string& path) {
  struct stat item {};
  return ::lstat(path.c_str(), &item) == 0 ? item.st_mode & 07777U : 0;
}

TEST(FileOperationsTest, Tour) {
  const TestFolder folder;
  EXPECT_EQ(makeFolder(folder / "a/b", true, 0750), 0);
  EXPECT_EQ(modeOf(folder / "a/b"), 0750U);
  folder.file("a/b/file", "x");
  EXPECT_EQ(moveItem(folder / "a", folder / "c"), 0);
  EXPECT_EQ(copyItem(folder / "c", folder / "d"), 0);
  EXPECT_EQ(removeItem(folder / "c"), 0);
  EXPECT_FALSE(fileExists(folder / "c"));
  std::vector<std::string> names;
  EXPECT_EQ(listFolder(folder / "d/b", names), 0);
  EXPECT_EQ(names, std::vector<std::string>{"file"});
}

TEST(FileOperationsTest, AFolderThatItsOwnerMayNotWriteMovesAllTheSame) {
  const TestFolder folder;
  EXPECT_EQ(asSomebody(folder,
                       [&] {
                         if (makeFolder(folder / "from/inner", true, 0500) != 0) return 1;
                         if (makeFolder(folder / "to", true, {}) != 0) return 2;
                         return moveItem(folder / "from/inner", folder / "to/inner") == 0 ? 0 : 3;
                       }),
            0);
  EXPECT_EQ(modeOf(folder / "to/inner"), 0500U);
}

TEST(FileOperationsTest, AMoveThatIsForbiddenLeavesThePermissions) {
  const TestFolder folder;
  EXPECT_EQ(asSomebody(folder,
                       [&] {
                         makeFolder(folder / "from/inner", true, 0500);
                         makeFolder(folder / "to", true, 0500);
                         return moveItem(folder / "from/inner", folder / "to/inner");
                       }),
            EACCES);
  EXPECT_EQ(modeOf(folder / "from/inner"), 0500U);
}

/// Moves a read-only tree to `other`, and a file onto what is there.
void moveAcross(const TestFolder& folder, const std::string& other) {
  EXPECT_EQ(asSomebody(folder,
                       [&] {
                         makeFolder(folder / "tree/inner", true, {});
                         folder.file("tree/inner/file", "x");
                         folder.link("tree/link", "nowhere");
                         ::chmod((folder / "tree/inner").c_str(), 0500);
                         ::chmod((folder / "tree").c_str(), 0500);
                         return 0;
                       }),
            0);
  EXPECT_EQ(moveItem(folder / "tree", other + "/tree"), 0);
  EXPECT_FALSE(fileExists(folder / "tree"));
  EXPECT_EQ(modeOf(other + "/tree"), 0500U);
  EXPECT_EQ(modeOf(other + "/tree/inner"), 0500U);
  EXPECT_TRUE(fileExists(other + "/tree/inner/file"));
  EXPECT_TRUE(std::filesystem::is_symlink(other + "/tree/link"));
  const std::string file = folder.file("file", "1");
  EXPECT_EQ(moveItem(file, other + "/tree"), EEXIST);
  EXPECT_EQ(folder.contents("file"), "1");
  ::chmod((other + "/tree").c_str(), 0700);
  ::chmod((other + "/tree/inner").c_str(), 0700);
}

TEST(FileOperationsTest, MovesToAnotherVolume) {
  const TestFolder folder;
  const TestFolder other;
  volumesDiffer = true;
  moveAcross(folder, other.path());
  volumesDiffer = false;
}

// The same without pretending, where the machine has a second volume.
TEST(FileOperationsTest, MovesToMemory) {
  const TestFolder folder;
  std::string other = "/dev/shm/brindle-test-XXXXXX";
  if (::mkdtemp(other.data()) == nullptr) other = folder / "other";
  makeFolder(other, true, {});
  moveAcross(folder, other);
  removeItem(other);
}

TEST(FileOperationsTest, LinksAreReadWhole) {
  const TestFolder folder;
  for (const std::size_t length : {1U, 255U, 256U, 257U, 1000U}) {
    const std::string name = std::to_string(length);
    folder.link(name, std::string(length, 'x'));
    std::string destination;
    EXPECT_EQ(readLink(folder / name, destination), 0);
    EXPECT_EQ(destination, std::string(length, 'x'));
  }
}

TEST(FileOperationsTest, RemovingALinkLeavesWhatItLeadsTo) {
  const TestFolder folder;
  folder.folder("inner");
  folder.file("inner/file");
  folder.folder("tree");
  folder.link("tree/link", "../inner");
  EXPECT_EQ(removeItem(folder / "tree"), 0);
  EXPECT_TRUE(fileExists(folder / "inner/file"));
  EXPECT_EQ(removeItem(folder / "tree"), ENOENT);
}

TEST(FileOperationsTest, FoldersAreMadeOnTheWay) {
  const TestFolder folder;
  const std::string file = folder.file("file");
  EXPECT_EQ(makeFolder(folder / "a/b", false, {}), ENOENT);
  EXPECT_EQ(makeFolder(folder / "a/./b/../c", true, {}), 0);
  EXPECT_TRUE(fileExists(folder / "a/b"));
  EXPECT_TRUE(fileExists(folder / "a/c"));
  EXPECT_EQ(makeFolder(file, true, {}), EEXIST);
  EXPECT_EQ(makeFolder(file + "/a", true, {}), ENOTDIR);
  EXPECT_EQ(makeFolder(folder / std::string(300, 'x'), true, {}), ENAMETOOLONG);
  EXPECT_EQ(makeFolder("", true, {}), ENOENT);
}

}  // namespace
}  // namespace brindle::internal
