#include <Brindle/Platform/NSCoder.h>

#include <functional>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSSet.h>

#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

/// A client's coder: it keeps objects in a dictionary, and knows nothing of arrays.
class DictionaryCoder : public Interface<DictionaryCoder, NSCoder> {
 public:
  using Interface::Interface;
  static ClassPair<DictionaryCoder> classPair;
};

struct Fields {
  NSMutableDictionary values = NSMutableDictionary::dictionary();
};

constexpr MethodDefinition kMethods[] = {
    method<"encodeObject:forKey:">(
        [](const DictionaryCoder& self, const id& object, const NSString& key) {
          fieldsOf<Fields>(self).values->setObject(object, key);
        }),
    method<"containsValueForKey:">([](const DictionaryCoder& self, const NSString& key) {
      return fieldsOf<Fields>(self).values->objectForKey(key) != nullptr;
    }),
    method<"decodeObjectForKey:">([](const DictionaryCoder& self, const NSString& key) {
      return fieldsOf<Fields>(self).values->objectForKey(key);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "DictionaryCoder", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<DictionaryCoder> DictionaryCoder::classPair{kDefinition};

namespace {

TEST(NSCoderTest, AClientsCoderGetsCollectionsMemberByMember) {
  const DictionaryCoder coder = DictionaryCoder::new_();
  const NSArray array = {"a"_ns, NSNumber(2)};
  send<"encodeWithCoder:">(array, coder);
  EXPECT_TRUE(coder->decodeObjectForKey("NS.object.1"_ns)->isEqual(NSNumber(2)));
  const id readArray = send<"initWithCoder:", id>(NSArray::alloc(), coder);
  EXPECT_TRUE(readArray->isEqual(array));

  const DictionaryCoder other = DictionaryCoder::new_();
  const NSSet set = {"a"_ns, "b"_ns};
  send<"encodeWithCoder:">(set, other);
  const id readSet = send<"initWithCoder:", id>(NSSet::alloc(), other);
  EXPECT_TRUE(readSet->isEqual(set));
}

TEST(NSCoderTest, KnowsKeys) { EXPECT_TRUE(NSCoder::new_()->allowsKeyedCoding()); }

TEST(NSCoderTest, LeavesEverythingElseToSubclasses) {
  const NSCoder coder = NSCoder::new_();
  const NSString key = "key"_ns;
  NSUInteger length = 0;
  const std::function<void()> kCalls[] = {
      [&] { coder->encodeObject(nullptr, key); },
      [&] { coder->encodeConditionalObject(nullptr, key); },
      [&] { coder->encodeBool(true, key); },
      [&] { coder->encodeInt(1, key); },
      [&] { coder->encodeInt32(1, key); },
      [&] { coder->encodeInt64(1, key); },
      [&] { coder->encodeInteger(1, key); },
      [&] { coder->encodeFloat(1, key); },
      [&] { coder->encodeDouble(1, key); },
      [&] { coder->encodeBytes("x", 1, key); },
      [&] { coder->containsValueForKey(key); },
      [&] { coder->decodeObjectForKey(key); },
      [&] { coder->decodeBoolForKey(key); },
      [&] { coder->decodeIntForKey(key); },
      [&] { coder->decodeInt32ForKey(key); },
      [&] { coder->decodeInt64ForKey(key); },
      [&] { coder->decodeIntegerForKey(key); },
      [&] { coder->decodeFloatForKey(key); },
      [&] { coder->decodeDoubleForKey(key); },
      [&] { coder->decodeBytesForKey(key, &length); },
  };
  for (const auto& call : kCalls) EXPECT_EQ(raisedBy(call), "NSInvalidArgumentException");
}

}  // namespace
}  // namespace brindle
