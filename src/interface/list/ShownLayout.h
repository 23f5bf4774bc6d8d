// A set's stored layout of the list, made fit to be shown.
#pragma once

#include <array>
#include <vector>

#include "core/events/EventSet.h"
#include "interface/list/EventOrder.h"

namespace kestrin {

inline constexpr int MinimumColumnWidth = 20;
/// Of a new set. A column that still has it was given its width by nobody.
inline constexpr std::array<int, NumberOfColumns> BuiltInColumnWidth = {35, 190, 150, 150, 60, 115};

struct ShownLayout {
  std::array<int, NumberOfColumns> order;  ///< columns from left to right
  std::array<bool, NumberOfColumns> shown;
  std::array<int, NumberOfColumns> width;  ///< pixels
  std::vector<SortKey> keys;
};

/// Any values give a layout: what cannot be shown is passed over. `fitting`: the widths in which
/// the usual texts fit, for columns whose width nobody has chosen.
ShownLayout ShownLayoutOf(const SetLayout& stored, const std::array<int, NumberOfColumns>& fitting);

void StoreSorting(const std::vector<SortKey>& keys, SetLayout& stored);

}  // namespace kestrin
