// A table for people: columns as wide as their widest cell, names cut where they would run away.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

class TextTable {
 public:
  explicit TextTable(std::vector<std::string> header) : header_(std::move(header)) {}

  void AddRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  bool Empty() const { return rows_.empty(); }
  /// Whether everything could be written.
  bool Print(std::FILE* out) const;

  /// `text` as one line of at most `width` columns: control characters and bytes that are not UTF-8
  /// shown as "?", a longer text ended by "…".
  static std::string Cell(std::string_view text, size_t width = 48);

 private:
  std::vector<std::string> header_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace kestrin
