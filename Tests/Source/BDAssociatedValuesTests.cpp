#include <Brindle/BDAssociatedValues.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>
#include <gtest/gtest.h>

namespace brindle {
namespace {

constexpr char kFlag = 0;
constexpr char kCount = 0;

constexpr AssociationKey<NSString> kTitle;
constexpr AssociationKey<NSString> kName{OBJC_ASSOCIATION_COPY};
constexpr AssociationKey<bool> kSeen;
constexpr AssociationKey<int> kScore;
constexpr AssociationKey<std::uint8_t> kLevel;

TEST(BDAssociatedValuesTest, Tour) {
  const NSObject object = NSObject::new_();
  EXPECT_FALSE(objc_getAssociatedBool(object, &kFlag));
  objc_setAssociatedBool(object, &kFlag, true);
  EXPECT_TRUE(objc_getAssociatedBool(object, &kFlag));

  objc_setAssociatedInteger(object, &kCount, -7);
  EXPECT_EQ(objc_getAssociatedInteger(object, &kCount), -7);
  objc_setAssociatedUnsignedInteger(object, &kCount, 8);
  EXPECT_EQ(objc_getAssociatedUnsignedInteger(object, &kCount), 8u);

  EXPECT_TRUE(objc_getAssociatedBool(object, &kFlag)) << "another key";
  EXPECT_FALSE(objc_getAssociatedBool(NSObject::new_(), &kFlag)) << "another object";
}

TEST(BDAssociatedValuesTest, NothingSetReadsZero) {
  const NSObject object = NSObject::new_();
  EXPECT_FALSE(objc_getAssociatedBool(object, &kFlag));
  EXPECT_EQ(objc_getAssociatedInteger(object, &kFlag), 0);
  EXPECT_EQ(objc_getAssociatedUnsignedInteger(object, &kFlag), 0u);
}

TEST(BDAssociatedValuesTest, NilHasNoValuesAndTakesNone) {
  objc_setAssociatedBool(id(), &kFlag, true);
  objc_setAssociatedInteger(id(), &kFlag, 1);
  objc_setAssociatedUnsignedInteger(nullptr, &kFlag, 1);
  EXPECT_FALSE(objc_getAssociatedBool(id(), &kFlag));
  EXPECT_EQ(objc_getAssociatedInteger(id(), &kFlag), 0);
  EXPECT_EQ(objc_getAssociatedUnsignedInteger(nullptr, &kFlag), 0u);
}

TEST(BDAssociatedValuesTest, KeepsTheWholeRange) {
  const NSObject object = NSObject::new_();
  for (const NSInteger value : {std::numeric_limits<NSInteger>::min(), NSInteger{-1}, NSInteger{0},
                                std::numeric_limits<NSInteger>::max()}) {
    objc_setAssociatedInteger(object, &kCount, value);
    EXPECT_EQ(objc_getAssociatedInteger(object, &kCount), value);
  }
  objc_setAssociatedUnsignedInteger(object, &kCount, std::numeric_limits<NSUInteger>::max());
  EXPECT_EQ(objc_getAssociatedUnsignedInteger(object, &kCount),
            std::numeric_limits<NSUInteger>::max());
  EXPECT_EQ(objc_getAssociatedInteger(object, &kCount), -1);
}

TEST(BDAssociatedValuesTest, TheKindsShareTheirKeys) {
  const NSObject object = NSObject::new_();
  objc_setAssociatedInteger(object, &kCount, 256);
  EXPECT_TRUE(objc_getAssociatedBool(object, &kCount)) << "not the low byte, which is 0";
  objc_setAssociatedInteger(object, &kCount, 0);
  EXPECT_FALSE(objc_getAssociatedBool(object, &kCount));
  objc_setAssociatedBool(object, &kCount, true);
  EXPECT_EQ(objc_getAssociatedInteger(object, &kCount), 1);
  EXPECT_EQ(objc_getAssociatedUnsignedInteger(object, &kCount), 1u);
  objc_setAssociatedObject(object, &kCount, "12 apples"_ns, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(objc_getAssociatedInteger(object, &kCount), 12) << "whatever object is there";
}

TEST(BDAssociatedValuesTest, ValuesAreNumbersThatTheObjectOwns) {
  NSObject object = NSObject::new_();
  objc_setAssociatedInteger(object, &kCount, 1000);
  id first = objc_getAssociatedObject(object, &kCount);
  EXPECT_TRUE(isa<NSNumber>(first));
  EXPECT_EQ(first->retainCount(), 2u);
  objc_setAssociatedInteger(object, &kCount, 1001);
  EXPECT_EQ(first->retainCount(), 1u) << "the replaced number is released";
  id second = objc_getAssociatedObject(object, &kCount);
  object = nullptr;
  EXPECT_EQ(second->retainCount(), 1u) << "gone with its object";

  object = NSObject::new_();
  objc_setAssociatedBool(object, &kFlag, true);
  EXPECT_TRUE(objc_getAssociatedObject(object, &kFlag) == NSNumber::numberWithBool(true));
}

TEST(BDAssociatedValuesTest, AnyTruthOfCIsYes) {
  const NSObject object = NSObject::new_();
  objc_setAssociatedBool(object.record(), &kFlag, BOOL{-128});
  EXPECT_EQ(objc_getAssociatedBool(object.record(), &kFlag), YES);
}

TEST(BDAssociatedValuesTest, ClassesHaveValues) {
  objc_setAssociatedBool(NSString::class_(), &kFlag, true);
  EXPECT_TRUE(objc_getAssociatedBool(NSString::class_(), &kFlag));
  EXPECT_FALSE(objc_getAssociatedBool(NSMutableString::class_(), &kFlag)) << "not inherited";
  objc_setAssociatedBool(NSString::class_(), &kFlag, false);
  EXPECT_FALSE(objc_getAssociatedBool(NSString::class_(), &kFlag));
  objc_removeAssociatedObjects(NSString::class_());
}

TEST(BDAssociatedValuesTest, ThreadsOnDifferentObjectsLoseNothingToEachOther) {
  constexpr NSInteger kObjects = 2000;
  std::atomic<int> lost{0};
  std::vector<std::thread> threads;
  for (NSInteger t = 0; t < 4; ++t) {
    threads.emplace_back([&lost, t] {
      std::vector<NSObject> objects;
      for (NSInteger i = 0; i < kObjects; ++i) {
        objects.push_back(NSObject::new_());
        objc_setAssociatedInteger(objects.back(), &kCount, t * kObjects + i);
        if (i % 3 == 0) objects[static_cast<std::size_t>(i / 2)] = nullptr;
      }
      for (NSInteger i = 0; i < kObjects; ++i) {
        const NSObject& object = objects[static_cast<std::size_t>(i)];
        if (object && objc_getAssociatedInteger(object, &kCount) != t * kObjects + i) ++lost;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(lost, 0);
}

TEST(AssociationKeyTest, Tour) {
  const NSObject page = NSObject::new_();
  EXPECT_TRUE(kTitle.get(page) == nullptr);
  EXPECT_FALSE(kTitle.isSet(page));
  kTitle.set(page, "Home"_ns);
  EXPECT_EQ(kTitle.get(page)->length(), 4u);
  EXPECT_TRUE(kName.get(page) == nullptr) << "another key";

  kSeen.set(page, true);
  kScore.set(page, -3);
  kLevel.set(page, 200);
  EXPECT_TRUE(kSeen.get(page));
  EXPECT_EQ(kScore.get(page), -3);
  EXPECT_EQ(kLevel.get(page), 200);
  EXPECT_EQ(objc_getAssociatedInteger(page, &kScore), -3) << "the key is the variable's address";
}

TEST(AssociationKeyTest, ZeroIsAValueToo) {
  const NSObject page = NSObject::new_();
  EXPECT_FALSE(kScore.isSet(page));
  kScore.set(page, 0);
  EXPECT_TRUE(kScore.isSet(page));
  kScore.remove(page);
  EXPECT_FALSE(kScore.isSet(page));
  kTitle.set(page, "x"_ns);
  kTitle.set(page, nullptr);
  EXPECT_FALSE(kTitle.isSet(page)) << "nil is none";
}

TEST(AssociationKeyTest, HoldsObjectsByItsPolicy) {
  const NSObject page = NSObject::new_();
  const auto text = cast<NSMutableString>(NSMutableString::string());
  text->appendString("a"_ns);
  kTitle.set(page, text);
  kName.set(page, text);
  text->appendString("b"_ns);
  EXPECT_TRUE(kTitle.get(page) == text);
  EXPECT_TRUE(kName.get(page)->isEqual("a"_ns));
}

TEST(AssociationKeyTest, HoldsBlocks) {
  static constexpr AssociationKey<Block<int(int)>> kTwice{OBJC_ASSOCIATION_COPY};
  const NSObject object = NSObject::new_();
  kTwice.set(object, [](int n) { return 2 * n; });
  EXPECT_EQ(kTwice.get(object)(21), 42);
}

// The last test of the suite: it changes NSNumber for good.
TEST(BDAssociatedValuesTest, AReplacedConversionOfNumbersIsAsked) {
  const NSObject object = NSObject::new_();
  const char key = 0;
  objc_setAssociatedInteger(object, &key, 1000);
  EXPECT_EQ(objc_getAssociatedInteger(object, &key), 1000);
  const Method method = class_getInstanceMethod(NSNumber::class_(), selector<"integerValue">());
  const IMP previous = method_setImplementation(
      method, implementation([](const NSNumber&) -> NSInteger { return 7; }).implementation);
  EXPECT_EQ(objc_getAssociatedInteger(object, &key), 7);
  method_setImplementation(method, previous);
  EXPECT_EQ(objc_getAssociatedInteger(object, &key), 1000);
}

}  // namespace
}  // namespace brindle
