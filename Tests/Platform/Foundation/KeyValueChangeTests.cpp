// What observers are told when key-value coding changes a value.
#include <gtest/gtest.h>

#include <string>

#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSMutableDictionary.h>

#include "Tests/Platform/Foundation/KeyValueTesting.h"
#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;

/// The kinds of the changes that the observer is told of while the body runs: "1 2".
template <class Body>
std::string kindsOf(const id& object, const NSString& key, const Body& body) {
  const ChangeRecorder recorder = ChangeRecorder::new_();
  std::string kinds;
  recorder->onChange([&kinds](const NSString&, const id&, const NSDictionary& change, void*) {
    kinds += (kinds.empty() ? "" : " ") +
             std::string(change->objectForKey(NSKeyValueChangeKindKey)->description());
  });
  addObserver(object, recorder, key, kNew);
  body();
  removeObserver(object, recorder, key);
  return kinds;
}

TEST(KeyValueChangeTest, AVariableThatIsWrittenTells) {
  const Variables object = Variables::new_();
  EXPECT_EQ(kindsOf(object, "si"_ns, [&] { setValue(object, NSNumber(4), "si"_ns); }), "1");
  EXPECT_EQ(kindsOf(object, "first"_ns, [&] { setValue(object, "x"_ns, "first"_ns); }), "1");
}

TEST(KeyValueChangeTest, ASetterTellsOnce) {
  const Owner ann = Owner::with("Ann"_ns, 7);
  EXPECT_EQ(kindsOf(ann, "coins"_ns, [&] { setValue(ann, NSNumber(4), "coins"_ns); }), "1");
}

TEST(KeyValueChangeTest, TheArrayOfAVariableTellsOfIndexes) {
  const Shelf shelf = Shelf::new_();
  const NSMutableArray stored = mutableArrayValueForKey(shelf, "stored"_ns);
  EXPECT_EQ(kindsOf(shelf, "stored"_ns,
                    [&] {
                      stored->addObject("a"_ns);
                      stored->replaceObjectAtIndex(0, "b"_ns);
                      stored->removeObjectAtIndex(0);
                      stored->setArray({"c"_ns});
                    }),
            "2 4 3 1");
}

TEST(KeyValueChangeTest, AccessorsOfARelationshipTellOnce) {
  const Shelf shelf = Shelf::new_();
  EXPECT_EQ(kindsOf(shelf, "items"_ns,
                    [&] {
                      const auto items = mutableArrayValueForKey(shelf, "items"_ns);
                      items->addObject("a"_ns);
                      items->replaceObjectAtIndex(0, "b"_ns);
                      items->removeObjectAtIndex(0);
                    }),
            "2 4 3");
  EXPECT_EQ(kindsOf(shelf, "plain"_ns,
                    [&] { mutableArrayValueForKey(shelf, "plain"_ns)->addObject("a"_ns); }),
            "1");
}

TEST(KeyValueChangeTest, TheSetOfAVariableTellsOfMembers) {
  const Shelf shelf = Shelf::new_();
  const NSMutableSet gathered = mutableSetValueForKey(shelf, "gathered"_ns);
  EXPECT_EQ(kindsOf(shelf, "gathered"_ns,
                    [&] {
                      gathered->addObject("a"_ns);
                      gathered->removeObject("a"_ns);
                      gathered->setSet({"b"_ns});
                    }),
            "2 3 4");
}

TEST(KeyValueChangeTest, ADictionaryTellsOfWhatIsSetByKey) {
  const NSMutableDictionary dictionary = NSMutableDictionary::dictionary();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(dictionary, recorder, "a"_ns,
              kNew | NSKeyValueObservingOptionOld | NSKeyValueObservingOptionPrior);
  setValue(dictionary, "x"_ns, "a"_ns);
  setValue(dictionary, "x"_ns, "b"_ns);
  setValue(dictionary, nullptr, "a"_ns);
  EXPECT_EQ(recorder->lines(),
            "a kind=1 old=null prior=1\na kind=1 old=null new=x\n"
            "a kind=1 old=x prior=1\na kind=1 old=x new=null\n");
  removeObserver(dictionary, recorder, "a"_ns);
  setValue(dictionary, "y"_ns, "a"_ns);
  EXPECT_EQ(recorder->lines(), "");
  EXPECT_EQ(dictionary->count(), 2u);
}

TEST(KeyValueChangeTest, AClassMayTellByItself) {
  const Class cls = makeClass(Variables::class_());
  addMethod<"automaticallyNotifiesObserversForKey:">(
      object_getClass(cls), [](const Class&, const NSString&) { return false; });
  const auto object = send<"new", id>(cls);
  EXPECT_EQ(kindsOf(object, "si"_ns, [&] { setValue(object, NSNumber(4), "si"_ns); }), "");
  EXPECT_EQ(valueForKey<NSNumber>(object, "si"_ns)->intValue(), 4);
}

}  // namespace
}  // namespace brindle
