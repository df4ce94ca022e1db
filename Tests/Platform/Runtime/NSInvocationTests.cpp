#include <Brindle/Platform/NSInvocation.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

struct Box {
  double left, top, width, height, depth;
};

}  // namespace
template <>
struct StructEncoding<Box> : FieldsEncoding<"Box", double, double, double, double, double> {};
namespace {

/// Something to call.
class Callee : public Interface<Callee, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Callee> classPair;
};
constexpr MethodDefinition kCalleeMethods[] = {
    method<"add:to:">([](const Callee&, int a, int b) { return a + b; }),
    method<"keep:">([](const Callee& self, const id& object) -> id {
      self->setHeld(object);
      return object;
    }),
    method<"made">([](const Callee&) -> id { return Mortal::new_(); }),
    method<"join:with:">([](const Callee&, const char* a, const char* b) -> NSUInteger {
      return std::string(a).size() * 100 + std::string(b).size();
    }),
    method<"grow:">([](const Callee&, Box b) {
      return Box{b.depth, b.left, b.top, b.width, b.height};
    }),
    method<"run:">([](const Callee&, const Block<int()>& block) { return block(); }),
    method<"raise">([](const Callee&) { throw std::runtime_error("called"); }),
    method<"a:b:c:d:e:f:g:h:i:j:">([](const Callee&, int a, int b, int c, int d, int e, int f,
                                      int g, int h, int i,
                                      int j) { return a + b + c + d + e + f + g + h + i + j; }),
};
constexpr ClassDefinition kCallee{.name = "Callee", .methods = kCalleeMethods};

}  // namespace
constinit ClassPair<Callee> Callee::classPair{kCallee};
namespace {

NSInvocation callTo(const id& target, SEL s) {
  NSInvocation call = NSInvocation::invocationWithMethodSignature(
      send<"methodSignatureForSelector:", NSMethodSignature>(target, s));
  call->setSelector(s);
  call->setTarget(target);
  return call;
}

class NSInvocationTest : public ::testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(Mortal::living(), 0); }
};

TEST_F(NSInvocationTest, Tour) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"add:to:">());
  call->setArgument(2, 20);
  call->setArgument(3, 22);
  call->invoke();
  EXPECT_EQ(call->result<int>(), 42);
  EXPECT_TRUE(call->target() == callee);
  EXPECT_EQ(call->selector(), selector<"add:to:">());
  EXPECT_EQ(call->argument<int>(2), 20);
  EXPECT_EQ(call->methodSignature()->numberOfArguments(), 4u);
  EXPECT_TRUE(call->argument<id>(0) == callee);
}

TEST_F(NSInvocationTest, BeginsZeroed) {
  const NSInvocation call = NSInvocation::invocationWithMethodSignature(
      NSMethodSignature::signatureWithObjCTypes("@32@0:8@16q24"));
  EXPECT_FALSE(call->target());
  EXPECT_EQ(call->selector(), nullptr);
  EXPECT_FALSE(call->argument<id>(2));
  EXPECT_EQ(call->argument<NSInteger>(3), 0);
  EXPECT_FALSE(call->result<id>());
  EXPECT_FALSE(call->argumentsRetained());
  EXPECT_NE(raised([] {
              NSInvocation::invocationWithMethodSignature(nullptr);
            }).find("NSInvalidArgumentException"),
            std::string::npos);
}

TEST_F(NSInvocationTest, AllocRaisesSinceThereAreNoneWithoutASignature) {
  EXPECT_NE(raised([] { NSInvocation::new_(); }).find("invocationWithMethodSignature:"),
            std::string::npos);
}

TEST_F(NSInvocationTest, IndicesBeyondTheLastRaise) {
  const NSInvocation call = callTo(Callee::new_(), selector<"add:to:">());
  call->setTarget(nullptr);
  for (const NSUInteger index : {NSUInteger{4}, NSUInteger{5}, ~NSUInteger{0}}) {
    EXPECT_NE(raised([&] { call->setArgument(index, 1); }).find("NSInvalidArgumentException"),
              std::string::npos);
    EXPECT_NE(raised([&] { call->argument<int>(index); }), "");
  }
}

TEST_F(NSInvocationTest, ValuesOfOtherTypesAreRefused) {
  const NSInvocation call = callTo(Callee::new_(), selector<"join:with:">());
  EXPECT_EQ(raised([&call] { call->setResult(7); }),
            "NSInvalidArgumentException: the result of join:with: is Q, not i");
  EXPECT_EQ(raised([&call] { static_cast<void>(call->result<int>()); }),
            "NSInvalidArgumentException: the result of join:with: is Q, not i");
  EXPECT_EQ(raised([&call] { call->setArgument(2, 1.5); }),
            "NSInvalidArgumentException: argument 2 of join:with: is r*, not d");
  EXPECT_EQ(raised([&call] { static_cast<void>(call->argument<id>(3)); }),
            "NSInvalidArgumentException: argument 3 of join:with: is r*, not @");
  call->setArgument(2, "a literal");
  EXPECT_STREQ(call->argument<const char*>(2), "a literal");
  call->setResult(NSUInteger{7});
  EXPECT_EQ(call->result<NSUInteger>(), 7U);
}

TEST_F(NSInvocationTest, AnInvocationIsUsedAgain) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"made">());
  call->invoke();
  const id first = call->result<id>();
  call->invoke();
  const id second = call->result<id>();
  EXPECT_FALSE(first == second);
  EXPECT_EQ(Mortal::living(), 3);
  const NSInvocation sum = callTo(callee, selector<"add:to:">());
  for (int i = 0; i < 10; ++i) {
    sum->setArgument(2, i);
    sum->invoke();
    EXPECT_EQ(sum->result<int>(), i);
  }
}

TEST_F(NSInvocationTest, AnObjectResultBelongsToIt) {
  const Callee callee = Callee::new_();
  NSInvocation call = callTo(callee, selector<"made">());
  call->invoke();
  const Weak<id> weak = call->result<id>();
  EXPECT_TRUE(weak.lock());
  const Mortal other = Mortal::new_();
  call->setResult<id>(other);
  EXPECT_FALSE(weak.lock());
  EXPECT_TRUE(call->result<id>() == other);
  EXPECT_EQ(other->retainCount(), 2u);
  call = nullptr;
  EXPECT_EQ(other->retainCount(), 1u);
}

TEST_F(NSInvocationTest, ABytesResultIsLent) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"made">());
  call->invoke();
  ObjectRecord* record = nullptr;
  call->getReturnValueBytes(&record);
  EXPECT_EQ(call->result<id>().record(), record);
  call->setReturnValueBytes(&record);
  EXPECT_EQ((send<"retainCount", NSUInteger>(call->result<id>())), 2u);
}

TEST_F(NSInvocationTest, ANilTargetLeavesAZeroResult) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"add:to:">());
  call->setArgument(2, 1);
  call->invoke();
  EXPECT_EQ(call->result<int>(), 1);
  call->invokeWithTarget(nullptr);
  EXPECT_EQ(call->result<int>(), 0);
  const NSInvocation box = callTo(callee, selector<"grow:">());
  box->setArgument(2, Box{1, 2, 3, 4, 5});
  box->invoke();
  EXPECT_EQ(box->result<Box>().left, 5);
  box->invokeWithTarget(nullptr);
  EXPECT_EQ(box->result<Box>().left, 0);
}

TEST_F(NSInvocationTest, ArgumentsAreBorrowedUntilTheyAreRetained) {
  const Callee callee = Callee::new_();
  Mortal argument = Mortal::new_();
  const NSInvocation call = callTo(callee, selector<"keep:">());
  call->setArgument<id>(2, argument);
  EXPECT_EQ(argument->retainCount(), 1u);
  EXPECT_EQ(callee->retainCount(), 1u);
  call->retainArguments();
  EXPECT_TRUE(call->argumentsRetained());
  EXPECT_EQ(argument->retainCount(), 2u);
  EXPECT_EQ(callee->retainCount(), 2u);
  call->retainArguments();
  EXPECT_EQ(argument->retainCount(), 2u) << "once";
  argument = nullptr;
  call->invoke();
  EXPECT_TRUE(callee->held());
  callee->setHeld(nullptr);
}

TEST_F(NSInvocationTest, ReplacingARetainedArgumentReleasesTheOldOne) {
  const NSInvocation call = callTo(Callee::new_(), selector<"keep:">());
  call->setTarget(nullptr);
  call->retainArguments();
  for (int i = 0; i < 5; ++i) call->setArgument<id>(2, Mortal::new_());
  EXPECT_EQ(Mortal::living(), 1);
  for (int i = 0; i < 5; ++i) call->setTarget(Callee::new_());
  EXPECT_EQ(Mortal::living(), 2);
  call->setArgument<id>(2, call->argument<id>(2));
  call->invoke();
  cast<Callee>(call->target())->setHeld(nullptr);
  call->setTarget(nullptr);
  call->setArgument<id>(2, nullptr);
  call->setResult<id>(nullptr);
  EXPECT_EQ(Mortal::living(), 0);
}

// Two short texts used to lie in one growing vector, which moved the first.
TEST_F(NSInvocationTest, RetainedTextsAreCopies) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"join:with:">());
  {
    std::string a = "four";
    std::string b = "seventy";
    call->setArgument<const char*>(2, a.c_str());
    call->setArgument<const char*>(3, b.c_str());
    call->retainArguments();
    a = "????";
    b = "???????";
  }
  EXPECT_STREQ(call->argument<const char*>(2), "four");
  EXPECT_STREQ(call->argument<const char*>(3), "seventy");
  call->invoke();
  EXPECT_EQ(call->result<NSUInteger>(), 407u);
  for (int i = 0; i < 100; ++i) {
    const std::string text(static_cast<std::size_t>(i % 30), 'x');
    call->setArgument<const char*>(2, text.c_str());
    EXPECT_STREQ(call->argument<const char*>(3), "seventy");
    EXPECT_EQ(call->argument<const char*>(2), text);
  }
  call->setArgument<const char*>(2, nullptr);
  EXPECT_EQ(call->argument<const char*>(2), nullptr);
}

TEST_F(NSInvocationTest, RetainingCopiesABlockFromTheStack) {
  NSInvocation call;
  const Callee callee = Callee::new_();
  const auto make = [&](const BlockArg<int()>& block) {
    call = callTo(callee, selector<"run:">());
    ObjectRecord* record = block.record();
    call->setArgumentBytes(&record, 2);
    call->invoke();
    EXPECT_EQ(call->result<int>(), 5);
    call->retainArguments();
  };
  make([n = 5] { return n; });
  call->invoke();
  EXPECT_EQ(call->result<int>(), 5);
}

TEST_F(NSInvocationTest, LargeFramesAndResults) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"a:b:c:d:e:f:g:h:i:j:">());
  for (int i = 0; i < 10; ++i) call->setArgument(static_cast<NSUInteger>(i) + 2, 1 << i);
  call->invoke();
  EXPECT_EQ(call->result<int>(), 1023);
  const NSInvocation box = callTo(callee, selector<"grow:">());
  box->setArgument(2, Box{1, 2, 3, 4, 5});
  box->invoke();
  EXPECT_EQ(box->result<Box>().height, 3);
}

TEST_F(NSInvocationTest, ARaisePasses) {
  const Callee callee = Callee::new_();
  const NSInvocation call = callTo(callee, selector<"raise">());
  EXPECT_EQ(raised([&] { call->invoke(); }), "called");
}

TEST_F(NSInvocationTest, AMethodOfOtherTypesIsRefused) {
  const Callee callee = Callee::new_();
  const NSInvocation call = NSInvocation::invocationWithMethodSignature(
      NSMethodSignature::signatureWithObjCTypes("d32@0:8d16d24"));
  call->setSelector(selector<"add:to:">());
  const std::string text = raised([&] { call->invokeWithTarget(callee); });
  EXPECT_NE(text.find("NSInvalidArgumentException"), std::string::npos) << text;
  EXPECT_NE(text.find("add:to:"), std::string::npos) << text;
  EXPECT_NE(raised([&] {
              const NSInvocation none = NSInvocation::invocationWithMethodSignature(
                  NSMethodSignature::signatureWithObjCTypes("v16@0:8"));
              none->invokeWithTarget(callee);
            }).find("no selector"),
            std::string::npos);
}

TEST_F(NSInvocationTest, AMessageNobodyAnswersRaises) {
  const Callee callee = Callee::new_();
  const NSInvocation call = NSInvocation::invocationWithMethodSignature(
      NSMethodSignature::signatureWithObjCTypes("v16@0:8"));
  call->setSelector(selector<"flyAway">());
  EXPECT_NE(raised([&] { call->invokeWithTarget(callee); }).find("-[Callee flyAway]"),
            std::string::npos);
}

/// Keeps what is sent to it, for later.
class Recorder : public Interface<Recorder, NSProxy> {
 public:
  using Interface::Interface;
  static ClassPair<Recorder> classPair;
};
std::vector<NSInvocation> recorded;
constexpr MethodDefinition kRecorderMethods[] = {
    method<"methodSignatureForSelector:">([](const Recorder&, SEL s) -> NSMethodSignature {
      return Callee::class_()->instanceMethodSignatureForSelector(s);
    }),
    method<"forwardInvocation:">([](const Recorder&, const NSInvocation& call) {
      call->retainArguments();
      recorded.push_back(call);
    }),
};
constexpr ClassDefinition kRecorder{.name = "Recorder", .methods = kRecorderMethods};

}  // namespace
constinit ClassPair<Recorder> Recorder::classPair{kRecorder};
namespace {

TEST_F(NSInvocationTest, AMessageIsKeptAndReplayed) {
  {
    const Recorder recorder = Recorder::alloc();
    EXPECT_FALSE((send<"keep:", id>(recorder, Mortal::new_())));
    std::string text = "short";
    send<"join:with:", NSUInteger>(recorder, text.c_str(), text.c_str());
    const auto run = [&recorder](const BlockArg<int()>& block) {
      send<"run:", int>(recorder, block);
    };
    run([n = 8] { return n; });
  }
  ASSERT_EQ(recorded.size(), 3u);
  EXPECT_EQ(Mortal::living(), 1);
  const Callee callee = Callee::new_();
  for (const NSInvocation& call : recorded) call->invokeWithTarget(callee);
  EXPECT_TRUE(recorded[0]->result<id>() == callee->held());
  EXPECT_EQ(recorded[1]->result<NSUInteger>(), 505u);
  EXPECT_EQ(recorded[2]->result<int>(), 8);
  recorded.clear();
}

TEST_F(NSInvocationTest, DiesWithWhatItKept) {
  {
    const NSInvocation call = callTo(Callee::new_(), selector<"keep:">());
    call->setTarget(nullptr);
    const Callee callee = Callee::new_();
    call->retainArguments();
    call->setTarget(callee);
    call->setArgument<id>(2, Mortal::new_());
    call->invoke();
    callee->setHeld(nullptr);
    EXPECT_EQ(Mortal::living(), 2);
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST_F(NSInvocationTest, AReplacedResultWhoseEndRaises) {
  const NSInvocation call = callTo(Callee::new_(), selector<"made">());
  call->setTarget(nullptr);
  call->setResult<id>(Ender::raising("result"));
  EXPECT_EQ(raised([&] { call->setResult<id>(nullptr); }), "result");
  EXPECT_FALSE(call->result<id>());
}

}  // namespace
}  // namespace brindle
