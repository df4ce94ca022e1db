// What a conformance run counts and prints.
#pragma once

#include <cstdio>
#include <string>

namespace brindle::conformance {

class Report {
 public:
  /// Counts a row; a complaint is a disagreement.
  void note(const std::string& row, const std::string& complaint) {
    ++rows_;
    if (complaint.empty()) return;
    ++disagreements_;
    constexpr int kShown = 20;
    if (disagreements_ <= kShown) std::printf("  %s: %s\n", row.c_str(), complaint.c_str());
  }
  /// Prints one line for a subject and starts the next.
  void close(const char* subject) {
    std::printf("%s: %d of %d rows agree\n", subject, rows_ - disagreements_, rows_);
    total_ += rows_;
    failed_ += disagreements_;
    rows_ = disagreements_ = 0;
  }
  [[nodiscard]] int total() const { return total_; }
  [[nodiscard]] int failed() const { return failed_; }

 private:
  int rows_ = 0;
  int disagreements_ = 0;
  int total_ = 0;
  int failed_ = 0;
};

/// The rows of `calendar.tsv`: date ranges in many zones.
void checkCalendar(const std::string& folder, Report& report);
/// The archives of `keyed.jsonl`, and the date ranges of `cases.tsv` beside them.
void checkKeyedArchives(const std::string& folder, Report& report);
/// The property lists of `plist.jsonl`; those made to hurt only have to end.
void checkPropertyLists(const std::string& folder, Report& report);
/// The tables of `strings.jsonl`.
void checkStringsTables(const std::string& folder, Report& report);
/// The names of `locale-names.tsv`.
void checkLocaleNames(const std::string& folder, Report& report);

}  // namespace brindle::conformance
