#include "Platform/Foundation/Internal/StringsTable.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;

// "key=value|key=value", or "!" and what is wrong.
std::string read(std::string_view bytes) {
  std::string error;
  const auto entries = readStringsTable(bytes, error);
  if (!entries) return "!" + error;
  EXPECT_EQ(error, "");
  std::string result;
  for (const StringsEntry& entry : *entries) {
    if (!result.empty()) result += '|';
    result += utf8FromText(entry.key) + "=" + utf8FromText(entry.value);
  }
  return result;
}

TEST(StringsTableTest, Tour) {
  EXPECT_EQ(read("/* Shown when the disk is full. */\n"
                 "\"disk full\" = \"Der Datentr\u00E4ger ist voll.\";\n"
                 "cancel = Abbrechen;  // a button\n"
                 "\"OK\";\n"),
            "disk full=Der Datentr\u00E4ger ist voll.|cancel=Abbrechen|OK=OK");
  EXPECT_EQ(read("a = 1;\nb = 2\nc = 3;"), "!strings table: line 3: a semicolon is missing");
}

TEST(StringsTableTest, WhatIsATable) {
  const struct {
    std::string_view bytes;
    std::string_view entries;
  } kCases[] = {
      {"", ""},
      {" \t\r\n", ""},
      {"// nothing", ""},
      {"/* never ends", ""},
      {"/*/ one comment */a=b;", "a=b"},
      {"/***/a=b;/**/", "a=b"},
      {"a/*x*/=/*y*/b/*z*/;", "a=b"},
      {"\"a // b\" = \"/* c */\";", "a // b=/* c */"},
      {"\"a\"=\"1\";\r\"b\"=\"2\";\r\n", "a=1|b=2"},
      {"// one\r\"a\"=\"1\";", "a=1"},
      {"a=1;a=2;", "a=1|a=2"},
      {"key.with-dash/slash_1 = value:2$;", "key.with-dash/slash_1=value:2$"},
      {"'k' = 'it is \"it\"';", "k=it is \"it\""},
      {"\"\" = \"v\";", "=v"},
      {"\"v\" = \"\";", "v="},
      {"{ a = b; }", "a=b"},
      {"{}", ""},
      {"\"two\nlines\" = x;", "two\nlines=x"},
      {R"("\"\\\n\t\r\'" = x;)", "\"\\\n\t\r'=x"},
      {R"("\a\b\f\v\q" = x;)", "\a\b\f\vq=x"},
      {R"("\U00e9\u00E9" = x;)", "\u00E9\u00E9=x"},
      {R"("\UD83D\UDE00" = x;)", "\U0001F600=x"},
      {R"("\U41z\Uz" = x;)", "Az\x55z=x"},
      {R"("\U00411" = x;)", "A1=x"},
      {R"("\101\60\0619" = x;)", "A019=x"},
      {"\"a\\\nb\" = x;", "a\nb=x"},
  };
  for (const auto& [bytes, entries] : kCases) EXPECT_EQ(read(bytes), entries) << bytes;
}

TEST(StringsTableTest, WhatIsNone) {
  const struct {
    std::string_view bytes;
    std::string_view problem;
  } kCases[] = {
      {"a", "line 1: a semicolon is missing"},
      {"a = b", "line 1: a semicolon is missing"},
      {"this is not a table", "line 1: a semicolon is missing"},
      {"a = ;", "line 1: a value is missing"},
      {"\n= b;", "line 2: a key is missing"},
      {"a = 1;\r\n\r\n;", "line 3: a key is missing"},
      {"a = <00ff>;", "line 1: a value is missing"},
      {"a = {b = c;};", "line 1: a value is missing"},
      {"a = \"b;\n\n", "line 1: a quotation mark is missing"},
      {"a = \"b\\", "line 1: a quotation mark is missing"},
      {"\"a = 'b'", "line 1: a quotation mark is missing"},
      {"{ a = b;", "line 1: the last brace is missing"},
      {"{ a = b; } c = d;", "line 1: something behind the last brace"},
      {"a = b; }", "line 1: a key is missing"},
      {"\"\xFF\" = b;", "neither UTF-8 nor UTF-16"},
      {"\xFF\xFE\"", "neither UTF-8 nor UTF-16"},
  };
  for (const auto& [bytes, problem] : kCases) {
    EXPECT_EQ(read(bytes), "!strings table: " + std::string(problem)) << bytes;
  }
}

TEST(StringsTableTest, EncodingsWithAndWithoutAMark) {
  const auto units = [](bool big, std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
      const char high = static_cast<char>(unit >> 8U);
      const char low = static_cast<char>(unit & 0xFFU);
      bytes += big ? high : low;
      bytes += big ? low : high;
    }
    return bytes;
  };
  for (const bool big : {false, true}) {
    EXPECT_EQ(read(units(big, u"\uFEFF\"\u00E9\" = \"\u4E2D\";")), "\u00E9=\u4E2D");
    EXPECT_EQ(read(units(big, u"\"\u00E9\" = \"\u4E2D\";")), "\u00E9=\u4E2D");
  }
  EXPECT_EQ(read("\xEF\xBB\xBF\"\u00E9\" = \"\u4E2D\";"), "\u00E9=\u4E2D");
  EXPECT_EQ(read("\"\u00E9\" = \"\u4E2D\";"), "\u00E9=\u4E2D");
}

TEST(StringsTableTest, PropertyListsAreTables) {
  PropertyList list;
  const PropertyList::Index members[] = {
      list.addString(TextView::latin1("word")), list.addString(TextView::latin1("Wort")),
      list.addString(TextView::latin1("number")), list.addInteger(5)};
  list.setRoot(list.addDictionary(members));
  for (const PropertyListFormat format : {PropertyListFormat::binary, PropertyListFormat::xml}) {
    std::string error;
    EXPECT_EQ(read(*writePropertyList(list, format, error)), "word=Wort");
  }
  EXPECT_EQ(read("<?xml version='1.0'?><plist><array/></plist>"),
            "!strings table: the property list is no dictionary");
  EXPECT_TRUE(read("<plist>").starts_with("!")) << read("<plist>");
  EXPECT_TRUE(read("bplist00").starts_with("!")) << read("bplist00");
}

TEST(StringsTableTest, ManyMistakesTakeNoTime) {
  EXPECT_TRUE(read(std::string(1'000'000, '"') + "x").starts_with("!"));
  EXPECT_EQ(read(std::string(1'000'000, '{')), "!strings table: line 1: a key is missing");
  std::string long_ = "a = \"" + std::string(1'000'000, '\\') + "\";";
  EXPECT_EQ(read(long_).size(), 2 + 500'000u);
  EXPECT_EQ(read("\0\0"sv), "!strings table: line 1: a key is missing");
}

}  // namespace
}  // namespace brindle::internal
