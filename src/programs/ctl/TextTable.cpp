#include "programs/ctl/TextTable.h"

#include <algorithm>
#include <cstring>

#include "support/OwnedText.h"

namespace kestrin {

namespace {

struct Span {
  char32_t first, last;
};

/// Marks that are drawn over the character before them, and what has no width at all.
constexpr Span Narrowest[] = {
    {0x300, 0x36f},   {0x483, 0x489},   {0x591, 0x5bd},   {0x610, 0x61a},     {0x64b, 0x65f},
    {0x1ab0, 0x1aff}, {0x1dc0, 0x1dff}, {0x200b, 0x200f}, {0x2060, 0x2064},   {0x20d0, 0x20ff},
    {0xfe00, 0xfe0f}, {0xfe20, 0xfe2f}, {0xfeff, 0xfeff}, {0x1f3fb, 0x1f3ff}, {0xe0100, 0xe01ef}};

/// East Asian scripts in their full width, and pictures.
constexpr Span Widest[] = {
    {0x1100, 0x115f},   {0x231a, 0x231b},   {0x23e9, 0x23ec},   {0x23f0, 0x23f3},
    {0x25fd, 0x25fe},   {0x2614, 0x2615},   {0x2648, 0x2653},   {0x26bd, 0x26be},
    {0x26c4, 0x26c5},   {0x26f2, 0x26f5},   {0x2705, 0x2705},   {0x270a, 0x270b},
    {0x2728, 0x2728},   {0x2753, 0x2757},   {0x2795, 0x2797},   {0x2b50, 0x2b55},
    {0x2e80, 0x303e},   {0x3041, 0x4dbf},   {0x4e00, 0xa4cf},   {0xa960, 0xa97c},
    {0xac00, 0xd7a3},   {0xf900, 0xfaff},   {0xfe30, 0xfe6b},   {0xff01, 0xff60},
    {0xffe0, 0xffe6},   {0x1f300, 0x1f64f}, {0x1f680, 0x1f6ff}, {0x1f7e0, 0x1f7eb},
    {0x1f90c, 0x1faff}, {0x20000, 0x3fffd}};

/// Controls, and what would turn the line round or break it in two.
constexpr Span Harmful[] = {{0, 0x1f}, {0x7f, 0x9f}, {0x2028, 0x202e}, {0x2066, 0x2069}};

template <size_t N>
bool IsIn(const Span (&spans)[N], char32_t character) {
  const Span* const found =
      std::lower_bound(spans, spans + N, character,
                       [](const Span& span, char32_t sought) { return span.last < sought; });
  return found != spans + N && character >= found->first;
}

size_t ColumnsOf(char32_t character) {
  if (character < 0x300) return 1;
  return IsIn(Narrowest, character) ? 0 : IsIn(Widest, character) ? 2 : 1;
}

/// The character that UTF-8 `text` begins with; `length` receives its bytes.
char32_t FirstOf(std::string_view text, size_t& length) {
  const auto byte = [&](size_t at) { return static_cast<unsigned char>(text[at]); };
  length = byte(0) < 0x80 ? 1 : byte(0) < 0xe0 ? 2 : byte(0) < 0xf0 ? 3 : 4;
  char32_t character = length == 1 ? byte(0) : byte(0) & (0x7fu >> length);
  for (size_t i = 1; i < length; ++i) character = character << 6 | (byte(i) & 0x3f);
  return character;
}

bool IsPlain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

size_t Columns(std::string_view text) {
  if (IsPlain(text)) return text.size();
  size_t columns = 0;
  for (size_t length = 0; !text.empty(); text.remove_prefix(length))
    columns += ColumnsOf(FirstOf(text, length));
  return columns;
}

/// Everything that is not plain, printable UTF-8 as "?".
std::string Harmless(std::string_view text) {
  const bool utf8 = IsUtf8(text);
  std::string shown;
  for (size_t length = 1; !text.empty(); text.remove_prefix(length)) {
    const char32_t character = utf8 ? FirstOf(text, length) : static_cast<unsigned char>(text[0]);
    if (IsIn(Harmful, character) || (!utf8 && character >= 0x80))
      shown += '?';
    else
      shown += text.substr(0, length);
  }
  return shown;
}

}  // namespace

std::string TextTable::Cell(std::string_view text, size_t width) {
  if (text.size() <= width && IsPlain(text)) return std::string(text);
  std::string shown = Harmless(text);
  std::string_view rest = shown;
  size_t columns = 0, kept = 0;
  for (size_t length = 0; !rest.empty(); rest.remove_prefix(length)) {
    columns += ColumnsOf(FirstOf(rest, length));
    if (columns > width) return shown.substr(0, kept) + "…";
    if (columns < width) kept += length;
  }
  return shown;
}

std::pair<std::string, size_t> TextTable::MeasuredCell(std::string_view text) {
  if (text.size() <= CellWidth && IsPlain(text)) return {std::string(text), text.size()};
  std::string cell = Cell(text);
  const size_t columns = Columns(cell);
  return {std::move(cell), columns};
}

void TextTable::Lines::Put(std::string_view cell, size_t columns) {
  constexpr size_t mostInBuffer = size_t{1} << 16;
  const size_t needed = end_ + blanks_ + cell.size() + 1;
  if (needed > text_.size()) text_.resize(std::max(needed, 2 * mostInBuffer));
  if (!cell.empty()) {
    std::memset(text_.data() + end_, ' ', blanks_);
    std::memcpy(text_.data() + end_ + blanks_, cell.data(), cell.size());
    end_ += blanks_ + cell.size();
    blanks_ = 0;
  }
  blanks_ += widths_[at_] - columns + 2;
  if (++at_ < widths_.size()) return;
  while (end_ > 0 && text_[end_ - 1] == ' ') --end_;
  text_[end_++] = '\n';
  at_ = blanks_ = 0;
  if (end_ >= mostInBuffer) Flush();
}

void TextTable::Lines::Flush() {
  std::fwrite(text_.data(), 1, end_, out_);
  end_ = 0;
}

bool TextTable::Lines::Finish() {
  Flush();
  return std::fflush(out_) == 0 && !std::ferror(out_);
}

TextTable::TextTable(Row header) : header_(std::move(header)) {
  for (const std::string& cell : header_) widths_.push_back(Columns(cell));
}

bool TextTable::Print(std::FILE* out, const std::function<void(Lines&)>& putRows) const {
  Lines lines(out, widths_);
  for (const std::string& cell : header_) lines.Put(cell, Columns(cell));
  for (const size_t width : widths_) {
    std::string rule;
    for (size_t i = 0; i < width; ++i) rule += "─";
    lines.Put(rule, width);
  }
  putRows(lines);
  return lines.Finish();
}

bool TextTable::Print(std::FILE* out, size_t rows, const RowWriter& write) {
  Row cells(header_.size());
  for (size_t at = 0; at < rows; ++at) {
    write(at, cells);
    for (size_t i = 0; i < cells.size(); ++i) Measure(i, Columns(cells[i]));
  }
  return Print(out, [&](Lines& lines) {
    for (size_t at = 0; at < rows; ++at) {
      write(at, cells);
      for (const std::string& cell : cells) lines.Put(cell, Columns(cell));
    }
  });
}

}  // namespace kestrin
