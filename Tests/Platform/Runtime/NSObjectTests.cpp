#include <Brindle/Platform/NSObject.h>

#include <unordered_map>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSString.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(NSObjectTest, KnowsWhatItIs) {
  const Ender object = Ender::with([](const Ender&) {});
  EXPECT_TRUE(classOf(object) == Ender::class_());
  EXPECT_TRUE(object->superclass() == Mortal::class_());
  EXPECT_TRUE(object->isKindOfClass(NSObject::class_()));
  EXPECT_TRUE(object->isMemberOfClass(Ender::class_()));
  EXPECT_FALSE(object->isMemberOfClass(Mortal::class_()));
  EXPECT_TRUE(object->respondsToSelector(selector<"tag">()));
  EXPECT_FALSE(object->respondsToSelector(selector<"nobodyHasThis">()));
  EXPECT_FALSE(object->isProxy());
  EXPECT_TRUE(object->self() == object);
  EXPECT_TRUE(isa<Mortal>(object));
  EXPECT_EQ(object->retainCount(), 1U);
}

TEST(NSObjectTest, ClassesKnowThemselvesToo) {
  EXPECT_TRUE(Ender::class_()->isSubclassOfClass(Mortal::class_()));
  EXPECT_TRUE(Ender::class_()->isSubclassOfClass(Ender::class_()));
  EXPECT_FALSE(Mortal::class_()->isSubclassOfClass(Ender::class_()));
  EXPECT_FALSE(Mortal::class_()->isSubclassOfClass(nullptr));
  EXPECT_TRUE(Ender::class_()->superclass() == Mortal::class_());
  EXPECT_TRUE(NSObject::class_()->superclass() == nullptr);
  EXPECT_TRUE(Mortal::class_()->instancesRespondToSelector(selector<"tag">()));
  EXPECT_FALSE(NSObject::class_()->instancesRespondToSelector(selector<"tag">()));
  EXPECT_TRUE(classOf(Mortal::class_()) == Mortal::class_());
  EXPECT_TRUE(id(Mortal::class_())->isKindOfClass(NSObject::class_()));
}

TEST(NSObjectTest, IsEqualToItselfOnly) {
  const NSObject a = NSObject::new_();
  const NSObject b = NSObject::new_();
  EXPECT_TRUE(a->isEqual(a));
  EXPECT_FALSE(a->isEqual(b));
  EXPECT_FALSE(a->isEqual(nullptr));
  EXPECT_EQ(a->hash(), a->hash());
  EXPECT_NE(a->hash(), b->hash());
}

TEST(NSObjectTest, NilAnswersNo) {
  const NSObject none = nullptr;
  EXPECT_FALSE(none->isEqual(none));
  EXPECT_FALSE(none->isKindOfClass(NSObject::class_()));
  EXPECT_FALSE(none->respondsToSelector(selector<"self">()));
  EXPECT_EQ(none->hash(), 0U);
  EXPECT_TRUE(none->description() == nullptr);
  EXPECT_TRUE(none->superclass() == nullptr);
  EXPECT_FALSE(isa<NSObject>(none));
}

TEST(NSObjectTest, PerformsMessagesByName) {
  const Mortal holder = Mortal::new_();
  const NSObject object = NSObject::new_();
  holder->performSelector(selector<"setHeld:">(), object);
  EXPECT_TRUE(holder->performSelector(selector<"held">()) == object);
  EXPECT_NE(raised([&] { holder->performSelector(nullptr); }).find("NSInvalidArgumentException"),
            std::string::npos);
  EXPECT_NE(raised([&] {
              holder->performSelector(selector<"setTag:">(), object);
            }).find("which takes other arguments"),
            std::string::npos);
  EXPECT_TRUE(holder->performSelector(selector<"tag">()) == nullptr) << "no object is answered";
}

TEST(NSObjectTest, GivesItsCode) {
  const Mortal object = Mortal::new_();
  object->setTag(5);
  const IMP code = object->methodForSelector(selector<"tag">());
  EXPECT_EQ(code, Mortal::class_()->instanceMethodForSelector(selector<"tag">()));
  EXPECT_EQ((callImplementation<int>(code, object, selector<"tag">())), 5);
}

TEST(NSObjectTest, NarrowingHasThreeVerbs) {
  const id mortal = Mortal::new_();
  const id other = NSObject::new_();
  EXPECT_TRUE(cast<Mortal>(mortal) == mortal);
  EXPECT_TRUE(cast<Mortal>(id()) == nullptr);
  EXPECT_TRUE(dynCast<Mortal>(mortal) == mortal);
  EXPECT_TRUE(dynCast<Mortal>(other) == nullptr);
  EXPECT_FALSE(isa<Mortal>(other));
  EXPECT_NE(raised([&] { cast<Mortal>(other); }).find("cast to Mortal"), std::string::npos);
}

TEST(NSObjectTest, DescribesItselfByClassAndAddress) {
  const std::string text(NSObject::new_()->description());
  EXPECT_EQ(text.rfind("<NSObject: 0x", 0), 0U) << text;
  EXPECT_EQ(std::string(id(NSObject::class_())->description()), "NSObject");
}

TEST(NSObjectTest, RaisesForWhatItDoesNotAnswer) {
  const std::string text =
      raised([] { NSObject::new_()->doesNotRecognizeSelector(selector<"fly:">()); });
  EXPECT_NE(text.find("-[NSObject fly:]"), std::string::npos) << text;
  EXPECT_NE(text.find("unrecognized selector"), std::string::npos) << text;
}

TEST(NSObjectTest, ContentsAreKeysOfStandardContainers) {
  std::unordered_map<id, int, NSObjectHash, NSObjectEqual> map;
  map[NSString("a")] = 1;
  EXPECT_EQ(map[NSString("a")], 1);
  EXPECT_EQ(map.size(), 1U);
}

}  // namespace
}  // namespace brindle
