#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSProxy.h>
#include <Brindle/Platform/NSString.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

template <class... A>
std::string format(const NSString& pattern, const A&... arguments) {
  return std::string(NSString::stringWithFormat(pattern, arguments...));
}

/// An object whose description is nil.
class Silent : public Interface<Silent, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Silent> classPair;
};
constexpr MethodDefinition kSilentMethods[] = {
    method<"description">([](const Silent&) -> NSString { return nullptr; }),
};
constexpr ClassDefinition kSilentDefinition{.name = "SilentObject", .methods = kSilentMethods};

TEST(NSStringFormattingTest, Tour) {
  const NSString name = "caf\u00E9"_ns;
  EXPECT_EQ(format("%@ has %d items, %.1f%%"_ns, name, 3, 12.5), "caf\u00E9 has 3 items, 12.5%");
  EXPECT_EQ(format("%2$@ %1$s"_ns, "one", std::string("two")), "two one");
  EXPECT_EQ(format("%@ %@"_ns, NSString::class_(), nullptr), "NSString (null)");
  EXPECT_EQ(std::string(name->stringByAppendingFormat("-%03d"_ns, 7)), "caf\u00E9-007");
}

TEST(NSStringFormattingTest, EveryWayIn) {
  EXPECT_EQ(std::string(NSString::alloc()->initWithFormat("%d"_ns, 1)), "1");
  EXPECT_EQ(std::string(NSMutableString::stringWithFormat("%d"_ns, 2)), "2");
  EXPECT_TRUE(isa<NSMutableString>(NSMutableString::stringWithFormat("%d"_ns, 2)));
  EXPECT_EQ(format("no arguments"_ns), "no arguments");
  EXPECT_EQ(format(ClientString::with(u"<%@>"), ClientString::with(u"\u4E2D")), "<\u4E2D>");
  const FormatArgument list[] = {1, "two"};
  EXPECT_EQ(std::string(detail::formatString("%d %s"_ns, list)), "1 two");
}

TEST(NSStringFormattingTest, ObjectsPrintTheirDescriptions) {
  const id object = NSObject::new_();
  EXPECT_EQ(format("%@"_ns, object), std::string(cast<NSObject>(object)->description()));
  EXPECT_EQ(format("%@ %@"_ns, id(), NSString()), "(null) (null)");
  EXPECT_EQ(format("[%6@]"_ns, "ab"_ns), "[    ab]");
  EXPECT_EQ(format("%@"_ns, Class()), "(null)");
}

TEST(NSStringFormattingTest, ANilDescriptionPrintsAsNull) {
  const id silent = Silent::new_();
  EXPECT_EQ(format("%@"_ns, silent), "(null)");
}

TEST(NSStringFormattingTest, AskedForMoreThanThereIs) {
  EXPECT_EQ(format("%@ %d %s %n"_ns), "   ");
  EXPECT_EQ(format("%d"_ns, "text"), "");
  EXPECT_EQ(raisedBy([] { (void)NSString::stringWithFormat(nullptr); }),
            "NSInvalidArgumentException");
}

TEST(NSStringFormattingTest, ReplacingTheMethodReachesEveryCaller) {
  const Method method = class_getClassMethod(NSString::class_(), selector<"stringWithFormat:">());
  const auto replacement =
      implementation([](const Class&, const NSString&, const FormatArguments& arguments) -> id {
        return NSString(std::to_string(arguments.list.size()));
      });
  const IMP previous = method_setImplementation(method, replacement.implementation);
  const std::string replaced = format("%d %d"_ns, 1, 2);
  method_setImplementation(method, previous);
  EXPECT_EQ(replaced, "2");
  EXPECT_EQ(format("%d %d"_ns, 1, 2), "1 2");
}

TEST(NSStringFormattingTest, ProxiesDescribeThemselves) {
  const auto proxy = NSProxy::alloc();
  const auto description = send<"description", NSString>(proxy);
  EXPECT_TRUE(description->hasPrefix("<NSProxy: 0x"_ns));
  EXPECT_EQ(std::string(send<"description", NSString>(NSProxy::class_())), "NSProxy");
  EXPECT_EQ(std::string(send<"debugDescription", NSString>(NSProxy::class_())), "NSProxy");
}

}  // namespace

constinit ClassPair<Silent> Silent::classPair{kSilentDefinition};

}  // namespace brindle
