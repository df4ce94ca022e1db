#include "Platform/Foundation/Internal/PropertyListFormat.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/XmlPropertyListValues.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
using Index = PropertyList::Index;

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

std::string hex(std::uint64_t value, int digits) {
  char buffer[20];
  snprintf(buffer, sizeof buffer, "%0*llx", digits, static_cast<unsigned long long>(value));
  return buffer;
}

// A value in one line, which the script below gives in the same words.
std::string shown(const PropertyList& list, Index index) {
  std::string text;
  switch (list.kind(index)) {
    case PropertyKind::boolean:
      return list.boolean(index) ? "T" : "F";
    case PropertyKind::integer:
      return "i" + formatXmlInteger(list.integer(index));
    case PropertyKind::real:
      return "r" + hex(std::bit_cast<std::uint64_t>(list.real(index)), 16);
    case PropertyKind::date:
      return "t" + std::to_string(std::llround(list.date(index) * 1e6));
    case PropertyKind::string:
      for (const char16_t unit : list.string(index).toUtf16()) text += hex(unit, 4);
      return "s" + text;
    case PropertyKind::data:
      for (const char byte : list.data(index).substr(0, 20)) {
        text += hex(static_cast<unsigned char>(byte), 2);
      }
      return "d" + std::to_string(list.data(index).size()) + "=" + text;
    case PropertyKind::uid:
      return "u" + std::to_string(list.uid(index));
    case PropertyKind::array:
      for (const Index element : list.elements(index)) text += shown(list, element) + ",";
      return "[" + text + "]";
    case PropertyKind::dictionary:
      for (std::size_t i = 0; i < list.keys(index).size(); ++i) {
        text += shown(list, list.keys(index)[i]) + ":" + shown(list, list.values(index)[i]) + ",";
      }
      return "{" + text + "}";
    default:
      return "?";
  }
}

// Reads a property list, prints it, and writes it as both forms.
constexpr std::string_view kScript = R"(
import datetime, plistlib, struct, sys

def shown(v):
    if isinstance(v, bool): return "T" if v else "F"
    if isinstance(v, int): return "i%d" % v
    if isinstance(v, float): return "r" + struct.pack(">d", v).hex()
    if isinstance(v, datetime.datetime):
        return "t%d" % ((v - datetime.datetime(2001, 1, 1)) // datetime.timedelta(microseconds=1))
    if isinstance(v, str): return "s" + v.encode("utf-16-be").hex()
    if isinstance(v, bytes): return "d%d=" % len(v) + v[:20].hex()
    if isinstance(v, plistlib.UID): return "u%d" % v.data
    if isinstance(v, list): return "[" + "".join(shown(e) + "," for e in v) + "]"
    if list(v) == ["CF$UID"]: return "u%d" % v["CF$UID"]
    return "{" + "".join(shown(k) + ":" + shown(e) + "," for k, e in v.items()) + "}"

def uids(v, f):
    if isinstance(v, list): return [uids(e, f) for e in v]
    if isinstance(v, dict) and list(v) == ["CF$UID"]: return f(v["CF$UID"])
    if isinstance(v, dict): return {k: uids(e, f) for k, e in v.items()}
    return f(v.data) if isinstance(v, plistlib.UID) else v

with open(sys.argv[1], "rb") as file: value = plistlib.load(file)
print(shown(value), end="")
for suffix, form, f in ((".binary", plistlib.FMT_BINARY, plistlib.UID),
                        (".xml", plistlib.FMT_XML, lambda n: {"CF$UID": n})):
    with open(sys.argv[1] + suffix, "wb") as file:
        plistlib.dump(uids(value, f), file, fmt=form, sort_keys=False)
)";

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// A folder for the files of one test.
class Folder {
 public:
  Folder() {
    const char* const made = mkdtemp(path_.data());
    EXPECT_NE(made, nullptr);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    for (const std::string& file : files_) unlink(file.c_str());
    rmdir(path_.c_str());
  }
  std::string file(const std::string& name) {
    files_.push_back(path_ + "/" + name);
    return files_.back();
  }

 private:
  std::string path_ = testing::TempDir() + "plistXXXXXX";
  std::vector<std::string> files_;
};

// Runs a command for what it prints; whether it succeeded.
bool run(const std::string& command, std::string& output) {
  FILE* const pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return false;
  for (int c = getc(pipe); c != EOF; c = getc(pipe)) output.push_back(static_cast<char>(c));
  return pclose(pipe) == 0;
}

// The document looks into the bytes.
PropertyList read(const std::string& bytes) {
  std::string error;
  auto list = readPropertyList(bytes, error);
  EXPECT_TRUE(list) << error;
  return list ? std::move(*list) : PropertyList();
}

PropertyList makeDocument() {
  PropertyList list;
  std::vector<Index> values;
  for (const std::int64_t value :
       {std::int64_t{0}, std::int64_t{1}, std::int64_t{127}, std::int64_t{128}, std::int64_t{255},
        std::int64_t{256}, std::int64_t{65535}, std::int64_t{65536}, std::int64_t{2147483648},
        std::int64_t{4294967295}, std::int64_t{4294967296}, std::int64_t{-1}, std::int64_t{-128},
        std::int64_t{-2147483649}, std::int64_t{INT64_MAX}, std::int64_t{INT64_MIN}}) {
    values.push_back(list.addInteger(value));
  }
  values.push_back(list.addInteger(PropertyInteger::fromUnsigned(UINT64_MAX)));
  for (const double value : {0.0, 1.0, -2.5, 0.1, 1e300, 5e-324, HUGE_VAL, -HUGE_VAL}) {
    values.push_back(list.addReal(value));
  }
  for (const double date : {0.0, 1.0, -1.0, 721692800.0, -63113904000.0, 252423993599.0}) {
    values.push_back(list.addDate(date));
  }
  for (const std::string_view bytes : {""sv, "\0"sv, "\xFF\x80"sv, "fifteen bytes.."sv}) {
    values.push_back(list.addData(bytes));
  }
  values.push_back(list.addData(std::string(70000, 'x')));
  for (const std::u16string_view text : {u""sv, u"ascii"sv, u"fifteen units.."sv, u"<&> \"'\t\n"sv,
                                         u"\u00E9"sv, u"\u4E2D"sv, u"\U0001F600 \U0010FFFF"sv}) {
    values.push_back(list.addString(wide(text)));
  }
  for (const std::uint64_t uid : {0ULL, 255ULL, 256ULL, 65536ULL, 4294967296ULL, ~0ULL}) {
    values.push_back(list.addUid(uid));
  }
  values.push_back(list.addBoolean(true));
  values.push_back(list.addBoolean(false));
  values.push_back(list.addArray({}));
  values.push_back(list.addDictionary({}));
  for (int i = 0; i < 300; ++i) values.push_back(list.addString(ascii(std::to_string(i))));
  const Index all = list.addArray(values);
  const Index entries[] = {
      list.addString(ascii("all")), all, list.addString(wide(u"\u4E2D")), all, list.addString({}),
      list.addBoolean(true)};
  list.setRoot(list.addDictionary(entries));
  return list;
}

TEST(PropertyListFormatTest, Tour) {
  PropertyList list;
  list.setRoot(list.addArray(std::vector{list.addString(ascii("a")), list.addInteger(1)}));
  std::string error;
  for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
    const auto file = writePropertyList(list, format, error);
    ASSERT_TRUE(file) << error;
    EXPECT_EQ(formatOf(*file), format);
    const PropertyList back = read(*file);
    EXPECT_EQ(shown(back, back.root()), "[s0061,i1,]");
  }
}

TEST(PropertyListFormatTest, WhatIsNeither) {
  for (const std::string_view bytes : {""sv, "{ a = b; }"sv, "\0\0"sv, "bplis"sv, " "sv}) {
    EXPECT_EQ(formatOf(bytes), std::nullopt);
    std::string error;
    EXPECT_FALSE(readPropertyList(bytes, error));
    EXPECT_EQ(error, "property list: it begins neither as a binary one nor as one in XML");
  }
}

TEST(PropertyListFormatTest, AnEmptyDocumentCannotBeWritten) {
  for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
    std::string error;
    EXPECT_FALSE(writePropertyList(PropertyList(), format, error));
    EXPECT_NE(error, "");
  }
}

TEST(PropertyListFormatTest, EveryKindComesBackInBothForms) {
  const PropertyList list = makeDocument();
  std::string error;
  for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
    const auto file = writePropertyList(list, format, error);
    ASSERT_TRUE(file) << error;
    const PropertyList back = read(*file);
    EXPECT_EQ(shown(back, back.root()), shown(list, list.root()));
  }
}

TEST(PropertyListFormatTest, AnotherReaderAndWriterAgree) {
  std::string output;
  ASSERT_TRUE(run("python3 -c 'import plistlib' 2>&1", output)) << output;
  const PropertyList list = makeDocument();
  const std::string expected = shown(list, list.root());
  Folder folder;
  const std::string script = folder.file("script.py");
  std::ofstream(script) << kScript;
  for (const auto format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
    std::string error;
    const auto file = writePropertyList(list, format, error);
    ASSERT_TRUE(file) << error;
    const std::string path = folder.file(format == PropertyListFormat::xml ? "x" : "b");
    std::ofstream(path, std::ios::binary) << *file;
    output.clear();
    ASSERT_TRUE(run("python3 '" + script + "' '" + path + "' 2>/dev/null", output)) << output;
    EXPECT_EQ(output, expected);
    for (const char* suffix : {".binary", ".xml"}) {
      const std::string other = contentOf(folder.file(path.substr(path.rfind('/') + 1) + suffix));
      const PropertyList back = read(other);
      ASSERT_NE(back.root(), PropertyList::kNone);
      EXPECT_EQ(shown(back, back.root()), expected) << suffix;
    }
  }
}

}  // namespace
}  // namespace brindle::internal
