#include "Platform/Foundation/Internal/CollectionDescription.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>

#include "Tests/Platform/Foundation/CollectionTesting.h"

namespace brindle {
namespace {

TEST(CollectionDescriptionTest, Tour) {
  const NSDictionary person = {{"name"_ns, "Ann B"_ns},
                               {"ages"_ns, NSArray{NSNumber(3), NSNumber(-4)}},
                               {"tags"_ns, NSSet{"x"_ns}}};
  EXPECT_EQ(told(person), R"({
    name = "Ann B";
    ages = (
        3,
        "-4"
    );
    tags = {(
        x
    )};
})");
}

TEST(CollectionDescriptionTest, Empty) {
  EXPECT_EQ(told(NSArray::array()), "(\n)");
  EXPECT_EQ(told(NSDictionary::dictionary()), "{\n}");
  EXPECT_EQ(told(NSSet::set()), "{(\n)}");
  EXPECT_EQ(told(NSArray::arrayWithObject(NSArray::array())), "(\n    (\n    )\n)");
}

TEST(CollectionDescriptionTest, QuotesWhatIsNotPlain) {
  const struct {
    NSString text;
    const char* wanted;
  } table[] = {
      {"abcXYZ019"_ns, "abcXYZ019"},
      {"a.b_c$d/e:f"_ns, "a.b_c$d/e:f"},
      {""_ns, R"("")"},
      {"a b"_ns, R"("a b")"},
      {"a-b"_ns, R"("a-b")"},
      {"(a)"_ns, "\"(a)\""},
      {"say \"hi\""_ns, R"("say \"hi\"")"},
      {"back\\slash"_ns, R"("back\\slash")"},
      {"line\nend\ttab\rreturn"_ns, R"("line\nend\ttab\rreturn")"},
      {"\u0001\u007F"_ns, R"("\U0001\U007f")"},
      {"caf\u00E9"_ns, R"("caf\U00e9")"},
      {"\u4E2D\U0001F600"_ns, R"("\U4e2d\Ud83d\Ude00")"},
  };
  for (const auto& [text, wanted] : table) {
    EXPECT_EQ(told(NSArray{text}), std::string("(\n    ") + wanted + "\n)");
    EXPECT_EQ(told(NSDictionary{{text, text}}),
              std::string("{\n    ") + wanted + " = " + wanted + ";\n}");
  }
}

TEST(CollectionDescriptionTest, OtherMembersByTheirDescriptions) {
  const Member odd = Member::with(1);
  odd->actions().description = [] { return "two words"_ns; };
  const Member silent = Member::with(2);
  silent->actions().description = [] { return NSString(); };
  EXPECT_EQ(told(NSArray({odd, silent, NSNumber(1.5), NSNull::null()})),
            "(\n    \"two words\",\n    \"\",\n    1.5,\n    \"<null>\"\n)");
}

TEST(CollectionDescriptionTest, ACollectionInsideItself) {
  const auto array = NSMutableArray::array();
  array->addObject(array);
  array->addObject("x"_ns);
  array->addObject(array);
  EXPECT_EQ(told(array), "(\n    ...,\n    x,\n    ...\n)");
  const auto dictionary = NSMutableDictionary::dictionary();
  dictionary->setObject(NSArray{array, dictionary}, "k"_ns);
  array->removeObjectAtIndex(0);
  EXPECT_EQ(told(dictionary),
            "{\n    k = (\n        (\n            x,\n            ...\n        ),\n        ...\n"
            "    );\n}");
  EXPECT_EQ(told(NSArray({array, array})),
            "(\n    (\n        x,\n        ...\n    ),\n    (\n        x,\n        ...\n    )\n)");
  array->removeAllObjects();
  dictionary->removeAllObjects();
}

TEST(CollectionDescriptionTest, DeepNestingEnds) {
  NSArray nest = NSArray::array();
  for (int i = 0; i < 1000; ++i) nest = NSArray::arrayWithObject(nest);
  const std::string text = told(nest);
  EXPECT_NE(text.find("..."), std::string::npos);
  EXPECT_LT(text.size(), 100000u);
  while (nest->count() > 0) nest = cast<NSArray>(nest[0]);  // not all at once
}

TEST(CollectionDescriptionTest, ADescriptionThatChangesItsCollection) {
  const NSMutableArray array = {Member::with(1), Member::with(2)};
  uncheckedCast<Member>(array[0])->actions().description = [&] {
    array->removeAllObjects();
    return "m1"_ns;
  };
  EXPECT_EQ(told(array), "(\n    m1,\n    m2\n)");
  EXPECT_EQ(told(array), "(\n)");
}

TEST(CollectionDescriptionTest, ARaisingDescriptionIsForgotten) {
  const Member member = Member::with(1);
  const NSArray array = {member};
  member->actions().description = []() -> NSString { throw std::runtime_error("description"); };
  EXPECT_EQ(raisedBy([&] { (void)told(array); }), "description");
  member->actions().description = nullptr;
  EXPECT_EQ(told(array), "(\n    m1\n)");
}

}  // namespace
}  // namespace brindle
