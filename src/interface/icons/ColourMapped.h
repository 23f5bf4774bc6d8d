// Images to and from the colour-mapped bitmaps that icons are stored as.
#pragma once

#include <QImage>
#include <string>

#include "support/Bitmap.h"

namespace kestrin {

/// Null unless there are `side` x `side` bytes.
QImage ImageOfBitmap(const std::string& bytes, int side);
std::string BitmapOfImage(const QImage& image);

/// Both sizes of an icon; a picture that is not square stands in the middle.
IconPair IconOfImage(const QImage& image);

}  // namespace kestrin
