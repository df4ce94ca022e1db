#include <Brindle/Platform/NSKeyedArchiver.h>

#include <unistd.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSArray.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CodingTesting.h"
#include "Tests/Platform/Foundation/StringTesting.h"

namespace brindle {
namespace {

/// The archive that the body writes, in XML.
template <class Body>
std::string xmlOf(const Body& body) {
  const NSMutableData data = NSMutableData::data();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->setOutputFormat(NSPropertyListXMLFormat_v1_0);
  body(archiver);
  archiver->finishEncoding();
  std::string text(data->view());
  std::erase_if(text, [](char c) { return c == '\n' || c == '\t'; });
  return text;
}

bool has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(NSKeyedArchiverTest, WritesAnArchive) {
  const NSData data = NSKeyedArchiver::archivedDataWithRootObject(Note::with("Milk"_ns));
  EXPECT_EQ(data->view().substr(0, 8), "bplist00");
  const auto note = cast<Note>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
  EXPECT_EQ(std::string(note->title()), "Milk");
}

TEST(NSKeyedArchiverTest, HasThePlatformsLayout) {
  const std::string xml = xmlOf([](const NSKeyedArchiver& archiver) {
    archiver->encodeObject(Note::with("Milk"_ns), "root"_ns);
  });
  EXPECT_TRUE(has(xml, "<key>$version</key><integer>100000</integer>")) << xml;
  EXPECT_TRUE(has(xml, "<key>$archiver</key><string>NSKeyedArchiver</string>")) << xml;
  EXPECT_TRUE(has(xml, "<key>$top</key><dict><key>root</key>" + uid(1) + "</dict>")) << xml;
  EXPECT_TRUE(has(xml,
                  "<key>$objects</key><array><string>$null</string><dict>"
                  "<key>title</key>" +
                      uid(2)))
      << xml;
  EXPECT_TRUE(has(xml, "<string>Milk</string>")) << xml;
  EXPECT_TRUE(has(xml, "<key>$class</key>" + uid(3))) << xml;
  EXPECT_TRUE(has(xml,
                  "<key>$classname</key><string>Note</string><key>$classes</key><array>"
                  "<string>Note</string><string>NSObject</string></array>"))
      << xml;
}

TEST(NSKeyedArchiverTest, WritesNilAsObjectZero) {
  const std::string xml =
      xmlOf([](const NSKeyedArchiver& archiver) { archiver->encodeObject(nullptr, "nothing"_ns); });
  EXPECT_TRUE(has(xml, "<key>nothing</key>" + uid(0))) << xml;
}

TEST(NSKeyedArchiverTest, WritesOneObjectOnce) {
  const Note note = Note::with("Milk"_ns);
  const std::string xml = xmlOf([&note](const NSKeyedArchiver& archiver) {
    archiver->encodeObject(NSArray{note, note}, "root"_ns);
    archiver->encodeObject(note, "again"_ns);
  });
  EXPECT_TRUE(has(xml, "<array>" + uid(2) + uid(2) + "</array>")) << xml;
  EXPECT_TRUE(has(xml, "<key>again</key>" + uid(2))) << xml;
}

TEST(NSKeyedArchiverTest, WritesPlainValuesInPlace) {
  const std::string xml = xmlOf([](const NSKeyedArchiver& archiver) {
    archiver->encodeBool(true, "bool"_ns);
    archiver->encodeInt(-1, "int"_ns);
    archiver->encodeInt32(-2, "int32"_ns);
    archiver->encodeInt64(4294967295, "int64"_ns);
    archiver->encodeInteger(-4, "integer"_ns);
    archiver->encodeFloat(0.5F, "float"_ns);
    archiver->encodeDouble(0.25, "double"_ns);
    archiver->encodeBytes("abc", 3, "bytes"_ns);
  });
  for (const char* part :
       {"<key>bool</key><true/>", "<key>int</key><integer>-1</integer>",
        "<key>int32</key><integer>-2</integer>", "<key>int64</key><integer>4294967295</integer>",
        "<key>integer</key><integer>-4</integer>", "<key>float</key><real>0.5</real>",
        "<key>double</key><real>0.25</real>", "<key>bytes</key><data>YWJj</data>"}) {
    EXPECT_TRUE(has(xml, part)) << part << " in " << xml;
  }
}

TEST(NSKeyedArchiverTest, TheLastValueOfAKeyCounts) {
  const std::string xml = xmlOf([](const NSKeyedArchiver& archiver) {
    archiver->encodeInt(1, "key"_ns);
    archiver->encodeInt(2, "key"_ns);
  });
  EXPECT_TRUE(has(xml, "<key>key</key><integer>2</integer>")) << xml;
  EXPECT_FALSE(has(xml, "<integer>1</integer>")) << xml;
}

TEST(NSKeyedArchiverTest, AClientsKeyIsNeverOneOfTheFormat) {
  const std::string xml =
      xmlOf([](const NSKeyedArchiver& archiver) { archiver->encodeInt(1, "$class"_ns); });
  EXPECT_TRUE(has(xml, "<key>$$class</key><integer>1</integer>")) << xml;
}

TEST(NSKeyedArchiverTest, WritesARelatedObjectOnlyWhenItIsThereAnyway) {
  const Note note = Note::with("a"_ns);
  note->setRelated(Note::with("b"_ns));
  EXPECT_TRUE(cast<Note>(archivedAndRead(note))->related() == nullptr);
  const NSArray both = {note, note->related()};
  const auto read = cast<NSArray>(archivedAndRead(both));
  EXPECT_TRUE(cast<Note>(read[0])->related() == read[1]);
  const NSArray other = {note->related(), note};
  const auto readOther = cast<NSArray>(archivedAndRead(other));
  EXPECT_TRUE(cast<Note>(readOther[1])->related() == readOther[0]);
}

TEST(NSKeyedArchiverTest, WritesOtherClassNames) {
  const NSMutableData data = NSMutableData::data();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->setClassName("Memo"_ns, Note::class_());
  EXPECT_EQ(std::string(archiver->classNameForClass(Note::class_())), "Memo");
  archiver->encodeObject(Note::with("x"_ns), "root"_ns);
  archiver->finishEncoding();
  EXPECT_NE(data->view().find("Memo"), std::string_view::npos);
  EXPECT_EQ(data->view().find("Note"), std::string_view::npos);

  NSKeyedArchiver::class_()->setClassName("Jotting"_ns, Note::class_());
  EXPECT_EQ(std::string(NSKeyedArchiver::class_()->classNameForClass(Note::class_())), "Jotting");
  const NSData shared = NSKeyedArchiver::archivedDataWithRootObject(Note::with("x"_ns));
  NSKeyedArchiver::class_()->setClassName(nullptr, Note::class_());
  EXPECT_NE(shared->view().find("Jotting"), std::string_view::npos);
  EXPECT_TRUE(NSKeyedArchiver::class_()->classNameForClass(Note::class_()) == nullptr);
}

TEST(NSKeyedArchiverTest, CannotGoOnWhenItIsFinished) {
  const NSMutableData data = NSMutableData::data();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->finishEncoding();
  const NSUInteger length = data->length();
  archiver->finishEncoding();
  EXPECT_EQ(data->length(), length);
  EXPECT_EQ(raisedBy([&] { archiver->encodeInt(1, "a"_ns); }),
            "NSInvalidArchiveOperationException");
  EXPECT_EQ(raisedBy([&] { archiver->encodeObject(nullptr, "a"_ns); }),
            "NSInvalidArchiveOperationException");
}

TEST(NSKeyedArchiverTest, RefusesWhatItCannotWrite) {
  EXPECT_EQ(raisedBy([] { NSKeyedArchiver::archivedDataWithRootObject(NSObject::new_()); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { NSKeyedArchiver::alloc()->initForWritingWithMutableData(nullptr); }),
            "NSInvalidArgumentException");
  const NSKeyedArchiver archiver =
      NSKeyedArchiver::alloc()->initForWritingWithMutableData(NSMutableData::data());
  EXPECT_EQ(raisedBy([&] { archiver->encodeInt(1, nullptr); }), "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([&] { archiver->setOutputFormat(static_cast<NSPropertyListFormat>(1)); }),
            "NSInvalidArgumentException");
  EXPECT_EQ(raisedBy([] { NSKeyedArchiver::new_()->encodeInt(1, "a"_ns); }),
            "NSInvalidArchiveOperationException");
}

TEST(NSKeyedArchiverTest, AnObjectThatRaisesLeavesNoHalfArchive) {
  const NSMutableData data = NSMutableData::data();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  EXPECT_EQ(raisedBy([&] { archiver->encodeObject(NSArray{NSObject::new_()}, "root"_ns); }),
            "NSInvalidArgumentException");
  archiver->encodeInt(1, "after"_ns);
  EXPECT_EQ(raisedBy([&] { archiver->finishEncoding(); }), "NSInvalidArchiveOperationException");
  EXPECT_EQ(data->length(), 0U);
}

TEST(NSKeyedArchiverTest, ObjectsNestedTooDeeplyRaise) {
  Note first = Note::with("end"_ns);
  for (int i = 0; i < 200000; ++i) {
    const Note note = Note::with("x"_ns);
    note->setNext(first);
    first = note;
  }
  EXPECT_EQ(raisedBy([&] { NSKeyedArchiver::archivedDataWithRootObject(first); }),
            "NSInvalidArchiveOperationException");
}

TEST(NSKeyedArchiverTest, WritesToFiles) {
  const NSString path(testing::TempDir() + "note-" + std::to_string(::getpid()) + ".archive");
  EXPECT_TRUE(NSKeyedArchiver::archiveRootObject(Note::with("Milk"_ns), path));
  EXPECT_EQ(std::string(cast<Note>(NSKeyedUnarchiver::unarchiveObjectWithFile(path))->title()),
            "Milk");
  ::unlink(std::string(path).c_str());
  EXPECT_FALSE(NSKeyedArchiver::archiveRootObject("x"_ns, "/no/such/folder/file"_ns));
}

}  // namespace
}  // namespace brindle
