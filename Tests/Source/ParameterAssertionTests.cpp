#include "Source/Internal/ParameterAssertion.h"

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSThread.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

const internal::ParameterAssertion kAssertion{"Source/BDExample"_ns, 23, "[keys count] > 0"};

/// A handler that notes the failure and lets the operation go on.
class PatientHandler : public Interface<PatientHandler, NSAssertionHandler> {
 public:
  using Interface::Interface;
  static ClassPair<PatientHandler> classPair;
};

std::string failure;

constexpr MethodDefinition kMethods[] = {
    method<"handleFailureInMethod:object:file:lineNumber:description:">(
        [](const PatientHandler&, SEL selector, const id& object, const NSString& file,
           NSInteger line, const NSString& format, const FormatArguments& arguments) {
          failure = std::string(sel_getName(selector)) + "|" + std::string(cast<NSString>(object)) +
                    "|" + std::string(file) + "|" + std::to_string(line) + "|" +
                    std::string(format) + "|" +
                    std::string(detail::formatString(format, arguments.list));
        }),
};
constexpr ClassDefinition kDefinition{.name = "PatientHandler", .methods = kMethods};

}  // namespace

constinit ClassPair<PatientHandler> PatientHandler::classPair{kDefinition};

namespace {

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

TEST(ParameterAssertionTest, AHandlerThatReturnsLetsTheOperationGoOn) {
  const NSMutableDictionary dictionary = NSThread::currentThread()->threadDictionary();
  dictionary->setObject(PatientHandler::alloc()->init(), NSAssertionHandlerKey);
  failure.clear();
  internal::assertParameter(true, kAssertion, selector<"count">(), "receiver"_ns);
  EXPECT_EQ(failure, "");
  internal::assertParameter(false, kAssertion, selector<"count">(), "receiver"_ns);
  dictionary->removeObjectForKey(NSAssertionHandlerKey);
  EXPECT_EQ(failure,
            "count|receiver|Source/BDExample|23|Invalid parameter not satisfying: %s|"
            "Invalid parameter not satisfying: [keys count] > 0");
}

}  // namespace
}  // namespace brindle
