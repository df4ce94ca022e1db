#include <Brindle/Platform/FoundationErrors.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSFileManager.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"
#include "Tests/Platform/Foundation/FileTesting.h"

namespace brindle {
namespace {

TEST(FoundationErrorsTest, Tour) {
  NSError error = nullptr;
  EXPECT_FALSE(NSFileManager::defaultManager()->removeItemAtPath("/no/such/file"_ns, &error));
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), NSFileNoSuchFileError);
  EXPECT_EQ(told(error->userInfo()[NSFilePathErrorKey]), "/no/such/file");
  EXPECT_EQ(told(error->userInfo()[NSUnderlyingErrorKey]),
            "Error Domain=NSPOSIXErrorDomain Code=2 \"No such file or directory\"");
  EXPECT_EQ(std::string(error->localizedDescription()), "/no/such/file: No such file or directory");
}

TEST(FoundationErrorsTest, APathThatNoFileHasSaysNoMoreThanThat) {
  NSError error = nullptr;
  EXPECT_FALSE(NSFileManager::defaultManager()->removeItemAtPath(nullptr, &error));
  EXPECT_EQ(error->code(), NSFileWriteInvalidFileNameError);
  EXPECT_EQ(error->userInfo()->count(), 0U);
  EXPECT_FALSE(NSFileManager::defaultManager()->removeItemAtPath(""_ns, &error));
  EXPECT_EQ(told(error->userInfo()[NSFilePathErrorKey]), "");
}

TEST(FoundationErrorsTest, LongNamesAreInvalidNames) {
  NSError error = nullptr;
  const std::string name = "/" + std::string(300, 'x');
  const NSFileManager files = NSFileManager::defaultManager();
  EXPECT_EQ(files->contentsOfDirectoryAtPath(name, &error), nullptr);
  EXPECT_EQ(error->code(), NSFileReadInvalidFileNameError);
  EXPECT_FALSE(files->createDirectoryAtPath(name, false, nullptr, &error));
  EXPECT_EQ(error->code(), NSFileWriteInvalidFileNameError);
  EXPECT_FALSE(files->createDirectoryAtPath(name, false, nullptr, nullptr));
}

}  // namespace
}  // namespace brindle
