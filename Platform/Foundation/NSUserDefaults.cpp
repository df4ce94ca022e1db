#include <Brindle/Platform/NSUserDefaults.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <string>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/FileContents.h"

namespace brindle {
namespace {

// Immutable dictionaries, replaced as a whole: who reads holds the lock only for a reference.
struct Fields {
  std::mutex mutex;
  Field<NSDictionary> set = NSDictionary::dictionary();
  Field<NSDictionary> arguments = NSDictionary::dictionary();
  Field<NSDictionary> registered = NSDictionary::dictionary();
};

Fields& fields(const NSUserDefaults& self) { return fieldsOf<Fields>(self); }

// In the order in which they count.
std::array<NSDictionary, 3> domainsOf(const NSUserDefaults& self) {
  Fields& f = fields(self);
  const std::lock_guard lock(f.mutex);
  return {f.set, f.arguments, f.registered};
}

id find(const NSUserDefaults& self, const NSString& key) {
  for (const NSDictionary& domain : domainsOf(self)) {
    if (const id object = domain->objectForKey(key)) return object;
  }
  return nullptr;
}

// Puts in place what `change` makes of a copy, unless another thread was there before.
template <class Change>
void replace(const NSUserDefaults& self, Field<NSDictionary> Fields::*domain,
             const Change& change) {
  Fields& f = fields(self);
  for (;;) {
    NSDictionary before;  // ends behind the lock, with whatever its end calls
    {
      const std::lock_guard lock(f.mutex);
      before = f.*domain;
    }
    const NSMutableDictionary changed = before->mutableCopy();
    change(changed);
    const NSDictionary after = NSDictionary::dictionaryWithDictionary(changed);
    const std::lock_guard lock(f.mutex);
    if ((f.*domain).get() != before) continue;
    f.*domain = after;
    return;
  }
}

// "-name value" among the words that the process was started with.
NSDictionary commandLine() {
  std::string words;
  const NSMutableDictionary found = cast<NSMutableDictionary>(NSMutableDictionary::dictionary());
  if (internal::readFile("/proc/self/cmdline", words) != 0) return found;
  std::vector<std::string> list;
  for (std::size_t start = 0; start < words.size();) {
    const std::size_t end = std::min(words.find('\0', start), words.size());
    list.push_back(words.substr(start, end - start));
    start = end + 1;
  }
  for (std::size_t i = 1; i + 1 < list.size(); ++i) {
    const std::string& name = list[i];
    if (name.size() < 2 || name[0] != '-' || name[1] == '-') continue;
    found->setObject(NSString(list[i + 1]), NSString(name.substr(1)));
    ++i;
  }
  return found;
}

NSUserDefaults makeStandard() {
  NSUserDefaults defaults = NSUserDefaults::new_();
  fields(defaults).arguments = commandLine();
  return defaults;
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"standardUserDefaults">([](const Class&) -> id {
      // Never goes: threads may ask while the process ends.
      static const NSUserDefaults& kStandard = *new NSUserDefaults(makeStandard());
      return kStandard;
    }),
    method<"objectForKey:">(
        [](const NSUserDefaults& self, const NSString& key) { return find(self, key); }),
    method<"setObject:forKey:">(
        [](const NSUserDefaults& self, Cmd cmd, const id& object, const NSString& key) {
          detail::requireArgument(self, cmd.selector, key);
          if (!object) return self->removeObjectForKey(key);
          replace(self, &Fields::set,
                  [&](const NSMutableDictionary& set) { set->setObject(object, key); });
        }),
    method<"removeObjectForKey:">([](const NSUserDefaults& self, Cmd cmd, const NSString& key) {
      detail::requireArgument(self, cmd.selector, key);
      replace(self, &Fields::set,
              [&](const NSMutableDictionary& set) { set->removeObjectForKey(key); });
    }),
    method<"stringForKey:">([](const NSUserDefaults& self, const NSString& key) -> NSString {
      const id object = self->objectForKey(key);
      if (const auto number = dynCast<NSNumber>(object)) return number->stringValue();
      return dynCast<NSString>(object);
    }),
    method<"boolForKey:">([](const NSUserDefaults& self, const NSString& key) {
      const id object = self->objectForKey(key);
      if (const auto number = dynCast<NSNumber>(object)) return number->boolValue();
      return dynCast<NSString>(object)->boolValue();
    }),
    method<"integerForKey:">([](const NSUserDefaults& self, const NSString& key) {
      const id object = self->objectForKey(key);
      if (const auto number = dynCast<NSNumber>(object)) return number->integerValue();
      return dynCast<NSString>(object)->integerValue();
    }),
    method<"doubleForKey:">([](const NSUserDefaults& self, const NSString& key) {
      const id object = self->objectForKey(key);
      if (const auto number = dynCast<NSNumber>(object)) return number->doubleValue();
      return dynCast<NSString>(object)->doubleValue();
    }),
    method<"setBool:forKey:">([](const NSUserDefaults& self, bool value, const NSString& key) {
      self->setObject(NSNumber::numberWithBool(value), key);
    }),
    method<"setInteger:forKey:">(
        [](const NSUserDefaults& self, NSInteger value, const NSString& key) {
          self->setObject(NSNumber::numberWithInteger(value), key);
        }),
    method<"setDouble:forKey:">([](const NSUserDefaults& self, double value, const NSString& key) {
      self->setObject(NSNumber::numberWithDouble(value), key);
    }),
    method<"registerDefaults:">([](const NSUserDefaults& self, const NSDictionary& defaults) {
      replace(self, &Fields::registered, [&](const NSMutableDictionary& registered) {
        registered->addEntriesFromDictionary(defaults);
      });
    }),
    method<"dictionaryRepresentation">([](const NSUserDefaults& self) -> NSDictionary {
      const auto [set, arguments, registered] = domainsOf(self);
      const NSMutableDictionary all = registered->mutableCopy();
      all->addEntriesFromDictionary(arguments);
      all->addEntriesFromDictionary(set);
      return NSDictionary::dictionaryWithDictionary(all);
    }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSUserDefaults", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSUserDefaults> NSUserDefaults::classPair{kDefinition};

}  // namespace brindle
