// One line of the journal, of the history or of what was put off; docs/journal.md has the grammar.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

/// Fields in the order in which they were first set. Kept as a line has them, "key=value" with a
/// TAB between and values escaped, and read when somebody asks: of a long file's records most
/// fields are never looked at.
class RecordFields {
 public:
  RecordFields() = default;
  RecordFields(std::initializer_list<std::pair<std::string_view, std::string_view>> fields);
  /// What stands in a line behind its id. Nothing when that does not hold the grammar.
  static std::optional<RecordFields> Of(std::string_view text);

  void Set(std::string_view key, std::string_view value);
  void Set(std::string_view key, int64 value);
  /// The same for a field that is not there yet.
  void Add(std::string_view key, std::string_view value);
  void Add(std::string_view key, int64 value);
  bool Has(std::string_view key) const { return Find(key).has_value(); }
  bool Is(std::string_view key, std::string_view value) const;
  /// Empty when there is none.
  std::string Text(std::string_view key) const;
  /// Nothing when there is none, or it is no decimal number.
  std::optional<int64> Number(std::string_view key) const;
  /// Takes over the fields of `later`.
  void Merge(const RecordFields& later) { MergeText(later.text_); }

  /// As a line has them.
  const std::string& Encoded() const { return text_; }
  bool operator==(const RecordFields&) const = default;

 private:
  /// The value as it stands in the text.
  std::optional<std::string_view> Find(std::string_view key) const;
  void MergeText(std::string_view text);
  void SetEscaped(std::string_view key, std::string_view escaped);
  void AddEscaped(std::string_view key, std::string_view escaped);

  std::string text_;
  uint64 keys_ = 0;  ///< a bit for each: most that are asked for are not there
};

/// Fields taken apart, for who asks for most of them; while those stand unchanged.
class RecordReader {
 public:
  explicit RecordReader(const RecordFields& fields);
  bool Has(std::string_view key) const { return Find(key).has_value(); }
  std::string Text(std::string_view key) const;
  std::optional<int64> Number(std::string_view key) const;

 private:
  std::optional<std::string_view> Find(std::string_view key) const;

  std::vector<std::pair<std::string_view, std::string_view>> fields_;
};

struct RecordLine {
  std::string Id;
  RecordFields Fields;
};

/// With its line feed.
std::string EncodeLine(std::string_view id, const RecordFields& fields);
/// Without its line feed. Nothing when it is damaged. Any input is survived.
std::optional<RecordLine> DecodeLine(std::string_view line);

/// A whole file. Fields of one id are put together, in the place of its first line.
struct RecordText {
  std::vector<RecordLine> Lines;  ///< as they stand, a record's later ones too
  size_t Whole = 0;               ///< bytes up to the last line feed
  int Damaged = 0;                ///< lines that hold no record and were not cut short
};
RecordText DecodeLines(std::string_view bytes);

/// Nothing when it is no decimal number.
std::optional<int64> NumberOf(std::string_view text);

uint32 Fnv32(std::string_view bytes);
uint64 Fnv64(std::string_view bytes);

}  // namespace kestrin
