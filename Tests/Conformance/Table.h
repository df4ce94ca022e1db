// Tab-separated files whose first line is a comment.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace brindle::conformance {

using Row = std::vector<std::string>;

inline std::vector<Row> readTable(const std::string& path) {
  std::vector<Row> rows;
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    Row row(1);
    for (const char c : line) {
      if (c == '\t')
        row.emplace_back();
      else
        row.back() += c;
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

}  // namespace brindle::conformance
