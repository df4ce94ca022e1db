#include <fstream>
#include <map>

#include "Platform/Foundation/Internal/BundleLayout.h"
#include "Platform/Foundation/Internal/StringsTable.h"
#include "Platform/Foundation/Internal/TextEncoding.h"
#include "Tests/Conformance/Json.h"
#include "Tests/Conformance/Report.h"

namespace brindle::conformance {
namespace {

std::string checkTable(const std::string& path, const Json& row) {
  std::string error;
  const auto entries = internal::readStringsTable(internal::contentsOfFile(path), error);
  const Json* wanted = row.find("gnustep_1_28");
  if (wanted == nullptr) return "";  // refused there; that it ends here is enough
  if (!entries) return error;
  std::map<std::string, std::string> read;
  for (const internal::StringsEntry& entry : *entries) {
    read[internal::utf8FromText(entry.key)] = internal::utf8FromText(entry.value);
  }
  if (read.size() != wanted->members.size()) {
    return std::to_string(read.size()) + " entries instead of " +
           std::to_string(wanted->members.size());
  }
  for (const auto& [key, value] : wanted->members) {
    const auto found = read.find(key);
    if (found == read.end()) return "no " + key;
    // An entry without a value means its key here; there it is empty.
    if (value.text.empty() && found->second == key) continue;
    if (found->second != value.text) return found->second + " instead of " + value.text;
  }
  return "";
}

}  // namespace

void checkStringsTables(const std::string& folder, Report& report) {
  std::ifstream file(folder + "/strings.jsonl");
  for (std::string line; std::getline(file, line);) {
    const Json row = readJson(line);
    const std::string& name = row.find("file")->text;
    report.note(name, checkTable(folder + "/strings/" + name, row));
  }
  report.close("strings.jsonl");
}

}  // namespace brindle::conformance
