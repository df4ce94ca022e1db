#include <Brindle/Platform/NSData.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSMutableData.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

/// A folder of the test's own.
class Folder {
 public:
  Folder() {
    char name[] = "/tmp/data-test-XXXXXX";
    path_ = ::mkdtemp(name);
  }
  ~Folder() { static_cast<void>(std::system(("rm -rf " + path_).c_str())); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  [[nodiscard]] std::string file(const char* name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

TEST(NSDataTest, HoldsBytes) {
  const NSData data(std::string_view("a\0b", 3));
  EXPECT_EQ(data->length(), 3U);
  EXPECT_EQ(data->view(), std::string_view("a\0b", 3));
  EXPECT_EQ(std::string(data->description()), "<610062>");
  EXPECT_TRUE(data->isEqual(NSData::dataWithBytes("a\0b", 3)));
  EXPECT_EQ(data->hash(), NSData::dataWithBytes("a\0b", 3)->hash());
}

TEST(NSDataTest, DescribesFourBytesAtATime) {
  EXPECT_EQ(std::string(NSData("\x01\x02\x03\x04\xff")->description()), "<01020304 ff>");
  EXPECT_EQ(std::string(NSData::data()->description()), "<>");
}

TEST(NSDataTest, GivesParts) {
  const NSData data("abcdef");
  EXPECT_EQ(data->subdataWithRange({2, 3})->view(), "cde");
  EXPECT_EQ(data->subdataWithRange({6, 0})->length(), 0U);
  char buffer[8] = {};
  data->getBytes(buffer, 100);
  EXPECT_STREQ(buffer, "abcdef");
  data->getBytes(buffer, NSRange{4, 2});
  EXPECT_EQ(std::string(buffer, 2), "ef");
}

TEST(NSDataTest, RaisesBeyondTheEnd) {
  const NSData data("abc");
  char buffer[8];
  for (const NSRange range : {NSRange{0, 4}, NSRange{4, 0}, NSRange{1, ~0UL}, NSRange{~0UL, 1}}) {
    EXPECT_EQ(raisedBy([&] { data->subdataWithRange(range); }), "NSRangeException");
    EXPECT_EQ(raisedBy([&] { data->getBytes(buffer, range); }), "NSRangeException");
  }
  EXPECT_EQ(raisedBy([] { NSData::dataWithBytes(nullptr, 1); }), "NSInvalidArgumentException");
}

TEST(NSDataTest, IsEqualByBytes) {
  EXPECT_FALSE(NSData("a")->isEqual(NSData("b")));
  EXPECT_FALSE(NSData("a")->isEqual("a"_ns));
  EXPECT_FALSE(NSData("a")->isEqualToData(nullptr));
  EXPECT_TRUE(NSData("a")->isEqual(NSData("a")->mutableCopy()));
}

TEST(NSDataTest, NilIsEmpty) {
  const NSData none = nullptr;
  EXPECT_EQ(none->length(), 0U);
  EXPECT_TRUE(none->view().empty());
  EXPECT_EQ(NSData::dataWithData(nullptr)->length(), 0U);
}

TEST(NSDataTest, WritesAndReadsFiles) {
  const Folder folder;
  const NSString path(folder.file("bytes"));
  EXPECT_TRUE(NSData("first")->writeToFile(path, true));
  EXPECT_EQ(NSData::dataWithContentsOfFile(path)->view(), "first");
  EXPECT_TRUE(NSData("2nd")->writeToFile(path, false));
  EXPECT_EQ(NSData::dataWithContentsOfFile(path)->view(), "2nd");
}

TEST(NSDataTest, KeepsThePermissionsOfAFileThatItReplaces) {
  const Folder folder;
  const std::string path = folder.file("private");
  EXPECT_TRUE(NSData("a")->writeToFile(NSString(path), true));
  ASSERT_EQ(::chmod(path.c_str(), 0600), 0);
  EXPECT_TRUE(NSData("b")->writeToFile(NSString(path), true));
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
}

TEST(NSDataTest, TellsWhenAFileCannotBeReadOrWritten) {
  const Folder folder;
  EXPECT_TRUE(NSData::dataWithContentsOfFile(NSString(folder.file("missing"))) == nullptr);
  EXPECT_TRUE(NSData::dataWithContentsOfFile("/tmp"_ns) == nullptr);
  EXPECT_TRUE(NSData::dataWithContentsOfFile(nullptr) == nullptr);
  EXPECT_FALSE(NSData("a")->writeToFile(NSString(folder.file("no/folder")), true));
  EXPECT_FALSE(NSData("a")->writeToFile(NSString(folder.file("no/folder")), false));
  EXPECT_FALSE(NSData("a")->writeToFile(nullptr, true));
}

}  // namespace
}  // namespace brindle
