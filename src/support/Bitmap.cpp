#include "support/Bitmap.h"

#include <algorithm>
#include <cstdlib>

namespace kestrin {

namespace {

constexpr int CubeSize = 216, CubeLevels = 6, CubeStep = 51;
constexpr int GreyCount = 39;

constexpr int GreyLevel(int grey) {
  return (grey * 255 * 2 + GreyCount - 1) / (2 * (GreyCount - 1));
}

constexpr int CubeLevel(int value) { return (value + CubeStep / 2) / CubeStep; }

int Distance(Colour a, Colour b) {
  const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
  return red * red + green * green + blue * blue;
}

// `sum` of the three channels; in thirds, so that nothing is rounded before it is compared.
int NearestGrey(int sum) {
  const int guess = sum * (GreyCount - 1) / (3 * 255);
  const int next = std::min(guess + 1, GreyCount - 1);
  return std::abs(sum - 3 * GreyLevel(guess)) <= std::abs(3 * GreyLevel(next) - sum) ? guess : next;
}

}  // namespace

Colour ColourOfIndex(uint8 index) {
  if (index == TransparentPixel) return {255, 255, 255, 0};
  if (index >= CubeSize) {
    const auto level = static_cast<uint8>(GreyLevel(index - CubeSize));
    return {level, level, level, 255};
  }
  return {static_cast<uint8>(index / (CubeLevels * CubeLevels) * CubeStep),
          static_cast<uint8>(index / CubeLevels % CubeLevels * CubeStep),
          static_cast<uint8>(index % CubeLevels * CubeStep), 255};
}

uint8 IndexOfColour(Colour colour) {
  if (colour.alpha < 128) return TransparentPixel;
  const auto inCube = static_cast<uint8>(
      (CubeLevel(colour.red) * CubeLevels + CubeLevel(colour.green)) * CubeLevels +
      CubeLevel(colour.blue));
  const auto grey =
      static_cast<uint8>(CubeSize + NearestGrey(colour.red + colour.green + colour.blue));
  return Distance(colour, ColourOfIndex(grey)) < Distance(colour, ColourOfIndex(inCube)) ? grey
                                                                                         : inCube;
}

}  // namespace kestrin
