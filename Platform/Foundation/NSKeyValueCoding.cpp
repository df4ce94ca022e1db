#include <Brindle/Platform/NSKeyValueCoding.h>

#include <cstdio>
#include <string>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSException.h>
#include <Brindle/Platform/NSMutableDictionary.h>
#include <Brindle/Platform/NSNull.h>

#include "Platform/Foundation/Internal/Categories.h"
#include "Platform/Foundation/Internal/KeyPath.h"
#include "Platform/Foundation/Internal/KeyValueAccessors.h"
#include "Platform/Foundation/Internal/KeyValueChange.h"
#include "Platform/Foundation/Internal/KeyValueProxies.h"

namespace brindle {

extern "C" {
constinit const NSString NSTargetObjectUserInfoKey = "NSTargetObjectUserInfoKey"_ns;
constinit const NSString NSUnknownUserInfoKey = "NSUnknownUserInfoKey"_ns;
}

namespace {

using detail::KeyAccessor;
using detail::keyAccessor;
using detail::KeyPurpose;
using detail::requireKey;
using Kind = KeyAccessor::Kind;

// "[<Account 0x5581> valueForUndefinedKey:]: " and what is wrong.
NSString told(const id& self, SEL selector, const NSString& what) {
  char address[32];
  std::snprintf(address, sizeof address, "%p", static_cast<void*>(self.record()));
  return NSString("[<" + std::string(class_getName(classOf(self))) + " " + address + "> " +
                  sel_getName(selector) + "]: ")
      ->stringByAppendingString(what);
}

[[noreturn]] void raiseUndefined(const id& self, SEL selector, const NSString& key) {
  const NSString what =
      "this class is not key value coding-compliant for the key "_ns->stringByAppendingString(key)
          ->stringByAppendingString("."_ns);
  const NSDictionary info = {{NSTargetObjectUserInfoKey, self}, {NSUnknownUserInfoKey, key}};
  NSException::exceptionWithName(NSUndefinedKeyException, told(self, selector, what), info)
      ->raise();
}

id value(const id& self, SEL selector, const NSString& key) {
  requireKey(self, selector, key);
  const KeyAccessor* accessor = keyAccessor(self, key, KeyPurpose::kGet);
  if (accessor == nullptr) return send<"valueForUndefinedKey:", id>(self, key);
  switch (accessor->kind) {
    case Kind::kMethod:
      return detail::boxedResult(self, accessor->selector, accessor->type);
    case Kind::kVariable:
      return detail::boxedVariable(detail::variableOf(self, *accessor), accessor->type);
    default:
      return detail::keyValueCollection(self, *accessor);
  }
}

void set(const id& self, SEL selector, const id& value, const NSString& key) {
  requireKey(self, selector, key);
  const KeyAccessor* accessor = keyAccessor(self, key, KeyPurpose::kSet);
  if (accessor == nullptr) return send<"setValue:forUndefinedKey:">(self, value, key);
  if (!value && !accessor->type.isObject()) return send<"setNilValueForKey:">(self, key);
  if (accessor->kind == Kind::kMethod) {
    return detail::callWithValue(self, accessor->selector, accessor->type, value);
  }
  detail::changeValue(self, key, [&] {
    detail::setVariable(detail::variableOf(self, *accessor), accessor->type, value);
  });
}

bool validate(const id& self, SEL selector, id* value, const NSString& key, NSError* error) {
  requireKey(self, selector, key);
  const KeyAccessor* accessor = keyAccessor(self, key, KeyPurpose::kValidate);
  if (accessor == nullptr) return true;
  return sendSelector<bool>(self, accessor->selector, value, error);
}

/// Where a path leads before its last key, or up to an object that follows paths in its own way.
/// Goes from object to object without a call for each, however long the path is.
template <FixedString Message>
struct Walk {
  id object;
  NSString path;
  bool isLast = false;  // the path is one key for `object`, otherwise a path to send to it

  Walk(const id& self, const NSString& keyPath) : object(self) {
    const NSUInteger length = keyPath->length();
    NSUInteger start = 0;
    while (follows(self)) {
      const NSUInteger point =
          keyPath->rangeOfString("."_ns, 0, NSRange{start, length - start}).location;
      if (point == static_cast<NSUInteger>(NSNotFound)) {
        isLast = true;
        break;
      }
      object = valueForKey(object, keyPath->substringWithRange({start, point - start}));
      start = point + 1;
    }
    path = keyPath->substringFromIndex(start);
  }

 private:
  // Whether the object follows paths as the first one does.
  [[nodiscard]] bool follows(const id& self) const {
    if (object == self) return true;
    return object && class_getMethodImplementation(object_getClass(object), selector<Message>()) ==
                         class_getMethodImplementation(object_getClass(self), selector<Message>());
  }
};

constexpr MethodDefinition kMethods[] = {
    classMethod<"accessInstanceVariablesDirectly">([](const Class&) { return true; }),

    method<"valueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) -> id {
      return value(self, cmd.selector, key);
    }),
    method<"valueForKeyPath:">([](const NSObject& self, Cmd cmd, const NSString& path) -> id {
      requireKey(self, cmd.selector, path);
      const Walk<"valueForKeyPath:"> walk(self, path);
      return walk.isLast ? valueForKey(walk.object, walk.path)
                         : valueForKeyPath(walk.object, walk.path);
    }),
    method<"valueForUndefinedKey:">([](const NSObject& self, Cmd cmd, const NSString& key) -> id {
      raiseUndefined(self, cmd.selector, key);
    }),
    method<"dictionaryWithValuesForKeys:">(
        [](const NSObject& self, const NSArray& keys) -> NSDictionary {
          const auto values = NSMutableDictionary::dictionary();
          for (const id& key : NSArray::arrayWithArray(keys)) {
            const id found = valueForKey(self, cast<NSString>(key));
            values->setObject(found ? found : NSNull::null(), key);
          }
          return values->copy();
        }),

    method<"setValue:forKey:">([](const NSObject& self, Cmd cmd, const id& value,
                                  const NSString& key) { set(self, cmd.selector, value, key); }),
    method<"setValue:forKeyPath:">(
        [](const NSObject& self, Cmd cmd, const id& value, const NSString& path) {
          requireKey(self, cmd.selector, path);
          const Walk<"setValue:forKeyPath:"> walk(self, path);
          if (walk.isLast) return setValue(walk.object, value, walk.path);
          setValueForKeyPath(walk.object, value, walk.path);
        }),
    method<"setValue:forUndefinedKey:">(
        [](const NSObject& self, Cmd cmd, const id&, const NSString& key) {
          raiseUndefined(self, cmd.selector, key);
        }),
    method<"setNilValueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) {
      const NSString what =
          "could not set nil as the value for the key "_ns->stringByAppendingString(key);
      NSException::raise(NSInvalidArgumentException, "%@."_ns, told(self, cmd.selector, what));
    }),
    method<"setValuesForKeysWithDictionary:">([](const NSObject& self, const NSDictionary& values) {
      const NSDictionary given = values->copy();
      for (const id& key : given) {
        const id value = given->objectForKey(key);
        setValue(self, isa<NSNull>(value) ? id() : value, cast<NSString>(key));
      }
    }),

    method<"validateValue:forKey:error:">(
        [](const NSObject& self, Cmd cmd, id* value, const NSString& key, NSError* error) {
          return validate(self, cmd.selector, value, key, error);
        }),
    method<"validateValue:forKeyPath:error:">(
        [](const NSObject& self, Cmd cmd, id* value, const NSString& path, NSError* error) {
          requireKey(self, cmd.selector, path);
          const Walk<"validateValue:forKeyPath:error:"> walk(self, path);
          if (!walk.object) return true;
          return walk.isLast ? validateValue(walk.object, value, walk.path, error)
                             : validateValueForKeyPath(walk.object, value, walk.path, error);
        }),

    method<"mutableArrayValueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) {
      requireKey(self, cmd.selector, key);
      return detail::keyValueMutableArray(self, key);
    }),
    method<"mutableArrayValueForKeyPath:">(
        [](const NSObject& self, Cmd cmd, const NSString& path) -> NSMutableArray {
          requireKey(self, cmd.selector, path);
          const Walk<"mutableArrayValueForKeyPath:"> walk(self, path);
          return walk.isLast ? mutableArrayValueForKey(walk.object, walk.path)
                             : mutableArrayValueForKeyPath(walk.object, walk.path);
        }),
    method<"mutableSetValueForKey:">([](const NSObject& self, Cmd cmd, const NSString& key) {
      requireKey(self, cmd.selector, key);
      return detail::keyValueMutableSet(self, key);
    }),
    method<"mutableSetValueForKeyPath:">(
        [](const NSObject& self, Cmd cmd, const NSString& path) -> NSMutableSet {
          requireKey(self, cmd.selector, path);
          const Walk<"mutableSetValueForKeyPath:"> walk(self, path);
          return walk.isLast ? mutableSetValueForKey(walk.object, walk.path)
                             : mutableSetValueForKeyPath(walk.object, walk.path);
        }),
};

}  // namespace

namespace detail {

constinit const CategoryDefinition kNSObjectKeyValueCoding{
    .name = "NSKeyValueCoding", .cls = &NSObject::classPair.cls, .methods = kMethods};

}  // namespace detail
}  // namespace brindle
