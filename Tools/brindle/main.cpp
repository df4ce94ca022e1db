// brindle: what the library knows, from the command line.
#include <algorithm>
#include <exception>
#include <iostream>
#include <vector>

#include "Command.h"

namespace {

constexpr const tool::Command* kCommands[] = {&tool::kRangeCommand,    &tool::kRecogniseCommand,
                                              &tool::kDescribeCommand, &tool::kBundleCommand,
                                              &tool::kPathsCommand,    &tool::kInspectCommand};

void printHelp(std::ostream& out) {
  out << "usage: brindle COMMAND [WORDS...]\n\nCommands:\n";
  for (const tool::Command* command : kCommands) {
    out << "  " << command->name << std::string(14 - command->name.size(), ' ') << command->summary
        << '\n';
  }
  out << "\n`brindle COMMAND --help` explains a command.\n"
         "Exit status: 0 done, 1 there is no answer or no place to write it, 2 the words were "
         "wrong.\n";
}

bool asksForHelp(std::string_view word) {
  return word == "--help" || word == "-h" || word == "help";
}

const tool::Command* commandNamed(std::string_view name) {
  for (const tool::Command* command : kCommands) {
    if (command->name == name) return command;
  }
  return nullptr;
}

int run(const tool::Command& command, std::span<const std::string_view> words) {
  for (const std::string_view word : words) {
    if (word == "--help" || word == "-h") {
      std::cout << command.help;
      return tool::kDone;
    }
  }
  try {
    return command.run(words);
  } catch (const tool::UsageError& error) {
    std::cerr << "brindle " << command.name << ": " << error.what() << "\nTry `brindle "
              << command.name << " --help`.\n";
    return tool::kUsage;
  } catch (const std::exception& error) {
    std::cerr << "brindle " << command.name << ": " << error.what() << '\n';
    return tool::kNoAnswer;
  }
}

int run(std::span<const std::string_view> words) {
  if (words.empty()) {
    printHelp(std::cerr);
    return tool::kUsage;
  }
  const bool help = asksForHelp(words.front());
  if (help && words.size() == 1) {
    printHelp(std::cout);
    return tool::kDone;
  }
  const std::string_view name = words[help ? 1 : 0];
  const tool::Command* command = commandNamed(name);
  if (command == nullptr) {
    std::cerr << "brindle: there is no command '" << name << "'\nTry `brindle --help`.\n";
    return tool::kUsage;
  }
  if (help) {
    std::cout << command->help;
    return tool::kDone;
  }
  return run(*command, words.subspan(1));
}

}  // namespace

int main(int argc, char** argv) {
  // A program may be started without even its own name.
  const std::vector<std::string_view> words(argv + std::min(argc, 1), argv + argc);
  const int status = run(words);
  if (!std::cout.flush()) {
    std::cerr << "brindle: the output could not be written\n";
    return tool::kNoAnswer;
  }
  return status;
}
