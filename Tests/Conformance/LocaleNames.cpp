#include <Brindle/Platform/NSLocale.h>

#include "Tests/Conformance/Report.h"
#include "Tests/Conformance/Table.h"

namespace brindle::conformance {

void checkLocaleNames(const std::string& folder, Report& report) {
  for (const Row& row : readTable(folder + "/locale-names.tsv")) {
    if (row.size() < 4) continue;
    const std::string& name = row[2];
    const std::string canonical(NSLocale::canonicalLocaleIdentifierFromString(NSString(name)));
    report.note(name, canonical == row[3] ? "" : canonical + " instead of " + row[3]);
  }
  report.close("locale-names.tsv");
}

}  // namespace brindle::conformance
