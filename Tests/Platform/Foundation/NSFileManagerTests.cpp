#include <Brindle/Platform/NSFileManager.h>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSPathUtilities.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle {
namespace {

NSFileManager files() { return NSFileManager::defaultManager(); }

std::set<std::string> namesIn(const std::string& path) {
  std::set<std::string> names;
  const NSArray listed = files()->contentsOfDirectoryAtPath(path, nullptr);
  for (const id& name : listed) names.insert(std::string(cast<NSString>(name)));
  return names;
}

// "code errno path" of an error.
std::string shown(const NSError& error) {
  if (!error) return "(nil)";
  EXPECT_EQ(std::string(error->domain()), "NSCocoaErrorDomain");
  const auto cause = dynCast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey));
  const auto path = dynCast<NSString>(error->userInfo()->objectForKey(NSFilePathErrorKey));
  return std::to_string(error->code()) + " " + std::to_string(cause->code()) + " " +
         std::string(path);
}

mode_t modeOf(const std::string& path) {
  struct stat item {};
  return ::lstat(path.c_str(), &item) == 0 ? item.st_mode & 07777U : 0;
}

TEST(NSFileManagerTest, Tour) {
  const TestFolder folder;
  NSError error = nullptr;
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "letters/old", true, nullptr, &error));
  EXPECT_TRUE(files()->createFileAtPath(folder / "draft", NSData("Dear Ann"), nullptr));
  EXPECT_TRUE(files()->moveItemAtPath(folder / "draft", folder / "letters/ann", &error));
  EXPECT_FALSE(error);
  EXPECT_FALSE(files()->fileExistsAtPath(folder / "draft"));
  EXPECT_EQ(files()->contentsAtPath(folder / "letters/ann")->view(), "Dear Ann");
  EXPECT_EQ(namesIn(folder / "letters"), (std::set<std::string>{"ann", "old"}));
  EXPECT_TRUE(files()->removeItemAtPath(folder / "letters", &error));
  EXPECT_EQ(namesIn(folder.path()), std::set<std::string>());
  EXPECT_FALSE(files()->moveItemAtPath(folder / "draft", folder / "gone", &error));
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  EXPECT_EQ(std::string(error->localizedDescription()),
            folder / "draft" + ": No such file or directory");
}

TEST(NSFileManagerTest, ThereIsOneDefaultManager) {
  EXPECT_EQ(files(), files());
  EXPECT_NE(NSFileManager::new_(), files());
}

TEST(NSFileManagerTest, ExistenceFollowsLinks) {
  const TestFolder folder;
  folder.file("file");
  folder.folder("inner");
  folder.link("to-file", "file");
  folder.link("to-folder", "inner");
  folder.link("to-nothing", "nothing");
  folder.link("to-itself", "to-itself");
  const struct {
    const char* name;
    bool exists;
    bool isFolder;
  } kCases[] = {
      {"file", true, false},       {"inner", true, true},        {"inner/", true, true},
      {"to-file", true, false},    {"to-folder", true, true},    {"to-nothing", false, false},
      {"to-itself", false, false}, {"file/below", false, false}, {"nothing", false, false},
  };
  for (const auto& [name, exists, isFolder] : kCases) {
    bool said = !isFolder;
    EXPECT_EQ(files()->fileExistsAtPath(folder / name), exists) << name;
    EXPECT_EQ(files()->fileExistsAtPath(folder / name, &said), exists) << name;
    EXPECT_EQ(said, isFolder) << name;
  }
  EXPECT_FALSE(files()->fileExistsAtPath(nullptr));
  EXPECT_FALSE(files()->fileExistsAtPath(""_ns));
  const NSString cut =
      stringByAppendingPathComponent(folder.path(), NSString::stringWithCharacters(u"file\0x", 6));
  EXPECT_FALSE(files()->fileExistsAtPath(cut));
}

TEST(NSFileManagerTest, ListsInTheOrderOfTheFolder) {
  const TestFolder folder;
  for (int i = 0; i < 50; ++i) folder.file(std::to_string(i * 7919));
  folder.file(".hidden");
  std::string order;
  for (const auto& item : std::filesystem::directory_iterator(folder.path())) {
    order += item.path().filename().string() + " ";
  }
  EXPECT_EQ(listed(files()->contentsOfDirectoryAtPath(folder.path(), nullptr)) + " ", order);
}

TEST(NSFileManagerTest, ListingTellsWhatIsWrong) {
  const TestFolder folder;
  const std::string file = folder.file("file");
  const std::string circle = folder.link("circle", "circle");
  NSError error = nullptr;
  EXPECT_EQ(files()->contentsOfDirectoryAtPath(folder / "none", &error), nullptr);
  EXPECT_EQ(shown(error), "260 2 " + folder / "none");
  EXPECT_EQ(files()->contentsOfDirectoryAtPath(file, &error), nullptr);
  EXPECT_EQ(shown(error), "256 20 " + file);
  EXPECT_EQ(files()->contentsOfDirectoryAtPath(circle, &error), nullptr);
  EXPECT_EQ(shown(error), "256 40 " + circle);
  EXPECT_EQ(files()->contentsOfDirectoryAtPath(nullptr, &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadInvalidFileNameError);
}

TEST(NSFileManagerTest, NamesThatAreNotUtf8ComeAndGo) {
  const TestFolder folder;
  const std::string name = "caf\xE9 \xED\xB2\x80 \xF0\x9F\x98.txt";
  folder.file(name, "coffee");
  const NSArray all = files()->contentsOfDirectoryAtPath(folder.path(), nullptr);
  ASSERT_EQ(all->count(), 1U);
  const NSString path = stringByAppendingPathComponent(folder.path(), cast<NSString>(all[0]));
  const AutoreleasePool pool;
  EXPECT_EQ(fileSystemRepresentation(path), folder / name);
  EXPECT_EQ(files()->contentsAtPath(path)->view(), "coffee");
  EXPECT_TRUE(files()->moveItemAtPath(path, folder / "coffee.txt", nullptr));
  EXPECT_EQ(folder.contents("coffee.txt"), "coffee");
}

TEST(NSFileManagerTest, Representations) {
  const AutoreleasePool pool;
  EXPECT_STREQ(files()->fileSystemRepresentationWithPath("a\u00E9"_ns), "a\xC3\xA9");
  EXPECT_EQ(std::string(files()->stringWithFileSystemRepresentation("a\xC3\xA9x", 3)), "a\u00E9");
  EXPECT_EQ(raisedBy([] { (void)files()->fileSystemRepresentationWithPath(nullptr); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { (void)files()->stringWithFileSystemRepresentation(nullptr, 0); }),
            "NSInvalidArgumentException");
}

TEST(NSFileManagerTest, Links) {
  const TestFolder folder;
  NSError error = nullptr;
  const std::string far(300, 'x');
  EXPECT_TRUE(files()->createSymbolicLinkAtPath(folder / "link", far, &error));
  EXPECT_EQ(std::string(files()->destinationOfSymbolicLinkAtPath(folder / "link", &error)), far);
  EXPECT_FALSE(files()->createSymbolicLinkAtPath(folder / "link", "other"_ns, &error));
  EXPECT_EQ(shown(error), "516 17 " + folder / "link");
  EXPECT_EQ(files()->destinationOfSymbolicLinkAtPath(folder.path(), &error), nullptr);
  EXPECT_EQ(shown(error), "256 22 " + folder.path());
  EXPECT_EQ(files()->destinationOfSymbolicLinkAtPath(folder / "none", &error), nullptr);
  EXPECT_EQ(shown(error), "260 2 " + folder / "none");
}

TEST(NSFileManagerTest, MakingFolders) {
  const TestFolder folder;
  const std::string file = folder.file("file");
  NSError error = nullptr;
  const auto make = [&](const std::string& path, bool withParents) {
    error = nullptr;
    return files()->createDirectoryAtPath(path, withParents, nullptr, &error);
  };
  EXPECT_FALSE(make(folder / "a/b", false));
  EXPECT_EQ(shown(error), "4 2 " + folder / "a/b");
  EXPECT_TRUE(make(folder / "a//b/c/", true));
  EXPECT_TRUE(make(folder / "a/b/c", true));
  EXPECT_FALSE(make(folder / "a/b/c", false));
  EXPECT_EQ(shown(error), "516 17 " + folder / "a/b/c");
  EXPECT_FALSE(make(file, true));
  EXPECT_EQ(shown(error), "516 17 " + file);
  EXPECT_FALSE(make(file + "/x/y", true));
  EXPECT_EQ(shown(error), "512 20 " + file + "/x/y");
  folder.link("link", "a");
  EXPECT_TRUE(make(folder / "link", true));
  EXPECT_TRUE(make(folder / "link/d", true));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "a/d"));
  EXPECT_TRUE(make("/", true));
}

TEST(NSFileManagerTest, AttributesOfNewItems) {
  const TestFolder folder;
  const NSDictionary closed = {{NSFilePosixPermissions, NSNumber(0700)}};
  EXPECT_TRUE(files()->createDirectoryAtPath(folder / "a/b", true, closed, nullptr));
  EXPECT_EQ(modeOf(folder / "a/b"), 0700U);
  EXPECT_TRUE(files()->createFileAtPath(folder / "file", nullptr,
                                        {{NSFilePosixPermissions, NSNumber(0640)}}));
  const NSDictionary attributes = files()->attributesOfItemAtPath(folder / "file", nullptr);
  EXPECT_EQ(told(attributes[NSFilePosixPermissions]), std::to_string(0640));
  EXPECT_EQ(told(attributes[NSFileSize]), "0");
  EXPECT_EQ(told(attributes[NSFileType]), "NSFileTypeRegular");
  folder.link("link", "file");
  EXPECT_EQ(told(files()->attributesOfItemAtPath(folder / "link", nullptr)[NSFileType]),
            "NSFileTypeSymbolicLink");
  NSError error = nullptr;
  EXPECT_EQ(files()->attributesOfItemAtPath(folder / "none", &error), nullptr);
  EXPECT_EQ(shown(error), "260 2 " + folder / "none");
}

TEST(NSFileManagerTest, NothingIsReplacedByMovesAndCopies) {
  const TestFolder folder;
  const std::string a = folder.file("a", "1");
  const std::string b = folder.file("b", "2");
  folder.link("nowhere", "nothing");
  NSError error = nullptr;
  for (const std::string& target : {b, a, folder.folder("empty"), folder / "nowhere"}) {
    EXPECT_FALSE(files()->moveItemAtPath(a, target, &error)) << target;
    EXPECT_EQ(shown(error), "516 17 " + target);
    EXPECT_FALSE(files()->copyItemAtPath(a, target, &error)) << target;
    EXPECT_EQ(shown(error), "516 17 " + target);
  }
  EXPECT_EQ(folder.contents("a") + folder.contents("b"), "12");
  EXPECT_FALSE(files()->moveItemAtPath(a, folder / "none/a", &error));
  EXPECT_EQ(shown(error), "4 2 " + folder / "none/a");
  EXPECT_FALSE(files()->copyItemAtPath(folder / "none", folder / "x", &error));
  EXPECT_EQ(shown(error), "260 2 " + folder / "none");
  EXPECT_FALSE(files()->moveItemAtPath(nullptr, b, nullptr));
  EXPECT_FALSE(files()->moveItemAtPath(a, nullptr, nullptr));
}

TEST(NSFileManagerTest, MovesAreOfLinksAndNotOfWhatTheyLeadTo) {
  const TestFolder folder;
  folder.folder("inner");
  folder.link("link", "inner");
  EXPECT_TRUE(files()->moveItemAtPath(folder / "link/", folder / "moved/", nullptr));
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "moved"));
  EXPECT_TRUE(files()->removeItemAtPath(folder / "moved/", nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "inner"));
  EXPECT_FALSE(files()->moveItemAtPath(folder / "inner", folder / "inner/itself", nullptr));
  EXPECT_FALSE(files()->copyItemAtPath(folder / "inner", folder / "inner/itself", nullptr));
  EXPECT_EQ(namesIn(folder / "inner"), std::set<std::string>());
}

TEST(NSFileManagerTest, ARemovedItemIsThere) {
  const TestFolder folder;
  NSError error = nullptr;
  EXPECT_FALSE(files()->removeItemAtPath(folder / "none", &error));
  EXPECT_EQ(shown(error), "4 2 " + folder / "none");
}

TEST(NSFileManagerTest, TheCurrentFolder) {
  const TestFolder folder;
  const NSString before = files()->currentDirectoryPath();
  EXPECT_TRUE(files()->changeCurrentDirectoryPath(folder.path()));
  EXPECT_EQ(std::string(files()->currentDirectoryPath()), folder.path());
  folder.file("here");
  EXPECT_TRUE(files()->fileExistsAtPath("here"_ns));
  EXPECT_TRUE(files()->createDirectoryAtPath("x/y"_ns, true, nullptr, nullptr));
  EXPECT_TRUE(std::filesystem::is_directory(folder / "x/y"));
  EXPECT_TRUE(files()->changeCurrentDirectoryPath(before));
  EXPECT_FALSE(files()->changeCurrentDirectoryPath(nullptr));
}

TEST(NSFileManagerTest, Access) {
  const TestFolder folder;
  const std::string file = folder.file("file");
  EXPECT_TRUE(files()->isReadableFileAtPath(file));
  EXPECT_TRUE(files()->isWritableFileAtPath(file));
  EXPECT_FALSE(files()->isExecutableFileAtPath(file));
  EXPECT_TRUE(files()->isExecutableFileAtPath("/bin/sh"_ns));
  EXPECT_FALSE(files()->isReadableFileAtPath(nullptr));
  EXPECT_EQ(std::string(files()->displayNameAtPath(file)), "file");
}

}  // namespace
}  // namespace brindle
