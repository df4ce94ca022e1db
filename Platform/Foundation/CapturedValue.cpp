// The value of a key as it was read: boxed when somebody wants an object.
#include <Brindle/Platform/NSNull.h>
#include <Brindle/Platform/NSNumber.h>
#include <Brindle/Platform/Runtime.h>

#include "Platform/Foundation/Internal/ObservedChange.h"
#include "Platform/Foundation/Internal/ObservingClasses.h"

namespace brindle::detail {
namespace {

// NSObject's own way of reading by key.
constinit IMP plainReading = nullptr;

constexpr const char* kGetterPrefixes[] = {"get", "", "is"};

/// The getter that reading by key runs first, when reading by key is the platform's own; else null.
MethodRecord* getterOf(const ClassRecord* cls, const ObservedKey& key) {
  const MethodRecord* reading = findMethod(cls, selector<"valueForKey:">());
  if (reading->implementation.load(std::memory_order_relaxed) != plainReading) return nullptr;
  for (std::size_t i = 0; i < 3; ++i) {
    SEL s = key.getters[i].load(std::memory_order_acquire);
    if (s == nullptr) {
      // Registered, since a look for a name that nobody has would be made at each change.
      const std::string& name = *kGetterPrefixes[i] == '\0' ? key.text : key.capitalized;
      s = sel_registerName((kGetterPrefixes[i] + name).c_str());
      key.getters[i].store(s, std::memory_order_release);
    }
    MethodRecord* method = findMethod(cls, s);
    if (method->implementation.load(std::memory_order_acquire) != nullptr) return method;
  }
  return nullptr;
}

bool isQualifier(char code) noexcept {
  switch (code) {
    case 'r':
    case 'n':
    case 'N':
    case 'o':
    case 'O':
    case 'R':
    case 'V':
      return true;
    default:
      return false;
  }
}

/// The encoding of what the method answers, without qualifiers.
char resultType(const MethodRecord& method) noexcept {
  const char* types = method.types.load(std::memory_order_acquire);
  if (types == nullptr) return '\0';
  while (isQualifier(*types)) ++types;
  return *types;
}

template <class T>
T get(const MethodRecord& method, ObjectRecord* object) {
  const IMP imp = method.implementation.load(std::memory_order_acquire);
  return callImplementation<T>(imp, object, method.name);
}

}  // namespace

CapturedValue CapturedValue::ofKey(const id& object, const ObservedKey& key) {
  ObjectRecord* record = object.record();
  ClassRecord* cls = record->isa.load(std::memory_order_acquire);
  const char* wire = nullptr;
  MethodRecord* method = getterOf(cls, key);
  if (method != nullptr) wire = method->wire.load(std::memory_order_acquire);
  if (wire != nullptr && wire[0] != '\0' && wire[1] == '\0') {
    CapturedValue value;
    value.type_ = resultType(*method);
    switch (value.type_) {
      case '@':
        value.object_ = get<id>(*method, record);
        return value;
      case 'c':
        value.bits_ =
            get<signed char>(*method, record);  // NOLINT(bugprone-signed-char-misuse): a number
        return value;
      case 'C':
        value.bits_ = get<unsigned char>(*method, record);
        return value;
      case 's':
        value.bits_ = get<short>(*method, record);
        return value;
      case 'S':
        value.bits_ = get<unsigned short>(*method, record);
        return value;
      case 'i':
        value.bits_ = get<int>(*method, record);
        return value;
      case 'I':
        value.bits_ = get<unsigned>(*method, record);
        return value;
      case 'q':
        value.bits_ = get<std::int64_t>(*method, record);
        return value;
      case 'Q':
        value.bits_ = static_cast<std::int64_t>(get<std::uint64_t>(*method, record));
        return value;
      case 'f':
        value.bits_ = std::bit_cast<std::int64_t>(static_cast<double>(get<float>(*method, record)));
        return value;
      case 'd':
        value.bits_ = std::bit_cast<std::int64_t>(get<double>(*method, record));
        return value;
      default:
        break;
    }
  }
  return CapturedValue(send<"valueForKey:", id>(object, key.name));
}

void CapturedValue::learnPlainReading() noexcept {
  plainReading = class_getMethodImplementation(NSObject::class_(), selector<"valueForKey:">());
}

id CapturedValue::object() const {
  switch (type_) {
    case 'c':
      // Truth values are encoded as characters.
      if (bits_ == 0 || bits_ == 1) return NSNumber::numberWithBool(bits_ == 1);
      return NSNumber::class_()->numberWithChar(static_cast<signed char>(bits_));
    case 'C':
      return NSNumber::class_()->numberWithUnsignedChar(static_cast<unsigned char>(bits_));
    case 's':
      return NSNumber::class_()->numberWithShort(static_cast<short>(bits_));
    case 'S':
      return NSNumber::class_()->numberWithUnsignedShort(static_cast<unsigned short>(bits_));
    case 'i':
      return NSNumber::numberWithInt(static_cast<int>(bits_));
    case 'I':
      return NSNumber::numberWithUnsignedInt(static_cast<unsigned>(bits_));
    case 'q':
      return NSNumber::numberWithLongLong(bits_);
    case 'Q':
      return NSNumber::numberWithUnsignedLongLong(static_cast<std::uint64_t>(bits_));
    case 'f':
      return NSNumber::numberWithFloat(static_cast<float>(real()));
    case 'd':
      return NSNumber::numberWithDouble(real());
    default:
      return object_;
  }
}

}  // namespace brindle::detail
