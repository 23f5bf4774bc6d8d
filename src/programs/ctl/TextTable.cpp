#include "programs/ctl/TextTable.h"

#include <algorithm>

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

void Pad(std::string& line, const std::string& cell, size_t width) {
  line += cell;
  line.append(width - Columns(cell) + 2, ' ');
}

void PutLine(std::string& text, const TextTable::Row& cells, const std::vector<size_t>& widths) {
  for (size_t i = 0; i < cells.size(); ++i) Pad(text, cells[i], widths[i]);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  text += '\n';
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

bool TextTable::Print(std::FILE* out, size_t rows, const RowWriter& write) const {
  constexpr size_t FullBuffer = size_t{1} << 16;
  std::vector<size_t> widths;
  for (const std::string& cell : header_) widths.push_back(Columns(cell));
  Row cells(header_.size());
  for (size_t at = 0; at < rows; ++at) {
    write(at, cells);
    for (size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], Columns(cells[i]));
  }
  Row rules;
  for (const size_t width : widths) {
    rules.emplace_back();
    for (size_t i = 0; i < width; ++i) rules.back() += "─";
  }
  std::string text;
  PutLine(text, header_, widths);
  PutLine(text, rules, widths);
  for (size_t at = 0; at < rows; ++at) {
    write(at, cells);
    PutLine(text, cells, widths);
    if (text.size() < FullBuffer) continue;
    std::fwrite(text.data(), 1, text.size(), out);
    text.clear();
  }
  std::fwrite(text.data(), 1, text.size(), out);
  return std::fflush(out) == 0 && !std::ferror(out);
}

}  // namespace kestrin
