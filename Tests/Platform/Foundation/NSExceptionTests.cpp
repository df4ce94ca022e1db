#include <Brindle/Platform/NSException.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(NSExceptionTest, IsRaisedAsACxxException) {
  try {
    NSException::raise("Trouble"_ns, "%@ has %d wheels"_ns, "car"_ns, 3);
    FAIL();
  } catch (const RaisedException& raised) {
    EXPECT_EQ(std::string(raised.exception()->name()), "Trouble");
    EXPECT_EQ(std::string(raised.exception()->reason()), "car has 3 wheels");
    EXPECT_TRUE(raised.exception()->userInfo() == nullptr);
    EXPECT_STREQ(raised.what(), "Trouble: car has 3 wheels");
    EXPECT_GT(raised.exception()->callStackReturnAddresses()->count(), 0U);
  }
}

TEST(NSExceptionTest, IsAStandardException) {
  EXPECT_THROW(NSException::raise("A"_ns, "b"_ns), std::exception);
}

TEST(NSExceptionTest, MayBeMadeWithoutBeingRaised) {
  const NSException exception = NSException::exceptionWithName(
      "Name"_ns, "Reason"_ns, NSDictionary::dictionaryWithObject(NSNumber(1), "one"_ns));
  EXPECT_EQ(std::string(exception->description()), "Reason");
  EXPECT_EQ(exception->userInfo()->count(), 1U);
  EXPECT_EQ(exception->callStackReturnAddresses()->count(), 0U);
  EXPECT_EQ(exception->callStackSymbols()->count(), 0U);
}

TEST(NSExceptionTest, KeepsWhereItWasRaisedFirst) {
  const NSException exception = NSException::exceptionWithName("Name"_ns, nullptr);
  try {
    exception->raise();
  } catch (const RaisedException&) {
  }
  const NSArray first = exception->callStackReturnAddresses();
  EXPECT_GT(first->count(), 0U);
  EXPECT_EQ(first->count(), exception->callStackSymbols()->count());
  [&exception] {
    try {
      exception->raise();
    } catch (const RaisedException& raised) {
      EXPECT_TRUE(raised.exception() == exception);
    }
  }();
  EXPECT_TRUE(exception->callStackReturnAddresses()->isEqual(first));
  EXPECT_EQ(std::string(exception->description()), "Name");
}

TEST(NSExceptionTest, ReasonAndInformationMayBeNil) {
  EXPECT_TRUE(NSException::exceptionWithName("N"_ns, nullptr)->reason() == nullptr);
  EXPECT_EQ(raisedBy([] { NSException::exceptionWithName(nullptr, "r"_ns); }),
            "NSInvalidArgumentException");
}

TEST(NSExceptionTest, NamesAreTheirOwnTexts) {
  const std::pair<NSString, const char*> kNames[] = {
      {NSGenericException, "NSGenericException"},
      {NSRangeException, "NSRangeException"},
      {NSInvalidArgumentException, "NSInvalidArgumentException"},
      {NSInternalInconsistencyException, "NSInternalInconsistencyException"},
      {NSUndefinedKeyException, "NSUndefinedKeyException"},
      {NSObjectInaccessibleException, "NSObjectInaccessibleException"},
      {NSObjectNotAvailableException, "NSObjectNotAvailableException"},
      {NSMallocException, "NSMallocException"},
  };
  for (const auto& [name, text] : kNames) EXPECT_EQ(std::string(name), text);
}

TEST(NSExceptionTest, TheObjectModelRaisesExceptionObjects) {
  try {
    send<"thisIsNotThere">(NSObject::alloc()->init());
    FAIL();
  } catch (const RaisedException& raised) {
    EXPECT_TRUE(raised.exception()->name()->isEqual(NSInvalidArgumentException));
    const std::string reason(raised.exception()->reason());
    EXPECT_NE(reason.find("thisIsNotThere"), std::string::npos) << reason;
    EXPECT_NE(reason.find("NSObject"), std::string::npos) << reason;
  }
}

TEST(NSExceptionTest, IsEqualByNameReasonAndInformation) {
  const NSException a = NSException::exceptionWithName("N"_ns, "r"_ns);
  EXPECT_TRUE(a->isEqual(NSException::exceptionWithName("N"_ns, "r"_ns)));
  EXPECT_EQ(a->hash(), NSException::exceptionWithName("N"_ns, "r"_ns)->hash());
  EXPECT_FALSE(a->isEqual(NSException::exceptionWithName("N"_ns, "s"_ns)));
  EXPECT_FALSE(a->isEqual(NSException::exceptionWithName("M"_ns, "r"_ns)));
  EXPECT_FALSE(a->isEqual("N"_ns));
  EXPECT_TRUE(a->copy() == a);
}

TEST(NSExceptionTest, GoesThroughAReplacedRaise) {
  // A client that counts what is raised replaces the class operation, and calls the previous one.
  static int count = 0;
  static IMP previous = nullptr;
  Method method = class_getClassMethod(NSException::class_(), selector<"raise:format:">());
  previous = method_setImplementation(
      method, implementation([](const Class& self, Cmd cmd, const NSString& name,
                                const NSString& format, const FormatArguments& arguments) {
                ++count;
                callImplementation<void>(previous, self, cmd.selector, name, format, arguments);
              }).implementation);
  EXPECT_EQ(raisedBy([] { NSException::raise("Counted"_ns, "x"_ns); }), "Counted");
  method_setImplementation(method, previous);
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace brindle
