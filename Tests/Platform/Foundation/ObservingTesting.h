// What the tests of observing share: a model with properties of many types, and an observer that
// writes down what it is told.
#pragma once

#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSArrayIndexing.h>
#include <Brindle/Platform/NSKeyValueObserving.h>
#include <Brindle/Platform/NSMutableArray.h>
#include <Brindle/Platform/NSMutableSet.h>
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/NSValue.h>

namespace brindle {

/// A person with a friend: the model of the tests.
class WatchedPerson : public Interface<WatchedPerson, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<WatchedPerson> classPair;

  int age() const { return send<"age", int>(*this); }
  void setAge(int age) const { send<"setAge:">(*this, age); }
  NSString name() const { return send<"name", NSString>(*this); }
  void setName(const NSString& name) const { send<"setName:">(*this, name); }
  NSString surname() const { return send<"surname", NSString>(*this); }
  void setSurname(const NSString& name) const { send<"setSurname:">(*this, name); }
  /// Depends on both names.
  NSString fullName() const { return send<"fullName", NSString>(*this); }
  WatchedPerson friend_() const { return send<"friend", WatchedPerson>(*this); }
  void setFriend(const WatchedPerson& other) const { send<"setFriend:">(*this, other); }
  bool isTall() const { return send<"isTall", bool>(*this); }
  void setTall(bool tall) const { send<"setTall:">(*this, tall); }
  double height() const { return send<"height", double>(*this); }
  void setHeight(double height) const { send<"setHeight:">(*this, height); }
  float weight() const { return send<"weight", float>(*this); }
  void setWeight(float weight) const { send<"setWeight:">(*this, weight); }
  short small() const { return send<"small", short>(*this); }
  void setSmall(short value) const { send<"setSmall:">(*this, value); }
  NSUInteger large() const { return send<"large", NSUInteger>(*this); }
  void setLarge(NSUInteger value) const { send<"setLarge:">(*this, value); }
  NSRange span() const { return send<"span", NSRange>(*this); }
  void setSpan(NSRange span) const { send<"setSpan:">(*this, span); }
  /// Set by `_setSecret:`.
  int secret() const { return send<"secret", int>(*this); }
  void setSecretly(int value) const { send<"_setSecret:">(*this, value); }
  /// Not told automatically.
  int manual() const { return send<"manual", int>(*this); }
  void setManual(int value) const { send<"setManual:">(*this, value); }

  NSArray items() const { return send<"items", NSArray>(*this); }
  void setItems(const NSArray& items) const { send<"setItems:">(*this, items); }
  void insertItem(const id& item, NSUInteger index) const {
    send<"insertObject:inItemsAtIndex:">(*this, item, index);
  }
  void insertItems(const NSArray& items, const NSIndexSet& indexes) const {
    send<"insertItems:atIndexes:">(*this, items, indexes);
  }
  void removeItem(NSUInteger index) const { send<"removeObjectFromItemsAtIndex:">(*this, index); }
  void removeItems(const NSIndexSet& indexes) const {
    send<"removeItemsAtIndexes:">(*this, indexes);
  }
  void replaceItem(NSUInteger index, const id& item) const {
    send<"replaceObjectInItemsAtIndex:withObject:">(*this, index, item);
  }
  void replaceItems(const NSIndexSet& indexes, const NSArray& items) const {
    send<"replaceItemsAtIndexes:withItems:">(*this, indexes, items);
  }
  NSSet tags() const { return send<"tags", NSSet>(*this); }
  void addTag(const id& tag) const { send<"addTagsObject:">(*this, tag); }
  void addTags(const NSSet& tags) const { send<"addTags:">(*this, tags); }
  void removeTag(const id& tag) const { send<"removeTagsObject:">(*this, tag); }
  void removeTags(const NSSet& tags) const { send<"removeTags:">(*this, tags); }
  void intersectTags(const NSSet& tags) const { send<"intersectTags:">(*this, tags); }
  void setTags(const NSSet& tags) const { send<"setTags:">(*this, tags); }
};

/// An observer that writes a line for each notification: `age kind=1 old=1 new=2`.
class ChangeRecorder : public Interface<ChangeRecorder, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<ChangeRecorder> classPair;

  /// Runs with every notification.
  using Action = std::function<void(const NSString&, const id&, const NSDictionary&, void*)>;
  void onChange(Action action) const;
  /// The lines since the last call, each ended by a newline.
  std::string lines() const;
};

/// A change dictionary in one line.
std::string textOfChange(const NSDictionary& change);

}  // namespace brindle
