#include <Brindle/Platform/NSMethodSignature.h>

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

TEST(NSMethodSignatureTest, Tour) {
  const auto signature = NSMethodSignature::signatureWithObjCTypes("q24@0:8@16");
  EXPECT_EQ(signature->numberOfArguments(), 3u);
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(0), "@");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(1), ":");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(2), "@");
  EXPECT_STREQ(signature->methodReturnType(), "q");
  EXPECT_EQ(signature->methodReturnLength(), 8u);
  EXPECT_EQ(signature->frameLength(), 24u);
  EXPECT_STREQ(signature->objCTypes(), "q24@0:8@16");
}

TEST(NSMethodSignatureTest, EqualEncodingsAreOneObject) {
  const auto a = NSMethodSignature::signatureWithObjCTypes("v20@0:8i16");
  EXPECT_TRUE(a == NSMethodSignature::signatureWithObjCTypes("v20@0:8i16"));
  const auto bare = NSMethodSignature::signatureWithObjCTypes("v@:i");
  EXPECT_FALSE(a == bare);
  EXPECT_TRUE(a->isEqual(bare)) << "offsets are no part of a message";
  EXPECT_EQ(a->hash(), bare->hash());
  EXPECT_EQ(bare->frameLength(), 20u);
  EXPECT_FALSE(a->isEqual(NSMethodSignature::signatureWithObjCTypes("v@:I")));
  EXPECT_FALSE(a->isEqual(NSMethodSignature::signatureWithObjCTypes("i@:i")));
  EXPECT_FALSE(a->isEqual(NSMethodSignature::signatureWithObjCTypes("v@:")));
  EXPECT_FALSE(a->isEqual(nullptr));
  EXPECT_FALSE(a->isEqual(NSObject::new_()));
}

TEST(NSMethodSignatureTest, SizesOfResults) {
  const struct {
    const char* type;
    NSUInteger size;
  } kTypes[] = {
      {"v", 0},
      {"c", 1},
      {"C", 1},
      {"B", 1},
      {"s", 2},
      {"S", 2},
      {"i", 4},
      {"I", 4},
      {"l", 4},
      {"L", 4},
      {"q", 8},
      {"Q", 8},
      {"f", 4},
      {"d", 8},
      {"D", 16},
      {"@", 8},
      {"#", 8},
      {":", 8},
      {"*", 8},
      {"r*", 8},
      {"^v", 8},
      {"^@", 8},
      {"@?", 8},
      {"^?", 8},
      {"^i", 8},
      {"^^{Opaque}", 8},
      {"@\"NSString\"", 8},
      {"{_NSRange=QQ}", 16},
      {"{Mixed=cd}", 16},
      {"{Odd=ccc}", 3},
      {"{Rect={Point=dd}{Size=dd}}", 32},
      {"^{_NSZone=}", 8},
      {"^{Opaque}", 8},
      {"^{Buffer=[16c]i}", 8},
      {"^[12i]", 8},
      {"^(Either=if)", 8},
      {"^{Bits=b3b5}", 8},
      {"{_NSRange=\"location\"Q\"length\"Q}", 16},
      {"Vv", 0},
      {"{Tail=qc}", 16},
  };
  for (const auto& t : kTypes) {
    const std::string types = std::string(t.type) + "16@0:8";
    NSMethodSignature signature;
    EXPECT_EQ(raised([&] { signature = NSMethodSignature::signatureWithObjCTypes(types.c_str()); }),
              "");
    EXPECT_EQ(signature->methodReturnLength(), t.size) << t.type;
  }
}

TEST(NSMethodSignatureTest, QualifiersBelongToTheirTypes) {
  const auto signature = NSMethodSignature::signatureWithObjCTypes("Vv32@0:8r*16no^@24");
  EXPECT_STREQ(signature->methodReturnType(), "Vv");
  EXPECT_EQ(signature->numberOfArguments(), 4u);
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(2), "r*");
  EXPECT_STREQ(signature->getArgumentTypeAtIndex(3), "no^@");
}

TEST(NSMethodSignatureTest, TextThatIsNoEncodingRaises) {
  EXPECT_NE(raised([] {
              NSMethodSignature::signatureWithObjCTypes(nullptr);
            }).find("NSInvalidArgumentException"),
            std::string::npos);
  for (const char* text : {"",        "v",       "v@",       "x@:",    "v16@0:8x16",
                           "v@:v",    "v@:{",    "v@:{A",    "v@:{A=", "v@:{A=i",
                           "v@:{A=}", "v@:{A}",  "v@:^",     "v@:\"",  "v@:@\"NSString",
                           "{A=v}@:", "v@:[4i]", "v@:(U=i)", "v@:b4",  "v@: ",
                           "v@:^{A",  "v@:^[4",  "@",        "8@0:8",  "vcc",
                           "v:@",     "v@q",     "vd:",      "v@?i"}) {
    EXPECT_NE(raised([text] {
                NSMethodSignature::signatureWithObjCTypes(text);
              }).find("NSInvalidArgumentException"),
              std::string::npos)
        << text;
  }
}

TEST(NSMethodSignatureTest, AllocRaisesSinceThereAreNoEmptyOnes) {
  EXPECT_EQ(
      raised([] { NSMethodSignature::new_(); }),
      "NSInvalidArgumentException: a method signature is made by signatureWithObjCTypes:, not "
      "by alloc");
}

TEST(NSMethodSignatureTest, HostileEncodings) {
  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "{A=";
  const std::string pointers(100'000, '^');
  for (const std::string& text : {deep, "v@:" + deep, "v@:" + pointers + "v", "v@:^" + deep}) {
    EXPECT_NE(raised([&] { NSMethodSignature::signatureWithObjCTypes(text.c_str()); }), "");
  }
  const std::string wide = "v@:" + std::string(5000, 'i');
  EXPECT_EQ(NSMethodSignature::signatureWithObjCTypes(wide.c_str())->numberOfArguments(), 5002u);
  EXPECT_EQ(NSMethodSignature::signatureWithObjCTypes("v99999999999999999999@-8:+8")->frameLength(),
            16u);
}

TEST(NSMethodSignatureTest, IndicesBeyondTheLastRaise) {
  const auto signature = NSMethodSignature::signatureWithObjCTypes("v16@0:8");
  EXPECT_NE(
      raised([&] { signature->getArgumentTypeAtIndex(2); }).find("NSInvalidArgumentException"),
      std::string::npos);
  EXPECT_NE(raised([&] { signature->getArgumentTypeAtIndex(~NSUInteger{0}); }), "");
}

TEST(NSMethodSignatureTest, NilAnswersNothing) {
  const NSMethodSignature none;
  EXPECT_EQ(none->numberOfArguments(), 0u);
  EXPECT_EQ(none->methodReturnType(), nullptr);
}

TEST(NSMethodSignatureTest, ManyThreadsAgree) {
  std::vector<NSMethodSignature> found(8);
  std::vector<std::thread> threads;
  for (auto& each : found) {
    threads.emplace_back([&each] {
      for (int i = 0; i < 50; ++i) {
        const std::string types = "{Race" + std::to_string(i) + "=ii}@:";
        each = NSMethodSignature::signatureWithObjCTypes(types.c_str());
      }
    });
  }
  for (std::thread& t : threads) t.join();
  for (const auto& each : found) EXPECT_TRUE(each == found.front());
}

}  // namespace
}  // namespace brindle
