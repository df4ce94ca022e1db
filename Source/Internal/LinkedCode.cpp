#include "Source/Internal/LinkedCode.h"

#include <dlfcn.h>
#include <link.h>

#include <array>
#include <atomic>
#include <cstdint>

#include <Brindle/Platform/Implementation.h>

#include "Source/Internal/MethodSwizzle.h"

namespace brindle::internal {
namespace {

struct Answer {
  IMP implementation;
  bool linked;
  const Answer* next;
};

// Answers are pushed at the front of a list and never change or go, so readers take no lock.
using Buckets = std::array<std::atomic<const Answer*>, 256>;

std::atomic<const Answer*>& bucketOf(IMP implementation) {
  static Buckets& buckets = *new Buckets{};
  const auto address =
      reinterpret_cast<std::uintptr_t>(detail::implementationAddress(implementation));  // NOLINT
  // Functions begin on multiples of 16.
  return buckets[(address >> 4U) % buckets.size()];
}

const link_map* imageAt(const void* address) {
  Dl_info info;
  link_map* image = nullptr;
  const int found = ::dladdr1(address, &info, reinterpret_cast<void**>(&image),  // NOLINT
                              RTLD_DL_LINKMAP);
  return found != 0 ? image : nullptr;
}

/// The mark of linked code, as it is seen in a loaded library and, behind it, in what that is
/// linked with; null for the name: in the whole process.
const void* markSeenFrom(const char* library) {
  void* handle = ::dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr) return nullptr;
  const void* mark = ::dlsym(handle, "__kBrindleAwakeLinkCheckingSymbol");
  ::dlclose(handle);
  return mark;
}

/// The main program has no name to ask for, and without one the loader shows also what was
/// preloaded, or opened for everybody to see. So each library that it is linked with is asked.
bool isProgramLinked(const link_map& program) {
  const void* mark = markSeenFrom(nullptr);
  if (mark != nullptr && imageAt(mark) == &program) return true;  // it contains the library
  std::uintptr_t names = 0;
  for (const ElfW(Dyn)* entry = program.l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag == DT_STRTAB) names = entry->d_un.d_ptr;
  }
  if (names < program.l_addr) names += program.l_addr;  // some loaders leave it as in the file
  for (const ElfW(Dyn)* entry = program.l_ld; entry->d_tag != DT_NULL; ++entry) {
    if (entry->d_tag != DT_NEEDED) continue;
    const auto* name = reinterpret_cast<const char*>(names + entry->d_un.d_val);  // NOLINT
    if (markSeenFrom(name) != nullptr) return true;
  }
  return false;
}

bool askLoader(IMP implementation) {
  const link_map* image = imageAt(detail::implementationAddress(codeBehind(implementation)));
  if (image == nullptr) return false;
  if (image->l_name[0] == '\0') return isProgramLinked(*image);
  return markSeenFrom(image->l_name) != nullptr;
}

}  // namespace

bool isLinkedCode(IMP implementation) {
  std::atomic<const Answer*>& bucket = bucketOf(implementation);
  const Answer* first = bucket.load(std::memory_order_acquire);
  for (const Answer* known = first; known != nullptr; known = known->next) {
    if (known->implementation == implementation) return known->linked;
  }
  auto* answer = new Answer{implementation, askLoader(implementation), first};
  while (!bucket.compare_exchange_weak(first, answer, std::memory_order_acq_rel)) {
    answer->next = first;
  }
  return answer->linked;
}

}  // namespace brindle::internal
