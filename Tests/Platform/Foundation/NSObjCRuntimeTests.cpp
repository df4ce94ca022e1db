#include <Brindle/Platform/NSObjCRuntime.h>

#include <gtest/gtest.h>

#include <regex>
#include <string>

#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Protocol.h>
#include <Brindle/Platform/Runtime.h>

namespace brindle {
namespace {

constinit ProtocolRecord kDrawing{"Drawing"};

TEST(NSObjCRuntimeTest, Tour) {
  EXPECT_EQ(std::string(NSStringFromSelector(selector<"objectAtIndex:">())), "objectAtIndex:");
  EXPECT_EQ(NSSelectorFromString("length"_ns), selector<"length">());
  EXPECT_EQ(std::string(NSStringFromClass(NSString::class_())), "NSString");
  EXPECT_EQ(NSClassFromString("NSString"_ns), NSString::class_());
  EXPECT_EQ(std::string(NSStringFromProtocol(kDrawing)), "Drawing");
}

TEST(NSObjCRuntimeTest, NothingGivesNothing) {
  EXPECT_FALSE(NSStringFromSelector(nullptr));
  EXPECT_EQ(NSSelectorFromString(nullptr), nullptr);
  EXPECT_FALSE(NSStringFromClass(nullptr));
  EXPECT_FALSE(NSClassFromString(nullptr));
  EXPECT_FALSE(NSClassFromString("NoSuchClass"_ns));
  EXPECT_FALSE(NSStringFromProtocol(nullptr));
}

TEST(NSObjCRuntimeTest, LogsALineWithTimeProgramAndProcess) {
  testing::internal::CaptureStderr();
  NSLog("%@ has %d\n"_ns, "caf\u00E9"_ns, 3);
  NSLog("second"_ns);
  NSLog(nullptr);
  const std::string log = testing::internal::GetCapturedStderr();
  const std::string prefix = R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} [^ ]+\[\d+:\d+\] )";
  const std::regex lines(prefix + "caf\u00E9 has 3\n" + prefix + "second\n");
  EXPECT_TRUE(std::regex_match(log, lines)) << log;
}

}  // namespace
}  // namespace brindle
