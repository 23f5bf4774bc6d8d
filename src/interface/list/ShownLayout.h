// A set's stored layout of the list, made fit to be shown.
#pragma once

#include <array>
#include <vector>

#include "core/EventSet.h"
#include "interface/list/EventOrder.h"

namespace kestrin {

inline constexpr int MinimumColumnWidth = 20;

struct ShownLayout {
  std::array<int, NumberOfColumns> order;  ///< columns from left to right
  std::array<bool, NumberOfColumns> shown;
  std::array<int, NumberOfColumns> width;  ///< pixels
  std::vector<SortKey> keys;
};

/// Any values give a layout: what cannot be shown is passed over.
ShownLayout ShownLayoutOf(const SetLayout& stored);

void StoreSorting(const std::vector<SortKey>& keys, SetLayout& stored);

}  // namespace kestrin
