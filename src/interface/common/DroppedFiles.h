// Files that are dragged onto a window.
#pragma once

#include <string>
#include <vector>

class QDropEvent;
class QMimeData;

namespace kestrin {

/// Those of this machine, byte for byte: a file's name need not be text.
std::vector<std::string> LocalFiles(const QMimeData& data);
/// Files are used where they are, whatever was proposed: some sources delete what was moved.
void AcceptAsCopy(QDropEvent& event);

}  // namespace kestrin
