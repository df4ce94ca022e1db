#include <Brindle/Platform/NSKeyValueObserving.h>

#include <gtest/gtest.h>

#include <Brindle/Platform/NSMutableString.h>

#include "Tests/Platform/Foundation/ObservingTesting.h"
#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr NSUInteger kNew = NSKeyValueObservingOptionNew;

TEST(ObservedKeys, AreTheSameWhenTheirTextIs) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const NSString made = NSString::stringWithFormat("%s.%s"_ns, "friend", "age");
  addObserver(ann, recorder, made, kNew);
  const WatchedPerson bo = WatchedPerson::new_();
  ann->setFriend(bo);
  bo->setAge(4);
  EXPECT_EQ(recorder->lines(), "friend.age kind=1 new=0\nfriend.age kind=1 new=4\n");
  removeObserver(ann, recorder, "friend.age"_ns);
  bo->setAge(5);
  EXPECT_EQ(recorder->lines(), "");
}

TEST(ObservedKeys, AreReadWhenTheyAreGiven) {
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  const auto key = cast<NSMutableString>(NSMutableString::string());
  key->setString("age"_ns);
  addObserver(ann, recorder, key, kNew);
  key->setString("name"_ns);
  ann->setName("Ann"_ns);
  ann->setAge(1);
  EXPECT_EQ(recorder->lines(), "age kind=1 new=1\n");
  EXPECT_NE(raised([&] { removeObserver(ann, recorder, key); }), "");
  removeObserver(ann, recorder, "age"_ns);
}

TEST(ObservedKeys, AreNotCapitalizedBeyondLatinLetters) {
  const Class cls = makeClass(WatchedPerson::class_());
  addMethod<"setöl:">(cls, [](const WatchedPerson& self, int v) { self->setSecretly(v); });
  addMethod<"öl">(cls, [](const WatchedPerson& self) { return self->secret(); });
  addMethod<"setURL:">(cls, [](const WatchedPerson& self, int v) { self->setSecretly(v); });
  addMethod<"URL">(cls, [](const WatchedPerson& self) { return self->secret(); });
  const auto ann = send<"new", WatchedPerson>(cls);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  addObserver(ann, recorder, "öl"_ns, kNew);
  addObserver(ann, recorder, "URL"_ns, kNew);
  send<"setöl:">(ann, 3);
  send<"setURL:">(ann, 4);
  EXPECT_EQ(recorder->lines(), "öl kind=1 new=3\nURL kind=1 new=4\n");
}

TEST(ObservedKeys, MayBeEmptyWithinAPath) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(WatchedPerson::new_());
  const ChangeRecorder recorder = ChangeRecorder::new_();
  EXPECT_EQ(
      raised([&] { addObserver(ann, recorder, ""_ns, kNew); }),
      "NSInvalidArgumentException: -[WatchedPerson addObserver:forKeyPath:options:context:]: empty "
      "key path");
  // Such keys have no value: reading one raises, observing without values does not.
  for (const NSString& path : {"friend."_ns, ".friend"_ns, "friend..age"_ns, "."_ns, ".."_ns}) {
    raised([&] {
      addObserver(ann, recorder, path, 0);
      removeObserver(ann, recorder, path);
    });
    EXPECT_EQ(object_getClass(ann), WatchedPerson::class_()) << std::string(path);
  }
}

TEST(ObservedKeys, MayBeManyAndLong) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(ann);
  const ChangeRecorder recorder = ChangeRecorder::new_();
  std::string text;
  for (int i = 0; i < 200; ++i) text += "friend.";
  text += "age";
  addObserver(ann, recorder, NSString(text), kNew);
  ann->setAge(7);
  EXPECT_EQ(recorder->lines(), text + " kind=1 new=7\n");
  removeObserver(ann, recorder, NSString(text));
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
  for (int i = 0; i < 500; ++i) {
    const NSString key("unknown" + std::to_string(i));
    addObserver(ann, recorder, key, 0);
    willChangeValueForKey(ann, key);
    didChangeValueForKey(ann, key);
    EXPECT_EQ(recorder->lines(), std::string(key) + " kind=1\n");
    removeObserver(ann, recorder, key);
  }
}

TEST(ObservedKeys, TakeNoMoreThanTheirPath) {
  // The ends of a path were kept as texts of their own: this one took gigabytes.
  const WatchedPerson ann = WatchedPerson::new_();
  const ChangeRecorder recorder = ChangeRecorder::new_();
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "friend.";
  const NSString path(text + "age");
  addObserver(ann, recorder, path, kNew);
  ann->setFriend(nullptr);
  EXPECT_EQ(recorder->lines(), std::string(path) + " kind=1 new=null\n");
  removeObserver(ann, recorder, path);
  EXPECT_EQ(object_getClass(ann), WatchedPerson::class_());
}

TEST(ObservedKeys, MayEndWithAnOperator) {
  const WatchedPerson ann = WatchedPerson::new_();
  ann->setFriend(WatchedPerson::new_());
  const ChangeRecorder recorder = ChangeRecorder::new_();
  for (const NSString& path : {"friend.items.@sum.length"_ns, "items.@count"_ns}) {
    addObserver(ann, recorder, path, kNew);
  }
  ann->friend_()->setItems({"ab"_ns, "c"_ns});
  ann->setItems({"a"_ns});
  EXPECT_EQ(recorder->lines(),
            "friend.items.@sum.length kind=1 new=3\nitems.@count kind=1 new=1\n");
}

}  // namespace
}  // namespace brindle
