// Whoever asks for a change of methods is remembered with it, not the library that makes it.
#include <dlfcn.h>

#include <string>
#include <vector>

#include <Brindle/BDClassMixIn.h>
#include <Brindle/BDSwizzle.h>
#include <Brindle/Platform/MethodChanges.h>
#include <gtest/gtest.h>

#include "Tests/Source/MethodsTesting.h"

namespace brindle {
namespace {

/// The file of the code that holds the address.
std::string fileOf(const void* address) {
  Dl_info image{};
  return ::dladdr(address, &image) != 0 ? image.dli_fname : "";
}

/// A class with the methods `one` and `two`, and how many changes it has seen.
class OriginTest : public testing::Test {
 protected:
  OriginTest() {
    addAnswer<1>(cls, one);
    addAnswer<2>(cls, two);
    addAnswer<3>(meta, one);
    addAnswer<4>(meta, two);
  }

  /// Whether each change since the last call, one at least, was asked for by this program.
  bool isOurs(Class changed) {
    static const int here = 0;
    std::size_t& seen = changed == cls ? seen_ : seenOfMeta_;
    const std::vector<MethodChange> story = class_copyMethodChanges(changed);
    bool ours = story.size() > seen;
    for (std::size_t i = seen; i < story.size(); ++i) {
      ours = ours && fileOf(story[i].from) == fileOf(&here);
    }
    seen = story.size();
    return ours;
  }

  const SEL one = unusedSelector("one");
  const SEL two = unusedSelector("two");
  const Class cls = makeClass(NSObject::class_());
  const Class meta = object_getClass(cls);

 private:
  std::size_t seen_ = class_copyMethodChanges(cls).size();
  std::size_t seenOfMeta_ = class_copyMethodChanges(meta).size();
};

TEST_F(OriginTest, OfPlainFunctions) {
  EXPECT_TRUE(isOurs(cls));
  EXPECT_FALSE(isOurs(cls)) << "nothing new";
  class_cacheMethodImp(cls, one);
  EXPECT_TRUE(isOurs(cls));
  class_pullUpInstanceMethod(
      cls, class_getInstanceMethod(NSObject::class_(), selector<"description">()));
  EXPECT_TRUE(isOurs(cls));
  class_replaceMethodImp(cls, one, answering<5>().implementation);
  EXPECT_TRUE(isOurs(cls));
  method_swizzle(cls, one, two);
  EXPECT_TRUE(isOurs(cls));
  class_swizzleMethodAndStore(cls, one, answering<6>().implementation, nullptr);
  EXPECT_TRUE(isOurs(cls));
}

TEST_F(OriginTest, OfMessages) {
  swizzle(cls, one, two);
  EXPECT_TRUE(isOurs(cls));
  swizzle(cls, one, answering<6>().implementation, nullptr);
  EXPECT_TRUE(isOurs(cls));
  EXPECT_TRUE(isOurs(meta));
  swizzleClassMethod(cls, one, two);
  EXPECT_TRUE(isOurs(meta));
  swizzleClassMethod(cls, one, answering<7>().implementation, nullptr);
  EXPECT_TRUE(isOurs(meta));
  EXPECT_EQ(ask(cls, one), 7);
}

TEST_F(OriginTest, OfTokens) {
  EXPECT_TRUE(isOurs(cls));
  SwizzleToken token = scopedSwizzle(cls, one, [](const NSObject&) { return 8; });
  EXPECT_TRUE(isOurs(cls));
  token.end();
  EXPECT_TRUE(isOurs(cls));
}

TEST_F(OriginTest, OfMixIns) {
  const Class mixIn = makeClass(NSObject::class_());
  addAnswer<9>(mixIn, one);
  EXPECT_TRUE(isOurs(cls));
  class_mixIn(cls, mixIn);
  EXPECT_TRUE(isOurs(cls));
  EXPECT_EQ(ask(newObject(cls), one), 9);
}

}  // namespace
}  // namespace brindle
