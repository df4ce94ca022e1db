#include "Tests/Platform/Foundation/ObservingTesting.h"
#include <algorithm>
#include <atomic>

namespace brindle {
namespace {

struct Fields {
  std::atomic<int> age = 0;  // set by several threads in a test
  Field<NSString> name;
  Field<NSString> surname;
  Field<WatchedPerson> friend_;
  bool tall = false;
  double height = 0;
  float weight = 0;
  short small = 0;
  NSUInteger large = 0;
  NSRange span{};
  int secret = 0;
  int manual = 0;
  NSMutableArray items = cast<NSMutableArray>(NSMutableArray::array());
  NSMutableSet tags = cast<NSMutableSet>(NSMutableSet::set());
};
Fields& fields(const WatchedPerson& self) { return fieldsOf<Fields>(self); }

constexpr MethodDefinition kMethods[] = {
    method<"age">([](const WatchedPerson& self) { return fields(self).age.load(); }),
    method<"setAge:">([](const WatchedPerson& self, int age) { fields(self).age = age; }),
    method<"name">([](const WatchedPerson& self) -> NSString { return fields(self).name; }),
    method<"setName:">([](const WatchedPerson& self, const NSString& n) { fields(self).name = n; }),
    method<"surname">([](const WatchedPerson& self) -> NSString { return fields(self).surname; }),
    method<"setSurname:">(
        [](const WatchedPerson& self, const NSString& n) { fields(self).surname = n; }),
    method<"fullName">([](const WatchedPerson& self) -> NSString {
      return NSString::stringWithFormat("%@ %@"_ns, self->name(), self->surname());
    }),
    classMethod<"keyPathsForValuesAffectingFullName">([](const Class&) -> NSSet {
      return NSSet{"name"_ns, "surname"_ns};
    }),
    method<"friend">(
        [](const WatchedPerson& self) -> WatchedPerson { return fields(self).friend_; }),
    method<"setFriend:">(
        [](const WatchedPerson& self, const WatchedPerson& p) { fields(self).friend_ = p; }),
    method<"isTall">([](const WatchedPerson& self) { return fields(self).tall; }),
    method<"setTall:">([](const WatchedPerson& self, bool tall) { fields(self).tall = tall; }),
    method<"height">([](const WatchedPerson& self) { return fields(self).height; }),
    method<"setHeight:">(
        [](const WatchedPerson& self, double value) { fields(self).height = value; }),
    method<"weight">([](const WatchedPerson& self) { return fields(self).weight; }),
    method<"setWeight:">(
        [](const WatchedPerson& self, float value) { fields(self).weight = value; }),
    method<"small">([](const WatchedPerson& self) { return fields(self).small; }),
    method<"setSmall:">([](const WatchedPerson& self, short value) { fields(self).small = value; }),
    method<"large">([](const WatchedPerson& self) { return fields(self).large; }),
    method<"setLarge:">(
        [](const WatchedPerson& self, NSUInteger value) { fields(self).large = value; }),
    method<"span">([](const WatchedPerson& self) { return fields(self).span; }),
    method<"setSpan:">([](const WatchedPerson& self, NSRange value) { fields(self).span = value; }),
    method<"secret">([](const WatchedPerson& self) { return fields(self).secret; }),
    method<"_setSecret:">(
        [](const WatchedPerson& self, int value) { fields(self).secret = value; }),
    method<"manual">([](const WatchedPerson& self) { return fields(self).manual; }),
    method<"setManual:">([](const WatchedPerson& self, int value) { fields(self).manual = value; }),
    classMethod<"automaticallyNotifiesObserversOfManual">([](const Class&) { return false; }),

    method<"items">([](const WatchedPerson& self) -> NSArray {
      return NSArray::arrayWithArray(fields(self).items);
    }),
    method<"setItems:">([](const WatchedPerson& self, const NSArray& items) {
      fields(self).items = cast<NSMutableArray>(NSMutableArray::arrayWithArray(items));
    }),
    method<"insertObject:inItemsAtIndex:">(
        [](const WatchedPerson& self, const id& item, NSUInteger index) {
          fields(self).items->insertObject(item, index);
        }),
    method<"insertItems:atIndexes:">(
        [](const WatchedPerson& self, const NSArray& items, const NSIndexSet& indexes) {
          insertObjects(fields(self).items, items, indexes);
        }),
    method<"removeObjectFromItemsAtIndex:">([](const WatchedPerson& self, NSUInteger index) {
      fields(self).items->removeObjectAtIndex(index);
    }),
    method<"removeItemsAtIndexes:">([](const WatchedPerson& self, const NSIndexSet& indexes) {
      removeObjectsAtIndexes(fields(self).items, indexes);
    }),
    method<"replaceObjectInItemsAtIndex:withObject:">(
        [](const WatchedPerson& self, NSUInteger index, const id& item) {
          fields(self).items->replaceObjectAtIndex(index, item);
        }),
    method<"replaceItemsAtIndexes:withItems:">(
        [](const WatchedPerson& self, const NSIndexSet& indexes, const NSArray& items) {
          replaceObjectsAtIndexes(fields(self).items, indexes, items);
        }),
    method<"tags">(
        [](const WatchedPerson& self) -> NSSet { return NSSet::setWithSet(fields(self).tags); }),
    method<"addTagsObject:">(
        [](const WatchedPerson& self, const id& tag) { fields(self).tags->addObject(tag); }),
    method<"addTags:">(
        [](const WatchedPerson& self, const NSSet& tags) { fields(self).tags->unionSet(tags); }),
    method<"removeTagsObject:">(
        [](const WatchedPerson& self, const id& tag) { fields(self).tags->removeObject(tag); }),
    method<"removeTags:">(
        [](const WatchedPerson& self, const NSSet& tags) { fields(self).tags->minusSet(tags); }),
    method<"intersectTags:">([](const WatchedPerson& self, const NSSet& tags) {
      fields(self).tags->intersectSet(tags);
    }),
    method<"setTags:">(
        [](const WatchedPerson& self, const NSSet& tags) { fields(self).tags->setSet(tags); }),
};
constexpr ClassDefinition kDefinition{
    .name = "WatchedPerson", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

struct RecorderFields {
  std::mutex lock;
  std::string lines;
  ChangeRecorder::Action action;
};
RecorderFields& recorderFields(const ChangeRecorder& self) {
  return fieldsOf<RecorderFields>(self);
}

constexpr MethodDefinition kRecorderMethods[] = {
    method<"observeValueForKeyPath:ofObject:change:context:">(
        [](const ChangeRecorder& self, const NSString& keyPath, const id& object,
           const NSDictionary& change, void* context) {
          RecorderFields& f = recorderFields(self);
          {
            const std::lock_guard guard(f.lock);
            f.lines += std::string(keyPath) + " " + textOfChange(change) + "\n";
          }
          if (f.action) f.action(keyPath, object, change, context);
        }),
};
constexpr ClassDefinition kRecorderDefinition{.name = "ChangeRecorder",
                                              .methods = kRecorderMethods,
                                              .fields = fieldsDefinition<RecorderFields>()};

std::string textOf(const id& value) {
  if (value == NSNull::null()) return "null";
  std::string text;
  std::vector<std::string> members;
  if (isa<NSArray>(value)) {
    for (const id& member : uncheckedCast<NSArray>(value))
      text += std::string(member->description()) + ",";
    return "(" + text + ")";
  }
  if (isa<NSSet>(value)) {
    for (const id& member : uncheckedCast<NSSet>(value)->allObjects()) {
      members.emplace_back(member->description());
    }
    std::sort(members.begin(), members.end());
    for (const std::string& member : members) text += member + ",";
    return "{" + text + "}";
  }
  if (isa<NSIndexSet>(value)) {
    for (const NSUInteger index : uncheckedCast<NSIndexSet>(value))
      text += std::to_string(index) + ",";
    return "[" + text + "]";
  }
  return std::string(value->description());
}

}  // namespace

constinit ClassPair<WatchedPerson> WatchedPerson::classPair{kDefinition};
constinit ClassPair<ChangeRecorder> ChangeRecorder::classPair{kRecorderDefinition};

void ChangeRecorder::onChange(Action action) const {
  recorderFields(*this).action = std::move(action);
}

std::string ChangeRecorder::lines() const {
  RecorderFields& f = recorderFields(*this);
  const std::lock_guard guard(f.lock);
  return std::exchange(f.lines, "");
}

std::string textOfChange(const NSDictionary& change) {
  std::string text = "kind=" + textOf(change->objectForKey(NSKeyValueChangeKindKey));
  const auto add = [&](const char* name, const NSString& key) {
    if (const id value = change->objectForKey(key))
      text += std::string(" ") + name + "=" + textOf(value);
  };
  add("old", NSKeyValueChangeOldKey);
  add("new", NSKeyValueChangeNewKey);
  add("at", NSKeyValueChangeIndexesKey);
  add("prior", NSKeyValueChangeNotificationIsPriorKey);
  return text;
}

}  // namespace brindle
