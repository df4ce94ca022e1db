#include "Platform/Foundation/Internal/FileNames.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace brindle::internal {
namespace {

TEST(FileNamesTest, Tour) {
  EXPECT_EQ(textFromFileName("caf\xC3\xA9").view().toUtf16(), u"caf\u00E9");
  EXPECT_EQ(fileNameFromText(TextView::utf16(u"caf\u00E9")), "caf\xC3\xA9");
  const Text odd = textFromFileName("caf\xE9");
  EXPECT_EQ(odd.view().toUtf16(), (std::u16string{u'c', u'a', u'f', char16_t{0xDCE9}}));
  EXPECT_EQ(fileNameFromText(odd), "caf\xE9");
}

TEST(FileNamesTest, AnyBytesComeBack) {
  std::uint32_t state = 1;
  const auto next = [&state] {
    state = state * 1664525U + 1013904223U;
    return state >> 24U;
  };
  // Mostly bytes that begin or go on with characters of several bytes.
  constexpr unsigned char kBytes[] = {0x80, 0xBF, 0xC0, 0xC3, 0xA9, 0xE0, 0xED, 0xA0, 0xB2,
                                      0xF0, 0x9F, 0x98, 0x80, 0xF4, 0xF5, 0xFF, 'a',  '/'};
  for (int i = 0; i < 20000; ++i) {
    std::string bytes;
    for (auto length = next() % 12; length > 0; --length) {
      bytes += static_cast<char>(kBytes[next() % sizeof kBytes]);
    }
    EXPECT_EQ(fileNameFromText(textFromFileName(bytes)), bytes);
  }
}

TEST(FileNamesTest, SurrogatesInPairsAreCharacters) {
  EXPECT_EQ(fileNameFromText(TextView::utf16(u"\U0001F4A9")), "\xF0\x9F\x92\xA9");
  const char16_t lone[] = {0xD83D, u'x', 0xDC00};
  EXPECT_EQ(fileNameFromText(TextView::utf16({lone, 3})), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST(FileNamesTest, NoNameHasAZero) {
  EXPECT_EQ(fileNameFromText(TextView::latin1({"a\0b", 3})), std::nullopt);
  EXPECT_EQ(fileNameFromText({}), "");
}

}  // namespace
}  // namespace brindle::internal
