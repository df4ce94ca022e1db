#include <Brindle/Platform/Protocol.h>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constinit ProtocolRecord kShape{"Shape"};
constinit ProtocolRecord kRound{"Round", {&kShape}};
constinit ProtocolRecord kBall{"Ball", {&kRound}};
constinit ProtocolRecord kUnrelated{"Unrelated"};

class Football : public Interface<Football, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Football> classPair;
};
class Signed : public Interface<Signed, Football> {
 public:
  using Interface::Interface;
  static ClassPair<Signed> classPair;
};
constexpr ProtocolRecord* kProtocols[] = {&kBall};
constexpr ClassDefinition kFootball{.name = "Football", .protocols = kProtocols};
constexpr ClassDefinition kSigned{.name = "SignedFootball"};

}  // namespace
constinit ClassPair<Football> Football::classPair{kFootball};
constinit ClassPair<Signed> Signed::classPair{kSigned};
namespace {

TEST(ProtocolTest, Tour) {
  EXPECT_TRUE(Football::new_()->conformsToProtocol(kBall));
  EXPECT_TRUE(Football::class_()->conformsToProtocol(kRound)) << "included";
  EXPECT_TRUE(Signed::new_()->conformsToProtocol(kShape)) << "inherited and included";
  EXPECT_FALSE(Football::new_()->conformsToProtocol(kUnrelated));
  EXPECT_FALSE(NSObject::new_()->conformsToProtocol(kShape));
}

TEST(ProtocolTest, TheClassItself) {
  EXPECT_EQ(class_conformsToProtocol(Football::class_(), kShape), YES);
  EXPECT_EQ(class_conformsToProtocol(Signed::class_(), kShape), NO) << "not its superclasses";
}

TEST(ProtocolTest, ProtocolsAmongThemselves) {
  EXPECT_EQ(protocol_conformsToProtocol(kBall, kShape), YES);
  EXPECT_EQ(protocol_conformsToProtocol(kShape, kBall), NO);
  EXPECT_EQ(protocol_conformsToProtocol(kShape, kShape), YES);
  EXPECT_EQ(protocol_conformsToProtocol(kShape, nullptr), NO);
  EXPECT_EQ(protocol_conformsToProtocol(nullptr, kShape), NO);
  EXPECT_STREQ(protocol_getName(kBall), "Ball");
  EXPECT_EQ(protocol_getName(nullptr), nullptr);
}

TEST(ProtocolTest, AreFoundByNameOnceAClassAdoptsThem) {
  registerClass(Football::classPair);
  EXPECT_TRUE(objc_getProtocol("Ball") == Protocol(kBall));
  EXPECT_TRUE(objc_getProtocol("Shape") == Protocol(kShape));
  EXPECT_FALSE(objc_getProtocol("Unrelated"));
  EXPECT_FALSE(objc_getProtocol(nullptr));
}

TEST(ProtocolTest, AreAddedToClasses) {
  const Class cls = makeClass(NSObject::class_());
  EXPECT_EQ(class_addProtocol(cls, kUnrelated), YES);
  EXPECT_EQ(class_addProtocol(cls, kUnrelated), NO);
  EXPECT_TRUE(cast<NSObject>(send<"new", id>(cls))->conformsToProtocol(kUnrelated));
  EXPECT_EQ(class_addProtocol(makeClass(cls), kUnrelated), YES) << "only its own count";
  EXPECT_EQ(class_addProtocol(nullptr, kUnrelated), NO);
  EXPECT_EQ(class_addProtocol(cls, nullptr), NO);
  EXPECT_EQ(class_conformsToProtocol(nullptr, kUnrelated), NO);
}

TEST(ProtocolTest, AreListedForTheClassItself) {
  const Class cls = makeClass(NSObject::class_());
  EXPECT_TRUE(class_copyProtocolList(cls).empty());
  class_addProtocol(cls, kBall);
  class_addProtocol(cls, kUnrelated);
  const std::vector<Protocol> list = class_copyProtocolList(cls);
  ASSERT_EQ(list.size(), 2u);
  EXPECT_TRUE(list[0] == Protocol(kBall));
  EXPECT_TRUE(list[1] == Protocol(kUnrelated));
  EXPECT_TRUE(class_copyProtocolList(makeClass(cls)).empty()) << "only its own count";
  EXPECT_TRUE(class_copyProtocolList(nullptr).empty());
}

TEST(ProtocolTest, AreObjects) {
  const Protocol ball = kBall;
  EXPECT_TRUE(isa<Protocol>(ball));
  EXPECT_TRUE(ball->isEqual(Protocol(kBall)));
  EXPECT_FALSE(ball->isEqual(Protocol(kShape)));
  Protocol copy = ball;
  copy = nullptr;
  EXPECT_FALSE(NSObject()->conformsToProtocol(ball));
  EXPECT_FALSE(NSObject::new_()->conformsToProtocol(nullptr));
}

}  // namespace
}  // namespace brindle
