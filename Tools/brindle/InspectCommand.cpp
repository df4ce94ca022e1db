// `brindle inspect`.
#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <system_error>

#include <Brindle/Platform/Runtime.h>

#include "ClassListing.h"
#include "Command.h"

namespace tool {
namespace {

constexpr std::string_view kHelp =
    R"(usage: brindle inspect CLASS [--in FILE [WORDS...]] [--json]

Lists a class: its operations with their types and the file that holds their code, its properties
and variables, and which of its methods were added, replaced or exchanged, when, and from where.

  CLASS       a class of the libraries, such as NSString, or of FILE
  --in FILE   a library or plug-in, which is loaded; or a program, which is run with the WORDS behind
              it (put -- before words that begin with -), and listed when it ends by itself
  --json      one JSON object: name, superclass, instanceSize, image, protocols, classMethods,
              instanceMethods, properties, variables, changes

The program's own output goes to standard error.
)";

constexpr Option kOptions[] = {{"--in", true}, {"--json", false}};

std::string failure(const std::string& what, int code) {
  return what + ": " + std::system_category().message(code);
}

/// The module that lists a class from inside another program; it lies beside the libraries.
std::string probePath() {
  Dl_info info;
  if (::dladdr(reinterpret_cast<void*>(&brindle::objc_getMetaClass), &info) == 0) {  // NOLINT
    throw std::runtime_error("cannot find the platform library");
  }
  return std::filesystem::canonical(info.dli_fname).parent_path() / "brindle/brindle-probe.so";
}

void setVariable(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

std::string readAll(int file) {
  std::string text;
  std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(file, buffer.data(), buffer.size())) != 0;) {
    if (count > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      break;
    }
  }
  return text;
}

/// Runs the program with the probe inside, and answers what the probe wrote.
std::string runProgram(const std::string& file, std::span<const std::string_view> words,
                       const std::string& className, bool json) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error(failure("a pipe", errno));
  ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
  const char* preloaded = std::getenv("LD_PRELOAD");
  setVariable("LD_PRELOAD",
              probePath() + (preloaded != nullptr ? std::string(":") + preloaded : ""));
  setVariable("BRINDLE_PROBE_CLASS", className);
  setVariable("BRINDLE_PROBE_FORMAT", json ? "json" : "text");
  setVariable("BRINDLE_PROBE_FILE", std::to_string(ends[1]));

  std::vector<std::string> texts{file};
  texts.insert(texts.end(), words.begin(), words.end());
  std::vector<char*> arguments;
  for (std::string& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, STDERR_FILENO, STDOUT_FILENO);
  pid_t child = 0;
  const int code =
      ::posix_spawn(&child, file.c_str(), &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(ends[1]);
  if (code != 0) {
    ::close(ends[0]);
    throw std::runtime_error(failure(file, code));
  }
  std::string text = readAll(ends[0]);
  ::close(ends[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (text.empty()) {
    throw std::runtime_error(file +
                             " has ended without telling: it does not use the library, or "
                             "did not end by itself");
  }
  return text;
}

/// Whether the loader takes the file for a program: those it runs, but does not load.
bool isProgram(const char* error) {
  return std::strstr(error, "position-independent executable") != nullptr ||
         std::strstr(error, "cannot dynamically load executable") != nullptr;
}

int runInspect(std::span<const std::string_view> given) {
  const Words words(given, kOptions);
  if (words.rest().empty()) throw UsageError("the name of a class is wanted");
  const std::string className(words.rest().front());
  const std::span<const std::string_view> rest = std::span(words.rest()).subspan(1);
  const bool json = words.has("--json");
  const auto file = words.value("--in");
  if (!file && !rest.empty()) throw UsageError("one class at a time");
  if (file) {
    const std::string path = std::filesystem::absolute(*file);
    if (::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
      const std::string error = ::dlerror();
      if (!isProgram(error.c_str())) throw std::runtime_error(error);
      const std::string text = runProgram(path, rest, className, json);
      const bool found = text != listing("", json) && !text.starts_with("there is no class");
      std::cout << text;
      return found ? kDone : kNoAnswer;
    }
    if (!rest.empty()) throw UsageError("a library takes no words");
  }
  std::cout << listing(className.c_str(), json);
  return brindle::objc_getClass(className.c_str()) ? kDone : kNoAnswer;
}

}  // namespace

const Command kInspectCommand{"inspect", "a class: its methods, and who changed them", kHelp,
                              runInspect};

}  // namespace tool
