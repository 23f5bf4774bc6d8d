// The desktop's own file panels, as a port.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

struct FilePanelRequest {
  enum class Kind { OpenOne, OpenSeveral, Save };
  Kind What = Kind::OpenOne;
  std::string Title;
  std::string Folder;  ///< where the panel starts; a path's bytes, may be empty
  std::string Name;    ///< Save: the name that is proposed
  /// Label and globs, with blanks between them.
  std::vector<std::pair<std::string, std::string>> Filters;
  std::string BoxLabel;  ///< a box to tick beside the files; none when empty
  bool BoxTicked = false;
  std::string ParentWindow;  ///< as the desktop's panels know windows ("x11:1a"), may be empty
};

struct FilePanelAnswer {
  enum class Kind {
    Chosen,
    Cancelled,   ///< by the person, or whoever showed the panel has died
    Unavailable  ///< there is no such panel here: show another one
  };
  Kind What = Kind::Cancelled;
  std::vector<std::string> Files;  ///< absolute paths, byte for byte
  bool BoxTicked = false;
};

/// Main thread only.
class DesktopFilePanels {
 public:
  using Done = std::function<void(const FilePanelAnswer& answer)>;
  virtual ~DesktopFilePanels() = default;
  /// Asks and returns at once; `done` is called once, on a later turn of the event loop, unless the
  /// panel is withdrawn before. The result is never 0.
  virtual uint64 Ask(const FilePanelRequest& request, Done done) = 0;
  /// Closes the panel without an answer. Nothing happens when it has answered.
  virtual void Withdraw(uint64 panel) = 0;
};

}  // namespace kestrin
