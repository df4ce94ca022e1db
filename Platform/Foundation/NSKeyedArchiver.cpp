#include <Brindle/Platform/NSKeyedArchiver.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <span>
#include <unordered_map>
#include <vector>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSDate.h>
#include <Brindle/Platform/NSNumber.h>

#include "Platform/Foundation/Internal/Arguments.h"
#include "Platform/Foundation/Internal/ArrayStorage.h"
#include "Platform/Foundation/Internal/Coding.h"
#include "Platform/Foundation/Internal/DataStorage.h"
#include "Platform/Foundation/Internal/NumberKind.h"
#include "Platform/Foundation/Internal/PointerTable.h"
#include "Platform/Foundation/Internal/PropertyListFormat.h"
#include "Platform/Foundation/Internal/StringAccess.h"

namespace brindle {
namespace {

using internal::PropertyInteger;
using internal::PropertyList;
using internal::TextView;
using Index = PropertyList::Index;
using Uid = std::uint32_t;

struct Fields {
  PropertyList list;
  std::vector<Index> objects;   // by UID; kNone while an object is written
  internal::PointerTable uids;  // of objects and classes
  std::vector<id> kept;  // what has a UID stays alive, so that no other object takes its address
  std::vector<std::pair<Index, Uid>> conditionals;  // references that may become nil
  std::unordered_map<ClassRecord*, NSString> classNames;
  // Keys and values, alternating, of the archive itself, of the object that is being written, and
  // of those that it is written for. Those of the last begin at `frame`.
  std::vector<Index> values;
  std::size_t frame = 0;
  NSMutableData target;
  NSPropertyListFormat format = NSPropertyListBinaryFormat_v1_0;
  bool isOpen = false;
};

Fields& fields(const NSKeyedArchiver& self) { return fieldsOf<Fields>(self); }

TextView plain(std::string_view text) { return TextView::latin1(text); }

// The names that all archivers write, by class.
struct SharedNames {
  std::atomic<bool> isUsed{false};  // most programs never do
  std::mutex lock;
  std::unordered_map<ClassRecord*, NSString> names;
};
SharedNames& sharedNames() {
  static auto& names = *new SharedNames();
  return names;
}

NSString sharedName(ClassRecord* cls) {
  SharedNames& shared = sharedNames();
  if (!shared.isUsed.load(std::memory_order_acquire)) return nullptr;
  const std::lock_guard guard(shared.lock);
  const auto found = shared.names.find(cls);
  return found != shared.names.end() ? found->second : NSString();
}

// --- Values under keys ---------------------------------------------------------------------------

void requireOpen(const NSKeyedArchiver& self, SEL selector) {
  if (fields(self).isOpen) return;
  detail::raiseIn("NSInvalidArchiveOperationException", self, selector,
                  "the archive is finished, or was not begun");
}

// A key of a client's that begins with "$" gets another, so that it is none of the format's own.
Index addKey(PropertyList& list, const NSString& key) {
  const detail::StringText text(key);
  if (text.view().empty() || text.view()[0] != u'$') return list.addString(text);
  internal::Text escaped(plain("$"));
  escaped.append(text.view());
  return list.addString(escaped);
}

// The value replaces that of an equal key.
void put(const NSKeyedArchiver& self, Index key, Index value) {
  Fields& f = fields(self);
  const TextView name = f.list.string(key);
  for (std::size_t i = f.frame; i < f.values.size(); i += 2) {
    if (f.list.string(f.values[i]) == name) {
      f.values[i + 1] = value;
      return;
    }
  }
  f.values.insert(f.values.end(), {key, value});
}

void begin(const NSKeyedArchiver& self, SEL selector, const NSString& key) {
  requireOpen(self, selector);
  detail::requireArgument(self, selector, key);
}

template <FixedString Name, class T>
constexpr MethodDefinition numberEncoder() {
  return method<Name>([](const NSKeyedArchiver& self, Cmd cmd, T value, const NSString& key) {
    begin(self, cmd.selector, key);
    PropertyList& list = fields(self).list;
    const Index name = addKey(list, key);
    if constexpr (std::is_same_v<T, bool>)
      put(self, name, list.addBoolean(value));
    else if constexpr (std::floating_point<T>)
      put(self, name, list.addReal(value));
    else
      put(self, name, list.addInteger(std::int64_t{value}));
  });
}

// --- Objects -------------------------------------------------------------------------------------

Index numberNode(PropertyList& list, const NSNumber& number) {
  const char type = number->objCType()[0];
  if (type == 'f' || type == 'd') return list.addReal(number->doubleValue());
  if (type == 'c' &&
      (number == NSNumber::numberWithBool(true) || number == NSNumber::numberWithBool(false))) {
    return list.addBoolean(number->boolValue());
  }
  if (type == 'Q')
    return list.addInteger(PropertyInteger::fromUnsigned(number->unsignedLongLongValue()));
  return list.addInteger(std::int64_t{number->longLongValue()});
}

Class codedClass(const id& object) { return send<"classForCoder", Class>(object); }

// Strings, numbers and data stand in the archive as such; kNone for everything else, and for the
// text that stands for nil there.
Index plainNode(PropertyList& list, const id& object, Class cls) {
  if (cls == NSString::class_()) {
    const detail::StringText text(static_cast<const NSString&>(object));
    return text.view() == plain("$null") ? PropertyList::kNone : list.addString(text);
  }
  if (cls == NSData::class_()) return list.addData(static_cast<const NSData&>(object)->view());
  if (isa<NSNumber>(object)) return numberNode(list, static_cast<const NSNumber&>(object));
  return PropertyList::kNone;
}

Uid newUid(Fields& f) {
  f.objects.push_back(PropertyList::kNone);
  return static_cast<Uid>(f.objects.size() - 1);
}

Index nameNode(const NSKeyedArchiver& self, Class cls) {
  Fields& f = fields(self);
  const auto found = f.classNames.find(cls.record());
  const NSString other = found != f.classNames.end() ? found->second : sharedName(cls.record());
  if (other) return f.list.addString(detail::StringText(other));
  const std::string_view name = class_getName(cls);
  if (TextView::latin1(name).isAscii()) return f.list.addLentString(TextView::latin1(name));
  return f.list.addString(detail::StringText(NSStringFromClass(cls)));
}

// A class with its superclasses, once in each archive.
Uid classUid(const NSKeyedArchiver& self, Class cls) {
  Fields& f = fields(self);
  std::uint32_t& known = f.uids[cls.record()];
  if (known != internal::PointerTable::kNone) return known;
  const Uid uid = known = newUid(f);
  std::vector<Index> chain;
  chain.reserve(4);
  for (Class c = cls; c; c = class_getSuperclass(c)) chain.push_back(nameNode(self, c));
  const Index entries[] = {f.list.addLentString(plain("$classname")), chain.front(),
                           f.list.addLentString(plain("$classes")), f.list.addArray(chain)};
  f.objects[uid] = f.list.addDictionary(entries);
  return uid;
}

/// The values of one object while it is written; gone when its code raises.
class OpenFrame {
 public:
  explicit OpenFrame(Fields& fields) : fields_(fields), outer_(fields.frame) {
    fields_.frame = fields_.values.size();
  }
  ~OpenFrame() {
    fields_.values.resize(fields_.frame);
    fields_.frame = outer_;
  }
  OpenFrame(const OpenFrame&) = delete;
  OpenFrame& operator=(const OpenFrame&) = delete;

  [[nodiscard]] std::span<const Index> values() const {
    return std::span(fields_.values).subspan(fields_.frame);
  }

 private:
  Fields& fields_;
  std::size_t outer_;
};

void writeObject(const NSKeyedArchiver& self, const id& object, Uid uid) {
  Fields& f = fields(self);
  const Class cls = codedClass(object);
  const Index node = plainNode(f.list, object, cls);
  if (node != PropertyList::kNone) {
    f.objects[uid] = node;
    return;
  }
  detail::requireStack("NSInvalidArchiveOperationException");
  const OpenFrame frame(f);
  send<"encodeWithCoder:">(object, self);
  const Index key = f.list.addLentString(plain("$class"));
  f.values.insert(f.values.end(), {key, f.list.addUid(classUid(self, cls))});
  f.objects[uid] = f.list.addDictionary(frame.values());
}

// The UID of an object, which is written when it is new.
Uid uidOf(const NSKeyedArchiver& self, const id& object) {
  Fields& f = fields(self);
  if (!object) return 0;
  std::uint32_t& known = f.uids[object.record()];
  const bool isNew = known == internal::PointerTable::kNone;
  if (isNew) {
    f.kept.push_back(object);
    known = newUid(f);
  }
  const Uid uid = known;
  // New, or so far only referred to on condition.
  const bool isUnwritten = isNew || (f.objects[uid] == PropertyList::kNone &&
                                     std::any_of(f.conditionals.begin(), f.conditionals.end(),
                                                 [uid](auto& c) { return c.second == uid; }));
  if (isUnwritten) {
    std::erase_if(f.conditionals, [uid](auto& c) { return c.second == uid; });
    writeObject(self, object, uid);
  }
  return uid;
}

void encodeConditional(const NSKeyedArchiver& self, const id& object, Index key) {
  Fields& f = fields(self);
  if (!object) return put(self, key, f.list.addUid(0));
  std::uint32_t& known = f.uids[object.record()];
  const bool isNew = known == internal::PointerTable::kNone;
  if (isNew) {
    f.kept.push_back(object);
    known = newUid(f);
  }
  const Uid uid = known;
  const Index reference = f.list.addUid(uid);
  const bool isPending = isNew || std::any_of(f.conditionals.begin(), f.conditionals.end(),
                                              [uid](auto& c) { return c.second == uid; });
  if (isPending) f.conditionals.emplace_back(reference, uid);
  put(self, key, reference);
}

// --- The whole -----------------------------------------------------------------------------------

void finish(const NSKeyedArchiver& self, SEL selector) {
  Fields& f = fields(self);
  if (!f.isOpen) return;
  f.isOpen = false;
  for (const auto& [reference, uid] : f.conditionals) {
    internal::PropertyNode nil = f.list.node(reference);
    nil.integer.low = 0;
    f.list.put(reference, nil);
    f.objects[uid] = f.objects[0];
  }
  if (std::find(f.objects.begin(), f.objects.end(), PropertyList::kNone) != f.objects.end()) {
    detail::raiseIn("NSInvalidArchiveOperationException", self, selector,
                    "an object was not written to its end");
  }
  const Index entries[] = {
      f.list.addLentString(plain("$version")),  f.list.addInteger(std::int64_t{100000}),
      f.list.addLentString(plain("$archiver")), f.list.addLentString(plain("NSKeyedArchiver")),
      f.list.addLentString(plain("$top")),      f.list.addDictionary(f.values),
      f.list.addLentString(plain("$objects")),  f.list.addArray(f.objects)};
  f.list.setRoot(f.list.addDictionary(entries));
  const auto format = f.format == NSPropertyListXMLFormat_v1_0
                          ? internal::PropertyListFormat::xml
                          : internal::PropertyListFormat::binary;
  std::string error;
  auto bytes = internal::writePropertyList(f.list, format, error);
  if (!bytes) detail::raiseIn("NSInvalidArchiveOperationException", self, selector, error);
  if (f.target->isMemberOfClass(NSMutableData::class_())) {
    detail::bytesOf(f.target) = std::move(*bytes);
  } else {
    f.target->setData(detail::makeData(std::move(*bytes)));
  }
}

constexpr MethodDefinition kMethods[] = {
    classMethod<"archivedDataWithRootObject:">([](const Class& self, const id& object) -> NSData {
      const NSMutableData data = NSMutableData::data();
      const auto archiver =
          send<"initForWritingWithMutableData:", NSKeyedArchiver>(send<"alloc", id>(self), data);
      archiver->encodeObject(object, NSKeyedArchiveRootObjectKey);
      archiver->finishEncoding();
      return detail::makeData(std::move(detail::bytesOf(data)));
    }),
    classMethod<"archiveRootObject:toFile:">(
        [](const Class& self, const id& object, const NSString& path) {
          return send<"archivedDataWithRootObject:", NSData>(self, object)->writeToFile(path, true);
        }),
    classMethod<"setClassName:forClass:">([](const Class&, const NSString& name, const Class& cls) {
      SharedNames& shared = sharedNames();
      const std::lock_guard guard(shared.lock);
      shared.isUsed.store(true, std::memory_order_release);
      if (name)
        shared.names.insert_or_assign(cls.record(), name->copy());
      else
        shared.names.erase(cls.record());
    }),
    classMethod<"classNameForClass:">(
        [](const Class&, const Class& cls) { return sharedName(cls.record()); }),
    method<"initForWritingWithMutableData:">(
        [](const NSKeyedArchiver& self, Cmd cmd, const NSMutableData& data) -> id {
          detail::requireArgument(self, cmd.selector, data);
          Fields& f = fields(self);
          f.target = data;
          f.isOpen = true;
          f.list.reserve(64);
          f.values.reserve(32);
          f.objects.reserve(16);
          f.kept.reserve(16);
          f.objects.push_back(f.list.addLentString(plain("$null")));
          return self;
        }),
    method<"finishEncoding">(
        [](const NSKeyedArchiver& self, Cmd cmd) { finish(self, cmd.selector); }),
    method<"outputFormat">([](const NSKeyedArchiver& self) { return fields(self).format; }),
    method<"setOutputFormat:">(
        [](const NSKeyedArchiver& self, Cmd cmd, NSPropertyListFormat format) {
          if (format != NSPropertyListXMLFormat_v1_0 && format != NSPropertyListBinaryFormat_v1_0) {
            detail::raiseIn("NSInvalidArgumentException", self, cmd.selector,
                            "no format has the number " + std::to_string(format));
          }
          fields(self).format = format;
        }),
    method<"setClassName:forClass:">(
        [](const NSKeyedArchiver& self, const NSString& name, const Class& cls) {
          if (name)
            fields(self).classNames.insert_or_assign(cls.record(), name->copy());
          else
            fields(self).classNames.erase(cls.record());
        }),
    method<"classNameForClass:">([](const NSKeyedArchiver& self, const Class& cls) -> NSString {
      const auto& names = fields(self).classNames;
      const auto found = names.find(cls.record());
      return found != names.end() ? found->second : NSString();
    }),

    method<"encodeObject:forKey:">(
        [](const NSKeyedArchiver& self, Cmd cmd, const id& object, const NSString& key) {
          begin(self, cmd.selector, key);
          const Index name = addKey(fields(self).list, key);
          const Uid uid = uidOf(self, object);
          put(self, name, fields(self).list.addUid(uid));
        }),
    method<"encodeConditionalObject:forKey:">(
        [](const NSKeyedArchiver& self, Cmd cmd, const id& object, const NSString& key) {
          begin(self, cmd.selector, key);
          encodeConditional(self, object, addKey(fields(self).list, key));
        }),
    numberEncoder<"encodeBool:forKey:", bool>(),
    numberEncoder<"encodeInt:forKey:", int>(),
    numberEncoder<"encodeInt32:forKey:", std::int32_t>(),
    numberEncoder<"encodeInt64:forKey:", std::int64_t>(),
    numberEncoder<"encodeInteger:forKey:", NSInteger>(),
    numberEncoder<"encodeFloat:forKey:", float>(),
    numberEncoder<"encodeDouble:forKey:", double>(),
    method<"encodeBytes:length:forKey:">([](const NSKeyedArchiver& self, Cmd cmd, const void* bytes,
                                            NSUInteger length, const NSString& key) {
      begin(self, cmd.selector, key);
      PropertyList& list = fields(self).list;
      const Index name = addKey(list, key);
      put(self, name, list.addData({static_cast<const char*>(bytes), length}));
    }),
    method<"_encodeArrayOfObjects:forKey:">(
        [](const NSKeyedArchiver& self, Cmd cmd, const NSArray& objects, const NSString& key) {
          begin(self, cmd.selector, key);
          const Index name = addKey(fields(self).list, key);
          std::vector<Index> references;
          for (const id& object : detail::copyItems(objects)) {
            const Uid uid = uidOf(self, object);
            references.push_back(fields(self).list.addUid(uid));
          }
          put(self, name, fields(self).list.addArray(references));
        }),
};

constexpr ClassDefinition kDefinition{
    .name = "NSKeyedArchiver", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<NSKeyedArchiver> NSKeyedArchiver::classPair{kDefinition};
constinit const NSString NSKeyedArchiveRootObjectKey = "root"_ns;
constinit const NSString NSInvalidArchiveOperationException =
    "NSInvalidArchiveOperationException"_ns;

}  // namespace brindle
