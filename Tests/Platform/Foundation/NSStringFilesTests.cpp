#include <Brindle/Platform/NSStringFiles.h>

#include <gtest/gtest.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle {
namespace {

TEST(NSStringFilesTest, Tour) {
  const TestFolder folder;
  NSError error = nullptr;
  const NSString text = "caf\u00E9"_ns;
  EXPECT_TRUE(writeToFile(text, folder / "a", false, NSUTF8StringEncoding, &error));
  EXPECT_EQ(folder.contents("a"), "caf\xC3\xA9");
  const NSURL url = NSURL::fileURLWithPath(folder / "a b");
  EXPECT_TRUE(writeToURL(text, url, true, NSISOLatin1StringEncoding, &error));
  EXPECT_EQ(folder.contents("a b"), "caf\xE9");
  EXPECT_TRUE(stringWithContentsOfFile(folder / "a b", NSISOLatin1StringEncoding, &error)
                  ->isEqualToString(text));
  EXPECT_FALSE(error);
}

TEST(NSStringFilesTest, Failures) {
  const TestFolder folder;
  const std::string file = folder.file("file", "caf\xE9");
  NSError error = nullptr;
  EXPECT_EQ(stringWithContentsOfFile(file, NSUTF8StringEncoding, &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadInapplicableStringEncodingError);
  EXPECT_EQ(stringWithContentsOfFile(folder / "none", NSUTF8StringEncoding, &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
  EXPECT_FALSE(writeToFile("\u6587"_ns, file, true, NSASCIIStringEncoding, &error));
  EXPECT_EQ(error->code(), NSFileWriteInapplicableStringEncodingError);
  EXPECT_EQ(folder.contents("file"), "caf\xE9");
  EXPECT_FALSE(writeToFile("x"_ns, file + "/x", true, NSUTF8StringEncoding, &error));
  EXPECT_EQ(error->code(), NSFileWriteUnknownError);
  EXPECT_FALSE(writeToURL("x"_ns, NSURL::URLWithString("http://a/b"_ns), true, NSUTF8StringEncoding,
                          &error));
  EXPECT_EQ(error->code(), NSFileWriteInvalidFileNameError);
  EXPECT_FALSE(writeToURL("x"_ns, nullptr, true, NSUTF8StringEncoding, nullptr));
  EXPECT_FALSE(writeToFile(nullptr, file, true, NSUTF8StringEncoding, nullptr));
}

}  // namespace
}  // namespace brindle
