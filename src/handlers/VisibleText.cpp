#include "handlers/VisibleText.h"

#include <cstdio>

#include "kestrin/Types.h"

namespace kestrin {

namespace {

/// The picture of a control character, as UTF-8: U+2400 and on, U+2421 for the last.
std::string PictureOf(unsigned char control) {
  const unsigned char last = control == 0x7f ? 0x21 : control;
  return {'\xe2', '\x90', static_cast<char>(0x80 + last)};
}

/// A character of three bytes that begins here, or 0.
uint32 ThreeBytes(std::string_view text) {
  if (text.size() < 3 || (text[0] & 0xf0) != 0xe0) return 0;
  return static_cast<uint32>(text[0] & 0x0f) << 12 | static_cast<uint32>(text[1] & 0x3f) << 6 |
         static_cast<uint32>(text[2] & 0x3f);
}

bool Deceives(uint32 character) {
  return (character >= 0x200b && character <= 0x200f) ||
         (character >= 0x2028 && character <= 0x202e) ||
         (character >= 0x2060 && character <= 0x206f) || character == 0xfeff;
}

}  // namespace

std::string VisibleText(std::string_view text) {
  std::string visible;
  for (size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    const uint32 wide = ThreeBytes(text.substr(at));
    if (Deceives(wide)) {
      char number[16];
      std::snprintf(number, sizeof number, "<U+%04X>", wide);
      visible += number;
      at += 2;
    } else if (byte < 0x20 || byte == 0x7f) {
      visible += PictureOf(byte);
      // A script keeps its lines, a padding gets none.
      const bool pads = at + 1 < text.size() && (text[at + 1] == '\n' || text[at + 1] == '\r');
      if (byte == '\n' && !pads && at + 1 < text.size()) visible += '\n';
    } else {
      visible += text[at];
    }
  }
  return visible;
}

}  // namespace kestrin
