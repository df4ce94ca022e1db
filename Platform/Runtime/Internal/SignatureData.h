// A type encoding taken apart: the types of a message, and how it is called with them.
#pragma once

#include <atomic>
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

#include <ffi.h>

#include <Brindle/Platform/Types.h>

namespace brindle::detail {

/// One type of a signature.
struct TypeData {
  std::string encoding;
  std::string wire;      // its wire codes, as in Encoding.h
  std::size_t size = 0;  // of the value
  std::size_t frameSize = 0;
  ffi_type* ffi = nullptr;
};

/// The types of a message. Made once per encoding and never freed.
struct SignatureData {
  std::string types;
  std::string wire;
  TypeData result;
  std::vector<TypeData> arguments;   // receiver and selector included
  std::size_t frameLength = 0;       // as encodings count it
  std::vector<std::size_t> offsets;  // of the arguments in an invocation's frame, aligned
  std::size_t frameSize = 0;
  ffi_cif cif{};
  void (*direct)(IMP, void** arguments, void* result) = nullptr;  // a call that needs no libffi
  std::vector<ffi_type*> ffiArguments;
  std::deque<ffi_type> structTypes;
  std::deque<std::vector<ffi_type*>> structElements;
  std::atomic<IMP> forwarder{nullptr};         // made when it is first asked for
  std::atomic<ObjectRecord*> object{nullptr};  // the signature object, immortal
};

/// Reads an encoding. False, with `data` unfinished, when the text is none.
bool parseSignature(const char* types, SignatureData& data);

/// The wire codes of an encoding (result, then arguments without receiver and selector).
bool wireOfEncoding(const char* types, std::string& wire);

/// The shared signature of an encoding, or null when the text is none.
SignatureData* signatureData(const char* types);

/// Calls an implementation with a frame of wire values. `result` has room for the result's size and
/// for 16 bytes at least.
void callWithFrame(SignatureData& data, IMP imp, void** arguments, void* result);

}  // namespace brindle::detail
