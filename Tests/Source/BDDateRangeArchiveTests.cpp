// Archives of date ranges, held against another program that reads and writes property lists.
#include <Brindle/BDDateRange.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSData.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSMutableData.h>
#include <Brindle/Platform/Runtime.h>

#include "Tests/Source/DateRangeTesting.h"

using namespace brindle;

namespace {

/// A file of the test's own, removed at the end of the scope.
class TemporaryFile {
 public:
  explicit TemporaryFile(const NSData& data = nullptr) : path_(testing::TempDir() + "rangeXXXXXX") {
    const int descriptor = mkstemp(path_.data());
    EXPECT_GE(descriptor, 0);
    close(descriptor);
    std::ofstream(path_, std::ios::binary)
        .write(static_cast<const char*>(data->bytes()),
               static_cast<std::streamsize>(data->length()));
  }
  ~TemporaryFile() { unlink(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_;
};

/// What a Python program prints that gets the file as its argument. The program has no apostrophes.
std::string python(const char* program, const TemporaryFile& file) {
  const std::string command = "python3 -c '" + std::string(program) + "' '" + file.path() + "'";
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return "python3 does not start";
  std::string output;
  char buffer[4096];
  while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, pipe)) {
    output.append(buffer, size);
  }
  EXPECT_EQ(pclose(pipe), 0);
  return output;
}

// In XML the reference to another object is a dictionary, which Python leaves as it is.
constexpr const char* kReader = R"(
import plistlib, sys
archive = plistlib.load(open(sys.argv[1], "rb"))
objects = archive["$objects"]
def follow(reference):
  if isinstance(reference, plistlib.UID): return objects[reference.data]
  return objects[reference["CF$UID"]]
root = follow(archive["$top"]["root"])
print(archive["$archiver"], archive["$version"], follow(root["$class"])["$classes"])
print(sorted(key for key in root if key != "$class"))
anchor = follow(root["anchor"])
print(anchor if anchor == "$null" else anchor["NS.time"])
for key in ("offset", "length", "anchorUnit", "offsetUnit", "lengthUnit"):
  print(key, root[key])
)";

constexpr const char* kHead =
    "NSKeyedArchiver 100000 ['BDDateRange', 'NSObject']\n"
    "['anchor', 'anchorUnit', 'length', 'lengthUnit', 'offset', 'offsetUnit']\n";

NSData archiveOf(const BDDateRange& range, NSPropertyListFormat format) {
  const NSMutableData data = NSMutableData::alloc()->init();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->setOutputFormat(format);
  archiver->encodeObject(range, NSKeyedArchiveRootObjectKey);
  archiver->finishEncoding();
  return data;
}

BDDateRange rangeIn(const NSData& data) {
  return cast<BDDateRange>(NSKeyedUnarchiver::unarchiveObjectWithData(data));
}

}  // namespace

TEST(BDDateRangeArchive, IsReadByAnotherProgram) {
  const auto unit = [](std::int32_t number) { return static_cast<BDTimeUnit>(number); };
  const BDDateRange anchored =
      BDDateRange::dateRangeWithAnchor(NSDate::dateWithTimeIntervalSinceReferenceDate(737460000.25),
                                       unit(-1), INT64_MIN, unit(99), INT64_MAX, unit(4));
  const BDDateRange lastWeek = BDDateRange::dateRangeWithNamedRange(BDNamedRangeLastWeek);
  for (const auto format : {NSPropertyListBinaryFormat_v1_0, NSPropertyListXMLFormat_v1_0}) {
    SCOPED_TRACE(format);
    EXPECT_EQ(python(kReader, TemporaryFile(archiveOf(anchored, format))),
              std::string(kHead) +
                  "737460000.25\noffset -9223372036854775808\nlength 9223372036854775807\n"
                  "anchorUnit 4294967295\noffsetUnit 99\nlengthUnit 4\n");
    EXPECT_EQ(python(kReader, TemporaryFile(archiveOf(lastWeek, format))),
              std::string(kHead) +
                  "$null\noffset -1\nlength 1\nanchorUnit 1\noffsetUnit 1\nlengthUnit 1\n");
    EXPECT_TRUE(rangeIn(archiveOf(anchored, format))->isEqual(anchored));
    EXPECT_TRUE(rangeIn(archiveOf(lastWeek, format))->isEqual(lastWeek));
  }
}

TEST(BDDateRangeArchive, OfAnotherProgramIsRead) {
  // Keys in another order, objects in another order, one value missing.
  const TemporaryFile file;
  EXPECT_EQ(python(R"(
import plistlib, sys
U = plistlib.UID
range = {"lengthUnit": 4294967295, "$class": U(4), "anchorUnit": 3, "length": -7, "anchor": U(2),
         "offset": 2**40}
date = {"NS.time": -5.5, "$class": U(3)}
kind = lambda name: {"$classname": name, "$classes": [name, "NSObject"]}
objects = ["$null", range, date, kind("NSDate"), kind("BDDateRange")]
plistlib.dump({"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": U(1)},
               "$objects": objects}, open(sys.argv[1], "wb"), fmt=plistlib.FMT_BINARY)
)",
                   file),
            "");
  const BDDateRange range = rangeIn(NSData::dataWithContentsOfFile(NSString(file.path())));
  ASSERT_TRUE(range);
  EXPECT_EQ(range->anchor()->timeIntervalSinceReferenceDate(), -5.5);
  EXPECT_EQ(range->anchorUnit(), BDTimeUnitQuarter);
  EXPECT_EQ(range->offset(), std::int64_t{1} << 40);
  EXPECT_EQ(range->offsetUnit(), BDTimeUnitDay);
  EXPECT_EQ(range->length(), -7);
  EXPECT_EQ(range->lengthUnit(), static_cast<BDTimeUnit>(-1));
}

TEST(BDDateRangeArchive, AnAnchorThatIsNoDateRaisesWhenItIsRead) {
  const NSMutableData data = NSMutableData::alloc()->init();
  const NSKeyedArchiver archiver = NSKeyedArchiver::alloc()->initForWritingWithMutableData(data);
  archiver->encodeObject("tomorrow"_ns, "anchor"_ns);
  archiver->finishEncoding();
  const NSKeyedUnarchiver reader = NSKeyedUnarchiver::alloc()->initForReadingWithData(data);
  const NSException raised =
      raisedBy([&] { send<"initWithCoder:", BDDateRange>(BDDateRange::alloc(), NSCoder(reader)); });
  ASSERT_TRUE(raised);
  EXPECT_TRUE(raised->name()->isEqual("NSInvalidArgumentException"_ns));
}

// --- What a coder sees ---------------------------------------------------------------------------

/// A coder that notes what it is told and asked, and knows no values.
class NotingCoder : public Interface<NotingCoder, NSCoder> {
 public:
  using Interface::Interface;
  static ClassPair<NotingCoder> classPair;
};

namespace {

std::string noted;

constexpr MethodDefinition kCoderMethods[] = {
    method<"encodeObject:forKey:">([](const NotingCoder&, const id& object, const NSString& key) {
      noted += std::string(key) + (object ? "=object " : "=nil ");
    }),
    method<"encodeInteger:forKey:">([](const NotingCoder&, NSInteger value, const NSString& key) {
      noted += std::string(key) + "=" + std::to_string(value) + " ";
    }),
    method<"decodeObjectForKey:">([](const NotingCoder&, const NSString& key) -> id {
      noted += std::string(key) + " ";
      return nullptr;
    }),
    method<"decodeIntegerForKey:">([](const NotingCoder&, const NSString& key) -> NSInteger {
      noted += std::string(key) + " ";
      return 0;
    }),
};
constexpr ClassDefinition kCoderDefinition{.name = "NotingCoder", .methods = kCoderMethods};

}  // namespace

constinit ClassPair<NotingCoder> NotingCoder::classPair{kCoderDefinition};

TEST(BDDateRangeArchive, ValuesAreWrittenAndReadInOneOrder) {
  const NSCoder coder = NotingCoder::alloc()->init();
  const BDDateRange range = BDDateRange::dateRangeWithAnchor(
      nullptr, BDTimeUnitMonth, -3, static_cast<BDTimeUnit>(-1), 4, BDTimeUnitYear);
  noted.clear();
  send<"encodeWithCoder:">(range, coder);
  EXPECT_EQ(noted,
            "anchor=nil offset=-3 length=4 anchorUnit=2 offsetUnit=4294967295 lengthUnit=4 ");
  noted.clear();
  const auto empty = send<"initWithCoder:", BDDateRange>(BDDateRange::alloc(), coder);
  EXPECT_EQ(noted, "anchor offset length anchorUnit offsetUnit lengthUnit ");
  EXPECT_TRUE(empty->isEqual(BDDateRange::new_()));
}

TEST(BDDateRangeArchive, ReadingAnswersNilWhenTheBaseInitialiserDoes) {
  const NSCoder coder = NotingCoder::alloc()->init();
  const BDDateRange allocated = BDDateRange::alloc();
  const Method init = class_getInstanceMethod(NSObject::class_(), selector<"init">());
  noted.clear();
  const IMP previous = method_setImplementation(
      init, implementation([](const NSObject&) -> NSObject { return nullptr; }).implementation);
  const auto none = send<"initWithCoder:", BDDateRange>(allocated, coder);
  method_setImplementation(init, previous);
  EXPECT_TRUE(none == nullptr);
  EXPECT_EQ(noted, "");
}
