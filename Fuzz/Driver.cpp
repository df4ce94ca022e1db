// Runs a fuzz target without a fuzzer: on no bytes, on every seed, and on mutations of each seed
// that are the same in every run.
//
//   fuzz_<Name> CORPUS MUTATIONS FAILED
//
// When an input crashes or takes longer than 20 seconds, it is left in the file FAILED.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <tuple>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

using Bytes = std::vector<std::uint8_t>;

const char* failedFile;
const std::uint8_t* currentData;
std::size_t currentSize;

// Called from signal handlers: system calls only.
void saveInput() {
  const int file = ::open(failedFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
  if (file < 0) return;
  const bool saved = ::write(file, currentData, currentSize) == static_cast<ssize_t>(currentSize);
  ::close(file);
  const char text[] = "The input that failed was saved.\n";
  if (saved) std::ignore = ::write(STDERR_FILENO, text, sizeof text - 1);
}

void onSignal(int number) {
  saveInput();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

void run(const Bytes& bytes) {
  // An exact copy on the heap, so that the address sanitizer sees a read past its end.
  const auto data = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), data.get());
  currentData = data.get();
  currentSize = bytes.size();
  ::alarm(20);
  LLVMFuzzerTestOneInput(data.get(), bytes.size());
  ::alarm(0);
}

// One to four changes of the kinds that readers of structured bytes get wrong.
class Mutator {
 public:
  explicit Mutator(const std::vector<Bytes>& seeds) : seeds_(seeds) {}

  Bytes mutate(Bytes bytes) {
    for (std::size_t changes = 1 + below(4); changes > 0; --changes) change(bytes);
    return bytes;
  }

 private:
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }
  auto at(Bytes& bytes, std::size_t index) {
    return bytes.begin() + static_cast<std::ptrdiff_t>(index);
  }

  void change(Bytes& bytes) {
    static constexpr std::uint8_t kEdges[] = {0x00, 0x01, 0x7f, 0x80, 0xfe, 0xff};
    const std::size_t index = below(bytes.size());
    const std::size_t length =
        bytes.empty() ? 0 : 1 + below(std::min<std::size_t>(bytes.size() - index, 16));
    switch (below(8)) {
      case 0:  // one bit
        if (!bytes.empty()) bytes[index] ^= static_cast<std::uint8_t>(1u << below(8));
        break;
      case 1:  // one byte
        if (!bytes.empty()) bytes[index] = static_cast<std::uint8_t>(random_());
        break;
      case 2:  // a number at its edge
        std::fill_n(at(bytes, index), length, kEdges[below(std::size(kEdges))]);
        break;
      case 3:  // bytes that are missing
        bytes.erase(at(bytes, index), at(bytes, index + length));
        break;
      case 4:  // a byte too many
        bytes.insert(at(bytes, index), static_cast<std::uint8_t>(random_()));
        break;
      case 5: {  // a piece twice
        const Bytes piece(at(bytes, index), at(bytes, index + length));
        bytes.insert(at(bytes, below(bytes.size())), piece.begin(), piece.end());
        break;
      }
      case 6:  // an early end
        bytes.resize(index);
        break;
      default: {  // the end of another seed
        const Bytes& other = seeds_[below(seeds_.size())];
        bytes.resize(index);
        bytes.insert(bytes.end(), other.begin() + static_cast<std::ptrdiff_t>(below(other.size())),
                     other.end());
        break;
      }
    }
  }

  const std::vector<Bytes>& seeds_;
  std::mt19937 random_{20010101};
};

std::vector<Bytes> readSeeds(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  if (std::filesystem::is_directory(folder)) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.is_regular_file()) paths.push_back(entry.path());
    }
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Bytes> seeds;
  for (const auto& path : paths) {
    std::ifstream file(path, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  return seeds;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s CORPUS MUTATIONS FAILED\n", argv[0]);
    return 2;
  }
  failedFile = argv[3];
  if (__sanitizer_set_death_callback) {
    __sanitizer_set_death_callback(saveInput);
  } else {
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(number, onSignal);
  }
  for (const int number : {SIGABRT, SIGALRM}) std::signal(number, onSignal);

  std::vector<Bytes> seeds = readSeeds(argv[1]);
  const std::size_t files = seeds.size();
  seeds.emplace_back();
  const unsigned long mutations = std::strtoul(argv[2], nullptr, 10);
  Mutator mutator(seeds);
  for (const Bytes& seed : seeds) {
    run(seed);
    for (unsigned long i = 0; i < mutations; ++i) run(mutator.mutate(seed));
  }
  std::printf("%zu seeds and %lu mutations of each\n", files, mutations);
  return 0;
}
