// brindle: what the library knows, from the command line.
#include <exception>
#include <iostream>
#include <vector>

#include "Command.h"

namespace {

constexpr const tool::Command* kCommands[] = {&tool::kRangeCommand, &tool::kRecogniseCommand};

void printHelp(std::ostream& out) {
  out << "usage: brindle COMMAND [WORDS...]\n\nCommands:\n";
  for (const tool::Command* command : kCommands) {
    out << "  " << command->name << std::string(14 - command->name.size(), ' ') << command->summary
        << '\n';
  }
  out << "\n`brindle COMMAND --help` explains a command.\n"
         "Exit status: 0 done, 1 the question has no answer, 2 the words were wrong.\n";
}

bool asksForHelp(std::string_view word) { return word == "--help" || word == "-h" || word == "help"; }

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

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> words(argv + 1, argv + argc);
  if (words.empty()) {
    printHelp(std::cerr);
    return tool::kUsage;
  }
  if (asksForHelp(words.front())) {
    printHelp(std::cout);
    return tool::kDone;
  }
  for (const tool::Command* command : kCommands) {
    if (command->name == words.front()) return run(*command, std::span(words).subspan(1));
  }
  std::cerr << "brindle: there is no command '" << words.front() << "'\nTry `brindle --help`.\n";
  return tool::kUsage;
}
