#include <Brindle/Platform/NSURL.h>

#include <gtest/gtest.h>

#include <filesystem>

#include <Brindle/Platform/NSFileManager.h>

#include "Tests/Platform/Foundation/CodingTesting.h"
#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle {
namespace {

std::string text(const NSString& string) { return string ? std::string(string) : "(nil)"; }

TEST(NSURLTest, Tour) {
  const NSURL page = NSURL::URLWithString("https://ann:x@example.org:8080/a%20b/c.html?d=e#f"_ns);
  EXPECT_EQ(text(page->scheme()), "https");
  EXPECT_EQ(text(page->user()), "ann");
  EXPECT_EQ(text(page->password()), "x");
  EXPECT_EQ(text(page->host()), "example.org");
  EXPECT_EQ(told(page->port()), "8080");
  EXPECT_EQ(text(page->path()), "/a b/c.html");
  EXPECT_EQ(text(page->query()), "d=e");
  EXPECT_EQ(text(page->fragment()), "f");
  EXPECT_EQ(text(page->lastPathComponent()), "c.html");
  EXPECT_EQ(text(page->pathExtension()), "html");
  EXPECT_EQ(listed(page->pathComponents()), "/ a b c.html");
  EXPECT_FALSE(page->isFileURL());
  EXPECT_EQ(told(page), "https://ann:x@example.org:8080/a%20b/c.html?d=e#f");
}

TEST(NSURLTest, WhatIsMissingIsNilAndWhatIsEmptyIsNot) {
  EXPECT_EQ(NSURL::URLWithString("http://a/b"_ns)->query(), nullptr);
  EXPECT_EQ(text(NSURL::URLWithString("http://a/b?"_ns)->query()), "");
  EXPECT_EQ(text(NSURL::URLWithString("http://a/b?#"_ns)->fragment()), "");
  EXPECT_EQ(NSURL::URLWithString("http://a:/"_ns)->port(), nullptr);
  EXPECT_EQ(NSURL::URLWithString("file:///a"_ns)->host(), nullptr);
  EXPECT_EQ(NSURL::URLWithString("a/b"_ns)->scheme(), nullptr);
  EXPECT_EQ(text(NSURL::URLWithString("http://[::1]/"_ns)->host()), "::1");
}

TEST(NSURLTest, IllegalTextIsNoUrl) {
  for (const char* string : {"", "http://a b/", "caf\u00E9", "http://a/%zz", "1:2"}) {
    EXPECT_EQ(NSURL::URLWithString(string), nullptr) << string;
  }
  EXPECT_EQ(raisedBy([] { (void)NSURL::URLWithString(nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { (void)NSURL::fileURLWithPath(nullptr); }), "NSInvalidArgumentException");
}

TEST(NSURLTest, RelativeToAnother) {
  const NSURL base = NSURL::URLWithString("http://a/b/c?q"_ns);
  const NSURL url = NSURL::URLWithString("../d"_ns, base);
  EXPECT_EQ(text(url->absoluteString()), "http://a/d");
  EXPECT_EQ(text(url->relativeString()), "../d");
  EXPECT_EQ(text(url->host()), "a");
  EXPECT_EQ(url->baseURL(), base);
  EXPECT_EQ(told(url), "../d -- http://a/b/c?q");
  EXPECT_EQ(text(url->absoluteURL()->relativeString()), "http://a/d");
  EXPECT_EQ(text(NSURL::URLWithString("e"_ns, url)->absoluteString()), "http://a/e");
  EXPECT_EQ(NSURL::URLWithString("x:y"_ns, base)->baseURL(), nullptr);
  EXPECT_EQ(text(NSURL::URLWithString("e"_ns, nullptr)->absoluteString()), "e");
}

TEST(NSURLTest, FileUrls) {
  const TestFolder folder;
  folder.folder("50 % \u00E9;");
  const NSURL url = NSURL::fileURLWithPath(folder / "50 % \u00E9;");
  EXPECT_EQ(text(url->absoluteString()), "file://" + folder.path() + "/50%20%25%20%C3%A9%3B/");
  EXPECT_EQ(text(url->path()), folder / "50 % \u00E9;");
  EXPECT_TRUE(url->isFileURL());
  EXPECT_TRUE(NSURL::URLWithString("FILE:///a"_ns)->isFileURL());
  EXPECT_FALSE(NSURL::URLWithString("a"_ns)->isFileURL());
  EXPECT_EQ(told(NSURL::fileURLWithPath("/a/"_ns)), "file:///a/");
  EXPECT_EQ(told(NSURL::fileURLWithPath("//a//b"_ns, false)), "file:///a/b");
  EXPECT_EQ(told(NSURL::fileURLWithPath("/a"_ns, true)), "file:///a/");
  EXPECT_EQ(told(NSURL::fileURLWithPath("/"_ns)), "file:///");
  EXPECT_EQ(text(NSURL::fileURLWithPath("x:y"_ns)->path()),
            text(NSFileManager::defaultManager()->currentDirectoryPath()) + "/x:y");
}

TEST(NSURLTest, NamesThatAreNotUtf8ComeAndGo) {
  const std::string name = "/caf\xE9";
  const NSString path =
      NSFileManager::defaultManager()->stringWithFileSystemRepresentation(name.data(), 5);
  const NSURL url = NSURL::fileURLWithPath(path, false);
  EXPECT_EQ(told(url), "file:///caf%E9");
  EXPECT_TRUE(url->path()->isEqualToString(path));
}

TEST(NSURLTest, PathsAreChanged) {
  const struct {
    const char* url;
    const char* component;
    const char* longer;
    const char* shorter;
  } kCases[] = {
      {"http://a/b", "c d", "http://a/b/c%20d", "http://a/"},
      {"http://a/b/", "c/", "http://a/b/c/", "http://a/"},
      {"http://a", "c", "http://a/c", "http://a/"},
      {"http://a/b/c?q#f", "/d", "http://a/b/c/d?q#f", "http://a/b/?q#f"},
      {"file:///", "x:y", "file:///x%3Ay", "file:///"},
      {"b", "c", "b/c", "./"},
  };
  for (const auto& [url, component, longer, shorter] : kCases) {
    const NSURL before = NSURL::URLWithString(url);
    EXPECT_EQ(told(before->URLByAppendingPathComponent(component)), longer) << url;
    EXPECT_EQ(told(before->URLByDeletingLastPathComponent()), shorter) << url;
  }
}

TEST(NSURLTest, EqualityCopiesAndArchives) {
  const NSURL base = NSURL::URLWithString("http://a/b/"_ns);
  const NSURL url = NSURL::URLWithString("c"_ns, base);
  const NSURL same = NSURL::URLWithString("c"_ns, NSURL::URLWithString("http://a/b/"_ns));
  EXPECT_TRUE(url->isEqual(same));
  EXPECT_EQ(url->hash(), same->hash());
  EXPECT_FALSE(url->isEqual(NSURL::URLWithString("http://a/b/c"_ns)));
  EXPECT_FALSE(url->isEqual(nullptr));
  EXPECT_FALSE(url->isEqual("c"_ns));
  EXPECT_EQ(id(url->copy()), id(url));
  EXPECT_TRUE(url->isEqual(archivedAndRead(url)));
  EXPECT_TRUE(base->isEqual(archivedAndRead(base)));
  const NSData broken =
      archiveOf("<dict><key>$class</key>" + uid(2) + "</dict>" + classNamed("NSURL"));
  EXPECT_EQ(raisedBy([&] { (void)NSKeyedUnarchiver::unarchiveObjectWithData(broken); }),
            "NSInvalidUnarchiveOperationException");
}

TEST(NSURLTest, ARelativePathNeedsACurrentFolder) {
  const std::filesystem::path before = std::filesystem::current_path();
  const std::filesystem::path gone = std::filesystem::path(testing::TempDir()) / "brindle-gone";
  std::filesystem::create_directory(gone);
  std::filesystem::current_path(gone);
  std::filesystem::remove(gone);
  EXPECT_FALSE(NSURL::fileURLWithPath("a"_ns));
  EXPECT_FALSE(NSURL::fileURLWithPath("a"_ns, true));
  EXPECT_TRUE(NSURL::fileURLWithPath("/a"_ns));
  std::filesystem::current_path(before);
}

}  // namespace
}  // namespace brindle
