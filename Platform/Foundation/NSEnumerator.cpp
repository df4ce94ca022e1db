#include <Brindle/Platform/NSEnumerator.h>

#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSArray.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Enumerators.h"

namespace brindle {
namespace {

using detail::Column;
using detail::Direction;
using detail::ObjectTable;

struct Fields {
  id current;  // the batch that a loop sees; in place, so that a second loop finds it changed, not
               // gone
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
          fields.current = self->nextObject();
          state->mutationsPtr = &neverMutated;
          state->itemsPtr = &fields.current;
          return fields.current ? 1 : 0;
        }),
};

constexpr ProtocolRecord* kProtocols[] = {&kNSFastEnumeration};

constexpr ClassDefinition kDefinition{.name = "NSEnumerator",
                                      .methods = kMethods,
                                      .protocols = kProtocols,
                                      .fields = fieldsDefinition<Fields>()};

// --- Over an array -------------------------------------------------------------------------------

class ArrayEnumerator : public Interface<ArrayEnumerator, NSEnumerator> {
 public:
  using Interface::Interface;
  static ClassPair<ArrayEnumerator> classPair;
};

struct ArrayFields {
  Field<NSArray> array;
  Direction direction = Direction::kForwards;
  NSUInteger count = 0;
  NSUInteger left = 0;
  unsigned long mutations = 0;
};

constexpr MethodDefinition kArrayMethods[] = {
    method<"nextObject">([](const ArrayEnumerator& self) -> id {
      auto& fields = fieldsOf<ArrayFields>(self);
      const NSArray array = fields.array;
      if (fields.left == 0) {
        fields.array = nullptr;
        return nullptr;
      }
      const NSUInteger index =
          fields.direction == Direction::kForwards ? fields.count - fields.left : fields.left - 1;
      // A client's class has no count of its changes: only what is missing can be told.
      if (detail::storageOf(array).mutations != fields.mutations || index >= array->count()) {
        detail::raiseMutated(array);
      }
      --fields.left;
      return array->objectAtIndex(index);
    }),
};

constexpr ClassDefinition kArrayDefinition{.name = "NSArrayEnumerator",
                                           .methods = kArrayMethods,
                                           .fields = fieldsDefinition<ArrayFields>()};

constinit ClassPair<ArrayEnumerator> ArrayEnumerator::classPair{kArrayDefinition};

// --- Over a dictionary or a set ------------------------------------------------------------------

class TableEnumerator : public Interface<TableEnumerator, NSEnumerator> {
 public:
  using Interface::Interface;
  static ClassPair<TableEnumerator> classPair;
};

struct TableFields {
  id collection;
  ObjectTable* table = nullptr;  // the collection's
  Column column = Column::kKeys;
  std::size_t place = 0;
  std::size_t left = 0;
  unsigned long mutations = 0;
};

constexpr MethodDefinition kTableMethods[] = {
    method<"nextObject">([](const TableEnumerator& self) -> id {
      auto& fields = fieldsOf<TableFields>(self);
      if (fields.left == 0) {
        fields.collection = nullptr;
        return nullptr;
      }
      if (*fields.table->mutations() != fields.mutations) detail::raiseMutated(fields.collection);
      --fields.left;
      const auto& entries = fields.table->entries();
      while (!entries[fields.place].key) ++fields.place;
      const ObjectTable::Entry& entry = entries[fields.place++];
      return fields.column == Column::kKeys ? entry.key : entry.value;
    }),
};

constexpr ClassDefinition kTableDefinition{.name = "NSTableEnumerator",
                                           .methods = kTableMethods,
                                           .fields = fieldsDefinition<TableFields>()};

constinit ClassPair<TableEnumerator> TableEnumerator::classPair{kTableDefinition};

}  // namespace

constinit ClassPair<NSEnumerator> NSEnumerator::classPair{kDefinition};

NSArray NSEnumerator::allObjects() const { return send<"allObjects", NSArray>(*this); }

namespace detail {

NSEnumerator makeArrayEnumerator(const NSArray& array, Direction direction) {
  ArrayEnumerator enumerator = ArrayEnumerator::new_();
  auto& fields = fieldsOf<ArrayFields>(enumerator);
  fields.array = array;
  fields.direction = direction;
  fields.count = fields.left = array->count();
  fields.mutations = storageOf(array).mutations;
  return enumerator;
}

NSEnumerator makeTableEnumerator(const id& collection, ObjectTable& table, Column column) {
  TableEnumerator enumerator = TableEnumerator::new_();
  auto& fields = fieldsOf<TableFields>(enumerator);
  fields.collection = collection;
  fields.table = &table;
  fields.column = column;
  fields.left = table.count();
  fields.mutations = *table.mutations();
  return enumerator;
}

}  // namespace detail
}  // namespace brindle
