#include "Platform/Runtime/Internal/SignatureData.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include <Brindle/Platform/Implementation.h>

namespace brindle::detail {
namespace {

constexpr int kMaximalDepth = 32;

/// Walks over one encoding. Every step checks for the end of the text.
class EncodingReader {
 public:
  EncodingReader(const char* text, SignatureData& data) : p_(text), data_(data) {}

  [[nodiscard]] bool atEnd() const { return *p_ == '\0'; }

  bool readType(TypeData& type) {
    const char* begin = p_;
    skipQualifiers();
    if (!readOne(type, 0)) return false;
    type.encoding.assign(begin, p_);
    return true;
  }

  void skipNumber() {
    if (*p_ == '-' || *p_ == '+') ++p_;
    while (*p_ >= '0' && *p_ <= '9') ++p_;
  }

 private:
  static void set(TypeData& type, const char* wire, std::size_t size, std::size_t frame,
                  ffi_type* ffi) {
    type.wire = wire;
    type.size = size;
    type.frameSize = frame;
    type.ffi = ffi;
  }

  void skipQualifiers() {
    while (*p_ != '\0' && std::strchr("rnNoORVA", *p_) != nullptr) ++p_;
  }

  bool skipQuoted() {
    if (*p_ != '"') return true;
    const char* end = std::strchr(p_ + 1, '"');
    if (end == nullptr) return false;
    p_ = end + 1;
    return true;
  }

  bool readOne(TypeData& type, int depth) {
    if (depth > kMaximalDepth) return false;
    switch (*p_++) {
      case 'v':
        set(type, "v", 0, 0, &ffi_type_void);
        return true;
      case 'c':
      case 'C':
      case 'B':
        set(type, "b", 1, 4, &ffi_type_uint8);
        return true;
      case 's':
      case 'S':
        set(type, "s", 2, 4, &ffi_type_uint16);
        return true;
      case 'i':
      case 'I':
      case 'l':
      case 'L':
        set(type, "i", 4, 4, &ffi_type_uint32);
        return true;
      case 'q':
      case 'Q':
        set(type, "q", 8, 8, &ffi_type_uint64);
        return true;
      case 'f':
        set(type, "f", 4, 4, &ffi_type_float);
        return true;
      case 'd':
        set(type, "d", 8, 8, &ffi_type_double);
        return true;
      case 'D':
        set(type, "D", 16, 16, &ffi_type_longdouble);
        return true;
      case '@':
        set(type, "@", 8, 8, &ffi_type_pointer);
        if (*p_ == '?') ++p_;
        return skipQuoted();
      case '#':
        set(type, "@", 8, 8, &ffi_type_pointer);
        return true;
      case ':':
      case '*':
      case '?':
        set(type, "p", 8, 8, &ffi_type_pointer);
        return true;
      case '^':
        return readPointer(type, depth);
      case '{':
        return readStruct(type, depth);
      default:
        --p_;
        return false;
    }
  }

  bool readPointer(TypeData& type, int depth) {
    skipQualifiers();
    const bool object = *p_ == '@' && p_[1] != '?';
    // What lies behind a pointer does not matter, and may be a type that cannot travel itself.
    if (*p_ == '{' || *p_ == '(' || *p_ == '[' || *p_ == 'b') {
      if (!skipBracketed()) return false;
    } else {
      TypeData pointee;
      if (!readOne(pointee, depth + 1)) return false;
    }
    set(type, object ? "&" : "p", 8, 8, &ffi_type_pointer);
    return true;
  }

  bool skipBracketed() {
    int open = 0;
    do {
      if (*p_ == '\0') return false;
      if (*p_ == '(' || *p_ == '[' || *p_ == '{') ++open;
      if (*p_ == ')' || *p_ == ']' || *p_ == '}') --open;
      ++p_;
    } while (open > 0);
    while (*p_ >= '0' && *p_ <= '9') ++p_;
    return true;
  }

  bool readStruct(TypeData& type, int depth) {
    while (*p_ != '=' && *p_ != '}' && *p_ != '\0') ++p_;
    if (*p_ == '}') {  // a structure that is only named: behind a pointer
      ++p_;
      set(type, "{}", 0, 0, nullptr);
      return true;
    }
    if (*p_ == '\0') return false;
    ++p_;
    std::vector<ffi_type*> elements;
    std::size_t size = 0;
    std::size_t alignment = 1;
    std::string wire = "{";
    while (*p_ != '}') {
      if (!skipQuoted()) return false;
      TypeData field;
      skipQualifiers();
      if (!readOne(field, depth + 1) || field.ffi == nullptr || field.size == 0) return false;
      alignment = std::max<std::size_t>(alignment, field.ffi->alignment);
      size = (size + field.ffi->alignment - 1) / field.ffi->alignment * field.ffi->alignment;
      size += field.size;
      wire += field.wire;
      elements.push_back(field.ffi);
    }
    ++p_;
    if (elements.empty()) return false;
    elements.push_back(nullptr);
    data_.structElements.push_back(std::move(elements));
    data_.structTypes.push_back({0, 0, FFI_TYPE_STRUCT, data_.structElements.back().data()});
    size = (size + alignment - 1) / alignment * alignment;
    ffi_type* ffi = &data_.structTypes.back();
    ffi->size = size;
    ffi->alignment = static_cast<unsigned short>(alignment);
    set(type, (wire + "}").c_str(), size, size, ffi);
    return true;
  }

  const char* p_;
  SignatureData& data_;
};

struct Cache {
  std::shared_mutex lock;
  std::unordered_map<std::string_view, SignatureData*> signatures;
};

Cache& cache() {
  static auto& signatures = *new Cache;
  return signatures;
}

// libffi sorts the arguments of each call anew. The commonest messages are called without it.
struct DirectCall {
  std::string_view wire;
  void (*call)(IMP, void** arguments, void* result);
};

template <class R, class... A>
void callDirectly(IMP imp, void** arguments, void* result) {
  auto* self = *static_cast<ObjectRecord**>(arguments[0]);
  const SEL selector = *static_cast<SEL*>(arguments[1]);
  const auto function = typedImplementation<Wire<R>, Wire<A>...>(imp);
  [&]<std::size_t... I>(std::index_sequence<I...>) {
    if constexpr (std::is_void_v<R>) {
      function(self, selector, *static_cast<Wire<A>*>(arguments[I + 2])...);
    } else {
      *static_cast<Wire<R>*>(result) =
          function(self, selector, *static_cast<Wire<A>*>(arguments[I + 2])...);
    }
  }
  (std::index_sequence_for<A...>{});
}

template <class R, class... A>
constexpr DirectCall directCall() {
  return {wireTypes<R, A...>.view(), &callDirectly<R, A...>};
}

constexpr DirectCall kDirectCalls[] = {
    directCall<void>(),          directCall<void, id>(),
    directCall<void, id, id>(),  directCall<void, bool>(),
    directCall<void, int>(),     directCall<void, NSInteger>(),
    directCall<void, double>(),  directCall<id>(),
    directCall<id, id>(),        directCall<id, id, id>(),
    directCall<id, NSInteger>(), directCall<bool>(),
    directCall<bool, id>(),      directCall<int>(),
    directCall<NSInteger>(),     directCall<NSInteger, id>(),
    directCall<double>(),
};

}  // namespace

bool parseSignature(const char* types, SignatureData& data) {
  data.types = types;
  EncodingReader reader(data.types.c_str(), data);
  if (!reader.readType(data.result) || data.result.ffi == nullptr) return false;
  reader.skipNumber();
  std::size_t offset = 0;
  while (!reader.atEnd()) {
    TypeData argument;
    if (!reader.readType(argument) || argument.ffi == nullptr || argument.size == 0) return false;
    reader.skipNumber();
    const std::size_t alignment = argument.ffi->alignment;
    offset = (offset + alignment - 1) / alignment * alignment;
    data.offsets.push_back(offset);
    offset += argument.size;
    data.frameLength += argument.frameSize;
    data.ffiArguments.push_back(argument.ffi);
    data.arguments.push_back(std::move(argument));
  }
  // A receiver and a selector: invocations put them there.
  if (data.arguments.size() < 2 || data.arguments[0].wire != "@" || data.arguments[1].wire != "p")
    return false;
  data.frameSize = offset;
  data.wire = data.result.wire;
  for (std::size_t i = 2; i < data.arguments.size(); ++i) data.wire += data.arguments[i].wire;
  for (const DirectCall& direct : kDirectCalls) {
    if (direct.wire == data.wire) data.direct = direct.call;
  }
  return ffi_prep_cif(&data.cif, FFI_DEFAULT_ABI, static_cast<unsigned>(data.arguments.size()),
                      data.result.ffi, data.ffiArguments.data()) == FFI_OK;
}

bool wireOfEncoding(const char* types, std::string& wire) {
  SignatureData data;
  if (!parseSignature(types, data)) return false;
  wire = data.wire;
  return true;
}

SignatureData* signatureData(const char* types) {
  if (types == nullptr) return nullptr;
  Cache& known = cache();
  {
    const std::shared_lock guard(known.lock);
    auto found = known.signatures.find(types);
    if (found != known.signatures.end()) return found->second;
  }
  auto data = std::make_unique<SignatureData>();
  if (!parseSignature(types, *data)) return nullptr;
  const std::unique_lock guard(known.lock);
  auto [place, added] = known.signatures.emplace(data->types, data.get());
  if (added) {
    data.release();  // NOLINT: lives for ever, in the cache
  }
  return place->second;
}

void callWithFrame(SignatureData& data, IMP imp, void** arguments, void* result) {
  if (data.direct != nullptr)
    data.direct(imp, arguments, result);
  else
    ffi_call(&data.cif, imp, result, arguments);
}

}  // namespace brindle::detail
