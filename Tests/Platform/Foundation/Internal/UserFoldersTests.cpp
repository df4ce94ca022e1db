#include "Platform/Foundation/Internal/UserFolders.h"

#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle::internal {
namespace {

using Folders = std::vector<std::string>;

TEST(UserFoldersTest, Tour) {
  const TestFolder folder;
  const TestVariable home("HOME", "/home/ann");
  const TestVariable config("XDG_CONFIG_HOME", folder.path().c_str());
  const TestVariable data("XDG_DATA_HOME", "/data");
  folder.file("user-dirs.dirs", "# comment\nXDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n");
  EXPECT_EQ(homeFolder(), "/home/ann");
  EXPECT_EQ(configurationFolder(), folder.path());
  EXPECT_EQ(foldersFor(FolderUse::documents, kUserDomain), Folders{"/home/ann/Dokumente"});
  EXPECT_EQ(foldersFor(FolderUse::desktop, kUserDomain), Folders{"/home/ann/Desktop"});
  EXPECT_EQ(foldersFor(FolderUse::applicationSupport, kUserDomain), Folders{"/data"});
  EXPECT_EQ(foldersFor(FolderUse::trash, kUserDomain), Folders{"/data/Trash"});
}

TEST(UserFoldersTest, EmptyAndRelativeVariablesCountAsUnset) {
  const TestVariable home("HOME", "/home/ann");
  for (const char* value : {static_cast<const char*>(nullptr), "", "relative", "~/x"}) {
    const TestVariable data("XDG_DATA_HOME", value);
    const TestVariable state("XDG_STATE_HOME", value);
    const TestVariable config("XDG_CONFIG_HOME", value);
    const TestVariable temporary("TMPDIR", value);
    EXPECT_EQ(foldersFor(FolderUse::library, kUserDomain), Folders{"/home/ann/.local/share"});
    EXPECT_EQ(foldersFor(FolderUse::autosaved, kUserDomain), Folders{"/home/ann/.local/state"});
    EXPECT_EQ(configurationFolder(), "/home/ann/.config");
    EXPECT_EQ(temporaryFolder(), "/tmp");
  }
}

TEST(UserFoldersTest, FoldersOfAll) {
  {
    const TestVariable shared("XDG_DATA_DIRS", "");
    EXPECT_EQ(foldersFor(FolderUse::applications, kLocalDomain | kSystemDomain),
              (Folders{"/usr/local/share/applications", "/usr/share/applications"}));
  }
  const TestVariable shared("XDG_DATA_DIRS", ":/a::b:/usr/share/:/c");
  EXPECT_EQ(foldersFor(FolderUse::library, kLocalDomain), (Folders{"/a", "/c"}));
  EXPECT_EQ(foldersFor(FolderUse::library, kSystemDomain), (Folders{"/usr/share/"}));
  EXPECT_EQ(foldersFor(FolderUse::caches, kSystemDomain), Folders{"/var/cache"});
  EXPECT_EQ(foldersFor(FolderUse::documents, kSystemDomain), Folders{});
  EXPECT_EQ(foldersFor(static_cast<FolderUse>(0), 0xFFFF), Folders{});
}

TEST(UserFoldersTest, TheFileOfTheUser) {
  const struct {
    const char* contents;
    const char* folder;
  } kCases[] = {
      {"XDG_MUSIC_DIR=\"$HOME/Musik\"", "/home/ann/Musik"},
      {"  XDG_MUSIC_DIR=\"$HOME/\"\n", "/home/ann"},
      {"XDG_MUSIC_DIR=\"/media/m\\\"u/\"\n", "/media/m\"u"},
      {"XDG_MUSIC_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/b\"\n", "/b"},
      {"XDG_MUSIC_DIR=\"/\"\n", "/"},
      {"#XDG_MUSIC_DIR=\"/a\"\n", nullptr},
      {"XDG_MUSIC_DIR=\"relative\"\n", nullptr},
      {"XDG_MUSIC_DIR=\"$HOMER/x\"\n", nullptr},
      {"XDG_MUSIC_DIR=\"/a\n", nullptr},
      {"XDG_MUSIC_DIR=/a\n", nullptr},
      {"", nullptr},
  };
  for (const auto& [contents, folder] : kCases) {
    const auto found = folderInUserFile(contents, "MUSIC", "/home/ann");
    EXPECT_EQ(found.value_or("(none)"), folder == nullptr ? "(none)" : folder) << contents;
  }
}

TEST(UserFoldersTest, Accounts) {
  EXPECT_EQ(homeFolderOf("root"), "/root");
  EXPECT_EQ(homeFolderOf("nobody-has-this"), std::nullopt);
  EXPECT_FALSE(userName().empty());
  const TestVariable home("HOME", "");
  EXPECT_EQ(homeFolder().front(), '/');
}

}  // namespace
}  // namespace brindle::internal
