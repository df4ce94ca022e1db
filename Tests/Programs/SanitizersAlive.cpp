// A sanitizer that reports nothing may be switched off. This program plants what each one must
// find, each time in a process of its own, and passes only when that process failed with the
// report. In a build with assertions, the same for messages with wrong types.
#include <array>
#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <Brindle/Platform/Definition.h>
#include <Brindle/Platform/NSObject.h>

#if defined(__has_feature)
#define BRINDLE_HAS_FEATURE(feature) __has_feature(feature)
#else
#define BRINDLE_HAS_FEATURE(feature) 0
#endif

namespace brindle {
namespace {

#if defined(__SANITIZE_THREAD__) || BRINDLE_HAS_FEATURE(thread_sanitizer)
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif
#if defined(__SANITIZE_ADDRESS__) || BRINDLE_HAS_FEATURE(address_sanitizer)
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif
// Only clang compares the type of a function with the type it is called by.
#if BRINDLE_HAS_FEATURE(undefined_behavior_sanitizer)
constexpr bool kFunctionSanitizer = true;
#else
constexpr bool kFunctionSanitizer = false;
#endif

class Planted : public Interface<Planted, NSObject> {
 public:
  using Interface::Interface;
  static ClassPair<Planted> classPair;
};

struct PlantedFields {
  int number = 0;
};

constexpr MethodDefinition kMethods[] = {
    method<"number">([](const Planted& self) { return fieldsOf<PlantedFields>(self).number; }),
    method<"setNumber:">(
        [](const Planted& self, int n) { fieldsOf<PlantedFields>(self).number = n; }),
    classMethod<"half:">([](const Class&, double d) { return d / 2; }),
};
constexpr ClassDefinition kPlanted{
    .name = "Planted", .methods = kMethods, .fields = fieldsDefinition<PlantedFields>()};

}  // namespace

constinit ClassPair<Planted> Planted::classPair{kPlanted};

namespace {

// --- What must be found --------------------------------------------------------------------------

void plantRace() {
  const Planted object = Planted::new_();
  auto count = [&object] {
    for (int i = 0; i < 10000; ++i) {
      send<"setNumber:">(object, send<"number", int>(object) + 1);
    }
  };
  std::thread other(count);
  count();
  other.join();
}

void plantWrongCast() {
  const Planted object = Planted::new_();
  const IMP imp = object->methodForSelector(selector<"setNumber:">());
  callImplementation<void>(imp, object, selector<"setNumber:">(), 1.5);
}

void plantUseAfterEnd() {
  Planted object = Planted::new_();
  ObjectRecord* record = object.record();
  object = nullptr;
  std::printf("%u\n", record->count.load());
}

void plantLeak() {
  for (int i = 0; i < 10; ++i) static_cast<void>(Planted::new_().leak());
}

void plantWrongArgument() { send<"setNumber:">(Planted::new_(), 1.5); }

void plantWrongResult() { std::printf("%d\n", send<"half:", int>(Planted::class_(), 3.0)); }

void plantWrongSelector() {
  std::printf("%d\n", sendSelector<int>(Planted::new_(), selector<"number">(), 1));
}

struct Plant {
  const char* name;
  bool looked;  // whether this build looks for it
  void (*plant)();
  std::array<const char*, 2> report;
};

constexpr Plant kPlants[] = {
    {"race", kThreadSanitizer, &plantRace, {"ThreadSanitizer: data race", "Planted"}},
    {"wrong-cast",
     kFunctionSanitizer,
     &plantWrongCast,
     {"through pointer to incorrect function type", "runtime error"}},
    {"use-after-end", kAddressSanitizer, &plantUseAfterEnd, {"heap-use-after-free", "Planted"}},
    {"leak", kAddressSanitizer, &plantLeak, {"LeakSanitizer", "Planted"}},
    {"wrong-argument",
     BRINDLE_ASSERTIONS != 0,
     &plantWrongArgument,
     {"-[Planted setNumber:] was sent with the types v24@0:8d16 (vd)",
      "its implementation has v20@0:8i16 (vi)"}},
    {"wrong-result",
     BRINDLE_ASSERTIONS != 0,
     &plantWrongResult,
     {"+[Planted half:] was sent with the types i24@0:8d16 (id)",
      "its implementation has d24@0:8d16 (dd)"}},
    {"wrong-selector",
     BRINDLE_ASSERTIONS != 0,
     &plantWrongSelector,
     {"-[Planted number] was sent with the types i20@0:8i16 (ii)",
      "its implementation has i16@0:8 (i)"}},
};

// --- Running it ----------------------------------------------------------------------------------

struct Ended {
  bool failed;
  std::string text;
};

Ended runPlanted(const char* name) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return {false, "no pipe"};
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDERR_FILENO);
    execl("/proc/self/exe", "planted", name, static_cast<char*>(nullptr));
    _exit(0);
  }
  close(ends[1]);
  std::string text;
  std::array<char, 4096> bytes{};
  for (ssize_t n = 0; (n = read(ends[0], bytes.data(), bytes.size())) > 0;) {
    text.append(bytes.data(), static_cast<std::size_t>(n));
  }
  close(ends[0]);
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return {false, "no process"};
  return {!WIFEXITED(status) || WEXITSTATUS(status) != 0, text};
}

bool isFound(const Plant& plant) {
  const Ended ended = runPlanted(plant.name);
  bool found = ended.failed;
  for (const char* part : plant.report) {
    found = found && ended.text.find(part) != std::string::npos;
  }
  std::printf("%-14s %s\n", plant.name, found ? "found" : "NOT FOUND, but this was written:");
  if (!found) std::printf("%s\n", ended.text.c_str());
  return found;
}

int plantNamed(std::string_view name) {
  for (const Plant& plant : kPlants) {
    if (name == plant.name) plant.plant();
  }
  return 0;
}

int lookForAll() {
  if (!kThreadSanitizer && !kAddressSanitizer && !kFunctionSanitizer) {
    std::puts("not a sanitizer build");
  }
  bool all = true;
  for (const Plant& plant : kPlants) {
    if (plant.looked)
      all = isFound(plant) && all;
    else
      std::printf("%-14s not looked for in this build\n", plant.name);
  }
  return all ? 0 : 1;
}

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  return arguments.size() > 1 ? brindle::plantNamed(arguments[1]) : brindle::lookForAll();
}
