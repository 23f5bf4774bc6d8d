#include "programs/ctl/TextTable.h"

#include <algorithm>

#include "support/OwnedText.h"

namespace kestrin {

namespace {

bool StartsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }

size_t Columns(std::string_view text) {
  return static_cast<size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

void Pad(std::string& line, const std::string& cell, size_t width) {
  line += cell;
  line.append(width - Columns(cell) + 2, ' ');
}

std::string Line(const std::vector<std::string>& cells, const std::vector<size_t>& widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) Pad(line, cells[i], widths[i]);
  while (!line.empty() && line.back() == ' ') line.pop_back();
  return line + "\n";
}

}  // namespace

std::string TextTable::Cell(std::string_view text, size_t width) {
  const bool utf8 = IsUtf8(text);
  std::string cell;
  size_t columns = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (!utf8 || StartsCharacter(c)) {
      if (columns + 1 == width && Columns(text) > width) return cell + "…";
      ++columns;
    }
    cell += byte < 0x20 || byte == 0x7f || (!utf8 && byte >= 0x80) ? '?' : c;
  }
  return cell;
}

bool TextTable::Print(std::FILE* out) const {
  std::vector<size_t> widths;
  for (const std::string& cell : header_) widths.push_back(Columns(cell));
  for (const auto& row : rows_)
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Columns(row[i]));
  std::fputs(Line(header_, widths).c_str(), out);
  std::vector<std::string> rules;
  for (const size_t width : widths) {
    rules.emplace_back();
    for (size_t i = 0; i < width; ++i) rules.back() += "─";
  }
  std::fputs(Line(rules, widths).c_str(), out);
  for (const auto& row : rows_) std::fputs(Line(row, widths).c_str(), out);
  return std::fflush(out) == 0 && !std::ferror(out);
}

}  // namespace kestrin
