#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Platform/Foundation/Internal/XmlPropertyList.h"

namespace brindle::internal {
namespace {

using namespace std::string_view_literals;
using Index = PropertyList::Index;

TextView ascii(std::string_view text) { return TextView::latin1(text); }
TextView wide(std::u16string_view text) { return TextView::utf16(text); }

std::string plist(std::string_view value) {
  return "<plist version=\"1.0\">" + std::string(value) + "</plist>";
}

PropertyList read(std::string_view bytes) {
  std::string error;
  auto list = readXmlPropertyList(bytes, error);
  EXPECT_TRUE(list) << error;
  return list ? std::move(*list) : PropertyList();
}

std::string errorOf(std::string_view bytes) {
  std::string error;
  if (readXmlPropertyList(bytes, error)) return "none";
  constexpr std::string_view kHead = "XML property list: ";
  EXPECT_TRUE(error.starts_with(kHead)) << error;
  return error.substr(kHead.size());
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

// An ASCII text in UTF-16.
std::string utf16(std::string_view text, bool bigEndian, bool mark) {
  std::string bytes = !mark ? "" : bigEndian ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : text) {
    if (bigEndian) bytes.push_back('\0');
    bytes.push_back(c);
    if (!bigEndian) bytes.push_back('\0');
  }
  return bytes;
}

TEST(XmlPropertyListReaderTest, Tour) {
  const PropertyList list = read(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!DOCTYPE plist SYSTEM \"file://localhost/nowhere.dtd\">\n"
      "<plist version=\"1.0\">\n"
      "<dict>\n"
      "  <key>name</key> <string>\xE4\xB8\xAD &amp; more</string>\n"
      "  <key>numbers</key> <array><integer>-1</integer><real>2.5</real></array>\n"
      "  <key>made</key> <date>2001-01-01T00:01:00Z</date>\n"
      "  <key>bytes</key> <data>AAH/</data>\n"
      "  <key>on</key> <true/> <key>off</key> <false/>\n"
      "  <key>link</key> <dict><key>CF$UID</key><integer>7</integer></dict>\n"
      "</dict>\n"
      "</plist>\n");
  const Index root = list.root();
  EXPECT_EQ(list.string(list.find(root, ascii("name"))), wide(u"\u4E2D & more"));
  const auto numbers = list.elements(list.find(root, ascii("numbers")));
  EXPECT_EQ(list.integer(numbers[0]).asSigned(), -1);
  EXPECT_EQ(list.real(numbers[1]), 2.5);
  EXPECT_EQ(list.date(list.find(root, ascii("made"))), 60);
  EXPECT_EQ(list.data(list.find(root, ascii("bytes"))), "\x00\x01\xFF"sv);
  EXPECT_TRUE(list.boolean(list.find(root, ascii("on"))));
  EXPECT_FALSE(list.boolean(list.find(root, ascii("off"))));
  EXPECT_EQ(list.uid(list.find(root, ascii("link"))), 7U);

  EXPECT_EQ(errorOf("<plist>\n<integer>many</integer></plist>"),
            "line 2: \"many\" is no <integer>");
}

TEST(XmlPropertyListReaderTest, LooksAtTheFirstBytes) {
  const struct {
    std::string bytes;
    bool looks;
  } cases[] = {
      {"<", true},
      {" \r\n\t<plist/>", true},
      {"\xEF\xBB\xBF<plist/>", true},
      {utf16("<plist/>", true, true), true},
      {utf16(" <plist/>", false, true), true},
      {utf16("<plist/>", false, false), true},
      {"", false},
      {" ", false},
      {"\xEF\xBB\xBF", false},
      {"{a = b;}", false},
      {"bplist00<", false},
      {std::string(100, '\0'), false},
  };
  for (const auto& [bytes, looks] : cases) EXPECT_EQ(looksLikeXmlPropertyList(bytes), looks);
}

TEST(XmlPropertyListReaderTest, Encodings) {
  const std::string_view text = "<plist><string>text</string></plist>";
  const std::string named = "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + std::string(text);
  for (const std::string& bytes :
       {std::string(text), "\xEF\xBB\xBF" + std::string(text), utf16(named, true, true),
        utf16(named, false, true), utf16(text, true, true)}) {
    const PropertyList list = read(bytes);
    EXPECT_EQ(list.string(list.root()), ascii("text"));
  }
  const PropertyList latin =
      read("<?xml version='1.0' encoding='ISO-8859-1'?><string>\xE9</string>");
  EXPECT_EQ(latin.string(latin.root()), wide(u"\u00E9"));
  EXPECT_EQ(errorOf("<?xml version='1.0' encoding='Klingon'?><string/>"),
            "line 1: unknown encoding");
  EXPECT_EQ(errorOf(plist("<string>\xE9</string>")), "line 1: not well-formed (invalid token)");
}

TEST(XmlPropertyListReaderTest, Strings) {
  const struct {
    std::string_view xml;
    std::u16string_view text;
  } cases[] = {
      {"<string/>", u""},
      {"<string></string>", u""},
      {"<string> a\n b\t</string>", u" a\n b\t"},
      {"<string>a\r\nb\rc&#13;</string>", u"a\nb\nc\r"},
      {"<string>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;</string>", u"<>&\"'A\U0001F600"},
      {"<string>a<![CDATA[<b>&amp;]]>c</string>", u"a<b>&amp;c"},
      {"<string>a<!-- no -->b<?no?>c</string>", u"abc"},
      {"<string>\xC3\xA9\xF0\x9F\x98\x80\x7F</string>", u"\u00E9\U0001F600\u007F"},
  };
  for (const auto& [xml, text] : cases) {
    const PropertyList list = read(plist(xml));
    EXPECT_EQ(list.string(list.root()), wide(text)) << xml;
  }
}

TEST(XmlPropertyListReaderTest, ValuesWithoutThePlistElement) {
  EXPECT_EQ(errorOf("<true/>"), "none");
  EXPECT_EQ(errorOf("<array><true/></array>"), "none");
  EXPECT_EQ(errorOf(" <plist><!-- --><true></true> </plist> <!-- --> "), "none");
}

TEST(XmlPropertyListReaderTest, EqualKeysAreKept) {
  const PropertyList list =
      read(plist("<dict><key>k</key><integer>1</integer><key>k</key><integer>2</integer></dict>"));
  EXPECT_EQ(list.keys(list.root()).size(), 2U);
  EXPECT_EQ(list.integer(list.find(list.root(), ascii("k"))).asSigned(), 2);
}

TEST(XmlPropertyListReaderTest, Uids) {
  const struct {
    std::string_view xml;
    PropertyKind kind;
  } cases[] = {
      {"<dict><key>CF$UID</key><integer>0</integer></dict>", PropertyKind::uid},
      {"<dict><key>CF$UID</key><integer>18446744073709551615</integer></dict>", PropertyKind::uid},
      {"<dict><key>CF$UID</key><integer>18446744073709551616</integer></dict>",
       PropertyKind::dictionary},
      {"<dict><key>CF$UID</key><integer>-1</integer></dict>", PropertyKind::dictionary},
      {"<dict><key>CF$UID</key><string>1</string></dict>", PropertyKind::dictionary},
      {"<dict><key>CF$UIDs</key><integer>1</integer></dict>", PropertyKind::dictionary},
      {"<dict><key>CF$UID</key><integer>1</integer><key>a</key><true/></dict>",
       PropertyKind::dictionary},
      {"<array><string>CF$UID</string><integer>1</integer></array>", PropertyKind::array},
  };
  for (const auto& [xml, kind] : cases) {
    const PropertyList list = read(plist(xml));
    EXPECT_EQ(list.kind(list.root()), kind) << xml;
  }
}

TEST(XmlPropertyListReaderTest, WhatIsRefused) {
  const struct {
    std::string_view xml;
    std::string_view error;
  } cases[] = {
      {"", "line 1: no element found"},
      {" ", "line 1: no element found"},
      {"text", "line 1: syntax error"},
      {"<plist/>", "line 1: there is no value"},
      {"<plist>", "line 1: no element found"},
      {"<plist><true/>", "line 1: no element found"},
      {"<plist><true/></plist>x", "line 1: junk after document element"},
      {"<plist><true/></plist><plist/>", "line 1: junk after document element"},
      {" <?xml version=\"1.0\"?><true/>", "line 1: XML or text declaration not at start of entity"},
      {"<html/>", "line 1: <html> is unknown"},
      {"<PLIST/>", "line 1: <PLIST> is unknown"},
      {"<plist><plist/></plist>", "line 1: <plist> in a property list"},
      {"<array><plist/></array>", "line 1: <plist> in a property list"},
      {"<plist>\n<true/>\n<false/></plist>", "line 3: there is more than one value"},
      {"<plist>text</plist>", "line 1: text where a value belongs"},
      {"<plist><true/>text</plist>", "line 1: text where a value belongs"},
      {"<array>text</array>", "line 1: text where a value belongs"},
      {"<true>text</true>", "line 1: text where a value belongs"},
      {"<dict>text</dict>", "line 1: text where a value belongs"},
      {"<key>k</key>", "line 1: a key where a value belongs"},
      {"<array><key>k</key></array>", "line 1: a key where a value belongs"},
      {"<dict><key>k</key><key>l</key></dict>", "line 1: a key where a value belongs"},
      {"<dict><true/></dict>", "line 1: a value without a key"},
      {"<dict><string>k</string><true/></dict>", "line 1: a value without a key"},
      {"<dict><dict/></dict>", "line 1: a value without a key"},
      {"<dict><key>k</key></dict>", "line 1: a key without a value"},
      {"<string><true/></string>", "line 1: <true> in <string>"},
      {"<true><true/></true>", "line 1: <true> in <true>"},
      {"<integer>1<real/></integer>", "line 1: <real> in <integer>"},
      {"<integer/>", "line 1: \"\" is no <integer>"},
      {"<real>1,5</real>", "line 1: \"1,5\" is no <real>"},
      {"<date>today</date>", "line 1: \"today\" is no <date>"},
      {"<data>A</data>", "line 1: \"A\" is no <data>"},
      {"<data>\xC3\xA9</data>", "line 1: \"\xC3\xA9\" is no <data>"},
      {"<date>0123456789012345678901234567890123456789012345</date>",
       "line 1: \"0123456789012345678901234567890123456789\" is no <date>"},
      {"<date>012345678901234567890123456789012345678\xC3\xA9</date>",
       "line 1: \"012345678901234567890123456789012345678\" is no <date>"},
      {"<string>&#0;</string>", "line 1: reference to invalid character number"},
      {"<string>&#xD800;</string>", "line 1: reference to invalid character number"},
      {"<string>a\0b</string>"sv, "line 1: not well-formed (invalid token)"},
      {"<string>a\x01</string>", "line 1: not well-formed (invalid token)"},
      {"<string>a & b</string>", "line 1: not well-formed (invalid token)"},
      {"<array><true/></dict>", "line 1: mismatched tag"},
  };
  for (const auto& [xml, error] : cases) EXPECT_EQ(errorOf(xml), error) << xml;
}

TEST(XmlPropertyListReaderTest, EntitiesAreOff) {
  const auto withType = [](std::string_view declarations, std::string_view text) {
    return "<!DOCTYPE plist [" + std::string(declarations) + "]>" +
           plist("<string>" + std::string(text) + "</string>");
  };
  EXPECT_EQ(errorOf(withType("", "text")), "none");
  EXPECT_EQ(errorOf(withType("<!ELEMENT plist ANY>", "text")), "none");
  const std::string refused[] = {
      withType("<!ENTITY a \"x\">", "&a;"),
      withType("<!ENTITY a \"x\">", "not even used"),
      withType("<!ENTITY a SYSTEM \"file:///etc/passwd\">", "&a;"),
      withType("<!ENTITY % a SYSTEM \"http://localhost/\"> %a;", "text"),
      withType("<!ENTITY % a \"<!ENTITY b 'x'>\"> %a;", "&b;"),
  };
  for (const auto& xml : refused)
    EXPECT_EQ(errorOf(xml), "line 1: entities are not allowed") << xml;
  EXPECT_EQ(errorOf(plist("<string>&a;</string>")), "line 1: undefined entity");
  EXPECT_EQ(errorOf("<!DOCTYPE plist SYSTEM \"a.dtd\">" + plist("<string>&a;</string>")),
            "line 1: entities are not allowed");

  std::string laughs = "<!ENTITY a \"ha\">";
  for (char name = 'b'; name <= 'z'; ++name) {
    laughs += std::string("<!ENTITY ") + name + " \"" +
              repeated(std::string("&") + static_cast<char>(name - 1) + ";", 10) + "\">";
  }
  EXPECT_EQ(errorOf(withType(laughs, "&z;")), "line 1: entities are not allowed");
}

TEST(XmlPropertyListReaderTest, Depth) {
  constexpr std::size_t kDeepest = PropertyList::kMaximalDepth;
  const auto nested = [](std::size_t depth, std::string_view leaf) {
    return plist(repeated("<array>", depth) + std::string(leaf) + repeated("</array>", depth));
  };
  constexpr std::string_view kUid = "<dict><key>CF$UID</key><integer>7</integer></dict>";
  EXPECT_EQ(errorOf(nested(kDeepest, "")), "none");
  EXPECT_EQ(errorOf(nested(kDeepest, "<true/>")), "none");
  EXPECT_EQ(errorOf(nested(kDeepest, kUid)), "none") << "which is no dictionary";
  for (const auto& xml :
       {nested(kDeepest + 1, ""), nested(kDeepest, "<dict/>"), nested(kDeepest + 1, kUid),
        nested(kDeepest, "<dict><key>k</key><true/></dict>"), nested(100000, ""),
        repeated("<array>", 100000), repeated("<dict><key>k</key>", 100000)}) {
    EXPECT_EQ(errorOf(xml), "line 1: it is nested too deeply");
  }
  EXPECT_EQ(errorOf(repeated("<a>", 100000)), "line 1: <a> is unknown");
}

TEST(XmlPropertyListReaderTest, DamagedFilesAreReadOrRefused) {
  const std::string file =
      "<?xml version=\"1.0\"?><plist><dict><key>k&amp;</key><array><integer>12</integer>"
      "<real>1.5</real><date>2001-01-01T00:00:00Z</date><data>AAEC</data><true/></array>"
      "<key>\xC3\xA9</key><dict><key>CF$UID</key><integer>1</integer></dict></dict></plist>";
  EXPECT_EQ(errorOf(file), "none");
  for (std::size_t size = 0; size < file.size(); ++size) {
    EXPECT_NE(errorOf(file.substr(0, size)), "none") << size;
  }
  std::size_t refused = 0;
  for (std::size_t i = 0; i < file.size(); ++i) {
    for (const char byte : "\0<>&x/1-=\x80\xFF"sv) {
      std::string damaged = file;
      damaged[i] = byte;
      if (errorOf(damaged) != "none") ++refused;
    }
  }
  EXPECT_GT(refused, file.size() * 5);
}

}  // namespace
}  // namespace brindle::internal
