#include "Platform/Foundation/Internal/Coding.h"

#include <limits>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableData.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CodingTesting.h"
#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

TEST(CodingTest, EveryClassOfTheLibraryComesBackEqualAndOfItsClass) {
  const id kObjects[] = {
      "plain"_ns,
      ""_ns,
      "caf\u00e9 \u4e16\u754c \U0001F600"_ns,
      "$null"_ns,
      NSMutableString::stringWithString("changeable"_ns),
      NSMutableString::stringWithString("$null"_ns),
      NSNumber(7),
      NSNumber(-7),
      NSNumber(true),
      NSNumber(0.1),
      NSNumber(1.5F),
      NSNumber(~std::uint64_t{0}),
      NSNumber(std::numeric_limits<std::int64_t>::min()),
      NSData(std::string_view("\0\xff", 2)),
      NSMutableData::dataWithBytes("abc", 3),
      NSDate::dateWithTimeIntervalSinceReferenceDate(-0.125),
      NSNull::null(),
      NSArray{"a"_ns, NSArray{"b"_ns}, NSNull::null()},
      NSArray::array(),
      NSMutableArray{"a"_ns, "a"_ns},
      NSDictionary{{"a"_ns, NSNumber(1)}, {NSNumber(2), "two"_ns}},
      NSMutableDictionary{{"k"_ns, "v"_ns}},
      NSSet{"x"_ns, NSNumber(3)},
      NSMutableSet{"y"_ns},
  };
  for (const id& object : kObjects) {
    const id read = archivedAndRead(object);
    EXPECT_TRUE(object->isEqual(read)) << object << " and " << read;
    EXPECT_TRUE(classOf(read) == classOf(object)) << object;
  }
}

TEST(CodingTest, TruthValuesStayTruthValues) {
  EXPECT_TRUE(archivedAndRead(NSNumber(true)) == NSNumber(true));
  EXPECT_FALSE(archivedAndRead(NSNumber::class_()->numberWithChar(1)) == NSNumber(true));
}

TEST(CodingTest, ASubclassOfAStringComesBackByItsText) {
  const ClientString string = ClientString::with(u"own");
  registerClass(ClientString::classPair);
  const NSData data = NSKeyedArchiver::archivedDataWithRootObject(string);
  EXPECT_NE(data->view().find("NS.string"), std::string_view::npos);
  EXPECT_NE(data->view().find("ClientString"), std::string_view::npos);
}

TEST(CodingTest, WhatIsWithoutItsContentsRaisesOrIsEmpty) {
  const auto archive = [](const char* name) {
    return archiveOf("<dict><key>$class</key>" + uid(2) + "</dict>" + classNamed(name));
  };
  for (const char* name : {"NSMutableString", "NSMutableData"}) {
    EXPECT_EQ(raisedBy([&] { NSKeyedUnarchiver::unarchiveObjectWithData(archive(name)); }),
              "NSInvalidUnarchiveOperationException")
        << name;
  }
  for (const char* name : {"NSArray", "NSMutableArray", "NSSet", "NSDictionary"}) {
    const id read = NSKeyedUnarchiver::unarchiveObjectWithData(archive(name));
    EXPECT_EQ((send<"count", NSUInteger>(read)), 0U) << name;
  }
}

TEST(CodingTest, ReadsMembersOneByOne) {
  const NSData data = archiveOf("<dict><key>NS.object.0</key>" + uid(3) + "<key>NS.object.1</key>" +
                                uid(4) + "<key>$class</key>" + uid(2) + "</dict>" +
                                classNamed("NSArray") + "<string>a</string><string>b</string>");
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObjectWithData(data)->isEqual(NSArray{"a"_ns, "b"_ns}));
}

TEST(CodingTest, ADictionaryNeedsAsManyValuesAsKeys) {
  const NSData data = archiveOf("<dict><key>NS.keys</key><array>" + uid(3) +
                                "</array><key>NS.objects</key><array/><key>$class</key>" + uid(2) +
                                "</dict>" + classNamed("NSDictionary") + "<string>k</string>");
  EXPECT_EQ(raisedBy([&] { NSKeyedUnarchiver::unarchiveObjectWithData(data); }),
            "NSInvalidUnarchiveOperationException");
}

TEST(CodingTest, AKeyThatCannotBeCopiedRaises) {
  const NSData data = archiveOf(
      "<dict><key>NS.keys</key><array>" + uid(3) + "</array><key>NS.objects</key><array>" + uid(3) +
      "</array><key>$class</key>" + uid(2) + "</dict>" + classNamed("NSDictionary") +
      "<dict><key>$class</key>" + uid(4) + "</dict>" + classNamed("Note"));
  EXPECT_EQ(raisedBy([&] { NSKeyedUnarchiver::unarchiveObjectWithData(data); }),
            "NSInvalidUnarchiveOperationException");
}

TEST(CodingTest, ACollectionInItselfIsReadAndKeepsItself) {
  const NSMutableArray array = NSMutableArray::array();
  array->addObject(array);
  const auto read = cast<NSMutableArray>(archivedAndRead(array));
  EXPECT_TRUE(read[0] == read);
  read->removeAllObjects();
  array->removeAllObjects();
}

}  // namespace
}  // namespace brindle
