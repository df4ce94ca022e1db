#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyValueCoding.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/KeyValueChange.h"
#include "Platform/Foundation/Internal/KeyValueProxies.h"
#include "Platform/Foundation/Internal/SetStorage.h"

namespace brindle {
namespace {

using detail::KeyAccessor;
using Part = KeyAccessor::Part;
using Set = NSKeyValueMutableSet;

struct Fields {
  Field<id> object;
  Field<NSString> key;
  const KeyAccessor* accessor = nullptr;  // null: by setting the value
};
Fields& fields(const Set& self) { return fieldsOf<Fields>(self); }

/// The relationship for the time of one message.
class Relationship {
 public:
  explicit Relationship(const Set& self)
      : object_(fields(self).object), key_(fields(self).key), accessor_(fields(self).accessor) {}

  [[nodiscard]] NSUInteger count() const {
    return isRead() ? detail::countIn(object_, *accessor_) : now()->count();
  }
  [[nodiscard]] id member(const id& object) const {
    if (!object) return nullptr;
    return isRead() ? sendSelector<id>(object_, part(Part::kMember), object)
                    : now()->member(object);
  }
  [[nodiscard]] NSEnumerator enumerator() const {
    if (isRead()) return sendSelector<NSEnumerator>(object_, part(Part::kEnumerator));
    const NSSet set = now();
    return (set ? set : NSSet::set())->objectEnumerator();
  }
  [[nodiscard]] NSSet members() const { return NSSet::setWithArray(enumerator()->allObjects()); }

  void add(const NSSet& objects) const {
    if (!byAccessors()) {
      return change(NSKeyValueUnionSetMutation, objects,
                    [&](const NSMutableSet& set) { set->unionSet(objects); });
    }
    each(objects, Part::kInsert, Part::kInsertMany);
  }
  void remove(const NSSet& objects) const {
    if (!byAccessors()) {
      return change(NSKeyValueMinusSetMutation, objects,
                    [&](const NSMutableSet& set) { set->minusSet(objects); });
    }
    each(objects, Part::kRemove, Part::kRemoveMany);
  }
  void intersect(const NSSet& objects) const {
    if (!byAccessors()) {
      return change(NSKeyValueIntersectSetMutation, objects,
                    [&](const NSMutableSet& set) { set->intersectSet(objects); });
    }
    if (accessor_->has(Part::kIntersect)) {
      return sendSelector(object_, part(Part::kIntersect), objects);
    }
    const NSMutableSet others = members()->mutableCopy();
    others->minusSet(objects);
    if (others->count() > 0) remove(others);
  }
  void set(const NSSet& objects) const {
    if (!byAccessors()) {
      return change(NSKeyValueSetSetMutation, objects,
                    [&](const NSMutableSet& set) { set->setSet(objects); });
    }
    if (accessor_->has(Part::kSetAll)) {
      return sendSelector(object_, part(Part::kSetAll), objects);
    }
    intersect(objects);
    if (objects->count() > 0) add(objects);
  }

 private:
  [[nodiscard]] SEL part(Part wanted) const { return accessor_->parts[wanted]; }
  [[nodiscard]] bool byAccessors() const {
    return accessor_ != nullptr && accessor_->kind == KeyAccessor::Kind::kCollection;
  }
  [[nodiscard]] bool isRead() const {
    return byAccessors() && accessor_->has(Part::kCount) && accessor_->has(Part::kMember) &&
           accessor_->has(Part::kEnumerator);
  }
  [[nodiscard]] bool inVariable() const { return accessor_ != nullptr && !byAccessors(); }
  [[nodiscard]] id& variable() const {
    return *static_cast<id*>(detail::variableOf(object_, *accessor_));
  }
  [[nodiscard]] NSSet now() const {
    return inVariable() ? cast<NSSet>(variable()) : valueForKey<NSSet>(object_, key_);
  }

  void each(const NSSet& objects, Part one, Part many) const {
    if (accessor_->has(many) && !(accessor_->has(one) && objects->count() == 1)) {
      return sendSelector(object_, part(many), objects);
    }
    for (const id& object : detail::copyMembers(objects)) {
      sendSelector(object_, part(one), object);
    }
  }

  [[nodiscard]] NSMutableSet mutableCopyOfNow() const {
    const NSSet before = now();
    return before ? before->mutableCopy() : NSMutableSet::set();
  }

  template <class Change>
  void change(NSKeyValueSetMutationKind kind, const NSSet& objects, const Change& body) const {
    if (!inVariable()) {
      const NSMutableSet set = mutableCopyOfNow();
      body(set);
      return setValue(object_, set, key_);
    }
    detail::changeMembers(object_, key_, kind, objects, [&] {
      auto set = dynCast<NSMutableSet>(variable());
      if (!set) {
        set = mutableCopyOfNow();
        variable() = set;
      }
      body(set);
    });
  }

  id object_;
  NSString key_;
  const KeyAccessor* accessor_;
};

NSSet copyOf(const NSSet& other) { return NSSet::setWithSet(other); }

constexpr MethodDefinition kMethods[] = {
    method<"count">([](const Set& self) { return Relationship(self).count(); }),
    method<"member:">(
        [](const Set& self, const id& object) { return Relationship(self).member(object); }),
    method<"objectEnumerator">([](const Set& self) { return Relationship(self).enumerator(); }),
    method<"addObject:">([](const Set& self, Cmd cmd, const id& object) {
      detail::requireArgument(self, cmd.selector, object);
      Relationship(self).add(NSSet::setWithObject(object));
    }),
    method<"removeObject:">([](const Set& self, const id& object) {
      if (object) Relationship(self).remove(NSSet::setWithObject(object));
    }),
    method<"removeAllObjects">([](const Set& self) {
      const Relationship relationship(self);
      relationship.remove(relationship.members());
    }),
    method<"addObjectsFromArray:">([](const Set& self, const NSArray& array) {
      Relationship(self).add(NSSet::setWithArray(array));
    }),
    method<"unionSet:">(
        [](const Set& self, const NSSet& other) { Relationship(self).add(copyOf(other)); }),
    method<"minusSet:">(
        [](const Set& self, const NSSet& other) { Relationship(self).remove(copyOf(other)); }),
    method<"intersectSet:">(
        [](const Set& self, const NSSet& other) { Relationship(self).intersect(copyOf(other)); }),
    method<"setSet:">(
        [](const Set& self, const NSSet& other) { Relationship(self).set(copyOf(other)); }),
    method<"copyWithZone:">([](const Set& self, NSZone*) -> id { return copyOf(self); }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSKeyValueMutableSet", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSKeyValueMutableSet> NSKeyValueMutableSet::classPair{kDefinition};

NSMutableSet detail::keyValueMutableSet(const id& object, const NSString& key) {
  const KeyAccessor* accessor = keyAccessor(object, key, KeyPurpose::kMutableSet);
  const bool set = accessor != nullptr &&
                   (accessor->kind == KeyAccessor::Kind::kMethod ||
                    (accessor->kind == KeyAccessor::Kind::kVariable && accessor->type.code != '@'));
  const auto made = NSKeyValueMutableSet::alloc()->init();
  fields(made).object = object;
  fields(made).key = key->copy();
  fields(made).accessor = set ? nullptr : accessor;
  return made;
}

}  // namespace brindle
