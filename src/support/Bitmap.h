// Colour-mapped bitmaps of 8 bits a pixel, as event icons are stored: rows from top to bottom, one
// byte a pixel, an index into the table below.
#pragma once

#include <array>
#include <string>

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr int32 LargeIconSize = 32, MiniIconSize = 16;
inline constexpr int32 LargeIconBytes = 1024, MiniIconBytes = 256;
inline constexpr uint8 TransparentPixel = 255;

struct Colour {
  uint8 red, green, blue, alpha;
  bool operator==(const Colour&) const = default;
};

/// 0..215: a cube of 6 levels each, index = 36 r + 6 g + b; 216..254: greys from black to white;
/// 255: transparent.
Colour ColourOfIndex(uint8 index);
/// The nearest index; a pixel that is less than half opaque is transparent.
uint8 IndexOfColour(Colour colour);

/// An event's own icon, both sizes.
struct IconPair {
  std::string large;  ///< LargeIconBytes bytes
  std::string mini;   ///< MiniIconBytes bytes
  bool operator==(const IconPair&) const = default;
};

}  // namespace kestrin
