#include "Platform/Foundation/Internal/UrlParts.h"

#include <gtest/gtest.h>

namespace brindle::internal {
namespace {

TEST(UrlPartsTest, Tour) {
  const auto parts = parseUrl("https://ann:x@example.org:8080/a/b?c=d#e");
  ASSERT_TRUE(parts);
  EXPECT_EQ(parts->scheme, "https");
  EXPECT_EQ(parts->user, "ann");
  EXPECT_EQ(parts->password, "x");
  EXPECT_EQ(parts->host, "example.org");
  EXPECT_EQ(parts->port, "8080");
  EXPECT_EQ(parts->path, "/a/b");
  EXPECT_EQ(parts->query, "c=d");
  EXPECT_EQ(parts->fragment, "e");
  EXPECT_EQ(textOfUrl(*parts), "https://ann:x@example.org:8080/a/b?c=d#e");
  EXPECT_EQ(textOfUrl(resolveUrl(*parts, *parseUrl("../f"))), "https://ann:x@example.org:8080/f");
}

TEST(UrlPartsTest, LegalTextComesBackAsItWas) {
  for (const char* text : {"http://a",
                           "http://a:/",
                           "http://@a",
                           "http://:@a",
                           "http://[::1]:80/",
                           "x:",
                           "x:?",
                           "x:#",
                           "http://[v7.a:b]",
                           "//host/path",
                           "/path",
                           "path",
                           "?q",
                           "#f",
                           "",
                           "a/b:c",
                           "./b:c",
                           "mailto:a@b.c",
                           "file:///a%20b",
                           "http://a/?b?c/d",
                           "http://a/;p,=+$!*'()",
                           "http://a%41/",
                           "http://a/#x?y/z",
                           "urn:isbn:1",
                           "x:/.//y",
                           "http://a//b//"}) {
    const auto parts = parseUrl(text);
    ASSERT_TRUE(parts) << text;
    EXPECT_EQ(textOfUrl(*parts), text);
  }
}

TEST(UrlPartsTest, IllegalText) {
  for (const char* text : {"http://a b",   "http://a/ b",  "1x:y",          ":x",
                           "a b",          "http://a/%",   "http://a/%2",   "http://a/%zz",
                           "http://a:8x/", "http://[::1",  "http://[::g]/", "http://[::1]x/",
                           "http://[]",    "http://[v.x]", "http://a/[b]",  "http://a/<b>",
                           "http://a/\"",  "http://a/\\b", "http://a/^",    "http://a/`",
                           "http://a/{b}", "http://a/|",   "http://a#b#c",  "http://a@b@c/",
                           "caf\xC3\xA9",  "a\nb",         "http://a/?[",   "x\x7F",
                           "@:x"}) {
    EXPECT_FALSE(parseUrl(text)) << text;
  }
  EXPECT_FALSE(parseUrl(std::string_view("a\0b", 3)));
  EXPECT_FALSE(parseUrl(std::string_view("http://[::1\0x]/", 15)));
}

TEST(UrlPartsTest, ReferencesOfTheRfc) {
  const UrlParts base = *parseUrl("http://a/b/c/d;p?q");
  const struct {
    const char* reference;
    const char* target;
  } kCases[] = {
      {"g:h", "g:h"},
      {"g", "http://a/b/c/g"},
      {"./g", "http://a/b/c/g"},
      {"g/", "http://a/b/c/g/"},
      {"/g", "http://a/g"},
      {"//g", "http://g"},
      {"?y", "http://a/b/c/d;p?y"},
      {"g?y", "http://a/b/c/g?y"},
      {"#s", "http://a/b/c/d;p?q#s"},
      {"g#s", "http://a/b/c/g#s"},
      {"g?y#s", "http://a/b/c/g?y#s"},
      {";x", "http://a/b/c/;x"},
      {"g;x", "http://a/b/c/g;x"},
      {"g;x?y#s", "http://a/b/c/g;x?y#s"},
      {"", "http://a/b/c/d;p?q"},
      {".", "http://a/b/c/"},
      {"./", "http://a/b/c/"},
      {"..", "http://a/b/"},
      {"../", "http://a/b/"},
      {"../g", "http://a/b/g"},
      {"../..", "http://a/"},
      {"../../", "http://a/"},
      {"../../g", "http://a/g"},
      {"../../../g", "http://a/g"},
      {"../../../../g", "http://a/g"},
      {"/./g", "http://a/g"},
      {"/../g", "http://a/g"},
      {"g.", "http://a/b/c/g."},
      {".g", "http://a/b/c/.g"},
      {"g..", "http://a/b/c/g.."},
      {"..g", "http://a/b/c/..g"},
      {"./../g", "http://a/b/g"},
      {"./g/.", "http://a/b/c/g/"},
      {"g/./h", "http://a/b/c/g/h"},
      {"g/../h", "http://a/b/c/h"},
      {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
      {"g;x=1/../y", "http://a/b/c/y"},
      {"g?y/./x", "http://a/b/c/g?y/./x"},
      {"g?y/../x", "http://a/b/c/g?y/../x"},
      {"g#s/./x", "http://a/b/c/g#s/./x"},
      {"g#s/../x", "http://a/b/c/g#s/../x"},
      {"http:g", "http:g"},
  };
  for (const auto& [reference, target] : kCases) {
    EXPECT_EQ(textOfUrl(resolveUrl(base, *parseUrl(reference))), target) << reference;
  }
  EXPECT_EQ(textOfUrl(resolveUrl(*parseUrl("http://a"), *parseUrl("g"))), "http://a/g");
  EXPECT_EQ(textOfUrl(resolveUrl(*parseUrl("x:y"), *parseUrl("g"))), "x:g");
  EXPECT_EQ(textOfUrl(resolveUrl(*parseUrl("x:/y"), *parseUrl("/.//g"))), "x:/.//g");
}

TEST(UrlPartsTest, PercentSigns) {
  EXPECT_EQ(percentEncodedPath("/a b/50%\xC3\xA9;:?#"), "/a%20b/50%25%C3%A9%3B%3A%3F%23");
  EXPECT_EQ(percentDecoded("/a%20b%c3%A9"), "/a b\xC3\xA9");
  EXPECT_EQ(percentDecoded("%"), "%");
  EXPECT_EQ(percentDecoded("%4"), "%4");
  EXPECT_EQ(percentDecoded("%zz%41"), "%zzA");
}

}  // namespace
}  // namespace brindle::internal
