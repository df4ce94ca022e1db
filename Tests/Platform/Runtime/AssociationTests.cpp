// Associated objects: values that anybody hangs on any object.
#include <Brindle/Platform/Runtime.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include <Brindle/Platform/AssociationPeek.h>
#include <Brindle/Platform/Block.h>
#include <Brindle/Platform/Weak.h>
#include <gtest/gtest.h>

#include "Tests/Platform/Runtime/RuntimeTesting.h"

namespace brindle {
namespace {

constexpr char kKey = 0;
constexpr char kOther = 0;

/// Counts its copies.
class Copied : public Interface<Copied, Mortal> {
 public:
  using Interface::Interface;
  static ClassPair<Copied> classPair;
};
constexpr MethodDefinition kCopiedMethods[] = {
    method<"copyWithZone:">([](const Copied& self, NSZone*) -> id {
      const Copied copy = Copied::new_();
      copy->setTag(self->tag() + 1);
      return copy;
    }),
};
constexpr ClassDefinition kCopied{.name = "Copied", .methods = kCopiedMethods};

}  // namespace
constinit ClassPair<Copied> Copied::classPair{kCopied};
namespace {

TEST(AssociationTest, Tour) {
  {
    const NSObject object = NSObject::new_();
    Mortal value = Mortal::new_();
    EXPECT_FALSE(objc_getAssociatedObject(object, &kKey));
    objc_setAssociatedObject(object, &kKey, value, OBJC_ASSOCIATION_RETAIN);
    EXPECT_EQ(value->retainCount(), 2u);
    EXPECT_TRUE(objc_getAssociatedObject(object, &kKey) == value);
    EXPECT_FALSE(objc_getAssociatedObject(object, &kOther));
    value = nullptr;
    EXPECT_EQ(Mortal::living(), 1) << "the object owns it";
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(AssociationTest, EveryPolicy) {
  const struct {
    objc_AssociationPolicy policy;
    bool owns;
    bool copies;
  } kPolicies[] = {
      {OBJC_ASSOCIATION_ASSIGN, false, false},
      {OBJC_ASSOCIATION_RETAIN_NONATOMIC, true, false},
      {OBJC_ASSOCIATION_COPY_NONATOMIC, true, true},
      {OBJC_ASSOCIATION_RETAIN, true, false},
      {OBJC_ASSOCIATION_COPY, true, true},
  };
  for (const auto& p : kPolicies) {
    const NSObject object = NSObject::new_();
    const Copied value = Copied::new_();
    objc_setAssociatedObject(object, &kKey, value, p.policy);
    EXPECT_EQ(value->retainCount(), p.owns && !p.copies ? 2u : 1u) << p.policy;
    Mortal found = cast<Mortal>(objc_getAssociatedObject(object, &kKey));
    EXPECT_EQ(found->tag(), p.copies ? 1 : 0) << p.policy;
    EXPECT_EQ(found == value, !p.copies) << p.policy;
    objc_setAssociatedObject(object, &kKey, nullptr, p.policy);
    EXPECT_FALSE(objc_getAssociatedObject(object, &kKey)) << p.policy;
    found = nullptr;
    EXPECT_EQ(value->retainCount(), 1u) << p.policy;
  }
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(AssociationTest, ReplacingReleasesTheOldValueAfterTheNewOneIsThere) {
  const NSObject object = NSObject::new_();
  id during;
  objc_setAssociatedObject(object, &kKey, Ender::with([&](const Ender&) {
                             during = objc_getAssociatedObject(object, &kKey);
                           }),
                           OBJC_ASSOCIATION_RETAIN);
  const Mortal next = Mortal::new_();
  objc_setAssociatedObject(object, &kKey, next, OBJC_ASSOCIATION_RETAIN);
  EXPECT_TRUE(during == next);
  objc_setAssociatedObject(object, &kKey, next, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(next->retainCount(), 3u) << "object, during, next";
}

TEST(AssociationTest, SettingNilRemoves) {
  const NSObject object = NSObject::new_();
  objc_setAssociatedObject(object, &kKey, nullptr, OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kKey, Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kOther, Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kKey, nullptr, OBJC_ASSOCIATION_ASSIGN);
  EXPECT_FALSE(objc_getAssociatedObject(object, &kKey));
  EXPECT_TRUE(objc_getAssociatedObject(object, &kOther));
  EXPECT_EQ(Mortal::living(), 1);
  objc_removeAssociatedObjects(object);
  EXPECT_FALSE(objc_getAssociatedObject(object, &kOther));
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(AssociationTest, NilObjectsAndKeys) {
  objc_setAssociatedObject(nullptr, &kKey, Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
  EXPECT_FALSE(objc_getAssociatedObject(nullptr, &kKey));
  objc_removeAssociatedObjects(nullptr);
  EXPECT_EQ(Mortal::living(), 0);
  const NSObject object = NSObject::new_();
  objc_setAssociatedObject(object, nullptr, object, OBJC_ASSOCIATION_ASSIGN);
  EXPECT_TRUE(objc_getAssociatedObject(object, nullptr) == object) << "null is an address too";
}

TEST(AssociationTest, ValuesOfClassesStay) {
  const Class cls = makeClass(NSObject::class_());
  const Mortal value = Mortal::new_();
  objc_setAssociatedObject(cls, &kKey, value, OBJC_ASSOCIATION_RETAIN);
  EXPECT_TRUE(objc_getAssociatedObject(cls, &kKey) == value);
  EXPECT_FALSE(objc_getAssociatedObject(makeClass(cls), &kKey)) << "not inherited";
  objc_removeAssociatedObjects(cls);
  EXPECT_EQ(value->retainCount(), 1u);
}

TEST(AssociationTest, ValuesOfClassesReplaceEachOtherWhateverTheirLife) {
  const Class cls = makeClass(NSObject::class_());
  const id lasting = NSObject::class_();  // immortal, as every class
  Mortal mortal = Mortal::new_();
  objc_setAssociatedObject(cls, &kKey, lasting, OBJC_ASSOCIATION_RETAIN);
  EXPECT_TRUE(objc_getAssociatedObject(cls, &kKey) == lasting);
  objc_setAssociatedObject(cls, &kKey, mortal, OBJC_ASSOCIATION_RETAIN);
  EXPECT_TRUE(objc_getAssociatedObject(cls, &kKey) == mortal);
  EXPECT_EQ(mortal->retainCount(), 2u);
  objc_setAssociatedObject(cls, &kKey, lasting, OBJC_ASSOCIATION_ASSIGN);
  EXPECT_TRUE(objc_getAssociatedObject(cls, &kKey) == lasting);
  EXPECT_EQ(mortal->retainCount(), 1u);
  objc_setAssociatedObject(cls, &kKey, mortal, OBJC_ASSOCIATION_ASSIGN);
  EXPECT_TRUE(objc_getAssociatedObject(cls, &kKey) == mortal);
  EXPECT_EQ(mortal->retainCount(), 1u) << "not owned";
  objc_setAssociatedObject(cls, &kKey, nullptr, OBJC_ASSOCIATION_RETAIN);
  EXPECT_FALSE(objc_getAssociatedObject(cls, &kKey));
  objc_setAssociatedObject(cls, &kOther, nullptr, OBJC_ASSOCIATION_RETAIN);
  EXPECT_FALSE(objc_getAssociatedObject(cls, &kOther)) << "never set";
  objc_setAssociatedObject(cls, &kKey, mortal, OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(cls, &kOther, lasting, OBJC_ASSOCIATION_RETAIN);
  objc_removeAssociatedObjects(cls);
  EXPECT_FALSE(objc_getAssociatedObject(cls, &kKey));
  EXPECT_FALSE(objc_getAssociatedObject(cls, &kOther));
  EXPECT_EQ(mortal->retainCount(), 1u);
}

TEST(AssociationTest, AMetaClassHasItsOwn) {
  const Class cls = makeClass(NSObject::class_());
  objc_setAssociatedObject(object_getClass(cls), &kKey, cls, OBJC_ASSOCIATION_RETAIN);
  EXPECT_FALSE(objc_getAssociatedObject(cls, &kKey));
  EXPECT_TRUE(objc_getAssociatedObject(object_getClass(cls), &kKey) == id(cls));
}

TEST(AssociationTest, KeepsAHeapCopyOfABlockOnTheStack) {
  const NSObject object = NSObject::new_();
  const auto keep = [&object](const BlockArg<int()>& block) {
    const detail::Lent<id> lent(block.record());
    objc_setAssociatedObject(object, &kKey, lent.reference, OBJC_ASSOCIATION_COPY_NONATOMIC);
    objc_setAssociatedObject(object, &kOther, lent.reference, OBJC_ASSOCIATION_RETAIN);
  };
  keep([n = 41] { return n + 1; });
  EXPECT_EQ(uncheckedCast<Block<int()>>(objc_getAssociatedObject(object, &kKey))(), 42);
  EXPECT_EQ(uncheckedCast<Block<int()>>(objc_getAssociatedObject(object, &kOther))(), 42);
}

TEST(AssociationTest, CanBeReadAndSetInsideDealloc) {
  std::string seen;
  Ender object = Ender::with([&seen](const Ender& self) {
    seen += objc_getAssociatedObject(self, &kKey) ? "value " : "none ";
    objc_setAssociatedObject(self, &kOther, Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
    seen += objc_getAssociatedObject(self, &kOther) ? "late" : "lost";
  });
  objc_setAssociatedObject(object, &kKey, Mortal::new_(), OBJC_ASSOCIATION_RETAIN);
  object = nullptr;
  EXPECT_EQ(seen, "value late");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(AssociationTest, GoAfterTheFieldsAndMayAssociateAgain) {
  Mortal::ended();
  Mortal object = Mortal::new_();
  object->setTag(1);
  // The record is still there while its values go; only its fields are not.
  ObjectRecord* record = object.record();
  const auto again = [record](const Ender&) {
    const detail::Lent<id> lent(record);
    const Ender last = Ender::with([](const Ender&) {}, 3);
    objc_setAssociatedObject(lent.reference, &kOther, last, OBJC_ASSOCIATION_RETAIN);
  };
  objc_setAssociatedObject(object, &kKey, Ender::with(again, 2), OBJC_ASSOCIATION_RETAIN);
  object = nullptr;
  EXPECT_EQ(Mortal::ended(), "1 2 3 ");
  EXPECT_EQ(Mortal::living(), 0);
}

TEST(AssociationTest, RaisesLeaveSettersAndRemoval) {
  const NSObject object = NSObject::new_();
  objc_setAssociatedObject(object, &kKey, Ender::raising("replaced"), OBJC_ASSOCIATION_RETAIN);
  const Mortal next = Mortal::new_();
  EXPECT_EQ(raised([&] { objc_setAssociatedObject(object, &kKey, next, OBJC_ASSOCIATION_RETAIN); }),
            "replaced");
  EXPECT_TRUE(objc_getAssociatedObject(object, &kKey) == next);
  objc_setAssociatedObject(object, &kKey, Ender::raising("removed"), OBJC_ASSOCIATION_RETAIN);
  objc_setAssociatedObject(object, &kOther, next, OBJC_ASSOCIATION_RETAIN);
  EXPECT_EQ(raised([&] { objc_removeAssociatedObjects(object); }), "removed");
  EXPECT_EQ(next->retainCount(), 1u) << "the others are released all the same";
  EXPECT_EQ(Mortal::living(), 1);
}

TEST(AssociationTest, ManyKeysOnOneObject) {
  const NSObject object = NSObject::new_();
  std::vector<char> keys(200);
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const Mortal value = Mortal::new_();
    value->setTag(static_cast<int>(i));
    objc_setAssociatedObject(object, &keys[i], value, OBJC_ASSOCIATION_RETAIN);
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(cast<Mortal>(objc_getAssociatedObject(object, &keys[i]))->tag(), static_cast<int>(i));
  }
  objc_removeAssociatedObjects(object);
}

TEST(AssociationTest, ManyObjectsWithValues) {
  constexpr int kObjects = 20000;
  std::vector<NSObject> objects;
  for (int i = 0; i < kObjects; ++i) {
    objects.push_back(NSObject::new_());
    const Mortal value = Mortal::new_();
    value->setTag(i);
    objc_setAssociatedObject(objects.back(), &kKey, value, OBJC_ASSOCIATION_RETAIN);
  }
  // Some of them go, so that the others have to be found beside gaps.
  for (int i = 0; i < kObjects; i += 3) objects[static_cast<std::size_t>(i)] = nullptr;
  for (int i = 0; i < kObjects; ++i) {
    const id value = objc_getAssociatedObject(objects[static_cast<std::size_t>(i)], &kKey);
    ASSERT_EQ(cast<Mortal>(value)->tag(), i % 3 == 0 ? 0 : i);
  }
  EXPECT_EQ(Mortal::living(), kObjects - (kObjects + 2) / 3);
  objects.clear();
  EXPECT_EQ(Mortal::living(), 0);
  Mortal::ended();
}

TEST(AssociationTest, ThreadsReadWhileOneReplaces) {
  const Class cls = makeClass(NSObject::class_());
  for (const id& object : {id(NSObject::new_()), id(cls)}) {
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t) {
      readers.emplace_back([&] {
        while (!stop) {
          const id value = objc_getAssociatedObject(object, &kKey);
          if (isa<Mortal>(value) && cast<Mortal>(value)->tag() != 5) ++wrong;
        }
      });
    }
    for (int i = 0; i < 2000; ++i) {
      const Mortal value = Mortal::new_();
      value->setTag(5);
      const id choices[] = {nullptr, cls, value, value};
      objc_setAssociatedObject(object, &kKey, choices[i % 4], OBJC_ASSOCIATION_RETAIN);
    }
    stop = true;
    for (std::thread& t : readers) t.join();
    EXPECT_EQ(wrong, 0);
    objc_removeAssociatedObjects(object);
  }
  EXPECT_EQ(Mortal::living(), 0);
  Mortal::ended();
}

TEST(AssociationTest, AreLookedAtWithoutOwningThem) {
  const char key = 0;
  const char other = 0;
  const auto sees = [&](const id& object, const void* k, const id& wanted) {
    const ObjectRecord* seen = nullptr;
    const bool found = peekAssociatedObject(
        object.record(), k,
        [](const ObjectRecord* value, void* result) {
          *static_cast<const ObjectRecord**>(result) = value;
          return true;
        },
        &seen);
    return found == static_cast<bool>(wanted) && seen == wanted.record();
  };
  const Class cls = makeClass(NSObject::class_());
  for (const id& object : {id(NSObject::new_()), id(cls)}) {
    EXPECT_TRUE(sees(object, &key, nullptr));
    for (const id& value : {id(Mortal::new_()), id(NSObject::class_())}) {  // mortal and immortal
      objc_setAssociatedObject(object, &key, value, OBJC_ASSOCIATION_RETAIN);
      EXPECT_TRUE(sees(object, &key, value));
      EXPECT_TRUE(sees(object, &other, nullptr));
    }
    objc_setAssociatedObject(object, &key, nullptr, OBJC_ASSOCIATION_RETAIN);
    EXPECT_TRUE(sees(object, &key, nullptr));
  }
  EXPECT_TRUE(sees(nullptr, &key, nullptr));
}

}  // namespace
}  // namespace brindle
