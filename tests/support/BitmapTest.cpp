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
  EXPECT_EQ(ColourOfIndex(255).alpha, 0);
  for (uint8 grey = 217; grey < 255; ++grey)
    EXPECT_GT(ColourOfIndex(grey).red, ColourOfIndex(static_cast<uint8>(grey - 1)).red);
}

TEST(Bitmap, FindsTheNearestColour) {
  for (int red = 0; red < 256; red += 5)
    for (int green = 0; green < 256; green += 7)
      for (int blue = 0; blue < 256; blue += 3) {
        const Colour colour{static_cast<uint8>(red), static_cast<uint8>(green),
                            static_cast<uint8>(blue), 128};
        int nearest = INT32_MAX;
        for (int index = 0; index < 255; ++index)
          nearest = std::min(nearest, Distance(colour, ColourOfIndex(static_cast<uint8>(index))));
        ASSERT_EQ(Distance(colour, ColourOfIndex(IndexOfColour(colour))), nearest)
            << red << " " << green << " " << blue;
      }
  EXPECT_EQ(IndexOfColour({1, 2, 3, 127}), TransparentPixel);
}

}  // namespace
}  // namespace kestrin
