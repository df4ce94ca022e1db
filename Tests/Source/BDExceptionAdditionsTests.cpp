#include <Brindle/BDExceptionAdditions.h>

#include <algorithm>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Source/DateRangeTesting.h"

namespace brindle {
namespace {

std::ptrdiff_t linesIn(const std::string& text) {
  return std::count(text.begin(), text.end(), '\n');
}

/// An exception that answers addresses which the test made up.
class MadeUpException : public Interface<MadeUpException, NSException> {
 public:
  using Interface::Interface;
  static ClassPair<MadeUpException> classPair;
  static MadeUpException with(const NSArray& addresses);
};

/// An array that says another count than its enumerator has members.
class BoastingArray : public Interface<BoastingArray, NSArray> {
 public:
  using Interface::Interface;
  static ClassPair<BoastingArray> classPair;
  static BoastingArray with(NSUInteger count, const NSArray& members);
};

struct ExceptionFields {
  Field<NSArray> addresses;
};
constexpr MethodDefinition kExceptionMethods[] = {
    method<"callStackReturnAddresses">([](const MadeUpException& self) -> NSArray {
      return fieldsOf<ExceptionFields>(self).addresses;
    }),
};
constexpr ClassDefinition kExceptionDefinition{.name = "MadeUpException",
                                               .methods = kExceptionMethods,
                                               .fields = fieldsDefinition<ExceptionFields>()};

struct ArrayFields {
  NSUInteger count = 0;
  Field<NSArray> members;
};
constexpr MethodDefinition kArrayMethods[] = {
    method<"count">([](const BoastingArray& self) { return fieldsOf<ArrayFields>(self).count; }),
    method<"objectEnumerator">([](const BoastingArray& self) {
      return fieldsOf<ArrayFields>(self).members->objectEnumerator();
    }),
};
constexpr ClassDefinition kArrayDefinition{
    .name = "BoastingArray", .methods = kArrayMethods, .fields = fieldsDefinition<ArrayFields>()};

}  // namespace

constinit ClassPair<MadeUpException> MadeUpException::classPair{kExceptionDefinition};
constinit ClassPair<BoastingArray> BoastingArray::classPair{kArrayDefinition};

namespace {

MadeUpException MadeUpException::with(const NSArray& addresses) {
  MadeUpException exception =
      cast<MadeUpException>(alloc()->initWithName("Name"_ns, nullptr, nullptr));
  fieldsOf<ExceptionFields>(exception).addresses = addresses;
  return exception;
}

BoastingArray BoastingArray::with(NSUInteger count, const NSArray& members) {
  BoastingArray array = alloc();
  fieldsOf<ArrayFields>(array).count = count;
  fieldsOf<ArrayFields>(array).members = members;
  return array;
}

std::string traceOf(const NSArray& addresses) {
  return std::string(decodedStackTrace(MadeUpException::with(addresses)));
}

TEST(BDExceptionAdditionsTest, ShowsALineForEachFrame) {
  const NSException exception = raisedBy([] { NSException::raise("Name"_ns, "Reason"_ns); });
  const std::string trace(decodedStackTrace(exception));
  EXPECT_EQ(linesIn(trace),
            static_cast<std::ptrdiff_t>(exception->callStackReturnAddresses()->count()));
  EXPECT_GT(linesIn(trace), 2);
  EXPECT_EQ(trace.back(), '\n');
  EXPECT_NE(trace.find("[0x"), std::string::npos) << trace;
  EXPECT_NE(trace.find("libBrindlePlatform"), std::string::npos) << trace;
}

TEST(BDExceptionAdditionsTest, IsEmptyForAnExceptionThatWasNeverRaised) {
  const NSException exception = NSException::exceptionWithName("Name"_ns, "Reason"_ns);
  const NSMutableString trace = decodedStackTrace(exception);
  EXPECT_TRUE(trace != nullptr);
  EXPECT_EQ(trace->length(), 0U);
}

TEST(BDExceptionAdditionsTest, AnswersANewMutableStringEachTime) {
  const NSException exception = raisedBy([] { NSException::raise("Name"_ns, "Reason"_ns); });
  const NSMutableString first = decodedStackTrace(exception);
  EXPECT_TRUE(isa<NSMutableString>(first));
  const std::string before(first);
  first->appendString("changed"_ns);
  EXPECT_EQ(std::string(decodedStackTrace(exception)), before);
}

TEST(BDExceptionAdditionsTest, NilHasNoTrace) {
  EXPECT_TRUE(decodedStackTrace(nullptr) == nullptr);
}

TEST(BDExceptionAdditionsTest, SymbolisesAnyAddress) {
  const std::string trace = traceOf({NSNumber(std::uint64_t{0}), NSNumber(~std::uint64_t{0})});
  EXPECT_EQ(linesIn(trace), 2);
}

TEST(BDExceptionAdditionsTest, WalksTheArrayByItsEnumerator) {
  // Two members, whatever `objectAtIndex:` would say.
  const NSArray members = {NSNumber(std::uint64_t{1}), NSNumber(std::uint64_t{2})};
  EXPECT_EQ(linesIn(traceOf(BoastingArray::with(2, members))), 2);
}

TEST(BDExceptionAdditionsTest, NoMoreLinesThanTheCountSays) {
  const NSArray members = {NSNumber(std::uint64_t{1}), NSNumber(std::uint64_t{2})};
  EXPECT_EQ(linesIn(traceOf(BoastingArray::with(1, members))), 1);
  EXPECT_EQ(linesIn(traceOf(BoastingArray::with(1000, members))), 2);
}

TEST(BDExceptionAdditionsTest, ReadsTheCountAsSigned32Bits) {
  const NSArray members = {NSNumber(std::uint64_t{1})};
  EXPECT_EQ(traceOf(BoastingArray::with(0, members)), "");
  EXPECT_EQ(traceOf(BoastingArray::with(0x80000000U, members)), "");
  EXPECT_EQ(traceOf(BoastingArray::with(0xFFFFFFFFU, members)), "");
  EXPECT_EQ(traceOf(BoastingArray::with(0x100000000U, members)), "");
  EXPECT_EQ(linesIn(traceOf(BoastingArray::with(0x100000001U, members))), 1);
}

}  // namespace
}  // namespace brindle
