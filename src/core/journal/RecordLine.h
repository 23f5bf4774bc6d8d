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

/// Fields in the order in which they were first set; few, so looked up one by one.
class RecordFields {
 public:
  using List = std::vector<std::pair<std::string, std::string>>;

  RecordFields() = default;
  RecordFields(std::initializer_list<List::value_type> fields) : list_(fields) {}

  void Set(std::string_view key, std::string value);
  void Set(std::string_view key, int64 value);
  bool Has(std::string_view key) const { return Find(key) != nullptr; }
  bool Is(std::string_view key, std::string_view value) const;
  /// Empty when there is none.
  std::string Text(std::string_view key) const;
  /// Nothing when there is none, or it is no decimal number.
  std::optional<int64> Number(std::string_view key) const;
  /// Takes over the fields of `later`.
  void Merge(const RecordFields& later);

  const List& All() const { return list_; }
  bool operator==(const RecordFields&) const = default;

 private:
  const std::string* Find(std::string_view key) const;

  List list_;
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

uint32 Fnv32(std::string_view bytes);
uint64 Fnv64(std::string_view bytes);

}  // namespace kestrin
