#include <Brindle/BDKeyValueCodingSearchAdditions.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSMutableString.h>
#include <Brindle/Platform/Runtime.h>

#include "Source/Internal/Categories.h"

namespace brindle {
namespace {

/// The key with its first UTF-16 unit in upper case: half of a pair stays as it is.
NSString capitalized(const NSString& key) {
  if (key->length() == 0) return key;
  const auto text = cast<NSMutableString>(key->mutableCopy());
  const NSRange first = NSMakeRange(0, 1);
  text->replaceCharactersInRange(first, text->substringWithRange(first)->uppercaseString());
  return text;
}

bool haveMethod(const Class& cls, const NSString& format, const NSString& key) {
  return instancesHaveMethod(cls, NSString::stringWithFormat(format, key));
}

bool haveVariable(const Class& cls, const NSString& format, const NSString& key) {
  return instancesHaveVariable(cls, NSString::stringWithFormat(format, key));
}

/// A variable that key-value coding may read and set itself.
bool haveAccessibleVariable(const Class& cls, const NSString& key, const NSString& upper) {
  if (!send<"accessInstanceVariablesDirectly", bool>(cls)) return false;
  return haveVariable(cls, "_%@"_ns, key) || haveVariable(cls, "_is%@"_ns, upper) ||
         haveVariable(cls, "%@"_ns, key) || haveVariable(cls, "is%@"_ns, upper);
}

/// A collection that is counted, and read by index, by indexes, or by member.
bool haveCollection(const Class& cls, const NSString& key, const NSString& upper) {
  return haveMethod(cls, "countOf%@"_ns, upper) &&
         (haveMethod(cls, "objectIn%@AtIndex:"_ns, upper) ||
          haveMethod(cls, "%@AtIndexes:"_ns, key) ||
          (haveMethod(cls, "enumeratorOf%@"_ns, upper) &&
           haveMethod(cls, "memberOf%@:"_ns, upper)));
}

bool haveGetKey(const Class& cls, const NSString& key) {
  const NSString upper = capitalized(key);
  return instancesHaveProperty(cls, key) || haveMethod(cls, "get%@"_ns, upper) ||
         instancesHaveMethod(cls, key) || haveMethod(cls, "is%@"_ns, upper) ||
         haveCollection(cls, key, upper) || haveAccessibleVariable(cls, key, upper);
}

bool haveSetKey(const Class& cls, const NSString& key) {
  const NSString upper = capitalized(key);
  return instancesHaveProperty(cls, key) || haveMethod(cls, "set%@:"_ns, upper) ||
         haveAccessibleVariable(cls, key, upper);
}

/// Looks the selector up without registering it: what nobody registered, nobody defined.
bool haveMethodNamed(const Class& cls, const NSString& name) {
  const char* text = name->UTF8String();
  if (text == nullptr) return false;
  const SEL selector = sel_findName(text);
  return selector != nullptr && class_getInstanceMethod(cls, selector) != nullptr;
}

constexpr MethodDefinition kMethods[] = {
    method<"hasKey:">(
        [](const id& self, const NSString& key) { return instancesHaveKey(classOf(self), key); }),
    method<"hasGetKey:">([](const id& self, const NSString& key) {
      return instancesHaveGetKey(classOf(self), key);
    }),
    method<"hasSetKey:">([](const id& self, const NSString& key) {
      return instancesHaveSetKey(classOf(self), key);
    }),
    method<"hasMethod:">([](const id& self, const NSString& name) {
      return instancesHaveMethod(classOf(self), name);
    }),
    method<"hasVariable:">([](const id& self, const NSString& name) {
      return instancesHaveVariable(classOf(self), name);
    }),
    method<"hasProperty:">([](const id& self, const NSString& name) {
      return instancesHaveProperty(classOf(self), name);
    }),
    classMethod<"instancesHaveMethod:">(
        [](const Class& self, const NSString& name) { return haveMethodNamed(self, name); }),
    classMethod<"instancesHaveVariable:">([](const Class& self, const NSString& name) {
      return class_getInstanceVariable(self, name->UTF8String()) != nullptr;
    }),
    classMethod<"instancesHaveProperty:">([](const Class& self, const NSString& name) {
      return class_getProperty(self, name->UTF8String()) != nullptr;
    }),
    classMethod<"instancesHaveKey:">([](const Class& self, const NSString& key) {
      return instancesHaveGetKey(self, key) && instancesHaveSetKey(self, key);
    }),
    classMethod<"instancesHaveGetKey:">(
        [](const Class& self, const NSString& key) { return haveGetKey(self, key); }),
    classMethod<"instancesHaveSetKey:">(
        [](const Class& self, const NSString& key) { return haveSetKey(self, key); }),
};

}  // namespace

constinit const CategoryDefinition internal::kBDKeyValueCodingSearchAdditions{
    .name = "BDKeyValueCodingSearchAdditions",
    .cls = &NSObject::classPair.cls,
    .methods = kMethods};

}  // namespace brindle
