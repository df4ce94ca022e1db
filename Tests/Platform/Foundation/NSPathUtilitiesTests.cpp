#include <Brindle/Platform/NSPathUtilities.h>

#include <gtest/gtest.h>
#include <unistd.h>

#include <Brindle/Platform/AutoreleasePool.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle {
namespace {

std::string text(const NSString& string) { return string ? std::string(string) : "(nil)"; }

TEST(NSPathUtilitiesTest, Tour) {
  const NSString draft = stringByAppendingPathComponent("/home/ann"_ns, "letter.draft.txt"_ns);
  EXPECT_EQ(text(draft), "/home/ann/letter.draft.txt");
  EXPECT_EQ(text(lastPathComponent(draft)), "letter.draft.txt");
  EXPECT_EQ(text(pathExtension(draft)), "txt");
  EXPECT_EQ(text(stringByDeletingPathExtension(draft)), "/home/ann/letter.draft");
  EXPECT_EQ(text(stringByDeletingLastPathComponent(draft)), "/home/ann");
  EXPECT_EQ(text(stringByAppendingPathExtension(draft, "gz"_ns)), "/home/ann/letter.draft.txt.gz");
  EXPECT_EQ(listed(pathComponents(draft)), "/ home ann letter.draft.txt");
  EXPECT_EQ(text(pathWithComponents(pathComponents(draft))), text(draft));
  EXPECT_TRUE(isAbsolutePath(draft));
}

TEST(NSPathUtilitiesTest, NamesAndWhatIsBeforeThem) {
  const struct {
    const char* path;
    const char* last;
    const char* before;
  } kCases[] = {
      {"/tmp/scratch.tiff", "scratch.tiff", "/tmp"},
      {"/tmp/", "tmp", "/"},
      {"/tmp", "tmp", "/"},
      {"/", "/", "/"},
      {"///", "/", "/"},
      {"", "", ""},
      {"scratch", "scratch", ""},
      {"scratch///", "scratch", ""},
      {"a//b", "b", "a"},
      {"a/.", ".", "a"},
      {"caf\u00E9/\u6587.txt", "\u6587.txt", "caf\u00E9"},
  };
  for (const auto& [path, last, before] : kCases) {
    EXPECT_EQ(text(lastPathComponent(path)), last) << path;
    EXPECT_EQ(text(stringByDeletingLastPathComponent(path)), before) << path;
  }
}

TEST(NSPathUtilitiesTest, Extensions) {
  const struct {
    const char* path;
    const char* extension;
    const char* without;
  } kCases[] = {
      {"/tmp/a.tiff", "tiff", "/tmp/a"},
      {"a.tar.gz", "gz", "a.tar"},
      {".profile", "", ".profile"},
      {"/home/.profile", "", "/home/.profile"},
      {".profile.old", "old", ".profile"},
      {"a.bundle/", "bundle", "a"},
      {"a.", "", "a"},
      {"a..tiff", "tiff", "a."},
      {"..", "", ".."},
      {"...", "", "..."},
      {"a.b/c", "", "a.b/c"},
      {"/", "", "/"},
      {"", "", ""},
      {"a.b c", "b c", "a"},
  };
  for (const auto& [path, extension, without] : kCases) {
    EXPECT_EQ(text(pathExtension(path)), extension) << path;
    EXPECT_EQ(text(stringByDeletingPathExtension(path)), without) << path;
  }
  EXPECT_EQ(text(stringByAppendingPathExtension("a/"_ns, "txt"_ns)), "a.txt");
  EXPECT_EQ(text(stringByAppendingPathExtension("a."_ns, "txt"_ns)), "a..txt");
  EXPECT_EQ(text(stringByAppendingPathExtension("/"_ns, "txt"_ns)), "/");
  EXPECT_EQ(text(stringByAppendingPathExtension(""_ns, "txt"_ns)), "");
}

TEST(NSPathUtilitiesTest, AppendingMakesOneSlash) {
  const struct {
    const char* path;
    const char* component;
    const char* result;
  } kCases[] = {
      {"/tmp", "a", "/tmp/a"}, {"/tmp/", "a", "/tmp/a"},
      {"/", "a", "/a"},        {"", "a", "a"},
      {"", "/a", "/a"},        {"/tmp", "/a/b/", "/tmp/a/b"},
      {"/tmp", "", "/tmp"},    {"/tmp/", "", "/tmp"},
      {"/", "", "/"},          {"", "", ""},
      {"a", "/", "a"},         {"a", "..", "a/.."},
  };
  for (const auto& [path, component, result] : kCases) {
    EXPECT_EQ(text(stringByAppendingPathComponent(path, component)), result)
        << path << " and " << component;
  }
}

TEST(NSPathUtilitiesTest, Components) {
  const struct {
    const char* path;
    const char* components;
    const char* joined;
  } kCases[] = {
      {"/", "/", "/"},        {"", "", ""},         {"a", "a", "a"}, {"/tmp/", "/ tmp /", "/tmp/"},
      {"a//b", "a b", "a/b"}, {"//a", "/ a", "/a"},
  };
  for (const auto& [path, components, joined] : kCases) {
    EXPECT_EQ(listed(pathComponents(path)), components) << path;
    EXPECT_EQ(text(pathWithComponents(pathComponents(path))), joined) << path;
  }
  EXPECT_EQ(text(pathWithComponents({"a"_ns, ""_ns, "b"_ns})), "a/b");
  EXPECT_EQ(text(pathWithComponents({"a"_ns, ""_ns})), "a/");
  EXPECT_EQ(text(pathWithComponents({""_ns, "b"_ns})), "b");
  EXPECT_EQ(text(pathWithComponents(NSArray::array())), "");
}

TEST(NSPathUtilitiesTest, AbsolutePathsBeginWithASlashOrATilde) {
  EXPECT_TRUE(isAbsolutePath("/a"_ns));
  EXPECT_TRUE(isAbsolutePath("~/a"_ns));
  EXPECT_FALSE(isAbsolutePath("a/b"_ns));
  EXPECT_FALSE(isAbsolutePath(""_ns));
}

TEST(NSPathUtilitiesTest, NilAnswersNilAndNilArgumentsRaise) {
  EXPECT_EQ(lastPathComponent(nullptr), nullptr);
  EXPECT_EQ(pathComponents(nullptr), nullptr);
  EXPECT_EQ(fileSystemRepresentation(nullptr), nullptr);
  EXPECT_EQ(raisedBy([] { stringByAppendingPathComponent("a"_ns, nullptr); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { stringByAppendingPathExtension("a"_ns, nullptr); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { pathWithComponents(nullptr); }), "NSInvalidArgumentException");
}

TEST(NSPathUtilitiesTest, StringsOfClientsArePathsToo) {
  const NSString path = ClientString::with(u"/a/b.c");
  EXPECT_EQ(text(lastPathComponent(path)), "b.c");
  EXPECT_EQ(text(stringByAppendingPathComponent(path, ClientString::with(u"d"))), "/a/b.c/d");
}

TEST(NSPathUtilitiesTest, Tildes) {
  const TestVariable home("HOME", "/home/ann");
  EXPECT_EQ(text(stringByExpandingTildeInPath("~"_ns)), "/home/ann");
  EXPECT_EQ(text(stringByExpandingTildeInPath("~/a/"_ns)), "/home/ann/a");
  EXPECT_EQ(text(stringByExpandingTildeInPath("~root"_ns)), "/root");
  EXPECT_EQ(text(stringByExpandingTildeInPath("~nobody-has-this/a"_ns)), "~nobody-has-this/a");
  EXPECT_EQ(text(stringByExpandingTildeInPath("a/~"_ns)), "a/~");
  EXPECT_EQ(text(stringByExpandingTildeInPath(""_ns)), "");
  EXPECT_EQ(text(stringByAbbreviatingWithTildeInPath("/home/ann"_ns)), "~");
  EXPECT_EQ(text(stringByAbbreviatingWithTildeInPath("/home//ann/a"_ns)), "~/a");
  EXPECT_EQ(text(stringByAbbreviatingWithTildeInPath("/home/anna"_ns)), "/home/anna");
}

TEST(NSPathUtilitiesTest, StandardPathsAndLinks) {
  const TestFolder folder;
  folder.folder("real/inner");
  folder.link("link", "real/inner");
  const NSString start = folder.path();
  const auto below = [&start](const char* rest) {
    return stringByAppendingPathComponent(start, rest);
  };
  EXPECT_EQ(text(stringByStandardizingPath("/a/./b//c/"_ns)), "/a/b/c");
  EXPECT_EQ(text(stringByStandardizingPath("/a/../../b"_ns)), "/b");
  EXPECT_EQ(text(stringByStandardizingPath("a/../b/."_ns)), "a/../b");
  EXPECT_EQ(text(stringByStandardizingPath(below("link"))), folder / "link");
  EXPECT_EQ(text(stringByStandardizingPath(below("link/.."))), folder / "real");
  EXPECT_EQ(text(stringByResolvingSymlinksInPath(below("link"))), folder / "real/inner");
  EXPECT_EQ(text(stringByResolvingSymlinksInPath(below("link/no/../such"))),
            folder / "real/inner/such");
  folder.link("circle", "circle");
  EXPECT_EQ(text(stringByResolvingSymlinksInPath(below("circle/x"))), folder / "circle/x");
}

TEST(NSPathUtilitiesTest, RepresentationsAreUtf8) {
  const AutoreleasePool pool;
  EXPECT_STREQ(fileSystemRepresentation("/caf\u00E9"_ns), "/caf\xC3\xA9");
  EXPECT_EQ(raisedBy([] { (void)fileSystemRepresentation(""_ns); }), "NSInvalidArgumentException");
  EXPECT_EQ(
      raisedBy([] { (void)fileSystemRepresentation(NSString::stringWithCharacters(u"a\0b", 3)); }),
      "NSInvalidArgumentException");
}

TEST(NSPathUtilitiesTest, SearchPathsFollowTheEnvironment) {
  const TestVariable home("HOME", "/home/ann");
  const TestVariable data("XDG_DATA_HOME", nullptr);
  const TestVariable shared("XDG_DATA_DIRS", "/opt/share:relative:/usr/share");
  const TestVariable caches("XDG_CACHE_HOME", "relative");
  const TestVariable config("XDG_CONFIG_HOME", "");
  const auto paths = [](NSSearchPathDirectory directory, NSUInteger domains) {
    return listed(NSSearchPathForDirectoriesInDomains(directory, domains, true));
  };
  EXPECT_EQ(paths(NSApplicationSupportDirectory, 1), "/home/ann/.local/share");
  EXPECT_EQ(paths(NSApplicationSupportDirectory, NSAllDomainsMask),
            "/home/ann/.local/share /opt/share /usr/share");
  EXPECT_EQ(paths(NSApplicationSupportDirectory, NSLocalDomainMask), "/opt/share");
  EXPECT_EQ(paths(NSApplicationSupportDirectory, NSNetworkDomainMask), "");
  EXPECT_EQ(paths(NSCachesDirectory, NSUserDomainMask), "/home/ann/.cache");
  EXPECT_EQ(paths(NSDocumentDirectory, NSUserDomainMask), "/home/ann/Documents");
  EXPECT_EQ(paths(static_cast<NSSearchPathDirectory>(4711), NSAllDomainsMask), "");
  EXPECT_EQ(listed(NSSearchPathForDirectoriesInDomains(NSCachesDirectory, 1, false)), "~/.cache");
}

TEST(NSPathUtilitiesTest, FoldersOfTheUser) {
  const TestVariable home("HOME", "/home/ann");
  {
    const TestVariable temporary("TMPDIR", "/var/tmp");
    EXPECT_EQ(text(NSTemporaryDirectory()), "/var/tmp");
  }
  const TestVariable temporary("TMPDIR", "relative");
  EXPECT_EQ(text(NSTemporaryDirectory()), "/tmp");
  EXPECT_EQ(text(NSHomeDirectory()), "/home/ann");
  EXPECT_EQ(text(NSHomeDirectoryForUser("root"_ns)), "/root");
  EXPECT_EQ(NSHomeDirectoryForUser("nobody-has-this"_ns), nullptr);
  EXPECT_EQ(NSHomeDirectoryForUser(nullptr), nullptr);
  EXPECT_GT(NSUserName()->length(), 0U);
}

}  // namespace
}  // namespace brindle
