// Makes an icon of an image file.
#pragma once

#include <QString>
#include <optional>

#include "support/Bitmap.h"

namespace kestrin {

/// Nothing for a file that gives no icon; `fault` then says why, as the end of a sentence. Nobody
/// vouches for the file: what would take much memory is not read.
std::optional<IconPair> ReadIconFile(const QString& path, QString& fault);

}  // namespace kestrin
