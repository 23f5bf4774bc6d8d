// A set's stored layout of the list, made fit to be shown.
#pragma once

#include <array>
#include <vector>

#include "core/events/EventSet.h"
#include "interface/list/EventOrder.h"

namespace kestrin {

using ColumnWidths = std::array<int, NumberOfColumns>;  ///< pixels

inline constexpr int MinimumColumnWidth = 20;
/// Of a new set. A column that still has it was given its width by nobody.
inline constexpr ColumnWidths BuiltInColumnWidth = {35, 190, 150, 150, 60, 115};

struct ShownLayout {
  std::array<int, NumberOfColumns> order;  ///< columns from left to right
  std::array<bool, NumberOfColumns> shown;
  ColumnWidths width;
  std::vector<SortKey> keys;
};

/// The widths in which the usual texts fit.
struct FittingWidths {
  ColumnWidths now;    ///< in the desktop's font
  ColumnWidths small;  ///< just so, in a small one
};

/// Any values give a layout: what cannot be shown is passed over. A column whose width nobody has
/// chosen fits now; so does one that was chosen wide enough for a small font, or a larger one would
/// cut it.
ShownLayout ShownLayoutOf(const SetLayout& stored, const FittingWidths& fitting);

void StoreSorting(const std::vector<SortKey>& keys, SetLayout& stored);

}  // namespace kestrin
