// The code that the guide to paths shows.
#include <gtest/gtest.h>
#include <unistd.h>

#include <Brindle/BDUserDefaultsAdditions.h>
#include <Brindle/Platform/NSFileManager.h>
#include <Brindle/Platform/NSPathUtilities.h>
#include <Brindle/Platform/NSStringFiles.h>

namespace brindle {
namespace {

TEST(PathsGuide, Paths) {
  // [example: paths]
  const NSString draft = stringByAppendingPathComponent("/var/letters/"_ns, "ann.draft.txt"_ns);
  const NSString name = lastPathComponent(draft);                    // ann.draft.txt
  const NSString kind = pathExtension(draft);                        // txt
  const NSString bare = stringByDeletingPathExtension(name);         // ann.draft
  const NSString folder = stringByDeletingLastPathComponent(draft);  // /var/letters
  // [end]
  EXPECT_EQ(std::string(bare), "ann.draft");
  EXPECT_EQ(std::string(kind), "txt");
  EXPECT_EQ(std::string(folder), "/var/letters");
}

TEST(PathsGuide, Files) {
  const NSString place = stringByAppendingPathComponent(
      NSTemporaryDirectory(), NSString::stringWithFormat("brindle-guide-%d"_ns, ::getpid()));
  NSString problem = nullptr;
  // [example: paths-files]
  const NSFileManager files = NSFileManager::defaultManager();
  const NSString from = stringByAppendingPathComponent(place, "draft"_ns);
  const NSString to = stringByAppendingPathComponent(place, "letter"_ns);

  NSError error = nullptr;
  if (!files->createDirectoryAtPath(place, true, nullptr, &error) ||
      !writeToFile("Dear Ann"_ns, from, true, NSUTF8StringEncoding, &error) ||
      !files->moveItemAtPath(from, to, &error)) {
    problem = error->localizedDescription();
  }
  if (!files->moveItemAtPath(from, to, &error) && error->code() == NSFileNoSuchFileError) {
    problem = error->localizedDescription();  // .../draft: No such file or directory
  }
  // [end]
  EXPECT_EQ(std::string(problem), std::string(from) + ": No such file or directory");
  EXPECT_TRUE(files->removeItemAtPath(place, nullptr));
}

TEST(PathsGuide, Folders) {
  // [example: paths-folders]
  const NSArray support =
      NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, true);
  const auto mine = cast<NSString>(support->firstObject());  // /home/ann/.local/share

  // $HOME, if it is set; and what the user database has, whatever $HOME says.
  const NSString home = stringByExpandingTildeInPath("~/Letters"_ns);
  const NSString own = stringByExpandingTildeInPathUsingUserHomePath("~/Letters"_ns);
  // [end]
  EXPECT_TRUE(isAbsolutePath(mine));
  EXPECT_EQ(std::string(lastPathComponent(home)), "Letters");
  EXPECT_EQ(std::string(lastPathComponent(own)), "Letters");
}

}  // namespace
}  // namespace brindle
