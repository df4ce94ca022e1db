// A program that is linked with nothing of ours and opens, late, a plug-in that brings the
// libraries along: what they keep for each thread has to fit in the room that the loader has left.
//   foreign_host PLUGIN
#include <dlfcn.h>

#include <cstdio>

int main(int count, char** arguments) {
  if (count < 2) return 2;
  void* handle = ::dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) {
    std::printf("%s\n", ::dlerror());
    return 1;
  }
  auto* plugin = reinterpret_cast<int (*)()>(::dlsym(handle, "plugin"));  // NOLINT
  const int answered = plugin();
  std::printf("plug-in %d\n", answered);
  return answered == 1 ? 0 : 1;
}
