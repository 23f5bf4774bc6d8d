#include "interface/editor/EditorPlace.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(EditorPlaceTest, EditorsStandBesideWhatIsThereAndNeverExactlyOverIt) {
  const QRect wide(0, 0, 1920, 1080), small(0, 0, 800, 600);
  const QRect set(50, 50, 700, 400), wanted(100, 100, 450, 500);
  const struct {
    const char* what;
    EditorPlace place;
    QPoint expected;
  } rows[] = {
      {"nothing is in the way", {wanted, false, wide, {}}, {100, 100}},
      {"right of the set's window", {wanted, false, wide, {set}}, {754, 50}},
      {"left of it", {wanted, false, wide, {set.translated(1100, 0)}}, {100, 100}},
      {"left of it, moved", {wanted, false, wide, {QRect(500, 50, 1300, 400)}}, {46, 50}},
      {"below it", {QRect(100, 100, 450, 300), false, QRect(0, 0, 800, 900), {set}}, {50, 454}},
      {"beside the last editor",
       {wanted, false, QRect(0, 0, 1920, 800), {set, {754, 50, 450, 500}}},
       {1208, 50}},
      {"no room: apart", {wanted, false, small, {set, wanted}}, {0, 0}},
      {"where the person put it", {wanted, true, wide, {set}}, {100, 100}},
      {"but not exactly over another", {wanted, true, wide, {set, wanted}}, {124, 124}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(PlaceOfEditor(row.place).topLeft(), row.expected) << row.what;
  EditorPlace many{wanted, false, small, {set}};
  for (int i = 0; i < 40; ++i) {
    const QRect next = PlaceOfEditor(many);
    for (const QRect& other : many.others) EXPECT_NE(next.topLeft(), other.topLeft()) << i;
    many.others.push_back(next);
  }
}

}  // namespace
}  // namespace kestrin
