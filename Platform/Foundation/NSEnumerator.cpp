#include <Brindle/Platform/NSEnumerator.h>

#include <memory>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSArray.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Enumerators.h"

namespace brindle {
namespace {

struct Fields {
  std::unique_ptr<id> current;  // keeps the members of a batch while they are enumerated
};

unsigned long neverMutated = 0;

// One member for each batch: the next is not asked for before the loop wants it.
constexpr MethodDefinition kMethods[] = {
    method<"nextObject">([](const NSEnumerator& self, Cmd cmd) -> id {
      detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                      "a subclass says what comes next");
    }),
    method<"allObjects">([](const NSEnumerator& self) {
      std::vector<id> members;
      while (id member = self->nextObject()) members.push_back(std::move(member));
      return detail::makeArray(std::move(members));
    }),
    method<"countByEnumeratingWithState:objects:count:">(
        [](const NSEnumerator& self, NSFastEnumerationState* state, ObjectRecord**,
           NSUInteger) -> NSUInteger {
          Fields& fields = fieldsOf<Fields>(self);
          fields.current = std::make_unique<id>(self->nextObject());
          state->mutationsPtr = &neverMutated;
          state->itemsPtr = fields.current.get();
          return *fields.current ? 1 : 0;
        }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSFastEnumeration};

constexpr ClassDefinition kDefinition{.name = "NSEnumerator",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

// --- Over a collection ---------------------------------------------------------------------------

class CollectionEnumerator : public Interface<CollectionEnumerator, NSEnumerator> {
 public:
  using Interface::Interface;
  static ClassPair<CollectionEnumerator> classPair;
};

struct CollectionFields {
  id collection;
  std::unique_ptr<NSFastEnumerationIterator> iterator;
};

constexpr MethodDefinition kCollectionMethods[] = {
    method<"nextObject">([](const CollectionEnumerator& self) -> id {
      auto& fields = fieldsOf<CollectionFields>(self);
      if (!fields.collection) return nullptr;
      if (fields.iterator == nullptr) {
        fields.iterator = std::make_unique<NSFastEnumerationIterator>(fields.collection);
      } else {
        ++*fields.iterator;
      }
      if (*fields.iterator == NSFastEnumerationEnd{}) {
        fields.iterator = nullptr;
        fields.collection = nullptr;
        return nullptr;
      }
      return **fields.iterator;
    }),
};

constexpr ClassDefinition kCollectionDefinition{.name = "NSCollectionEnumerator",
                                                .methods = kCollectionMethods,
                                                .fields = fieldsDefinition<CollectionFields>()};

constinit ClassPair<CollectionEnumerator> CollectionEnumerator::classPair{kCollectionDefinition};

// --- Over an array, backwards --------------------------------------------------------------------

class ReverseEnumerator : public Interface<ReverseEnumerator, NSEnumerator> {
 public:
  using Interface::Interface;
  static ClassPair<ReverseEnumerator> classPair;
};

struct ReverseFields {
  Field<NSArray> array;
  NSUInteger left = 0;
};

constexpr MethodDefinition kReverseMethods[] = {
    method<"nextObject">([](const ReverseEnumerator& self) -> id {
      auto& fields = fieldsOf<ReverseFields>(self);
      const NSArray array = fields.array;
      if (fields.left > array->count()) detail::raiseMutated(array);
      if (fields.left == 0) {
        fields.array = nullptr;
        return nullptr;
      }
      return array->objectAtIndex(--fields.left);
    }),
};

constexpr ClassDefinition kReverseDefinition{.name = "NSReverseEnumerator",
                                             .methods = kReverseMethods,
                                             .fields = fieldsDefinition<ReverseFields>()};

constinit ClassPair<ReverseEnumerator> ReverseEnumerator::classPair{kReverseDefinition};

}  // namespace

constinit ClassPair<NSEnumerator> NSEnumerator::classPair{kDefinition};

NSArray NSEnumerator::allObjects() const { return send<"allObjects", NSArray>(*this); }

namespace detail {

NSEnumerator makeEnumerator(const id& collection) {
  CollectionEnumerator enumerator = CollectionEnumerator::new_();
  fieldsOf<CollectionFields>(enumerator).collection = collection;
  return enumerator;
}

NSEnumerator makeReverseEnumerator(const NSArray& array) {
  ReverseEnumerator enumerator = ReverseEnumerator::new_();
  auto& fields = fieldsOf<ReverseFields>(enumerator);
  fields.array = array;
  fields.left = array->count();
  return enumerator;
}

}  // namespace detail
}  // namespace brindle
