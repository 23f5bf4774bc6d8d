// A table for people: columns as wide as their widest cell, names cut where they would run away.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrin {

/// Widths are columns of a terminal: wide characters take two, combining ones none.
class TextTable {
 public:
  using Row = std::vector<std::string>;

  explicit TextTable(Row header) : header_(std::move(header)) {}

  /// Fills the cells, as many as the header has, of a row.
  using RowWriter = std::function<void(size_t row, Row& cells)>;

  /// Asks for every row twice, to measure it and to print it, and keeps none. Whether everything
  /// could be written.
  bool Print(std::FILE* out, size_t rows, const RowWriter& write) const;

  /// `text` as one line of at most `width` columns: control characters and bytes that are not UTF-8
  /// shown as "?", a longer text ended by "…".
  static std::string Cell(std::string_view text, size_t width = 48);

 private:
  Row header_;
};

}  // namespace kestrin
