// Holds the library against real data with the right answers: `conformance FOLDER`. Exits with 1
// when anything disagrees, and with 2 when the folder is not there.
#include <cstdio>
#include <exception>
#include <filesystem>

#include "Tests/Conformance/Report.h"

int main(int count, char** words) {
  if (count != 2 || !std::filesystem::is_directory(words[1])) {
    std::fprintf(stderr, "usage: %s FOLDER\n", words[0]);
    return 2;
  }
  try {
    brindle::conformance::Report report;
    brindle::conformance::checkCalendar(words[1], report);
    brindle::conformance::checkKeyedArchives(words[1], report);
    brindle::conformance::checkPropertyLists(words[1], report);
    brindle::conformance::checkStringsTables(words[1], report);
    brindle::conformance::checkLocaleNames(words[1], report);
    std::printf("%d rows, %d disagree\n", report.total(), report.failed());
    return report.failed() == 0 ? 0 : 1;
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "%s\n", exception.what());
    return 1;
  }
}
