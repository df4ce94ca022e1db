#include "Platform/Foundation/Internal/LoadedImages.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "Platform/Foundation/Internal/BundleLayout.h"

namespace brindle::internal {
namespace {

// The file that is mapped where the address lies.
std::string mappedFile(std::uintptr_t address) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t first = 0;
    std::uintptr_t end = 0;
    if (std::sscanf(line.c_str(), "%lx-%lx", &first, &end) != 2) continue;  // NOLINT: two numbers
    if (address < first || address >= end) continue;
    const std::size_t slash = line.find('/');
    return slash == std::string::npos ? "" : line.substr(slash);
  }
  return "";
}

// The loader's name of an image is relative to what was the current folder when it was loaded.
std::string absoluteName(const char* name, std::uintptr_t address) {
  const std::string_view text = name == nullptr ? "" : name;
  if (text.starts_with('/')) return absolutePath(text);
  if (text.find('/') == std::string_view::npos) return "";  // the program, the kernel's own code
  return mappedFile(address);
}

std::uintptr_t firstAddress(const dl_phdr_info& image) {
  for (int i = 0; i < image.dlpi_phnum; ++i) {
    if (image.dlpi_phdr[i].p_type == PT_LOAD) {
      return image.dlpi_addr + image.dlpi_phdr[i].p_vaddr;
    }
  }
  return image.dlpi_addr;
}

// What the linker was told with "-z nodelete".
bool saysItStays(const dl_phdr_info& image) {
  for (int i = 0; i < image.dlpi_phnum; ++i) {
    if (image.dlpi_phdr[i].p_type != PT_DYNAMIC) continue;
    const auto* entry =
        reinterpret_cast<const ElfW(Dyn)*>(image.dlpi_addr + image.dlpi_phdr[i].p_vaddr);  // NOLINT
    for (; entry->d_tag != DT_NULL; ++entry) {
      if (entry->d_tag == DT_FLAGS_1) return (entry->d_un.d_val & DF_1_NODELETE) != 0;
    }
  }
  return false;
}

struct Found {
  std::string name;
  std::uintptr_t address;
  bool stays;
};

}  // namespace

std::string programPath() {
  std::string path = realPath("/proc/self/exe");
  if (!path.empty()) return path;
  // The file is gone; where it was is still known.
  char buffer[4096];
  const ssize_t count = ::readlink("/proc/self/exe", buffer, sizeof buffer);
  path.assign(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
  constexpr std::string_view kGone = " (deleted)";
  return path.ends_with(kGone) ? path.substr(0, path.size() - kGone.size()) : path;
}

unsigned long long imageGeneration() noexcept {
  unsigned long long generation = 0;
  ::dl_iterate_phdr(
      [](dl_phdr_info* image, std::size_t, void* result) {
        *static_cast<unsigned long long*>(result) = image->dlpi_adds + image->dlpi_subs;
        return 1;  // the first is enough: the numbers are the process's
      },
      &generation);
  return generation;
}

std::vector<LoadedImage> loadedImages() {
  // Names first, paths later: the loader's lock is held meanwhile.
  std::vector<Found> found;
  ::dl_iterate_phdr(
      [](dl_phdr_info* image, std::size_t, void* result) {
        if (image->dlpi_name != nullptr && *image->dlpi_name != 0) {
          static_cast<std::vector<Found>*>(result)->push_back(
              {image->dlpi_name, firstAddress(*image), saysItStays(*image)});
        }
        return 0;
      },
      &found);
  std::vector<LoadedImage> images;
  for (const Found& image : found) {
    std::string path = absoluteName(image.name.c_str(), image.address);
    if (!path.empty()) images.push_back({std::move(path), image.stays});
  }
  return images;
}

std::string imageOf(const void* address) {
  Dl_info info{};
  link_map* map = nullptr;
  if (::dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0 ||
      map == nullptr) {
    return "";
  }
  return absoluteName(map->l_name, reinterpret_cast<std::uintptr_t>(address));  // NOLINT: a number
}

}  // namespace brindle::internal
