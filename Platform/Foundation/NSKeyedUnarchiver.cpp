#include <Brindle/Platform/NSKeyedUnarchiver.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Coding.h"
#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/StringAccess.h"
#include "Platform/Foundation/Internal/TextEncoding.h"

namespace brindle {
namespace {

using internal::PropertyInteger;
using internal::PropertyKind;
using internal::PropertyList;
using internal::TextView;
using Index = PropertyList::Index;

constexpr Index kNone = PropertyList::kNone;
constexpr std::int64_t kVersion = 100000;

/// What has a UID: an object, or the description of a class, as far as it was read.
struct Slot {
  Index node = kNone;
  bool isRead = false;
  id object;
  Class cls;
};

struct Fields {
  NSData data;  // the list looks into its bytes
  PropertyList list;
  std::vector<Slot> slots;    // by UID
  std::vector<Index> frames;  // the object that is read; the first is the top
  std::unordered_map<std::string, Class> names;
};

Fields& fields(const NSKeyedUnarchiver& self) { return fieldsOf<Fields>(self); }

TextView plain(std::string_view text) { return TextView::latin1(text); }

// The classes that all unarchivers make, by name.
struct SharedClasses {
  std::atomic<bool> isUsed{false};  // most programs never do
  std::mutex lock;
  std::unordered_map<std::string, Class> classes;
};
SharedClasses& sharedClasses() {
  static auto& classes = *new SharedClasses();
  return classes;
}

Class sharedClass(const std::string& name) {
  SharedClasses& shared = sharedClasses();
  if (!shared.isUsed.load(std::memory_order_acquire)) return nullptr;
  const std::lock_guard guard(shared.lock);
  const auto found = shared.classes.find(name);
  return found != shared.classes.end() ? found->second : Class();
}

[[noreturn]] void raiseBroken(const std::string& what) {
  detail::raise("NSInvalidUnarchiveOperationException", "keyed archive: " + what);
}

// --- The archive as a whole ----------------------------------------------------------------------

// Why the list is no keyed archive; null when it is one. Fills in what is needed to read it.
const char* open(Fields& f) {
  const PropertyList& list = f.list;
  const Index root = list.root();
  if (list.kind(root) != PropertyKind::dictionary) return "the top is no dictionary";
  const Index archiver = list.find(root, plain("$archiver"));
  if (archiver == kNone || list.kind(archiver) != PropertyKind::string ||
      list.string(archiver) != plain("NSKeyedArchiver")) {
    return "\"$archiver\" is not \"NSKeyedArchiver\"";
  }
  const Index version = list.find(root, plain("$version"));
  if (version == kNone || list.kind(version) != PropertyKind::integer ||
      list.integer(version) != PropertyInteger::fromSigned(kVersion)) {
    return "\"$version\" is not 100000";
  }
  const Index top = list.find(root, plain("$top"));
  if (top == kNone || list.kind(top) != PropertyKind::dictionary)
    return "\"$top\" is no dictionary";
  const Index objects = list.find(root, plain("$objects"));
  if (objects == kNone || list.kind(objects) != PropertyKind::array) {
    return "\"$objects\" is no array";
  }
  const auto nodes = list.elements(objects);
  f.slots.resize(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) f.slots[i].node = nodes[i];
  f.frames.reserve(8);
  f.frames.push_back(top);
  return nullptr;
}

void forget(Fields& f) {
  f.frames.clear();
  f.slots.clear();
  f.list = PropertyList();
  f.data = nullptr;
}

// --- Values --------------------------------------------------------------------------------------

// The node under a key of the object that is being read; kNone when there is none.
Index find(const NSKeyedUnarchiver& self, SEL selector, const NSString& key) {
  detail::requireArgument(self, selector, key);
  const Fields& f = fields(self);
  if (f.frames.empty()) {
    detail::raiseIn("NSInvalidUnarchiveOperationException", self, selector,
                    "decoding is finished, or was not begun");
  }
  const detail::StringText text(key);
  if (text.view().empty() || text.view()[0] != u'$') return f.list.find(f.frames.back(), text);
  internal::Text escaped(plain("$"));
  escaped.append(text.view());
  const Index node = f.list.find(f.frames.back(), escaped);
  // Values without a key stand under "$0", "$1" and so on, as they are.
  const bool isPlace = text.view().size() > 1 && text.view()[1] >= u'0' && text.view()[1] <= u'9';
  return node == kNone && isPlace ? f.list.find(f.frames.back(), text) : node;
}

// A number that stands elsewhere, as an object, is a number too.
Index findNumber(const NSKeyedUnarchiver& self, SEL selector, const NSString& key) {
  const Fields& f = fields(self);
  const Index node = find(self, selector, key);
  if (node == kNone || f.list.kind(node) != PropertyKind::uid) return node;
  const std::uint64_t uid = f.list.uid(node);
  return uid < f.slots.size() ? f.slots[uid].node : kNone;
}

template <class T>
T clamped(double value) {
  if (std::isnan(value)) return 0;
  if (value >= static_cast<double>(std::numeric_limits<T>::max()))
    return std::numeric_limits<T>::max();
  if (value <= static_cast<double>(std::numeric_limits<T>::min()))
    return std::numeric_limits<T>::min();
  return static_cast<T>(value);
}

template <class T>
T clamped(PropertyInteger value) {
  // What is written as unsigned 64 bits keeps its bits.
  if constexpr (sizeof(T) == 8) return static_cast<T>(value.low);
  if (!value.fitsSigned()) return clamped<T>(value.asReal());
  const std::int64_t number = value.asSigned();
  if (number > std::numeric_limits<T>::max()) return std::numeric_limits<T>::max();
  if (number < std::numeric_limits<T>::min()) return std::numeric_limits<T>::min();
  return static_cast<T>(number);
}

template <class T>
T readNumber(const PropertyList& list, Index node) {
  if (node == kNone) return T{};
  switch (list.kind(node)) {
    case PropertyKind::boolean:
      return static_cast<T>(list.boolean(node));
    case PropertyKind::real: {
      if constexpr (std::is_same_v<T, bool>)
        return list.real(node) != 0;
      else if constexpr (std::floating_point<T>)
        return static_cast<T>(list.real(node));
      else
        return clamped<T>(list.real(node));
    }
    case PropertyKind::integer: {
      if constexpr (std::is_same_v<T, bool>)
        return list.integer(node) != PropertyInteger();
      else if constexpr (std::floating_point<T>)
        return static_cast<T>(list.integer(node).asReal());
      else
        return clamped<T>(list.integer(node));
    }
    default:
      return T{};
  }
}

template <FixedString Name, class T>
constexpr MethodDefinition numberDecoder() {
  return method<Name>([](const NSKeyedUnarchiver& self, Cmd cmd, const NSString& key) -> T {
    return readNumber<T>(fields(self).list, findNumber(self, cmd.selector, key));
  });
}

// --- Objects -------------------------------------------------------------------------------------

NSNumber numberFrom(PropertyInteger value) {
  if (value.fitsSigned()) return NSNumber::numberWithLongLong(value.asSigned());
  if (value.fitsUnsigned()) return NSNumber::numberWithUnsignedLongLong(value.low);
  return NSNumber::numberWithDouble(value.asReal());
}

// Strings, numbers, data and dates stand in the archive as such; nil for every other node.
id plainObject(const PropertyList& list, Index node) {
  switch (list.kind(node)) {
    case PropertyKind::string:
      return detail::makeString(list.string(node));
    case PropertyKind::integer:
      return numberFrom(list.integer(node));
    case PropertyKind::real:
      return NSNumber::numberWithDouble(list.real(node));
    case PropertyKind::boolean:
      return NSNumber::numberWithBool(list.boolean(node));
    case PropertyKind::data:
      return NSData(list.data(node));
    case PropertyKind::date:
      return NSDate::dateWithTimeIntervalSinceReferenceDate(list.date(node));
    default:
      return nullptr;
  }
}

Slot& slotOf(Fields& f, std::uint64_t uid) {
  if (uid >= f.slots.size()) {
    raiseBroken("object " + std::to_string(uid) + " of " + std::to_string(f.slots.size()));
  }
  return f.slots[uid];
}

// The name in the description of a class: its own, or else the first of its chain.
Index classNameAt(const PropertyList& list, Index node) {
  const Index chain = list.find(node, plain("$classes"));
  if (chain != kNone && list.kind(chain) != PropertyKind::array) {
    raiseBroken("a class whose superclasses are no array");
  }
  Index name = list.find(node, plain("$classname"));
  if (name == kNone && chain != kNone && !list.elements(chain).empty()) {
    name = list.elements(chain).front();
  }
  if (name == kNone || list.kind(name) != PropertyKind::string) {
    raiseBroken("a class without a name");
  }
  return name;
}

// The class of that name, as the program wants it. Raises when there is none.
Class classNamed(const Fields& f, const std::string& name) {
  const auto own = f.names.find(name);
  Class cls = own != f.names.end() ? own->second : sharedClass(name);
  if (!cls) cls = objc_getClass(name.c_str());
  if (!cls) raiseBroken("cannot decode object of class (" + name + "), which is not there");
  if (!send<"instancesRespondToSelector:", bool>(cls, selector<"initWithCoder:">())) {
    raiseBroken("cannot decode object of class (" + name + "), which has no initWithCoder:");
  }
  return cls;
}

// The class that is described under that UID.
Class classAt(Fields& f, std::uint64_t uid) {
  Slot& slot = slotOf(f, uid);
  if (slot.cls) return slot.cls;
  if (f.list.kind(slot.node) != PropertyKind::dictionary) raiseBroken("a class that is none");
  slot.cls = classNamed(f, internal::utf8FromText(f.list.string(classNameAt(f.list, slot.node))));
  return slot.cls;
}

// The object that is read now, for the time of its `initWithCoder:`.
class OpenFrame {
 public:
  OpenFrame(Fields& fields, Index node) : fields_(fields) { fields_.frames.push_back(node); }
  ~OpenFrame() {
    if (!fields_.frames.empty()) fields_.frames.pop_back();
  }
  OpenFrame(const OpenFrame&) = delete;
  OpenFrame& operator=(const OpenFrame&) = delete;

 private:
  Fields& fields_;
};

id objectAt(const NSKeyedUnarchiver& self, std::uint64_t uid) {
  Fields& f = fields(self);
  Slot& slot = slotOf(f, uid);
  if (slot.isRead) return slot.object;  // or being read: then it is not initialised yet
  const Index node = slot.node;
  const PropertyKind kind = f.list.kind(node);
  if (kind == PropertyKind::string && f.list.string(node) == plain("$null")) return nullptr;
  if (kind != PropertyKind::dictionary) {
    id object = plainObject(f.list, node);
    if (!object) raiseBroken(std::string(internal::nameOf(kind)) + " where an object belongs");
    slot.object = object;
    slot.isRead = true;
    return object;
  }
  const Index reference = f.list.find(node, plain("$class"));
  if (reference == kNone || f.list.kind(reference) != PropertyKind::uid) {
    raiseBroken("an object without a class");
  }
  detail::requireStack("NSInvalidUnarchiveOperationException");

  id object = send<"alloc", id>(classAt(f, f.list.uid(reference)));
  slot.object = object;
  slot.isRead = true;
  {
    const OpenFrame frame(f, node);
    object = send<"initWithCoder:", id>(object, self);
  }
  if (object) object = send<"awakeAfterUsingCoder:", id>(object, self);
  // Unless its own code finished the decoding.
  if (uid < f.slots.size()) f.slots[uid].object = object;
  return object;
}

id decodeObject(const NSKeyedUnarchiver& self, Index node) {
  const Fields& f = fields(self);
  if (node == kNone) return nullptr;
  if (f.list.kind(node) == PropertyKind::uid) return objectAt(self, f.list.uid(node));
  return plainObject(f.list, node);
}

NSArray decodeObjects(const NSKeyedUnarchiver& self, Index node) {
  const Fields& f = fields(self);
  if (node == kNone || f.list.kind(node) != PropertyKind::array) return nullptr;
  std::vector<id> objects;
  // Reading an object does not move the list, but may end the decoding.
  const std::size_t count = f.list.elements(node).size();
  objects.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (f.frames.empty()) return nullptr;
    id object = decodeObject(self, f.list.elements(node)[i]);
    if (!object) return nullptr;
    objects.push_back(std::move(object));
  }
  return detail::makeArray(std::move(objects));
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"unarchiveObjectWithData:">([](const Class& self, const NSData& data) -> id {
      if (!data) return nullptr;
      const auto coder =
          send<"initForReadingWithData:", NSKeyedUnarchiver>(send<"alloc", id>(self), data);
      id object = coder->decodeObjectForKey(NSKeyedArchiveRootObjectKey);
      coder->finishDecoding();
      return object;
    }),
    classMethod<"unarchiveObjectWithFile:">([](const Class& self, const NSString& path) -> id {
      return send<"unarchiveObjectWithData:", id>(self, NSData::dataWithContentsOfFile(path));
    }),
    classMethod<"setClass:forClassName:">([](const Class&, const Class& cls, const NSString& name) {
      SharedClasses& shared = sharedClasses();
      const std::lock_guard guard(shared.lock);
      shared.isUsed.store(true, std::memory_order_release);
      if (cls)
        shared.classes.insert_or_assign(std::string(name), cls);
      else
        shared.classes.erase(std::string(name));
    }),
    classMethod<"classForClassName:">(
        [](const Class&, const NSString& name) { return sharedClass(std::string(name)); }),
    method<"initForReadingWithData:">(
        [](const NSKeyedUnarchiver& self, Cmd cmd, const NSData& data) -> id {
          detail::requireArgument(self, cmd.selector, data);
          Fields& f = fields(self);
          f.data = data->copy();
          std::string error;
          auto list = internal::readPropertyList(f.data->view(), error);
          if (list) {
            f.list = std::move(*list);
            const char* fault = open(f);
            if (fault == nullptr) return self;
            error = fault;
          }
          detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                          "the data is no keyed archive: " + error);
        }),
    method<"finishDecoding">([](const NSKeyedUnarchiver& self) { forget(fields(self)); }),
    method<"setClass:forClassName:">(
        [](const NSKeyedUnarchiver& self, const Class& cls, const NSString& name) {
          if (cls)
            fields(self).names.insert_or_assign(std::string(name), cls);
          else
            fields(self).names.erase(std::string(name));
        }),
    method<"classForClassName:">([](const NSKeyedUnarchiver& self, const NSString& name) -> Class {
      const auto& names = fields(self).names;
      const auto found = names.find(std::string(name));
      return found != names.end() ? found->second : Class();
    }),

    method<"containsValueForKey:">([](const NSKeyedUnarchiver& self, Cmd cmd, const NSString& key) {
      return find(self, cmd.selector, key) != kNone;
    }),
    method<"decodeObjectForKey:">(
        [](const NSKeyedUnarchiver& self, Cmd cmd, const NSString& key) -> id {
          return decodeObject(self, find(self, cmd.selector, key));
        }),
    numberDecoder<"decodeBoolForKey:", bool>(),
    numberDecoder<"decodeIntForKey:", int>(),
    numberDecoder<"decodeInt32ForKey:", std::int32_t>(),
    numberDecoder<"decodeInt64ForKey:", std::int64_t>(),
    numberDecoder<"decodeIntegerForKey:", NSInteger>(),
    numberDecoder<"decodeFloatForKey:", float>(),
    numberDecoder<"decodeDoubleForKey:", double>(),
    method<"decodeBytesForKey:returnedLength:">([](const NSKeyedUnarchiver& self, Cmd cmd,
                                                   const NSString& key,
                                                   NSUInteger* length) -> const void* {
      const Index node = find(self, cmd.selector, key);
      const bool isData = node != kNone && fields(self).list.kind(node) == PropertyKind::data;
      const std::string_view bytes = isData ? fields(self).list.data(node) : std::string_view();
      if (length != nullptr) *length = bytes.size();
      return isData ? bytes.data() : nullptr;
    }),
    method<"_decodeArrayOfObjectsForKey:">(
        [](const NSKeyedUnarchiver& self, Cmd cmd, const NSString& key) {
          const Index node = find(self, cmd.selector, key);
          if (node != kNone) return decodeObjects(self, node);
          // The form that coders without arrays write.
          return sendSuper<NSKeyedUnarchiver, "_decodeArrayOfObjectsForKey:", NSArray>(self, key);
        }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSKeyedUnarchiver", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSKeyedUnarchiver> NSKeyedUnarchiver::classPair{kDefinition};
constinit const NSString NSInvalidUnarchiveOperationException =
    "NSInvalidUnarchiveOperationException"_ns;

}  // namespace brindle
