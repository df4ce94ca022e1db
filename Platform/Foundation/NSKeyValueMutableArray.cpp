#include <utility>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSArrayIndexing.h>
#include <Brindle/Platform/NSKeyValueCoding.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/KeyValueChange.h"
#include "Platform/Foundation/Internal/KeyValueProxies.h"

namespace brindle {
namespace {

using detail::KeyAccessor;
using Part = KeyAccessor::Part;
using Array = NSKeyValueMutableArray;

struct Fields {
  Field<id> object;
  Field<NSString> key;
  const KeyAccessor* accessor = nullptr;  // null: by setting the value
};
Fields& fields(const Array& self) { return fieldsOf<Fields>(self); }

/// The relationship for the time of one message.
class Relationship {
 public:
  explicit Relationship(const Array& self)
      : object_(fields(self).object), key_(fields(self).key), accessor_(fields(self).accessor) {}

  [[nodiscard]] NSUInteger count() const {
    return has(Part::kCount) ? detail::countIn(object_, *accessor_) : now()->count();
  }
  [[nodiscard]] id at(NSUInteger index) const {
    if (has(Part::kCount) && (has(Part::kObjectAt) || has(Part::kObjectsAt))) {
      return detail::memberAt(object_, *accessor_, index);
    }
    return now()->objectAtIndex(index);
  }

  void insert(const NSArray& objects, const NSIndexSet& indexes) const {
    if (indexes->count() == 0) return;
    if (!byAccessors()) {
      return change(NSKeyValueChangeInsertion, indexes,
                    [&](const NSMutableArray& array) { insertObjects(array, objects, indexes); });
    }
    const bool one = indexes->count() == 1 && has(Part::kInsert);
    if (has(Part::kInsertMany) && !one) {
      return sendSelector(object_, part(Part::kInsertMany), objects, indexes);
    }
    NSUInteger next = 0;
    for (const NSUInteger index : indexes) {
      sendSelector(object_, part(Part::kInsert), objects[next++], index);
    }
  }

  void remove(const NSIndexSet& indexes) const {
    if (indexes->count() == 0) return;
    if (!byAccessors()) {
      return change(NSKeyValueChangeRemoval, indexes,
                    [&](const NSMutableArray& array) { removeObjectsAtIndexes(array, indexes); });
    }
    const bool one = indexes->count() == 1 && has(Part::kRemove);
    if (has(Part::kRemoveMany) && !one) {
      return sendSelector(object_, part(Part::kRemoveMany), indexes);
    }
    // From the last, so that the others keep their places.
    for (NSUInteger index = indexes->lastIndex(); index != static_cast<NSUInteger>(NSNotFound);
         index = indexes->indexLessThanIndex(index)) {
      sendSelector(object_, part(Part::kRemove), index);
    }
  }

  void replace(const NSIndexSet& indexes, const NSArray& objects) const {
    if (indexes->count() == 0) return;
    if (!byAccessors()) {
      return change(NSKeyValueChangeReplacement, indexes, [&](const NSMutableArray& array) {
        replaceObjectsAtIndexes(array, indexes, objects);
      });
    }
    const bool one = indexes->count() == 1 && has(Part::kReplace);
    if (has(Part::kReplaceMany) && !one) {
      return sendSelector(object_, part(Part::kReplaceMany), indexes, objects);
    }
    if (!has(Part::kReplace)) {
      remove(indexes);
      return insert(objects, indexes);
    }
    NSUInteger next = 0;
    for (const NSUInteger index : indexes) {
      sendSelector(object_, part(Part::kReplace), index, objects[next++]);
    }
  }

  void set(const NSArray& objects) const {
    if (byAccessors()) {
      remove(NSIndexSet::indexSetWithIndexesInRange({0, count()}));
      return insert(objects, NSIndexSet::indexSetWithIndexesInRange({0, objects->count()}));
    }
    if (!inVariable()) return setValue(object_, objects->mutableCopy(), key_);
    detail::changeValue(object_, key_, [&] { mutableNow()->setArray(objects); });
  }

 private:
  [[nodiscard]] bool has(Part wanted) const {
    return accessor_ != nullptr && accessor_->has(wanted);
  }
  [[nodiscard]] SEL part(Part wanted) const { return accessor_->parts[wanted]; }
  [[nodiscard]] bool byAccessors() const {
    return accessor_ != nullptr && accessor_->kind == KeyAccessor::Kind::kCollection;
  }
  [[nodiscard]] bool inVariable() const {
    return accessor_ != nullptr && accessor_->kind == KeyAccessor::Kind::kVariable;
  }
  [[nodiscard]] id& variable() const {
    return *static_cast<id*>(detail::variableOf(object_, *accessor_));
  }
  [[nodiscard]] NSArray now() const {
    return inVariable() ? cast<NSArray>(variable()) : valueForKey<NSArray>(object_, key_);
  }
  // The variable's array, which becomes a mutable one.
  [[nodiscard]] NSMutableArray mutableNow() const {
    if (const auto array = dynCast<NSMutableArray>(variable())) return array;
    const NSArray before = now();
    const NSMutableArray array = before ? before->mutableCopy() : NSMutableArray::array();
    variable() = array;
    return array;
  }

  template <class Change>
  void change(NSKeyValueChange kind, const NSIndexSet& indexes, const Change& body) const {
    if (inVariable()) {
      return detail::changeValues(object_, kind, indexes, key_, [&] { body(mutableNow()); });
    }
    const NSArray before = now();
    const NSMutableArray array = before ? before->mutableCopy() : NSMutableArray::array();
    body(array);
    setValue(object_, array, key_);
  }

  id object_;
  NSString key_;
  const KeyAccessor* accessor_;
};

// The arguments are looked at before anybody is told of a change.
void requirePlaces(const Array& self, SEL selector, const NSIndexSet& indexes, NSUInteger count) {
  detail::requireArgument(self, selector, indexes);
  if (indexes->count() > 0 && indexes->lastIndex() >= count) {
    detail::raiseBeyondCount(self, selector, indexes->lastIndex(), count);
  }
}

void requireAsMany(const Array& self, SEL selector, const NSArray& objects,
                   const NSIndexSet& indexes) {
  detail::requireArgument(self, selector, indexes);
  detail::requireArgument(self, selector, objects);
  if (objects->count() == indexes->count()) return;
  detail::raiseIn("NSInvalidArgumentException", self, selector,
                  std::to_string(objects->count()) + " objects for " +
                      std::to_string(indexes->count()) + " indexes");
}

void insert(const Array& self, SEL selector, const NSArray& objects, const NSIndexSet& indexes) {
  const Relationship relationship(self);
  requireAsMany(self, selector, objects, indexes);
  requirePlaces(self, selector, indexes, relationship.count() + objects->count());
  relationship.insert(objects, indexes);
}

void remove(const Array& self, SEL selector, const NSIndexSet& indexes) {
  const Relationship relationship(self);
  requirePlaces(self, selector, indexes, relationship.count());
  relationship.remove(indexes);
}

void replace(const Array& self, SEL selector, const NSIndexSet& indexes, const NSArray& objects) {
  const Relationship relationship(self);
  requireAsMany(self, selector, objects, indexes);
  requirePlaces(self, selector, indexes, relationship.count());
  relationship.replace(indexes, objects);
}

NSArray alone(const Array& self, SEL selector, const id& object) {
  detail::requireArgument(self, selector, object);
  return NSArray::arrayWithObject(object);
}

constexpr MethodDefinition kMethods[] = {
    method<"count">([](const Array& self) { return Relationship(self).count(); }),
    method<"objectAtIndex:">([](const Array& self, Cmd cmd, NSUInteger index) -> id {
      const Relationship relationship(self);
      const NSUInteger count = relationship.count();
      if (index >= count) detail::raiseBeyondCount(self, cmd.selector, index, count);
      return relationship.at(index);
    }),
    method<"addObject:">([](const Array& self, Cmd cmd, const id& object) {
      const NSArray objects = alone(self, cmd.selector, object);
      const Relationship relationship(self);
      relationship.insert(objects, NSIndexSet::indexSetWithIndex(relationship.count()));
    }),
    method<"insertObject:atIndex:">(
        [](const Array& self, Cmd cmd, const id& object, NSUInteger index) {
          const NSArray objects = alone(self, cmd.selector, object);
          insert(self, cmd.selector, objects, NSIndexSet::indexSetWithIndex(index));
        }),
    method<"removeObjectAtIndex:">([](const Array& self, Cmd cmd, NSUInteger index) {
      remove(self, cmd.selector, NSIndexSet::indexSetWithIndex(index));
    }),
    method<"replaceObjectAtIndex:withObject:">(
        [](const Array& self, Cmd cmd, NSUInteger index, const id& object) {
          const NSArray objects = alone(self, cmd.selector, object);
          replace(self, cmd.selector, NSIndexSet::indexSetWithIndex(index), objects);
        }),
    method<"insertObjects:atIndexes:">(
        [](const Array& self, Cmd cmd, const NSArray& objects, const NSIndexSet& indexes) {
          insert(self, cmd.selector, objects, indexes);
        }),
    method<"removeObjectsAtIndexes:">([](const Array& self, Cmd cmd, const NSIndexSet& indexes) {
      remove(self, cmd.selector, indexes);
    }),
    method<"replaceObjectsAtIndexes:withObjects:">(
        [](const Array& self, Cmd cmd, const NSIndexSet& indexes, const NSArray& objects) {
          replace(self, cmd.selector, indexes, objects);
        }),
    method<"removeObjectsInRange:">([](const Array& self, Cmd cmd, NSRange range) {
      remove(self, cmd.selector, NSIndexSet::indexSetWithIndexesInRange(range));
    }),
    method<"removeAllObjects">([](const Array& self) {
      const Relationship relationship(self);
      relationship.remove(NSIndexSet::indexSetWithIndexesInRange({0, relationship.count()}));
    }),
    method<"addObjectsFromArray:">([](const Array& self, const NSArray& other) {
      const NSArray objects = NSArray::arrayWithArray(other);
      const Relationship relationship(self);
      relationship.insert(objects, NSIndexSet::indexSetWithIndexesInRange(
                                       {relationship.count(), objects->count()}));
    }),
    method<"setArray:">([](const Array& self, const NSArray& other) {
      Relationship(self).set(NSArray::arrayWithArray(other));
    }),
    method<"sortUsingSelector:">([](const Array& self, SEL comparison) {
      Relationship(self).set(self->sortedArrayUsingSelector(comparison));
    }),
    method<"sortUsingComparator:">([](const Array& self, const NSComparator& comparison) {
      Relationship(self).set(send<"sortedArrayUsingComparator:", NSArray>(self, comparison));
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSKeyValueMutableArray", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSKeyValueMutableArray> NSKeyValueMutableArray::classPair{kDefinition};

NSMutableArray detail::keyValueMutableArray(const id& object, const NSString& key) {
  const KeyAccessor* accessor = keyAccessor(object, key, KeyPurpose::kMutableArray);
  const bool set = accessor != nullptr &&
                   (accessor->kind == KeyAccessor::Kind::kMethod ||
                    (accessor->kind == KeyAccessor::Kind::kVariable && accessor->type.code != '@'));
  const auto array = NSKeyValueMutableArray::alloc()->init();
  fields(array).object = object;
  fields(array).key = key->copy();
  fields(array).accessor = set ? nullptr : accessor;
  return array;
}

}  // namespace brindle
