#include "support/OwnedText.h"

#include <cstring>

#include "kestrin/EventServices.h"

namespace kestrin {

namespace {

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// Bytes of the character that `lead` begins; 0 when no character begins with it.
size_t CharacterLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

// Whether the second byte keeps clear of overlong forms, surrogates and codes above U+10FFFF.
bool SecondByteFits(unsigned char lead, unsigned char second) {
  switch (lead) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second <= 0x9F;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second <= 0x8F;
    default:
      return true;
  }
}

// The largest place up to `limit` where `text`, which is longer, may be cut.
size_t CutPlace(std::string_view text, size_t limit) {
  size_t place = limit;
  while (place > 0 && limit - place < 3 && IsContinuation(text[place])) --place;
  const bool splits = place + CharacterLength(static_cast<unsigned char>(text[place])) > limit;
  return splits ? place : limit;
}

}  // namespace

char* SetNewString(const char* source, char** target) {
  // The copy comes first: `source` may be the text that is replaced.
  char* copy = GetCopyString(source);
  delete[] * target;
  *target = copy;
  return copy;
}

char* GetCopyString(const char* source) {
  if (!source || !*source) return nullptr;
  const size_t size = std::strlen(source) + 1;
  char* copy = new char[size];
  std::memcpy(copy, source, size);
  return copy;
}

std::string FitText(std::string_view text, bool* wasCut) {
  const std::string_view whole = text;
  text = text.substr(0, text.find('\0'));
  if (text.size() >= TextLimit) text = text.substr(0, CutPlace(text, TextLimit - 1));
  if (wasCut) *wasCut = text.size() != whole.size();
  return std::string(text);
}

bool IsUtf8(std::string_view text) {
  for (size_t at = 0; at < text.size();) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const size_t length = CharacterLength(lead);
    if (length == 0 || length > text.size() - at) return false;
    for (size_t i = 1; i < length; ++i)
      if (!IsContinuation(text[at + i])) return false;
    if (length > 1 && !SecondByteFits(lead, static_cast<unsigned char>(text[at + 1]))) return false;
    at += length;
  }
  return true;
}

}  // namespace kestrin
