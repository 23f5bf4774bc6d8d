// Where an editor opens, so that it can be told from the windows that stand there.
#pragma once

#include <QRect>
#include <vector>

namespace kestrin {

/// All are frames with what the window manager puts around them. `wanted` lies within `room`.
/// `isChosen`: the person has put the event's editor there, and gets it back there.
struct EditorPlace {
  QRect wanted;
  bool isChosen;
  QRect room;                 ///< of the screen
  std::vector<QRect> others;  ///< windows that stand open; the set's is the first
};

/// Beside the others if there is room, the set's window first; else never exactly over one of them.
QRect PlaceOfEditor(const EditorPlace& place);

}  // namespace kestrin
