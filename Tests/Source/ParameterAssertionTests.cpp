#include "Source/Internal/ParameterAssertion.h"

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSThread.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

const internal::ParameterAssertion kAssertion{"Source/BDExample"_ns, 23, "[keys count] > 0"};

TEST(ParameterAssertionTest, DoesNothingWhenItHolds) {
  internal::assertParameter(true, kAssertion, selector<"count">(), "receiver"_ns);
}

TEST(ParameterAssertionTest, GoesToTheHandlerWithFileLineAndCondition) {
  testing::internal::CaptureStderr();
  const NSException raised = raisedBy(
      [] { internal::assertParameter(false, kAssertion, selector<"count">(), "receiver"_ns); });
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(raised->name()->isEqual(NSInternalInconsistencyException));
  EXPECT_EQ(std::string(raised->reason()), "Invalid parameter not satisfying: [keys count] > 0");
  EXPECT_NE(log.find("-[NSString count], Source/BDExample:23"), std::string::npos) << log;
}

}  // namespace
}  // namespace brindle
