// What the user database may answer: this program puts its own function in place of the system's.
// Long records, no record, failures, and a database that never has room enough.
#include <pwd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <Brindle/BDUserDefaultsAdditions.h>

namespace {

std::string home;
int failure = 0;
bool isKnown = true;
std::vector<std::size_t> sizes;

int failures = 0;

void check(bool holds, const char* what) {
  if (holds) return;
  ++failures;
  std::printf("FAILED: %s\n", what);
}

}  // namespace

extern "C" [[gnu::visibility("default")]] int getpwuid_r(uid_t, passwd* record, char* buffer,
                                                         std::size_t size, passwd** found) {
  sizes.push_back(size);
  errno = 0;  // the code is the answer
  *found = nullptr;
  if (failure != 0) return failure;
  if (!isKnown) return 0;
  if (home.size() + 1 > size) return ERANGE;
  std::memcpy(buffer, home.c_str(), home.size() + 1);
  record->pw_dir = buffer;
  *found = record;
  return 0;
}

int main() {
  using namespace brindle;
  const NSUserDefaults settings = NSUserDefaults::standardUserDefaults();

  home = "/home/ann";
  check(userHomePath(settings)->isEqualToString("/home/ann"_ns), "a home");
  check(sizes == std::vector<std::size_t>{1024}, "begins with 1024 bytes");
  check(stringByExpandingTildeInPathUsingUserHomePath("~/a"_ns)->isEqualToString("/home/ann/a"_ns),
        "a tilde");

  home = "/" + std::string(4999, 'x');
  sizes.clear();
  check(std::string(userHomePath(settings)) == home, "a long record");
  check(sizes == std::vector<std::size_t>{1024, 2048, 4096, 8192}, "doubles the room");

  home = "/caf\xC3\xA9";
  check(userHomePath(settings)->length() == 5, "UTF-8");

  isKnown = false;
  check(userHomePath(settings) == nullptr, "no record");
  check(stringByExpandingTildeInPathUsingUserHomePath("~"_ns) == nullptr, "no home, no path");
  check(stringByExpandingTildeInPathUsingUserHomePath("/a"_ns)->isEqualToString("/a"_ns),
        "no home is needed without a tilde");
  isKnown = true;

  failure = EIO;
  sizes.clear();
  check(userHomePath(settings) == nullptr, "another failure");
  check(sizes.size() == 1, "is not tried again");

  failure = ERANGE;
  sizes.clear();
  check(userHomePath(settings) == nullptr, "never room enough");
  check(!sizes.empty() && sizes.back() == std::size_t{64} << 20U, "ends at 64 MiB");

  std::printf("%d failed\n", failures);
  return failures == 0 ? 0 : 1;
}
