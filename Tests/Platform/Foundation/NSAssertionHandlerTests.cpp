#include <Brindle/Platform/NSAssertionHandler.h>

#include <thread>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSThread.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

/// A handler that remembers what failed, and returns.
class QuietHandler : public Interface<QuietHandler, NSAssertionHandler> {
 public:
  using Interface::Interface;
  static ClassPair<QuietHandler> classPair;
  static std::string last;
};

std::string QuietHandler::last;

constexpr MethodDefinition kMethods[] = {
    method<"handleFailureInMethod:object:file:lineNumber:description:">(
        [](const QuietHandler&, SEL selector, const id&, const NSString& file, NSInteger line,
           const NSString& format, const FormatArguments& arguments) {
          QuietHandler::last = std::string(sel_getName(selector)) + " " + std::string(file) + ":" +
                               std::to_string(line) + " " +
                               std::string(detail::formatString(format, arguments.list));
        }),
};
constexpr ClassDefinition kDefinition{.name = "QuietHandler", .methods = kMethods};

}  // namespace

constinit ClassPair<QuietHandler> QuietHandler::classPair{kDefinition};

namespace {

TEST(NSAssertionHandlerTest, LogsAndRaises) {
  testing::internal::CaptureStderr();
  try {
    NSAssertionHandler::currentHandler()->handleFailureInMethod(
        selector<"count">(), "object"_ns, "Source/File"_ns, 12, "%s is %d"_ns, "n", 3);
    ADD_FAILURE();
  } catch (const RaisedException& raised) {
    EXPECT_TRUE(raised.exception()->name()->isEqual(NSInternalInconsistencyException));
    EXPECT_EQ(std::string(raised.exception()->reason()), "n is 3");
  }
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(log.find("Assertion failure in -[NSString count], Source/File:12"), std::string::npos)
      << log;
}

TEST(NSAssertionHandlerTest, NamesClassOperationsAndFunctions) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(raisedBy([] {
              NSAssertionHandler::currentHandler()->handleFailureInMethod(
                  selector<"array">(), NSObject::class_(), "f"_ns, 1, "x"_ns);
            }),
            "NSInternalInconsistencyException");
  EXPECT_EQ(raisedBy([] {
              NSAssertionHandler::currentHandler()->handleFailureInFunction("main"_ns, "f"_ns, 2,
                                                                            "y"_ns);
            }),
            "NSInternalInconsistencyException");
  const std::string log = testing::internal::GetCapturedStderr();
  EXPECT_NE(log.find("+[NSObject array], f:1"), std::string::npos) << log;
  EXPECT_NE(log.find("main, f:2"), std::string::npos) << log;
}

TEST(NSAssertionHandlerTest, IsTheThreadsOwn) {
  const NSAssertionHandler mine = NSAssertionHandler::currentHandler();
  EXPECT_TRUE(NSAssertionHandler::currentHandler() == mine);
  EXPECT_TRUE(
      NSThread::currentThread()->threadDictionary()->objectForKey("NSAssertionHandler"_ns) == mine);
  std::thread([&mine] { EXPECT_FALSE(NSAssertionHandler::currentHandler() == mine); }).join();
}

TEST(NSAssertionHandlerTest, AClientsHandlerThatReturnsLetsTheOperationGoOn) {
  const NSMutableDictionary dictionary = NSThread::currentThread()->threadDictionary();
  dictionary->setObject(QuietHandler::alloc()->init(), NSAssertionHandlerKey);
  NSAssertionHandler::currentHandler()->handleFailureInMethod(selector<"count">(), "o"_ns, "f"_ns,
                                                              7, "%@!"_ns, "bad"_ns);
  dictionary->removeObjectForKey(NSAssertionHandlerKey);
  EXPECT_EQ(QuietHandler::last, "count f:7 bad!");
}

}  // namespace
}  // namespace brindle
