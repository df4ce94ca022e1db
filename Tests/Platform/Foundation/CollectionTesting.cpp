#include "Tests/Platform/Foundation/CollectionTesting.h"

#include <atomic>
#include <utility>

#include <Brindle/Platform/NSCopying.h>

namespace brindle {
namespace {

std::atomic<int> livingMembers = 0;

struct MemberFields {
  MemberFields() { ++livingMembers; }
  ~MemberFields() { --livingMembers; }
  MemberFields(const MemberFields&) = delete;
  MemberFields& operator=(const MemberFields&) = delete;

  int number = 0;
  int pokes = 0;
  MemberActions actions;
};

MemberFields& fields(const Member& self) { return fieldsOf<MemberFields>(self); }

constexpr MethodDefinition kMemberMethods[] = {
    method<"dealloc">([](const Member& self) {
      if (fields(self).actions.end) fields(self).actions.end();
      sendSuper<Member, "dealloc">(self);
    }),
    method<"number">([](const Member& self) { return fields(self).number; }),
    method<"pokes">([](const Member& self) { return fields(self).pokes; }),
    method<"poke">([](const Member& self) -> id {
      ++fields(self).pokes;
      return self;
    }),
    method<"poke:">([](const Member& self, const id& argument) -> id {
      fields(self).pokes += argument ? 10 : 100;
      return self;
    }),
    method<"isEqual:">([](const Member& self, const id& other) {
      if (fields(self).actions.isEqual) return fields(self).actions.isEqual(other);
      const auto its = dynCast<Member>(other);
      return its && its->number() == fields(self).number;
    }),
    method<"hash">([](const Member& self) -> NSUInteger {
      if (fields(self).actions.hash) return fields(self).actions.hash();
      return static_cast<NSUInteger>(fields(self).number);
    }),
    method<"compare:">([](const Member& self, const Member& other) {
      const int mine = fields(self).number;
      const int its = other->number();
      return mine < its ? NSOrderedAscending : mine > its ? NSOrderedDescending : NSOrderedSame;
    }),
    method<"copyWithZone:">([](const Member& self, NSZone*) -> id {
      if (fields(self).actions.copy) return fields(self).actions.copy();
      return self;
    }),
    method<"description">([](const Member& self) -> NSString {
      if (fields(self).actions.description) return fields(self).actions.description();
      return NSString("m" + std::to_string(fields(self).number));
    }),
};

constexpr ProtocolRecord* kMemberProtocols[] = {&kNSCopying};

constexpr ClassDefinition kMember{.name = "CollectionTestMember",
                                  .methods = kMemberMethods,
                                  .protocols = kMemberProtocols,
                                  .fields = fieldsDefinition<MemberFields>()};

// --- Arrays --------------------------------------------------------------------------------------

struct Row {
  std::vector<id> members;
};

template <class Self>
std::vector<id>& row(const Self& self) {
  return fieldsOf<Row>(self).members;
}

constexpr MethodDefinition kArrayMethods[] = {
    method<"count">([](const ClientArray& self) -> NSUInteger { return row(self).size(); }),
    method<"objectAtIndex:">(
        [](const ClientArray& self, NSUInteger index) -> id { return row(self).at(index); }),
};

constexpr MethodDefinition kMutableArrayMethods[] = {
    method<"count">([](const ClientMutableArray& self) -> NSUInteger { return row(self).size(); }),
    method<"objectAtIndex:">(
        [](const ClientMutableArray& self, NSUInteger index) -> id { return row(self).at(index); }),
    method<"insertObject:atIndex:">(
        [](const ClientMutableArray& self, const id& object, NSUInteger index) {
          row(self).insert(row(self).begin() + static_cast<std::ptrdiff_t>(index), object);
        }),
    method<"removeObjectAtIndex:">([](const ClientMutableArray& self, NSUInteger index) {
      const id kept = row(self).at(index);
      row(self).erase(row(self).begin() + static_cast<std::ptrdiff_t>(index));
    }),
    method<"addObject:">(
        [](const ClientMutableArray& self, const id& object) { row(self).push_back(object); }),
    method<"removeLastObject">([](const ClientMutableArray& self) { row(self).pop_back(); }),
    method<"replaceObjectAtIndex:withObject:">(
        [](const ClientMutableArray& self, NSUInteger index, const id& object) {
          row(self).at(index) = object;
        }),
};

constexpr ClassDefinition kArray{
    .name = "ClientArray", .methods = kArrayMethods, .fields = fieldsDefinition<Row>()};
constexpr ClassDefinition kMutableArray{.name = "ClientMutableArray",
                                        .methods = kMutableArrayMethods,
                                        .fields = fieldsDefinition<Row>()};

// --- Dictionaries --------------------------------------------------------------------------------

struct Entries {
  std::map<std::string, id> entries;
};

template <class Self>
std::map<std::string, id>& entriesOf(const Self& self) {
  return fieldsOf<Entries>(self).entries;
}

template <class Self>
id find(const Self& self, const id& key) {
  const auto found = entriesOf(self).find(std::string(cast<NSString>(key)));
  return found != entriesOf(self).end() ? found->second : id();
}

template <class Self>
NSEnumerator keys(const Self& self) {
  std::vector<id> names;
  for (const auto& [name, value] : entriesOf(self)) names.push_back(NSString(name));
  return NSArray::arrayWithObjects(names.data(), names.size())->objectEnumerator();
}

constexpr MethodDefinition kDictionaryMethods[] = {
    method<"count">(
        [](const ClientDictionary& self) -> NSUInteger { return entriesOf(self).size(); }),
    method<"objectForKey:">(
        [](const ClientDictionary& self, const id& key) { return find(self, key); }),
    method<"keyEnumerator">([](const ClientDictionary& self) { return keys(self); }),
};

constexpr MethodDefinition kMutableDictionaryMethods[] = {
    method<"count">(
        [](const ClientMutableDictionary& self) -> NSUInteger { return entriesOf(self).size(); }),
    method<"objectForKey:">(
        [](const ClientMutableDictionary& self, const id& key) { return find(self, key); }),
    method<"keyEnumerator">([](const ClientMutableDictionary& self) { return keys(self); }),
    method<"setObject:forKey:">(
        [](const ClientMutableDictionary& self, const id& object, const id& key) {
          entriesOf(self)[std::string(cast<NSString>(key))] = object;
        }),
    method<"removeObjectForKey:">([](const ClientMutableDictionary& self, const id& key) {
      entriesOf(self).erase(std::string(cast<NSString>(key)));
    }),
};

constexpr ClassDefinition kDictionary{.name = "ClientDictionary",
                                      .methods = kDictionaryMethods,
                                      .fields = fieldsDefinition<Entries>()};
constexpr ClassDefinition kMutableDictionary{.name = "ClientMutableDictionary",
                                             .methods = kMutableDictionaryMethods,
                                             .fields = fieldsDefinition<Entries>()};

// --- Sets ----------------------------------------------------------------------------------------

template <class Self>
id member(const Self& self, const id& object) {
  for (const id& candidate : row(self)) {
    if (NSObjectEqual()(candidate, object)) return candidate;
  }
  return nullptr;
}

template <class Self>
NSEnumerator members(const Self& self) {
  return NSArray::arrayWithObjects(row(self).data(), row(self).size())->objectEnumerator();
}

constexpr MethodDefinition kSetMethods[] = {
    method<"count">([](const ClientSet& self) -> NSUInteger { return row(self).size(); }),
    method<"member:">([](const ClientSet& self, const id& object) { return member(self, object); }),
    method<"objectEnumerator">([](const ClientSet& self) { return members(self); }),
};

constexpr MethodDefinition kMutableSetMethods[] = {
    method<"count">([](const ClientMutableSet& self) -> NSUInteger { return row(self).size(); }),
    method<"member:">(
        [](const ClientMutableSet& self, const id& object) { return member(self, object); }),
    method<"objectEnumerator">([](const ClientMutableSet& self) { return members(self); }),
    method<"addObject:">([](const ClientMutableSet& self, const id& object) {
      if (!member(self, object)) row(self).push_back(object);
    }),
    method<"removeObject:">([](const ClientMutableSet& self, const id& object) {
      const id found = member(self, object);
      std::erase_if(row(self), [&found](const id& each) { return each == found; });
    }),
};

constexpr ClassDefinition kSet{
    .name = "ClientSet", .methods = kSetMethods, .fields = fieldsDefinition<Row>()};
constexpr ClassDefinition kMutableSet{
    .name = "ClientMutableSet", .methods = kMutableSetMethods, .fields = fieldsDefinition<Row>()};

template <class Self>
Self madeOfRow(std::vector<id> members) {
  Self made = Self::alloc()->init();
  row(made) = std::move(members);
  return made;
}

template <class Self>
Self madeOfEntries(std::map<std::string, id> entries) {
  Self made = Self::alloc()->init();
  entriesOf(made) = std::move(entries);
  return made;
}

}  // namespace

constinit ClassPair<Member> Member::classPair{kMember};
constinit ClassPair<ClientArray> ClientArray::classPair{kArray};
constinit ClassPair<ClientMutableArray> ClientMutableArray::classPair{kMutableArray};
constinit ClassPair<ClientDictionary> ClientDictionary::classPair{kDictionary};
constinit ClassPair<ClientMutableDictionary> ClientMutableDictionary::classPair{kMutableDictionary};
constinit ClassPair<ClientSet> ClientSet::classPair{kSet};
constinit ClassPair<ClientMutableSet> ClientMutableSet::classPair{kMutableSet};

Member Member::with(int number) {
  auto made = Member::alloc()->init();
  fields(made).number = number;
  return made;
}

int Member::living() { return livingMembers; }

MemberActions& Member::actions() const { return fields(*this).actions; }

ClientArray ClientArray::with(std::vector<id> members) {
  return madeOfRow<ClientArray>(std::move(members));
}
ClientMutableArray ClientMutableArray::with(std::vector<id> members) {
  return madeOfRow<ClientMutableArray>(std::move(members));
}
ClientDictionary ClientDictionary::with(std::map<std::string, id> entries) {
  return madeOfEntries<ClientDictionary>(std::move(entries));
}
ClientMutableDictionary ClientMutableDictionary::with(std::map<std::string, id> entries) {
  return madeOfEntries<ClientMutableDictionary>(std::move(entries));
}
ClientSet ClientSet::with(std::vector<id> members) {
  return madeOfRow<ClientSet>(std::move(members));
}
ClientMutableSet ClientMutableSet::with(std::vector<id> members) {
  return madeOfRow<ClientMutableSet>(std::move(members));
}

}  // namespace brindle
