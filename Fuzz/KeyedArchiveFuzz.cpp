// Keyed archives from anywhere: what is read can be written again, what is not raises.
#include <cstdint>
#include <exception>
#include <string_view>

#include <Brindle/Platform/AutoreleasePool.h>
#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/Field.h>
#include <Brindle/Platform/NSKeyedArchiver.h>
#include <Brindle/Platform/NSKeyedUnarchiver.h>
#include <Brindle/Platform/NSNumber.h>

using namespace brindle;

namespace {

/// A class that reads a value of every kind from whatever is there.
class Reader : public Interface<Reader, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Reader> classPair;
};

struct Fields {
  Field<id> first;
  double sum = 0;
};

constexpr MethodDefinition kMethods[] = {
    method<"initWithCoder:">([](const Reader& self, const NSCoder& coder) -> id {
      Fields& fields = fieldsOf<Fields>(self);
      fields.first = coder->decodeObjectForKey("a"_ns);
      NSUInteger length = 0;
      const auto* bytes = static_cast<const char*>(coder->decodeBytesForKey("b"_ns, &length));
      for (NSUInteger i = 0; i < length; ++i) fields.sum += bytes[i];
      fields.sum += static_cast<double>(coder->decodeIntegerForKey("c"_ns));
      fields.sum += coder->decodeDoubleForKey("c"_ns) + coder->decodeIntForKey("c"_ns);
      fields.sum += coder->decodeBoolForKey("c"_ns) ? 1 : 0;
      return self;
    }),
    method<"encodeWithCoder:">([](const Reader& self, const NSCoder& coder) {
      coder->encodeObject(fieldsOf<Fields>(self).first, "a"_ns);
      coder->encodeConditionalObject(self, "c"_ns);
    }),
};
constexpr ClassDefinition kDefinition{
    .name = "Reader", .methods = kMethods, .fields = fieldsDefinition<Fields>()};

}  // namespace

constinit ClassPair<Reader> Reader::classPair{kDefinition};

// An archive may describe a circle, which keeps itself: those are not leaks of the library.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const bool ready = (registerClass(Reader::classPair), true);
  static_cast<void>(ready);
  const AutoreleasePool pool;
  try {
    const NSData data = NSData::dataWithBytes(bytes, size);
    const id object = NSKeyedUnarchiver::unarchiveObjectWithData(data);
    const NSData again = NSKeyedArchiver::archivedDataWithRootObject(object);
    const id back = NSKeyedUnarchiver::unarchiveObjectWithData(again);
    if (static_cast<bool>(object) != static_cast<bool>(back)) __builtin_trap();
    if (isa<NSString>(object) && !object->isEqual(back)) __builtin_trap();
    if (isa<NSNumber>(object) && !object->isEqual(back)) __builtin_trap();
  } catch (const std::exception&) {
  }
  return 0;
}
