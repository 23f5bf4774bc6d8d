// Tables of the pages under docs, for tests that hold a page and the code together.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace kestrin {

/// The cells of each row below the line that begins with `head`, without blanks around them.
inline std::vector<std::vector<std::string>> TableOfPage(const std::string& page,
                                                         const std::string& head) {
  std::ifstream file(KESTRIN_SOURCE_DIR "/docs/" + page);
  std::vector<std::vector<std::string>> rows;
  std::string line;
  while (std::getline(file, line) && !line.starts_with(head)) continue;
  std::getline(file, line);  // the dashes
  while (std::getline(file, line) && line.starts_with('|')) {
    auto& row = rows.emplace_back();
    std::istringstream cells(line.substr(1));
    for (std::string cell; std::getline(cells, cell, '|');) {
      const size_t from = cell.find_first_not_of(' ');
      row.push_back(from == cell.npos ? ""
                                      : cell.substr(from, cell.find_last_not_of(' ') - from + 1));
    }
  }
  return rows;
}

}  // namespace kestrin
