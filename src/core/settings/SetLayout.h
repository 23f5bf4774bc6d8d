// How the window of an event set shows it.
#pragma once

#include <array>

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr int32 NumberOfColumns = 6;
inline constexpr int32 MaxSortKeys = 5;

/// Opaque numbers in files and in the settings; any value is kept. As made here it is the layout of
/// the very first set.
struct SetLayout {
  Rect WindowFrame{16, 33, 569, 357};
  std::array<int32, NumberOfColumns> ColumnOrder = {0, 1, 2, 3, 4, 5};
  std::array<bool, NumberOfColumns> ColumnShown = {true, true, true, false, true, true};
  std::array<float, NumberOfColumns> ColumnWidth = {35, 190, 150, 150, 60, 115};
  int32 NumberOfKeys = 1;
  std::array<int32, MaxSortKeys> SortKeys = {2, 0, 0, 0, 0};
  std::array<int32, MaxSortKeys> SortModes = {0, 2, 2, 2, 2};
  int32 ViewMode = 0;
};

}  // namespace kestrin
