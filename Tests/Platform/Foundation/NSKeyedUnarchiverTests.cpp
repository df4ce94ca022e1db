#include <Brindle/Platform/NSKeyedUnarchiver.h>

#include <limits>
#include <random>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CodingTesting.h"
#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

id read(const NSData& data) { return NSKeyedUnarchiver::unarchiveObjectWithData(data); }

/// The reason of what reading raises; "" when it raises nothing.
std::string reasonOf(const NSData& data) {
  try {
    read(data);
  } catch (const RaisedException& raised) {
    return std::string(raised.exception()->reason());
  }
  return "";
}

NSKeyedUnarchiver unarchiverOf(std::string_view top, std::string_view objects = "") {
  return NSKeyedUnarchiver::alloc()->initForReadingWithData(archiveOf(objects, top));
}

TEST(NSKeyedUnarchiverTest, ReadsWhatWasWritten) {
  const Note milk = Note::with("Milk"_ns);
  milk->setNext(Note::with("Bread"_ns));
  const auto note = cast<Note>(archivedAndRead(milk));
  EXPECT_EQ(std::string(note->title()), "Milk");
  EXPECT_EQ(std::string(cast<Note>(note->next())->title()), "Bread");
  EXPECT_TRUE(cast<Note>(note->next())->next() == nullptr);
}

TEST(NSKeyedUnarchiverTest, OneObjectIsOneObjectAgain) {
  const Note note = Note::with("Milk"_ns);
  const auto array = cast<NSArray>(archivedAndRead(NSArray{note, note, Note::with("Milk"_ns)}));
  EXPECT_TRUE(array[0] == array[1]);
  EXPECT_FALSE(array[0] == array[2]);
}

TEST(NSKeyedUnarchiverTest, ReadsCircles) {
  const Note a = Note::with("a"_ns);
  const Note b = Note::with("b"_ns);
  a->setNext(b);
  b->setNext(a);
  const auto readA = cast<Note>(archivedAndRead(a));
  const auto readB = cast<Note>(readA->next());
  EXPECT_TRUE(readB->next() == readA);
  EXPECT_EQ(std::string(readB->title()), "b");
  for (const Note& note : {a, readA}) note->setNext(nullptr);
}

TEST(NSKeyedUnarchiverTest, ReadsANumberAsAnyOther) {
  const NSKeyedUnarchiver coder = unarchiverOf(
      "<key>real</key><real>-7.9</real><key>true</key><true/><key>integer</key><integer>-3</"
      "integer>"
      "<key>large</key><integer>18446744073709551615</integer><key>huge</key><real>1e300</real>"
      "<key>text</key><string>5</string><key>nan</key><real>nan</real>"
      "<key>object</key>" +
          uid(1),
      "<integer>12</integer>");
  EXPECT_EQ(coder->decodeIntegerForKey("real"_ns), -7);
  EXPECT_EQ(coder->decodeIntegerForKey("true"_ns), 1);
  EXPECT_EQ(coder->decodeIntegerForKey("integer"_ns), -3);
  EXPECT_EQ(coder->decodeIntegerForKey("large"_ns), -1);
  EXPECT_EQ(coder->decodeIntegerForKey("huge"_ns), std::numeric_limits<NSInteger>::max());
  EXPECT_EQ(coder->decodeIntegerForKey("text"_ns), 0);
  EXPECT_EQ(coder->decodeIntegerForKey("nan"_ns), 0);
  EXPECT_EQ(coder->decodeIntegerForKey("missing"_ns), 0);
  EXPECT_EQ(coder->decodeIntegerForKey("object"_ns), 12);
  EXPECT_EQ(coder->decodeIntForKey("huge"_ns), std::numeric_limits<int>::max());
  EXPECT_EQ(coder->decodeInt32ForKey("large"_ns), std::numeric_limits<int>::max());
  EXPECT_EQ(coder->decodeInt64ForKey("integer"_ns), -3);
  EXPECT_EQ(coder->decodeDoubleForKey("real"_ns), -7.9);
  EXPECT_EQ(coder->decodeDoubleForKey("integer"_ns), -3.0);
  EXPECT_EQ(coder->decodeFloatForKey("true"_ns), 1.0F);
  EXPECT_TRUE(coder->decodeBoolForKey("integer"_ns));
  EXPECT_TRUE(coder->decodeBoolForKey("real"_ns));
  EXPECT_FALSE(coder->decodeBoolForKey("text"_ns));
}

TEST(NSKeyedUnarchiverTest, ReadsPlainValuesAsObjects) {
  const NSKeyedUnarchiver coder = unarchiverOf(
      "<key>text</key><string>abc</string><key>number</key><integer>4</integer>"
      "<key>bytes</key><data>YWJj</data><key>zero</key>" +
      uid(0));
  EXPECT_TRUE(coder->decodeObjectForKey("text"_ns)->isEqual("abc"_ns));
  EXPECT_TRUE(coder->decodeObjectForKey("number"_ns)->isEqual(NSNumber(4)));
  EXPECT_TRUE(coder->decodeObjectForKey("bytes"_ns)->isEqual(NSData("abc")));
  EXPECT_TRUE(coder->decodeObjectForKey("zero"_ns) == nullptr);
  EXPECT_TRUE(coder->decodeObjectForKey("missing"_ns) == nullptr);
  EXPECT_TRUE(coder->containsValueForKey("zero"_ns));
  EXPECT_FALSE(coder->containsValueForKey("missing"_ns));
  NSUInteger length = 7;
  EXPECT_EQ(std::string(static_cast<const char*>(coder->decodeBytesForKey("bytes"_ns, &length)), 3),
            "abc");
  EXPECT_EQ(length, 3U);
  EXPECT_EQ(coder->decodeBytesForKey("text"_ns, &length), nullptr);
  EXPECT_EQ(length, 0U);
}

TEST(NSKeyedUnarchiverTest, ReadsDatesInBothForms) {
  const auto plain = cast<NSDate>(read(archiveOf("<date>2001-01-02T00:00:00Z</date>")));
  EXPECT_EQ(plain->timeIntervalSinceReferenceDate(), 86400);
  const auto object =
      cast<NSDate>(read(archiveOf("<dict><key>NS.time</key><real>86400.5</real><key>$class</key>" +
                                  uid(2) + "</dict>" + classNamed("NSDate"))));
  EXPECT_EQ(object->timeIntervalSinceReferenceDate(), 86400.5);
}

TEST(NSKeyedUnarchiverTest, ReadsKeysThatLookLikeTheFormats) {
  const NSMutableData data = NSMutableData::data();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->encodeInt(7, "$class"_ns);
  archiver->finishEncoding();
  EXPECT_EQ(NSKeyedUnarchiver::alloc()->initForReadingWithData(data)->decodeIntForKey("$class"_ns),
            7);
}

TEST(NSKeyedUnarchiverTest, ReadsValuesThatWereWrittenWithoutKeys) {
  const NSKeyedUnarchiver coder =
      unarchiverOf("<key>$0</key><integer>3</integer><key>$top</key><integer>4</integer>");
  EXPECT_EQ(coder->decodeIntForKey("$0"_ns), 3);
  EXPECT_FALSE(coder->containsValueForKey("$top"_ns));
}

TEST(NSKeyedUnarchiverTest, TakesTheFirstOfTheChainForAMissingClassName) {
  const NSData data = archiveOf("<dict><key>title</key>" + uid(3) + "<key>$class</key>" + uid(2) +
                                "</dict><dict><key>$classes</key><array><string>Note</string></"
                                "array></dict><string>x</string>");
  EXPECT_EQ(std::string(cast<Note>(read(data))->title()), "x");
}

TEST(NSKeyedUnarchiverTest, MakesOtherClasses) {
  const NSData data = archiveOf("<dict><key>title</key>" + uid(3) + "<key>$class</key>" + uid(2) +
                                "</dict>" + classNamed("Memo") + "<string>x</string>");
  EXPECT_EQ(raisedBy([&] { read(data); }), "NSInvalidUnarchiveOperationException");
  const NSKeyedUnarchiver coder = NSKeyedUnarchiver::alloc()->initForReadingWithData(data);
  coder->setClass(Note::class_(), "Memo"_ns);
  EXPECT_TRUE(coder->classForClassName("Memo"_ns) == Note::class_());
  EXPECT_TRUE(isa<Note>(coder->decodeObjectForKey("root"_ns)));

  NSKeyedUnarchiver::class_()->setClass(Note::class_(), "Memo"_ns);
  EXPECT_TRUE(isa<Note>(read(data)));
  NSKeyedUnarchiver::class_()->setClass(nullptr, "Memo"_ns);
  EXPECT_TRUE(NSKeyedUnarchiver::class_()->classForClassName("Memo"_ns) == nullptr);
  EXPECT_EQ(raisedBy([&] { read(data); }), "NSInvalidUnarchiveOperationException");
}

TEST(NSKeyedUnarchiverTest, AnUnknownClassRaisesByName) {
  const std::string reason = reasonOf(
      archiveOf("<dict><key>$class</key>" + uid(2) + "</dict>" + classNamed("NoSuchClass")));
  EXPECT_NE(reason.find("cannot decode object of class (NoSuchClass)"), std::string::npos)
      << reason;
}

TEST(NSKeyedUnarchiverTest, AClassThatIsNotArchivedRaises) {
  for (const char* name : {"NSObject", "NSThread", "NSBlock", "NSProxy", "NSKeyedArchiver"}) {
    const std::string reason =
        reasonOf(archiveOf("<dict><key>$class</key>" + uid(2) + "</dict>" + classNamed(name)));
    EXPECT_NE(reason.find("which has no initWithCoder:"), std::string::npos)
        << name << ": " << reason;
  }
}

TEST(NSKeyedUnarchiverTest, WhatIsNoArchiveRaises) {
  const std::string good(archiveOf("<string>x</string>")->view());
  const auto with = [&good](const std::string& from, const std::string& to) {
    std::string text = good;
    text.replace(text.find(from), from.size(), to);
    return NSData(text);
  };
  for (const NSData& data :
       {NSData(""), NSData("bplist00"), NSData("hello"), NSData("<plist></plist>"),
        NSData("<plist><array/></plist>"), with("100000", "10000"), with("$version", "version"),
        with(">NSKeyedArchiver", ">NSArchiver"), with("$archiver", "archiver"), with("$top", "top"),
        with("$objects", "objects"),
        with("<key>$objects</key><array>", "<key>$objects</key><string/><key>x</key><array>")}) {
    EXPECT_EQ(raisedBy([&] { read(data); }), "NSInvalidArgumentException") << data->view();
  }
  EXPECT_TRUE(isa<NSString>(read(NSData(good))));
}

TEST(NSKeyedUnarchiverTest, ABrokenObjectRaises) {
  const std::string self = "<key>$class</key>" + uid(2);
  const std::string kObjects[] = {
      "",
      "<dict/>" + classNamed("Note"),
      "<array/>" + classNamed("Note"),
      "<dict><key>$class</key><string>Note</string></dict>",
      "<dict><key>$class</key>" + uid(99) + "</dict>",
      "<dict>" + self + "</dict><string>x</string>",
      "<dict>" + self + "</dict><dict/>",
      "<dict>" + self + "</dict><dict><key>$classname</key><integer>1</integer></dict>",
      "<dict>" + self +
          "</dict><dict><key>$classname</key><string>Note</string>"
          "<key>$classes</key><string>Note</string></dict>",
      "<dict><key>next</key>" + uid(99) + self + "</dict>" + classNamed("Note"),
      "<dict><key>NS.objects</key><array>" + uid(99) + "</array>" + self + "</dict>" +
          classNamed("NSArray"),
      "<dict>" + self + "<key>NS.string</key><integer>1</integer></dict>" +
          classNamed("NSMutableString")};
  for (const std::string& objects : kObjects) {
    EXPECT_EQ(raisedBy([&] { read(archiveOf(objects)); }), "NSInvalidUnarchiveOperationException")
        << objects;
  }
}

TEST(NSKeyedUnarchiverTest, WrongTypesAreNilOrRaise) {
  const NSData data = archiveOf("<dict><key>title</key>" + uid(3) + "<key>$class</key>" + uid(2) +
                                "</dict>" + classNamed("Note") + "<integer>5</integer>");
  EXPECT_EQ(raisedBy([&] { read(data); }), "NSInvalidArgumentException");
  const NSKeyedUnarchiver coder = unarchiverOf("<key>list</key><array/><key>table</key><dict/>");
  EXPECT_TRUE(coder->decodeObjectForKey("list"_ns) == nullptr);
  EXPECT_TRUE(coder->decodeObjectForKey("table"_ns) == nullptr);
}

TEST(NSKeyedUnarchiverTest, EveryTruncationRaises) {
  const NSData whole = NSKeyedArchiver::archivedDataWithRootObject(
      NSArray{Note::with("Milk"_ns), NSNumber(5), NSDate::date()});
  for (NSUInteger length = 0; length < whole->length(); ++length) {
    EXPECT_NE(raisedBy([&] { read(whole->subdataWithRange({0, length})); }), "") << length;
  }
}

TEST(NSKeyedUnarchiverTest, ChangedBytesNeverCrash) {
  const Note note = Note::with("Milk"_ns);
  note->setNext(NSArray{Note::with("Bread"_ns), NSNumber(1.5), NSData("x")});
  const NSData whole = NSKeyedArchiver::archivedDataWithRootObject(note);
  std::mt19937 random(7);
  for (int round = 0; round < 3000; ++round) {
    std::string bytes(whole->view());
    for (int i = 0; i < 3; ++i) bytes[random() % bytes.size()] = static_cast<char>(random());
    try {
      const id object = read(NSData(bytes));
      if (isa<Note>(object)) uncheckedCast<Note>(object)->setNext(nullptr);
    } catch (const std::exception&) {
    }
  }
}

TEST(NSKeyedUnarchiverTest, ObjectsNestedTooDeeplyRaise) {
  constexpr int kDepth = 200000;
  std::string objects;
  for (int i = 1; i <= kDepth; ++i) {
    objects +=
        "<dict><key>next</key>" + uid(i + 1) + "<key>$class</key>" + uid(kDepth + 1) + "</dict>";
  }
  const NSData data = archiveOf(objects + classNamed("Note"));
  EXPECT_EQ(raisedBy([&] { read(data); }), "NSInvalidUnarchiveOperationException");
  EXPECT_EQ(Note::living, 0);
}

TEST(NSKeyedUnarchiverTest, ManyReferencesToOneObjectCostOneObject) {
  // Each of 60 arrays holds the next one twice: 2 to the power of 60 paths.
  std::string objects;
  for (int i = 1; i <= 60; ++i) {
    objects += "<dict><key>NS.objects</key><array>" + uid(i + 1) + uid(i + 1) +
               "</array><key>$class</key>" + uid(62) + "</dict>";
  }
  objects += "<string>leaf</string>" + classNamed("NSArray");
  EXPECT_EQ(cast<NSArray>(read(archiveOf(objects)))->count(), 2U);
}

TEST(NSKeyedUnarchiverTest, AnswersNilWithoutARoot) {
  EXPECT_TRUE(read(archiveOf("<string>x</string>", "<key>other</key>" + uid(1))) == nullptr);
  EXPECT_TRUE(read(nullptr) == nullptr);
  EXPECT_TRUE(NSKeyedUnarchiver::unarchiveObjectWithFile("/no/such/file"_ns) == nullptr);
}

TEST(NSKeyedUnarchiverTest, CannotGoOnWhenItIsFinished) {
  const NSKeyedUnarchiver coder = unarchiverOf("<key>a</key><integer>1</integer>");
  coder->finishDecoding();
  EXPECT_EQ(raisedBy([&] { coder->decodeIntForKey("a"_ns); }),
            "NSInvalidUnarchiveOperationException");
  coder->finishDecoding();
  EXPECT_EQ(raisedBy([] { NSKeyedUnarchiver::new_()->decodeIntForKey("a"_ns); }),
            "NSInvalidUnarchiveOperationException");
  EXPECT_EQ(raisedBy([] { unarchiverOf("")->decodeIntForKey(nullptr); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { NSKeyedUnarchiver::alloc()->initForReadingWithData(nullptr); }),
            "NSInvalidArgumentException");
}

}  // namespace
}  // namespace brindle
