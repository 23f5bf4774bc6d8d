#include "interface/editor/EditorPlace.h"

#include <algorithm>
#include <cstdlib>

namespace kestrin {

namespace {

/// So far apart two windows can be told from each other, and both be reached.
constexpr int Step = 24;
constexpr int Gap = 4;

bool IsFree(const QRect& frame, const EditorPlace& place) {
  return place.room.contains(frame) &&
         std::none_of(place.others.begin(), place.others.end(),
                      [&frame](const QRect& other) { return other.intersects(frame); });
}

bool LiesOver(const QRect& frame, const QRect& other) {
  const QPoint apart = frame.topLeft() - other.topLeft();
  return std::abs(apart.x()) < Step && std::abs(apart.y()) < Step;
}

bool StandsApart(const QRect& frame, const EditorPlace& place) {
  return std::none_of(place.others.begin(), place.others.end(),
                      [&frame](const QRect& other) { return LiesOver(frame, other); });
}

/// A little down and to the right of where it would be; at the screen's end, wherever there is
/// room.
QRect Apart(const EditorPlace& place) {
  QRect frame = place.wanted;
  while (!StandsApart(frame, place) && place.room.contains(frame)) frame.translate(Step, Step);
  if (StandsApart(frame, place) && place.room.contains(frame)) return frame;
  const QRect room(place.room.topLeft(), place.room.size() - place.wanted.size() + QSize(1, 1));
  for (int y = room.top(); y <= room.bottom(); y += Step)
    for (int x = room.left(); x <= room.right(); x += Step)
      if (frame.moveTo(x, y); StandsApart(frame, place)) return frame;
  return place.wanted;
}

}  // namespace

QRect PlaceOfEditor(const EditorPlace& place) {
  if (place.isChosen || IsFree(place.wanted, place)) return Apart(place);
  const int width = place.wanted.width(), height = place.wanted.height();
  for (const QRect& other : place.others)
    for (const QPoint& at : {QPoint(other.right() + 1 + Gap, other.top()),
                             QPoint(other.left() - Gap - width, other.top()),
                             QPoint(other.left(), other.bottom() + 1 + Gap),
                             QPoint(other.left(), other.top() - Gap - height)})
      if (const QRect beside(at, place.wanted.size()); IsFree(beside, place)) return beside;
  return Apart(place);
}

}  // namespace kestrin
