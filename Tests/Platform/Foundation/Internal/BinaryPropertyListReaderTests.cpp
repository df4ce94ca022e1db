#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Foundation/Internal/BinaryPropertyList.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
using Index = PropertyList::Index;
using Bytes = std::string;

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

Bytes number(std::uint64_t value, std::size_t size) {
  Bytes bytes(size, '\0');
  for (std::size_t i = size; i-- > 0; value >>= 8U) bytes[i] = static_cast<char>(value & 0xFFU);
  return bytes;
}

// A file of these objects, the first of which is the top one unless another is named.
Bytes fileOf(const std::vector<Bytes>& objects, std::size_t referenceSize = 1, std::size_t top = 0,
             std::size_t offsetSize = 4) {
  Bytes bytes = "bplist00";
  Bytes table;
  for (const Bytes& object : objects) {
    table += number(bytes.size(), offsetSize);
    bytes += object;
  }
  const std::size_t begin = bytes.size();
  return bytes + table + Bytes(6, '\0') + number(offsetSize, 1) + number(referenceSize, 1) +
         number(objects.size(), 8) + number(top, 8) + number(begin, 8);
}

Bytes raw(std::string_view bytes) { return Bytes(bytes); }

PropertyList read(const Bytes& bytes) {
  std::string error;
  auto list = readBinaryPropertyList(bytes, error);
  EXPECT_TRUE(list) << error;
  return list ? std::move(*list) : PropertyList();
}

std::string errorOf(const Bytes& bytes) {
  const Bytes exact(bytes);
  std::string error;
  return readBinaryPropertyList(exact, error) ? "none" : error;
}

TEST(BinaryPropertyListReaderTest, Tour) {
  const Bytes file = fileOf({"\xD2\x01\x02\x03\x04", "\x54name", "\x53one", raw("\x61\x4E\x2D"),
                             raw("\xA2\x05\x05"), raw("\x10\x2A")});
  EXPECT_TRUE(looksLikeBinaryPropertyList(file));
  std::string error;
  const auto list = readBinaryPropertyList(file, error);
  ASSERT_TRUE(list) << error;
  EXPECT_EQ(list->kind(list->root()), PropertyKind::dictionary);
  EXPECT_EQ(list->string(list->find(list->root(), ascii("name"))), wide(u"\u4E2D"));
  const Index array = list->find(list->root(), ascii("one"));
  EXPECT_EQ(list->integer(list->elements(array)[1]).asSigned(), 42);

  EXPECT_FALSE(readBinaryPropertyList(file.substr(0, 40), error));
  EXPECT_EQ(error, "binary property list: it is too short");
}

TEST(BinaryPropertyListReaderTest, LooksAtTheFirstBytes) {
  EXPECT_TRUE(looksLikeBinaryPropertyList("bplist00"));
  EXPECT_TRUE(looksLikeBinaryPropertyList("bplist15")) << "another version";
  for (const auto other : {"", "bplis", "BPLIST00", " bplist00", "<plist/>"}) {
    EXPECT_FALSE(looksLikeBinaryPropertyList(other)) << other;
  }
}

TEST(BinaryPropertyListReaderTest, Integers) {
  const struct {
    std::string_view object;
    PropertyInteger value;
  } cases[] = {
      {"\x10\x00"sv, PropertyInteger::fromSigned(0)},
      {"\x10\xFF"sv, PropertyInteger::fromSigned(255)},
      {"\x11\xFF\xFF"sv, PropertyInteger::fromSigned(65535)},
      {"\x12\xFF\xFF\xFF\xFF"sv, PropertyInteger::fromSigned(4294967295)},
      {"\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv, PropertyInteger::fromSigned(INT64_MAX)},
      {"\x13\x80\x00\x00\x00\x00\x00\x00\x00"sv, PropertyInteger::fromSigned(INT64_MIN)},
      {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv, PropertyInteger::fromSigned(-1)},
      {"\x14\x00\x00\x00\x00\x00\x00\x00\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,
       PropertyInteger::fromUnsigned(UINT64_MAX)},
      {"\x14\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFB"sv,
       PropertyInteger::fromSigned(-5)},
      {"\x14\x80\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x01"sv, {1, INT64_MIN}},
  };
  for (const auto& [object, value] : cases) {
    const Bytes file = fileOf({raw(object)});
    const PropertyList list = read(file);
    ASSERT_EQ(list.kind(list.root()), PropertyKind::integer);
    EXPECT_EQ(list.integer(list.root()), value) << value.asReal();
  }
}

TEST(BinaryPropertyListReaderTest, RealsAndDates) {
  const struct {
    std::string_view object;
    PropertyKind kind;
    double value;
  } cases[] = {
      {"\x22\x40\x20\x00\x00"sv, PropertyKind::real, 2.5},
      {"\x22\xFF\x80\x00\x00"sv, PropertyKind::real, -HUGE_VAL},
      {"\x23\x3F\xB9\x99\x99\x99\x99\x99\x9A"sv, PropertyKind::real, 0.1},
      {"\x23\x00\x00\x00\x00\x00\x00\x00\x01"sv, PropertyKind::real, 5e-324},
      {"\x23\x7F\xF0\x00\x00\x00\x00\x00\x00"sv, PropertyKind::real, HUGE_VAL},
      {"\x33\x00\x00\x00\x00\x00\x00\x00\x00"sv, PropertyKind::date, 0},
      {"\x33\xBF\xE8\x00\x00\x00\x00\x00\x00"sv, PropertyKind::date, -0.75},
      {"\x33\x7F\xEF\xFF\xFF\xFF\xFF\xFF\xFF"sv, PropertyKind::date, 0x1.FFFFFFFFFFFFFp1023},
  };
  for (const auto& [object, kind, value] : cases) {
    const Bytes file = fileOf({raw(object)});
    const PropertyList list = read(file);
    EXPECT_EQ(list.kind(list.root()), kind) << value;
    EXPECT_EQ(list.node(list.root()).real, value);
  }
  const PropertyList zero = read(fileOf({"\x23\x80" + Bytes(7, '\0')}));
  EXPECT_TRUE(std::signbit(zero.real(zero.root())));
  const PropertyList none = read(fileOf({"\x23\x7F\xF8" + Bytes(6, '\0')}));
  EXPECT_TRUE(std::isnan(none.real(none.root())));
}

TEST(BinaryPropertyListReaderTest, Strings) {
  const struct {
    std::string_view object;
    std::u16string_view text;
  } cases[] = {
      {"\x50"sv, u""},
      {"\x60"sv, u""},
      {"\x51\x00"sv, u"\0"sv},
      {"\x5E"
       "abcdefghijklmn"sv,
       u"abcdefghijklmn"},
      {"\x5F\x10\x0F"
       "abcdefghijklmno"sv,
       u"abcdefghijklmno"},
      {"\x5F\x13\x00\x00\x00\x00\x00\x00\x00\x01z"sv, u"z"},  // a size in more bytes than needed
      {"\x61\x00z"sv, u"z"},
      {"\x62\xD8\x3D\xDE\x00"sv, u"\U0001F600"},
      {"\x61\xD8\x3D"sv, u"\xD83D"},  // half a character stays as it is
      {"\x62\xDE\x00\xD8\x3D"sv, u"\xDE00\xD83D"},
      {"\x6F\x11\x00\x02\x00\xE9\xFF\xFF"sv, u"\u00E9\uFFFF"},
  };
  for (const auto& [object, text] : cases) {
    const Bytes file = fileOf({raw(object)});
    const PropertyList list = read(file);
    ASSERT_EQ(list.kind(list.root()), PropertyKind::string);
    EXPECT_EQ(list.string(list.root()), wide(text));
  }
}

TEST(BinaryPropertyListReaderTest, OtherLeaves) {
  const Bytes file = fileOf({"\xA8\x01\x02\x03\x04\x05\x06\x07\x08", raw("\x00"sv), "\x08", "\x09",
                             raw("\x40"), raw("\x43\x00\x01\xFF"sv), raw("\x80\x07"),
                             raw("\x82\x01\x00\x00"sv), "\x87" + Bytes(8, '\xFF')});
  const PropertyList list = read(file);
  const auto at = list.elements(list.root());
  EXPECT_EQ(list.kind(at[0]), PropertyKind::null);
  EXPECT_FALSE(list.boolean(at[1]));
  EXPECT_TRUE(list.boolean(at[2]));
  EXPECT_EQ(list.data(at[3]), "");
  EXPECT_EQ(list.data(at[4]), "\x00\x01\xFF"sv);
  EXPECT_EQ(list.uid(at[5]), 7U);
  EXPECT_EQ(list.uid(at[6]), 0x10000U);
  EXPECT_EQ(list.uid(at[7]), UINT64_MAX);
}

TEST(BinaryPropertyListReaderTest, ReferencesAndOffsetsOfAllSizes) {
  for (std::size_t references = 1; references <= 8; ++references) {
    for (std::size_t offsets = 1; offsets <= 8; ++offsets) {
      const Bytes file = fileOf({"\x51x", "\xA1" + number(0, references)}, references, 1, offsets);
      const PropertyList list = read(file);
      EXPECT_EQ(list.root(), 1U);
      EXPECT_EQ(list.string(list.elements(1)[0]), ascii("x")) << references << ' ' << offsets;
    }
  }
}

TEST(BinaryPropertyListReaderTest, SharedObjectsStayOne) {
  const Bytes file =
      fileOf({raw("\xC3\x01\x01\x02"), raw("\xA1\x02"), "\x51x", "what nothing leads to"});
  const PropertyList list = read(file);
  ASSERT_EQ(list.kind(list.root()), PropertyKind::set);
  EXPECT_EQ(list.elements(0)[0], list.elements(0)[1]);
  EXPECT_EQ(list.elements(1)[0], list.elements(0)[2]);
  EXPECT_EQ(list.size(), 4U);
}

TEST(BinaryPropertyListReaderTest, MostDeeplyNested) {
  const auto nested = [](std::size_t depth, const Bytes& leaf) {
    std::vector<Bytes> objects;
    for (std::size_t i = 1; i <= depth; ++i) objects.push_back("\xA1" + number(i, 3));
    objects.push_back(leaf);
    return fileOf(objects, 3);
  };
  constexpr std::size_t kDeepest = PropertyList::kMaximalDepth;
  EXPECT_EQ(errorOf(nested(kDeepest, "\x51x")), "none");
  EXPECT_EQ(errorOf(nested(kDeepest - 1, "\xA0")), "none");
  for (const Bytes& file :
       {nested(kDeepest + 1, "\x51x"), nested(kDeepest, "\xA0"), nested(100000, "\x51x")}) {
    EXPECT_NE(errorOf(file).find("it is nested too deeply"), Bytes::npos) << errorOf(file);
  }
}

TEST(BinaryPropertyListReaderTest, ReachedByAShortWayFirst) {
  // The top holds the end of the chain as well as its start.
  std::vector<Bytes> objects{"\xA2" + number(PropertyList::kMaximalDepth, 2) + number(1, 2)};
  for (std::size_t i = 1; i <= PropertyList::kMaximalDepth; ++i) {
    objects.push_back("\xA1" + number(i + 1, 2));
  }
  objects.push_back("\x51x");
  EXPECT_NE(errorOf(fileOf(objects, 2)).find("it is nested too deeply"), Bytes::npos);
}

TEST(BinaryPropertyListReaderTest, Cycles) {
  const std::vector<Bytes> cases[] = {
      {raw("\xA1\x00"sv)},
      {raw("\xC1\x00"sv)},
      {raw("\xD1\x01\x00"sv), "\x51k"},
      {raw("\xA1\x01"), raw("\xA1\x02"), raw("\xA2\x03\x00"sv), "\x51x"},
  };
  for (const auto& objects : cases) {
    EXPECT_EQ(errorOf(fileOf(objects)),
              "binary property list: object 0 at byte 8: it holds itself");
  }
  // A key that is the dictionary.
  EXPECT_NE(errorOf(fileOf({raw("\xD1\x00\x01"sv), "\x51k"})), "none");
}

TEST(BinaryPropertyListReaderTest, ObjectsThatAreRefused) {
  const struct {
    std::string_view object;
    std::string_view error;
  } cases[] = {
      {"\x01", "its marker is unknown"},
      {"\x0F", "its marker is unknown"},
      {"\x30", "its marker is unknown"},
      {"\x70", "its marker is unknown"},
      {"\x90", "its marker is unknown"},
      {"\xB0", "its marker is unknown"},
      {"\xE0", "its marker is unknown"},
      {"\xF0", "its marker is unknown"},
      {"\x15", "its number is of more than 16 bytes"},
      {"\x21\x00\x00"sv, "its number is of neither 4 nor 8 bytes"},
      {"\x24", "its number is of neither 4 nor 8 bytes"},
      {"\x33\x7F\xF0\x00\x00\x00\x00\x00\x00"sv, "its date is no number"},
      {"\x33\x7F\xF8\x00\x00\x00\x00\x00\x00"sv, "its date is no number"},
      {"\x88\x00\x00\x00\x00\x00\x00\x00\x00\x00"sv, "its UID is of more than 8 bytes"},
      {"\x51\x80", "its text is not ASCII"},
      {"\x10", "an integer goes beyond the end of the objects"},
      {"\x23\x00"sv, "a real goes beyond the end of the objects"},
      {"\x33\x00"sv, "a date goes beyond the end of the objects"},
      {"\x42\x00"sv, "data goes beyond the end of the objects"},
      {"\x52x", "a string goes beyond the end of the objects"},
      {"\x62\x00x\x00"sv, "a string goes beyond the end of the objects"},
      {"\x81\x00"sv, "a UID goes beyond the end of the objects"},
      {"\xA1", "an array goes beyond the end of the objects"},
      {"\xC1", "a set goes beyond the end of the objects"},
      {"\xD1\x00"sv, "a dictionary goes beyond the end of the objects"},
      {"\x5F", "a string goes beyond the end of the objects"},
      {"\x5F\x50"sv, "a string goes beyond the end of the objects"},
      {"\x5F\x14\x00"sv, "a string goes beyond the end of the objects"},
      {"\x4F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv, "data goes beyond the end of the objects"},
      {"\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv, "data goes beyond the end of the objects"},
      {"\x6F\x13\x80\x00\x00\x00\x00\x00\x00\x00"sv, "a string goes beyond the end of the objects"},
      {"\xAF\x13\x20\x00\x00\x00\x00\x00\x00\x00"sv, "an array goes beyond the end of the objects"},
      {"\xDF\x13\x80\x00\x00\x00\x00\x00\x00\x00"sv,
       "a dictionary goes beyond the end of the objects"},
      {"\xA1\x01", "it holds an object that does not exist"},
      {"\xD1\x00\x05"sv, "it holds an object that does not exist"},
  };
  for (const auto& [object, error] : cases) {
    EXPECT_EQ(errorOf(fileOf({raw(object)})),
              "binary property list: object 0 at byte 8: " + raw(error));
  }
  EXPECT_EQ(errorOf(fileOf({raw("\xD1\x01\x01"), raw("\x10\x01")})),
            "binary property list: object 0 at byte 8: a key is no string");
}

TEST(BinaryPropertyListReaderTest, EndsThatAreRefused) {
  const auto file = [](std::size_t offsetSize, std::size_t referenceSize, std::uint64_t count,
                       std::uint64_t top, std::uint64_t table, std::uint64_t offset = 8) {
    return "bplist00\x51x" + number(offset, 1) + Bytes(6, '\0') + number(offsetSize, 1) +
           number(referenceSize, 1) + number(count, 8) + number(top, 8) + number(table, 8);
  };
  EXPECT_EQ(errorOf(file(1, 1, 1, 0, 10)), "none");
  const struct {
    Bytes bytes;
    std::string_view error;
  } cases[] = {
      {"", "it does not begin with bplist00"},
      {"bplist0", "it does not begin with bplist00"},
      {"bplist01" + Bytes(100, '\0'), "it does not begin with bplist00"},
      {"bplist00", "it is too short"},
      {"bplist00" + Bytes(33, '\0'), "it is too short"},
      {file(0, 1, 1, 0, 10), "offsets are not of 1 to 8 bytes"},
      {file(9, 1, 1, 0, 10), "offsets are not of 1 to 8 bytes"},
      {file(1, 0, 1, 0, 10), "references are not of 1 to 8 bytes"},
      {file(1, 9, 1, 0, 10), "references are not of 1 to 8 bytes"},
      {file(1, 1, 1, 0, 8), "the offset table is not in it"},
      {file(1, 1, 1, 0, 11), "the offset table is not in it"},
      {file(1, 1, 1, 0, UINT64_MAX), "the offset table is not in it"},
      {file(1, 1, 0, 0, 10), "the offset table has no room for 0 objects"},
      {file(1, 1, 2, 0, 10), "the offset table has no room for 2 objects"},
      {file(2, 1, 1, 0, 10), "the offset table has no room for 1 objects"},
      {file(8, 1, 0x2000000000000000, 0, 10),
       "the offset table has no room for 2305843009213693952 objects"},
      {file(1, 1, UINT64_MAX, 0, 10),
       "the offset table has no room for 18446744073709551615 objects"},
      {file(1, 1, 1, 1, 10), "the top object 1 does not exist"},
      {file(1, 1, 1, UINT64_MAX, 10), "the top object 18446744073709551615 does not exist"},
      {file(1, 1, 1, 0, 10, 7), "object 0 at byte 7: it is not among the objects"},
      {file(1, 1, 1, 0, 10, 10), "object 0 at byte 10: it is not among the objects"},
      {file(1, 1, 1, 0, 10, 255), "object 0 at byte 255: it is not among the objects"},
      {file(1, 1, 1, 0, 10) + "garbage", "offsets are not of 1 to 8 bytes"},
  };
  for (const auto& [bytes, error] : cases) {
    EXPECT_EQ(errorOf(bytes), "binary property list: " + raw(error));
  }
}

TEST(BinaryPropertyListReaderTest, ObjectsThatOverlapCannotMultiplyBytes) {
  // Ten thousand objects, nearly all of which are the same long one.
  constexpr std::size_t kCount = 10000;
  Bytes first = "\xAF\x11" + number(kCount - 1, 2);
  for (std::size_t i = 1; i < kCount; ++i) first += number(i, 2);
  Bytes filler;
  for (int i = 0; i < 0x8000; ++i) filler += "\x00\x01"sv;  // also references to the string
  for (const std::string_view marker :
       {"\x4F\x11\xFF\xFF", "\x5F\x11\xFF\xFF", "\x6F\x11\x7F\xFF", "\xAF\x11\x7F\xFF",
        "\xCF\x11\x7F\xFF", "\xDF\x11\x3F\xFF"}) {
    Bytes file = "bplist00" + first;
    const std::size_t string = file.size();
    file += "\x51x" + raw(marker) + filler;
    const std::size_t table = file.size();
    file += number(8, 3) + number(string, 3);
    for (std::size_t i = 2; i < kCount; ++i) file += number(string + 2, 3);
    file += Bytes(6, '\0') + "\x03\x02" + number(kCount, 8) + number(0, 8) + number(table, 8);
    EXPECT_NE(errorOf(file).find("objects overlap"), Bytes::npos) << errorOf(file);
  }
}

TEST(BinaryPropertyListReaderTest, DamagedFilesAreReadOrRefused) {
  const Bytes file =
      fileOf({"\xD3\x01\x02\x03\x04\x05\x06", "\x51k", "\x51l", "\x51m", raw("\xA3\x07\x08\x09"),
              raw("\xC2\x07\x08"),
              "\x5F\x10\x10"
              "0123456789abcdef",
              raw("\x12\x00\x00\x00\x01"sv), raw("\x61\x4E\x2D"), raw("\x42\x00\x01"sv)});
  EXPECT_EQ(errorOf(file), "none");
  for (std::size_t size = 0; size < file.size(); ++size) {
    EXPECT_NE(errorOf(file.substr(0, size)), "none") << size;
  }
  std::size_t refused = 0;
  for (std::size_t i = 0; i < file.size(); ++i) {
    for (int flipped = 1; flipped < 256; ++flipped) {
      Bytes damaged = file;
      damaged[i] = static_cast<char>(damaged[i] ^ flipped);
      if (errorOf(damaged) != "none") ++refused;
    }
  }
  EXPECT_GT(refused, file.size() * 100);
}

}  // namespace
}  // namespace brindle::internal
