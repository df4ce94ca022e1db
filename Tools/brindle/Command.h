// What a subcommand of the tool is, and how it reads its words.
#pragma once

#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// How the tool ends: 0 done, 1 there is no answer or no place to write it, 2 the words were wrong.
enum ExitCode : int { kDone = 0, kNoAnswer = 1, kUsage = 2 };

/// The words of the command line make no sense. The text says which, and what would.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One option of a subcommand: `--name VALUE`, `--name=VALUE`, or `--name` alone.
struct Option {
  std::string_view name;
  bool takesValue;
};

/// The words behind a subcommand, taken apart. Throws UsageError for an option that is not in the
/// list, for a missing value, and for an option given twice. Behind `--` nothing is an option.
class Words {
 public:
  Words(std::span<const std::string_view> words, std::span<const Option> options);

  [[nodiscard]] bool has(std::string_view option) const;
  [[nodiscard]] std::optional<std::string_view> value(std::string_view option) const;
  [[nodiscard]] const std::vector<std::string_view>& rest() const { return rest_; }

 private:
  struct Given {
    std::string_view name;
    std::string_view value;
  };
  std::vector<Given> given_;
  std::vector<std::string_view> rest_;
};

/// One subcommand.
struct Command {
  std::string_view name;
  std::string_view summary;
  std::string_view help;
  int (*run)(std::span<const std::string_view> words);
};

extern const Command kBundleCommand;
extern const Command kPathsCommand;
extern const Command kRangeCommand;
extern const Command kRecogniseCommand;
extern const Command kDescribeCommand;
extern const Command kInspectCommand;

}  // namespace tool
