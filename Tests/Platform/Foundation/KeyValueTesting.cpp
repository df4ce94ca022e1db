#include "Tests/Platform/Foundation/KeyValueTesting.h"

#include <algorithm>
#include <utility>

#include <Brindle/Platform/NSArrayIndexing.h>

namespace brindle {
namespace {

struct OwnerFields {
  Field<NSString> name;
  NSInteger coins = 0;
  Field<id> friend_;
};
OwnerFields& fields(const Owner& self) { return fieldsOf<OwnerFields>(self); }

constexpr MethodDefinition kOwnerMethods[] = {
    method<"name">([](const Owner& self) -> NSString { return fields(self).name; }),
    method<"setName:">(
        [](const Owner& self, const NSString& name) { fields(self).name = name->copy(); }),
    method<"coins">([](const Owner& self) { return fields(self).coins; }),
    method<"setCoins:">([](const Owner& self, NSInteger coins) { fields(self).coins = coins; }),
    method<"friend">([](const Owner& self) -> id { return fields(self).friend_; }),
    method<"setFriend:">([](const Owner& self, const id& other) { fields(self).friend_ = other; }),
    method<"validateName:error:">([](const Owner&, NSString* name, NSError* error) {
      if (!*name || (*name)->length() == 0) {
        if (error != nullptr) *error = NSError::errorWithDomain("names"_ns, 1, nullptr);
        return false;
      }
      *name = (*name)->capitalizedString();
      return true;
    }),
};
constexpr ClassDefinition kOwner{
    .name = "TestedOwner", .methods = kOwnerMethods, .fields = fieldsDefinition<OwnerFields>()};

struct PatternsFields {
  Field<NSString> last;  // the setter that was called
};
Field<NSString>& last(const Patterns& self) { return fieldsOf<PatternsFields>(self).last; }

constexpr MethodDefinition kPatternsMethods[] = {
    method<"last">([](const Patterns& self) -> NSString { return last(self); }),
    method<"getByGet">([](const Patterns&) { return "getByGet"_ns; }),
    method<"byGet">([](const Patterns&) { return "byGet"_ns; }),
    method<"byName">([](const Patterns&) { return "byName"_ns; }),
    method<"isByName">([](const Patterns&) { return "isByName"_ns; }),
    method<"isByIs">([](const Patterns&) { return true; }),
    method<"_getByIs">([](const Patterns&) { return "_getByIs"_ns; }),
    method<"_getByUnderscoreGet">([](const Patterns&) { return "_getByUnderscoreGet"_ns; }),
    method<"_byUnderscoreGet">([](const Patterns&) { return "_byUnderscoreGet"_ns; }),
    method<"_byUnderscore">([](const Patterns&) { return "_byUnderscore"_ns; }),
    method<"\xC3\xA9tage">([](const Patterns&) { return 3; }),
    method<"set\xC3\x89tage:">([](const Patterns& self, int) { last(self) = "étage"_ns; }),
    method<"nothing">([](const Patterns&) {}),
    method<"takes:">([](const Patterns&, const id&) { return "taken"_ns; }),
    method<"setBySet:">([](const Patterns& self, const id&) { last(self) = "setBySet:"_ns; }),
    method<"_setBySet:">([](const Patterns& self, const id&) { last(self) = "_setBySet:"_ns; }),
    method<"_setByUnderscore:">(
        [](const Patterns& self, const id&) { last(self) = "_setByUnderscore:"_ns; }),
    method<"setIsByIs:">([](const Patterns& self, bool) { last(self) = "setIsByIs:"_ns; }),
    method<"setFluent:">([](const Patterns& self, const NSString& text) -> Patterns {
      last(self) = text;
      return self;
    }),
    method<"setFluentNumber:">([](const Patterns& self, short number) {
      last(self) = NSNumber(number)->stringValue();
      return static_cast<double>(number);
    }),
};
constexpr ClassDefinition kPatterns{.name = "TestedPatterns",
                                    .methods = kPatternsMethods,
                                    .fields = fieldsDefinition<PatternsFields>()};

struct VariablesFields {
  Field<NSString> _first = "_first"_ns, _isFirst = "_isFirst"_ns, first = "first"_ns;
  Field<NSString> _isSecond = "_isSecond"_ns, second = "second"_ns;
  Field<NSString> third = "third"_ns, isThird = "isThird"_ns;
  Field<NSString> isFourth = "isFourth"_ns;
  bool truth = true;
  signed char sc = -3;
  unsigned char uc = 200;
  short ss = -300;
  unsigned short us = 60000;
  int si = -70000;
  unsigned ui = 4000000000U;
  long long sq = -5000000000LL;
  unsigned long long uq = 18000000000000000000ULL;
  float f = 0.5F;
  double d = 0.1;
  long double ld = 2.5L;
  NSRange range{3, 4};
  void* pointer = nullptr;
  SEL selector = nullptr;
  Class cls = nullptr;
};

#define BRINDLE_TESTED(type, name) ivar<type>(#name, offsetof(VariablesFields, name))
constexpr IvarDefinition kVariables[] = {
    BRINDLE_TESTED(NSString, _first),
    BRINDLE_TESTED(NSString, _isFirst),
    BRINDLE_TESTED(NSString, first),
    BRINDLE_TESTED(NSString, _isSecond),
    BRINDLE_TESTED(NSString, second),
    BRINDLE_TESTED(NSString, third),
    BRINDLE_TESTED(NSString, isThird),
    BRINDLE_TESTED(NSString, isFourth),
    BRINDLE_TESTED(bool, truth),
    BRINDLE_TESTED(signed char, sc),
    BRINDLE_TESTED(unsigned char, uc),
    BRINDLE_TESTED(short, ss),
    BRINDLE_TESTED(unsigned short, us),
    BRINDLE_TESTED(int, si),
    BRINDLE_TESTED(unsigned, ui),
    BRINDLE_TESTED(long long, sq),
    BRINDLE_TESTED(unsigned long long, uq),
    BRINDLE_TESTED(float, f),
    BRINDLE_TESTED(double, d),
    BRINDLE_TESTED(long double, ld),
    BRINDLE_TESTED(NSRange, range),
    BRINDLE_TESTED(void*, pointer),
    BRINDLE_TESTED(SEL, selector),
    BRINDLE_TESTED(Class, cls),
};
#undef BRINDLE_TESTED
constexpr ClassDefinition kVariablesDefinition{.name = "TestedVariables",
                                               .variables = kVariables,
                                               .fields = fieldsDefinition<VariablesFields>()};

struct ShelfFields {
  std::string log;
  std::vector<id> items, blocks, tags, pool;
  Field<NSArray> plain;
  Field<NSSet> crowd;
  Field<NSArray> _stored;
  Field<NSSet> _gathered;
};
ShelfFields& fields(const Shelf& self) { return fieldsOf<ShelfFields>(self); }
void note(const Shelf& self, const char* text) { fields(self).log += std::string(text) + " "; }

using Row = std::vector<id>;
auto place(Row& row, NSUInteger index) { return row.begin() + static_cast<std::ptrdiff_t>(index); }
auto found(Row& row, const id& object) {
  return std::find_if(row.begin(), row.end(), [&](const id& o) { return o->isEqual(object); });
}
NSEnumerator enumerated(const Row& row) {
  return NSArray::arrayWithObjects(row.data(), row.size())->objectEnumerator();
}
NSMutableArray copied(const Row& row) {
  return NSMutableArray::arrayWithObjects(row.data(), row.size());
}
void become(Row& row, const NSArray& array) {
  row.clear();
  for (const id& object : array) row.push_back(object);
}
void add(Row& row, const id& object) {
  if (found(row, object) == row.end()) row.push_back(object);
}
void drop(Row& row, const id& object) {
  if (const auto at = found(row, object); at != row.end()) row.erase(at);
}

constexpr MethodDefinition kShelfMethods[] = {
    method<"countOfItems">(
        [](const Shelf& self) -> NSUInteger { return fields(self).items.size(); }),
    method<"objectInItemsAtIndex:">(
        [](const Shelf& self, NSUInteger index) -> id { return fields(self).items.at(index); }),
    method<"insertObject:inItemsAtIndex:">([](const Shelf& self, const id& o, NSUInteger index) {
      note(self, "insert");
      fields(self).items.insert(place(fields(self).items, index), o);
    }),
    method<"removeObjectFromItemsAtIndex:">([](const Shelf& self, NSUInteger index) {
      note(self, "remove");
      fields(self).items.erase(place(fields(self).items, index));
    }),
    method<"replaceObjectInItemsAtIndex:withObject:">(
        [](const Shelf& self, NSUInteger index, const id& o) {
          note(self, "replace");
          fields(self).items[index] = o;
        }),

    method<"countOfBlocks">(
        [](const Shelf& self) -> NSUInteger { return fields(self).blocks.size(); }),
    method<"blocksAtIndexes:">([](const Shelf& self, const NSIndexSet& indexes) -> NSArray {
      return objectsAtIndexes(copied(fields(self).blocks), indexes);
    }),
    method<"insertBlocks:atIndexes:">(
        [](const Shelf& self, const NSArray& objects, const NSIndexSet& indexes) {
          note(self, "insertMany");
          const auto array = copied(fields(self).blocks);
          insertObjects(array, objects, indexes);
          become(fields(self).blocks, array);
        }),
    method<"removeBlocksAtIndexes:">([](const Shelf& self, const NSIndexSet& indexes) {
      note(self, "removeMany");
      const auto array = copied(fields(self).blocks);
      removeObjectsAtIndexes(array, indexes);
      become(fields(self).blocks, array);
    }),

    method<"countOfTags">([](const Shelf& self) -> NSUInteger { return fields(self).tags.size(); }),
    method<"enumeratorOfTags">(
        [](const Shelf& self) -> NSEnumerator { return enumerated(fields(self).tags); }),
    method<"memberOfTags:">([](const Shelf& self, const id& object) -> id {
      auto& tags = fields(self).tags;
      const auto at = found(tags, object);
      return at == tags.end() ? id() : *at;
    }),
    method<"addTagsObject:">([](const Shelf& self, const id& object) {
      note(self, "add");
      add(fields(self).tags, object);
    }),
    method<"removeTagsObject:">([](const Shelf& self, const id& object) {
      note(self, "remove");
      drop(fields(self).tags, object);
    }),

    method<"pool">(
        [](const Shelf& self) -> NSSet { return NSSet::setWithArray(copied(fields(self).pool)); }),
    method<"addPool:">([](const Shelf& self, const NSSet& objects) {
      note(self, "addMany");
      for (const id& object : objects) add(fields(self).pool, object);
    }),
    method<"removePool:">([](const Shelf& self, const NSSet& objects) {
      note(self, "removeMany");
      for (const id& object : objects) drop(fields(self).pool, object);
    }),
    method<"intersectPool:">([](const Shelf& self, const NSSet& objects) {
      note(self, "intersect");
      std::erase_if(fields(self).pool, [&](const id& o) { return !objects->containsObject(o); });
    }),
    method<"setPool:">([](const Shelf& self, const NSSet& objects) {
      note(self, "set");
      become(fields(self).pool, objects->allObjects());
    }),

    method<"plain">([](const Shelf& self) -> NSArray { return fields(self).plain; }),
    method<"setPlain:">([](const Shelf& self, const NSArray& plain) {
      note(self, "set");
      fields(self).plain = plain;
    }),
    method<"crowd">([](const Shelf& self) -> NSSet { return fields(self).crowd; }),
    method<"setCrowd:">([](const Shelf& self, const NSSet& crowd) {
      note(self, "set");
      fields(self).crowd = crowd;
    }),
};
constexpr IvarDefinition kShelfVariables[] = {
    ivar<NSArray>("_stored", offsetof(ShelfFields, _stored)),
    ivar<NSSet>("_gathered", offsetof(ShelfFields, _gathered)),
};
constexpr ClassDefinition kShelf{.name = "TestedShelf",
                                 .methods = kShelfMethods,
                                 .variables = kShelfVariables,
                                 .fields = fieldsDefinition<ShelfFields>()};

}  // namespace

constinit ClassPair<Owner> Owner::classPair{kOwner};
constinit ClassPair<Patterns> Patterns::classPair{kPatterns};
constinit ClassPair<Variables> Variables::classPair{kVariablesDefinition};
constinit ClassPair<Shelf> Shelf::classPair{kShelf};

Owner Owner::with(const NSString& name, NSInteger coins, const id& friend_) {
  Owner owner = Owner::new_();
  fields(owner).name = name;
  fields(owner).coins = coins;
  fields(owner).friend_ = friend_;
  return owner;
}

std::string& Shelf::log() const { return fields(*this).log; }

}  // namespace brindle
