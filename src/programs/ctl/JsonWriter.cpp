#include "programs/ctl/JsonWriter.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "support/Hex.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

constexpr size_t BufferSize = 65536;

bool NeedsEscape(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte < 0x20 || byte == 0x7f || c == '"' || c == '\\';
}

}  // namespace

void JsonWriter::Flush() {
  failed_ |= std::fwrite(buffer_.data(), 1, buffer_.size(), out_) != buffer_.size();
  buffer_.clear();
}

bool JsonWriter::Finish() {
  buffer_ += '\n';
  Flush();
  return std::fflush(out_) == 0 && !failed_;
}

void JsonWriter::BeforeValue() {
  if (buffer_.size() > BufferSize) Flush();
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (depth_ == 0) return;
  if (!first_) buffer_ += ',';
  buffer_ += '\n';
  buffer_.append(2 * static_cast<size_t>(depth_), ' ');
  first_ = false;
}

void JsonWriter::Begin(char bracket) {
  BeforeValue();
  buffer_ += bracket;
  ++depth_;
  first_ = true;
}

void JsonWriter::End(char bracket) {
  --depth_;
  if (!first_) {
    buffer_ += '\n';
    buffer_.append(2 * static_cast<size_t>(depth_), ' ');
  }
  buffer_ += bracket;
  first_ = false;
}

void JsonWriter::Key(std::string_view name) {
  BeforeValue();
  buffer_ += '"';
  buffer_ += name;
  buffer_ += "\": ";
  afterKey_ = true;
}

void JsonWriter::Raw(std::string_view text) {
  BeforeValue();
  buffer_ += text;
}

void JsonWriter::Number(int64 value) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  Raw({digits, static_cast<size_t>(end - digits)});
}

void JsonWriter::Float(float value) {
  if (!std::isfinite(value)) {
    Null();
    return;
  }
  char digits[64];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  Raw({digits, static_cast<size_t>(end - digits)});
}

void JsonWriter::Quoted(std::string_view text) {
  buffer_ += '"';
  if (std::none_of(text.begin(), text.end(), NeedsEscape)) {
    buffer_ += text;
    buffer_ += '"';
    return;
  }
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      buffer_ += '\\';
      buffer_ += c;
    } else if (c == '\n') {
      buffer_ += "\\n";
    } else if (byte < 0x20 || byte == 0x7f) {
      buffer_ += "\\u00";
      AppendHex(buffer_, {&c, 1});
    } else {
      buffer_ += c;
    }
  }
  buffer_ += '"';
}

void JsonWriter::String(std::string_view text) {
  BeforeValue();
  Quoted(text);
}

void JsonWriter::Text(std::string_view text) {
  if (text.empty()) {
    Null();
  } else if (IsUtf8(text)) {
    String(text);
  } else {
    BeginObject();
    Key("bytes");
    Hex(text);
    EndObject();
  }
}

void JsonWriter::Hex(std::string_view bytes) {
  BeforeValue();
  buffer_ += '"';
  AppendHex(buffer_, bytes);
  buffer_ += '"';
}

}  // namespace kestrin
