#include "support/Hex.h"

namespace kestrin {

namespace {

int ValueOf(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

}  // namespace

void AppendHex(std::string& text, std::string_view bytes) {
  constexpr char digits[] = "0123456789abcdef";
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    text += digits[value >> 4];
    text += digits[value & 15];
  }
}

std::string ToHex(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() * 2);
  AppendHex(text, bytes);
  return text;
}

std::optional<std::string> FromHex(std::string_view digits) {
  if (digits.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(digits.size() / 2);
  for (size_t at = 0; at < digits.size(); at += 2) {
    const int high = ValueOf(digits[at]), low = ValueOf(digits[at + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high << 4 | low);
  }
  return bytes;
}

}  // namespace kestrin
