// JSON to standard output as it is made: nothing is collected but a buffer.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

#include "kestrin/Types.h"

namespace kestrin {

/// Indented by two blanks a level; commas are the writer's business.
class JsonWriter {
 public:
  explicit JsonWriter(std::FILE* out) : out_(out) {}
  ~JsonWriter() { Flush(); }
  JsonWriter(const JsonWriter&) = delete;
  JsonWriter& operator=(const JsonWriter&) = delete;

  void BeginObject() { Begin('{'); }
  void EndObject() { End('}'); }
  void BeginArray() { Begin('['); }
  void EndArray() { End(']'); }
  /// The name of the value that follows; plain letters.
  void Key(std::string_view name);

  void Number(int64 value);
  void Boolean(bool value) { Raw(value ? "true" : "false"); }
  void Null() { Raw("null"); }
  /// null for what is no number.
  void Float(float value);
  /// null for the empty text, {"bytes": hex} for one that is not UTF-8.
  void Text(std::string_view text);
  void String(std::string_view text);
  void Hex(std::string_view bytes);

  /// Whether everything so far could be written.
  bool Finish();

 private:
  void Begin(char bracket);
  void End(char bracket);
  void BeforeValue();
  void Raw(std::string_view text);
  void Quoted(std::string_view text);
  void Flush();

  std::FILE* out_;
  std::string buffer_;
  int depth_ = 0;
  bool first_ = true;
  bool afterKey_ = false;
  bool failed_ = false;
};

}  // namespace kestrin
