#include "interface/list/ShownLayout.h"

#include <algorithm>
#include <cmath>

namespace kestrin {

namespace {

enum SortMode : int32 { Ascending = 0, Descending = 1, Unsorted = 2 };

constexpr int WidestColumn = 4000;

std::array<int, NumberOfColumns> ShownOrder(const std::array<int32, NumberOfColumns>& stored) {
  std::vector<int> order;
  const auto add = [&order](int32 column) {
    const bool isColumn = column >= 0 && column < NumberOfColumns;
    if (isColumn && std::find(order.begin(), order.end(), column) == order.end())
      order.push_back(column);
  };
  for (const int32 column : stored) add(column);
  for (int32 column = 0; column < NumberOfColumns; ++column) add(column);
  std::array<int, NumberOfColumns> all{};
  std::copy(order.begin(), order.end(), all.begin());
  return all;
}

int ShownWidth(size_t column, float stored, const FittingWidths& fitting) {
  if (column == IconColumn) return MinimumColumnWidth;
  const int fits = fitting.now[column], builtIn = BuiltInColumnWidth[column];
  const bool isChosen = stored != static_cast<float>(builtIn);
  if (!std::isfinite(stored) || stored <= 0 || !isChosen) return std::max(builtIn, fits);
  const float bounded = std::clamp(stored, float{MinimumColumnWidth}, float{WidestColumn});
  const int width = static_cast<int>(std::lround(bounded));
  return width < fitting.small[column] ? width : std::max(width, fits);
}

std::vector<SortKey> ShownKeys(const SetLayout& stored) {
  std::vector<SortKey> keys;
  const int32 number = std::clamp(stored.NumberOfKeys, 0, MaxSortKeys);
  for (size_t i = 0; i < static_cast<size_t>(number); ++i) {
    const int32 column = stored.SortKeys[i], mode = stored.SortModes[i];
    const bool isKnown = column > IconColumn && column < NumberOfColumns;
    const bool isTaken = std::any_of(keys.begin(), keys.end(),
                                     [column](const SortKey& key) { return key.column == column; });
    if (isKnown && !isTaken && (mode == Ascending || mode == Descending))
      keys.push_back({column, mode == Descending});
  }
  return keys;
}

}  // namespace

ShownLayout ShownLayoutOf(const SetLayout& stored, const FittingWidths& fitting) {
  ShownLayout layout{ShownOrder(stored.ColumnOrder), stored.ColumnShown, {}, ShownKeys(stored)};
  const auto isShown = [](bool shown) { return shown; };
  if (std::none_of(layout.shown.begin(), layout.shown.end(), isShown))
    layout.shown[NameColumn] = true;
  for (size_t column = 0; column < layout.width.size(); ++column)
    layout.width[column] = ShownWidth(column, stored.ColumnWidth[column], fitting);
  return layout;
}

void StoreSorting(const std::vector<SortKey>& keys, SetLayout& stored) {
  stored.NumberOfKeys = static_cast<int32>(keys.size());
  stored.SortKeys.fill(0);
  stored.SortModes.fill(Unsorted);
  for (size_t i = 0; i < keys.size(); ++i) {
    stored.SortKeys[i] = keys[i].column;
    stored.SortModes[i] = keys[i].descending ? Descending : Ascending;
  }
}

}  // namespace kestrin
