#include "support/Bitmap.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

int Distance(Colour a, Colour b) {
  const int red = a.red - b.red, green = a.green - b.green, blue = a.blue - b.blue;
  return red * red + green * green + blue * blue;
}

TEST(Bitmap, TheTableIsACubeThenGreysThenTransparent) {
  EXPECT_EQ(ColourOfIndex(36 * 1 + 6 * 2 + 5), (Colour{51, 102, 255, 255}));
  EXPECT_EQ(ColourOfIndex(216), (Colour{0, 0, 0, 255}));
  EXPECT_EQ(ColourOfIndex(217), (Colour{7, 7, 7, 255}));
  EXPECT_EQ(ColourOfIndex(254), (Colour{255, 255, 255, 255}));
  EXPECT_EQ(ColourOfIndex(255).alpha, 0);
}

TEST(Bitmap, FindsTheNearestColour) {
  for (int code = 0; code < 1 << 24; code += 389) {
    const Colour colour{static_cast<uint8>(code >> 16), static_cast<uint8>(code >> 8),
                        static_cast<uint8>(code), 128};
    int nearest = INT32_MAX;
    for (int index = 0; index < 255; ++index)
      nearest = std::min(nearest, Distance(colour, ColourOfIndex(static_cast<uint8>(index))));
    ASSERT_EQ(Distance(colour, ColourOfIndex(IndexOfColour(colour))), nearest) << code;
  }
  EXPECT_EQ(IndexOfColour({1, 2, 3, 127}), TransparentPixel);
}

}  // namespace
}  // namespace kestrin
