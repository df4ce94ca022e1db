#include "Platform/Foundation/Internal/LoadedImages.h"

#include <dlfcn.h>
#include <gnu/libc-version.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "Platform/Foundation/Internal/BundleLayout.h"

namespace brindle::internal {
namespace {

bool isAmong(const std::vector<LoadedImage>& images, std::string_view name) {
  return std::any_of(images.begin(), images.end(), [name](const LoadedImage& image) {
    return nameOf(image.path).starts_with(name);
  });
}

TEST(LoadedImagesTest, Tour) {
  EXPECT_TRUE(std::filesystem::equivalent(programPath(), "/proc/self/exe"));
  EXPECT_TRUE(isAmong(loadedImages(), "libc.so"));
  const std::string image = imageOf(reinterpret_cast<const void*>(&::gnu_get_libc_version));
  EXPECT_TRUE(nameOf(image).starts_with("lib")) << image;
}

TEST(LoadedImagesTest, TheProgramIsNoLibrary) {
  static const int here = 0;
  EXPECT_EQ(imageOf(&here), "");
  EXPECT_EQ(imageOf(nullptr), "");
  const std::string program = programPath();
  for (const LoadedImage& image : loadedImages()) {
    EXPECT_EQ(image.path[0], '/') << image.path;
    EXPECT_NE(image.path, program);
  }
}

TEST(LoadedImagesTest, SomeSayThatTheyStay) {
  void* handle = ::dlopen(BRINDLE_PLAIN_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
  ASSERT_NE(handle, nullptr) << ::dlerror();
  bool isThereOneThatGoes = false;
  for (const LoadedImage& image : loadedImages()) {
    const std::string_view name = nameOf(image.path);
    if (name.starts_with("libBrindle")) {
      EXPECT_TRUE(image.stays) << image.path;
    }
    if (name == nameOf(BRINDLE_PLAIN_LIBRARY)) isThereOneThatGoes = !image.stays;
  }
  EXPECT_TRUE(isThereOneThatGoes);
  ::dlclose(handle);
}

TEST(LoadedImagesTest, LoadingIsNoticed) {
  const unsigned long long before = imageGeneration();
  EXPECT_EQ(imageGeneration(), before);
  void* library = ::dlopen(BRINDLE_PLAIN_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
  ASSERT_NE(library, nullptr) << ::dlerror();
  EXPECT_NE(imageGeneration(), before);
  EXPECT_TRUE(isAmong(loadedImages(), nameOf(BRINDLE_PLAIN_LIBRARY)));
  ::dlclose(library);
}

// Loaded by a relative path, found after the current folder is another.
TEST(LoadedImagesTest, RelativeNamesAreFoundFromElsewhere) {
  const std::filesystem::path before = std::filesystem::current_path();
  const std::filesystem::path copy =
      std::filesystem::path(testing::TempDir()) / "libbrindle-relative.so";
  std::filesystem::copy_file(BRINDLE_PLAIN_LIBRARY, copy,
                             std::filesystem::copy_options::overwrite_existing);
  std::filesystem::current_path(copy.parent_path());
  void* library = ::dlopen("./libbrindle-relative.so", RTLD_LAZY | RTLD_LOCAL);
  std::filesystem::current_path("/");
  ASSERT_NE(library, nullptr) << ::dlerror();
  EXPECT_TRUE(isAmong(loadedImages(), "libbrindle-relative.so"));
  ::dlclose(library);
  std::filesystem::current_path(before);
  std::filesystem::remove(copy);
}

}  // namespace
}  // namespace brindle::internal
