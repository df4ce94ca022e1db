#include <Brindle/BDCleanup.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(BDCleanupTest, Tour) {
  int calls = 0;
  BDCleanup cleanup = BDCleanup::cleanupWithCall([&calls] { ++calls; });
  BDCleanup second = cleanup;
  cleanup = nullptr;
  EXPECT_EQ(calls, 0) << "somebody has it still";
  second = nullptr;
  EXPECT_EQ(calls, 1);

  BDCleanup::cleanupWithCall([&calls] { ++calls; });
  EXPECT_EQ(calls, 2) << "nobody ever kept it";
}

TEST(BDCleanupTest, RunsWhenTheBlockThatCapturesItGoes) {
  int calls = 0;
  Block<void()> block;
  {
    const BDCleanup cleanup = BDCleanup::cleanupWithCall([&calls] { ++calls; });
    block = [cleanup] { cleanup->capture(); };
  }
  block();
  EXPECT_EQ(calls, 0);
  block = nullptr;
  EXPECT_EQ(calls, 1);
}

TEST(BDCleanupTest, WithoutABlockDoesNothing) {
  BDCleanup cleanup = BDCleanup::cleanup();
  EXPECT_TRUE(cleanup->call() == nullptr);
  cleanup = nullptr;
  cleanup = BDCleanup::new_();
  cleanup = BDCleanup::cleanupWithCall(nullptr);
  EXPECT_TRUE(cleanup->call() == nullptr);
}

TEST(BDCleanupTest, NilDisarms) {
  int calls = 0;
  BDCleanup cleanup = BDCleanup::cleanupWithCall([&calls] { ++calls; });
  cleanup->setCall(nullptr);
  cleanup = nullptr;
  EXPECT_EQ(calls, 0);
}

TEST(BDCleanupTest, ABlockMayBeReplaced) {
  std::string run;
  BDCleanup cleanup = BDCleanup::cleanupWithCall([&run] { run += "first "; });
  const Block<void()> first = cleanup->call();
  cleanup->setCall([&run] { run += "second "; });
  cleanup = nullptr;
  EXPECT_EQ(run, "second ");
  first();
  EXPECT_EQ(run, "second first ");
}

TEST(BDCleanupTest, ReleasesWhatItsBlockCaptured) {
  Mortal mortal = Mortal::new_();
  BDCleanup cleanup = BDCleanup::cleanupWithCall([mortal] { mortal->setTag(1); });
  mortal = nullptr;
  EXPECT_EQ(Mortal::living(), 1);
  cleanup = nullptr;
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(BDCleanupTest, AutoreleasedRunsWithItsPool) {
  int calls = 0;
  {
    const AutoreleasePool pool;
    BDCleanup::cleanupWithCall([&calls] { ++calls; })->autorelease();
    EXPECT_EQ(calls, 0);
  }
  EXPECT_EQ(calls, 1);
}

TEST(BDCleanupTest, RunsOnTheThreadThatLetsGo) {
  std::thread::id ran;
  BDCleanup cleanup = BDCleanup::cleanupWithCall([&ran] { ran = std::this_thread::get_id(); });
  std::thread other([mine = static_cast<BDCleanup&&>(cleanup)]() mutable { mine = nullptr; });
  const std::thread::id expected = other.get_id();
  other.join();
  EXPECT_EQ(ran, expected);
}

TEST(BDCleanupTest, ARaiseLeavesTheRelease) {
  Mortal mortal = Mortal::new_();
  BDCleanup cleanup = BDCleanup::cleanupWithCall([mortal] {
    mortal->setTag(1);
    NSException::raise("Oops"_ns, "no end"_ns);
  });
  mortal = nullptr;
  EXPECT_EQ(raised([&cleanup] { cleanup = nullptr; }), "Oops: no end");
  EXPECT_TRUE(cleanup == nullptr);
  EXPECT_EQ(Mortal::living(), 0) << "the memory is not lost";
}

/// Counts how often its block is asked for.
class AskedCleanup : public Interface<AskedCleanup, BDCleanup> {
 public:
  using Interface::Interface;
  static ClassPair<AskedCleanup> classPair;
};
int asked = 0;
constexpr MethodDefinition kAskedMethods[] = {
    method<"call">([](const AskedCleanup& self) {
      ++asked;
      return sendSuper<AskedCleanup, "call", Block<void()>>(self);
    }),
};
constexpr ClassDefinition kAsked{.name = "AskedCleanup", .methods = kAskedMethods};

}  // namespace
constinit ClassPair<AskedCleanup> AskedCleanup::classPair{kAsked};
namespace {

TEST(BDCleanupTest, ReadsItsBlockThroughTheGetter) {
  int calls = 0;
  asked = 0;
  AskedCleanup cleanup = AskedCleanup::class_()->cleanupWithCall([&calls] { ++calls; });
  cleanup = nullptr;
  EXPECT_EQ(asked, 2) << "once to see whether there is one, once to run it";
  EXPECT_EQ(calls, 1);
  cleanup = AskedCleanup::class_()->cleanup();
  asked = 0;
  cleanup = nullptr;
  EXPECT_EQ(asked, 1);
}

TEST(BDCleanupTest, IsMadeByItsOwnMessages) {
  const Class cls = makeClass(BDCleanup::class_());
  static std::string sent;
  addMethod<"cleanup">(object_getClass(cls), [](const ClassOf<BDCleanup>& self) -> BDCleanup {
    sent += "cleanup ";
    return self->alloc()->init();
  });
  addMethod<"setCall:">(cls, [](const BDCleanup& self, const Block<void()>& call) {
    sent += "setCall: ";
    const SEL setCall = selector<"setCall:">();
    callImplementation<void>(class_getMethodImplementation(BDCleanup::class_(), setCall), self,
                             setCall, call);
  });
  const auto cleanup = ClassOf<BDCleanup>(cls)->cleanupWithCall([] {});
  EXPECT_TRUE(object_getClass(cleanup) == cls);
  EXPECT_EQ(sent, "cleanup setCall: ");
  EXPECT_TRUE(cleanup->call() != nullptr);
}

TEST(BDCleanupTest, RunsBeforeItsOwnValuesGo) {
  BDCleanup cleanup = BDCleanup::cleanup();
  const int before = Mortal::living();
  objc_setAssociatedObject(cleanup, "key", Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
  int living = 0;
  cleanup->setCall([&living] { living = Mortal::living(); });
  cleanup = nullptr;
  EXPECT_EQ(living, before + 1);
  EXPECT_EQ(Mortal::living(), before);
}

TEST(BDCleanupTest, HasADeclaredProperty) {
  const objc_property_t property = class_getProperty(BDCleanup::class_(), "call");
  ASSERT_NE(property, nullptr);
  EXPECT_STREQ(property_getAttributes(property), "T@?,C,Vcall");
  EXPECT_NE(class_getInstanceVariable(BDCleanup::class_(), "call"), nullptr);
}

TEST(BDCleanupTest, OneThreadReadsWhileAnotherSets) {
  std::atomic<int> calls{0};
  std::atomic<bool> stop{false};
  BDCleanup cleanup = BDCleanup::cleanup();
  std::thread reader([&] {
    while (!stop) {
      if (const Block<void()> call = cleanup->call()) call();
    }
  });
  for (int i = 0; i < 5000; ++i) {
    if (i % 3 == 0)
      cleanup->setCall(nullptr);
    else
      cleanup->setCall([&calls] { ++calls; });
  }
  stop = true;
  reader.join();
  const int before = calls;
  cleanup->setCall([&calls] { ++calls; });
  cleanup = nullptr;
  EXPECT_EQ(calls, before + 1);
}

}  // namespace
}  // namespace brindle
