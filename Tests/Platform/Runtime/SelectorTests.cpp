#include <Brindle/Platform/Selector.h>

#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

static_assert(detail::colonsOf("") == 0 && detail::colonsOf("a:b::") == 3);

TEST(SelectorTest, Tour) {
  const SEL written = selector<"tourOf:selectors:">();
  EXPECT_EQ(sel_registerName("tourOf:selectors:"), written);
  EXPECT_STREQ(sel_getName(written), "tourOf:selectors:");
  EXPECT_NE(selector<"tourOf:">(), written);
  EXPECT_EQ(sel_isEqual(written, selector<"tourOf:selectors:">()), YES);
  EXPECT_EQ(sel_isEqual(written, nullptr), NO);
}

TEST(SelectorTest, TextIsCopied) {
  std::string text = "copiedSelector:";
  const SEL s = sel_registerName(text.c_str());
  text[0] = 'X';
  EXPECT_STREQ(sel_getName(s), "copiedSelector:");
}

TEST(SelectorTest, FindingRegistersNothing) {
  EXPECT_EQ(sel_findName("neverRegisteredByAnybody"), nullptr);
  EXPECT_EQ(sel_findName("neverRegisteredByAnybody"), nullptr);
  EXPECT_EQ(sel_findName("init"), selector<"init">());
}

TEST(SelectorTest, NullAndEmpty) {
  EXPECT_EQ(sel_registerName(nullptr), nullptr);
  EXPECT_STREQ(sel_getName(nullptr), "<null selector>");
  const SEL empty = sel_getUid("");
  ASSERT_NE(empty, nullptr);
  EXPECT_STREQ(sel_getName(empty), "");
  EXPECT_EQ(sel_registerName(""), empty);
}

TEST(SelectorTest, OddTextsAreSelectorsToo) {
  for (const char* text : {":", "::::", "with space:", "\xC3\xBC:", "a\"b"}) {
    EXPECT_STREQ(sel_getName(sel_registerName(text)), text);
  }
  const std::string longText(100'000, 's');
  EXPECT_EQ(sel_getName(sel_registerName(longText.c_str())), longText);
}

TEST(SelectorTest, ManyThreadsAgree) {
  std::vector<std::vector<SEL>> found(8);
  std::vector<std::thread> threads;
  for (auto& list : found) {
    threads.emplace_back([&list] {
      for (int i = 0; i < 500; ++i) {
        list.push_back(sel_registerName(("agreed" + std::to_string(i)).c_str()));
      }
    });
  }
  for (std::thread& t : threads) t.join();
  for (const auto& list : found) EXPECT_EQ(list, found.front());
  EXPECT_EQ(std::set<SEL>(found.front().begin(), found.front().end()).size(), 500u);
}

TEST(SelectorTest, ManyThreadsUseASlotForTheFirstTime) {
  std::vector<SEL> found(8);
  std::vector<std::thread> threads;
  for (SEL& each : found) threads.emplace_back([&each] { each = selector<"firstUseOfASlot">(); });
  for (std::thread& t : threads) t.join();
  for (const SEL each : found) EXPECT_EQ(each, sel_findName("firstUseOfASlot"));
}

}  // namespace
}  // namespace brindle
