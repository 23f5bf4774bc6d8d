// A table for people: columns as wide as their widest cell, names cut where they would run away.
#pragma once

#include <algorithm>
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
  static constexpr size_t CellWidth = 48;

  explicit TextTable(Row header);

  /// Fills the cells, as many as the header has, of a row.
  using RowWriter = std::function<void(size_t row, Row& cells)>;

  /// Asks for every row twice, to measure it and to print it, and keeps none. Whether everything
  /// could be written.
  bool Print(std::FILE* out, size_t rows, const RowWriter& write);

  /// The same for rows of which only the widths of all cells are known before: Measure takes each.
  void Measure(size_t column, size_t columns) {
    widths_[column] = std::max(widths_[column], columns);
  }
  /// Takes the cells of all rows, from left to right. A cell has as many columns as bytes unless
  /// they are given.
  class Lines;
  bool Print(std::FILE* out, const std::function<void(Lines&)>& putRows) const;

  /// `text` as one line of at most `width` columns: control characters and bytes that are not UTF-8
  /// shown as "?", a longer text ended by "…".
  static std::string Cell(std::string_view text, size_t width = CellWidth);

  /// The same with its width.
  static std::pair<std::string, size_t> MeasuredCell(std::string_view text);

 private:
  Row header_;
  std::vector<size_t> widths_;
};

/// Pads cells once something follows them in their line, and writes a buffer at a time.
class TextTable::Lines {
 public:
  Lines(std::FILE* out, const std::vector<size_t>& widths) : out_(out), widths_(widths) {}
  void Put(std::string_view cell, size_t columns);
  void Put(std::string_view cell) { Put(cell, cell.size()); }
  /// Whether everything could be written.
  bool Finish();

 private:
  void Flush();

  std::FILE* out_;
  const std::vector<size_t>& widths_;
  std::vector<char> text_;
  size_t end_ = 0;  ///< of what is written of it
  size_t at_ = 0, blanks_ = 0;
};

}  // namespace kestrin
