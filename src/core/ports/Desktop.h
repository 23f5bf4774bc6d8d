// The desktop around the application, as a port: files are described, opened and started, commands
// run. The last two calls block and are made from a worker thread.
#pragma once

#include <string>

#include "kestrin/Types.h"

namespace kestrin {

struct FileDescription {
  bool Exists = false;
  bool IsApplication = false;  ///< an executable or an application's desktop entry
  std::string
      ApplicationName;  ///< the application itself, or what opens the document; may be empty
};

class Desktop {
 public:
  virtual ~Desktop() = default;
  /// Links are not followed to decide whether it exists. Main thread, must return quickly.
  virtual FileDescription Describe(const std::string& path) = 0;
  /// Starts an application or opens a document. False when that fails; already running is success.
  virtual bool Launch(const std::string& path) = 0;
  /// Opens a page in what shows such pages, at the anchor of that name.
  virtual bool OpenPage(const std::string& path, const std::string& anchor) = 0;
  /// Runs a shell command and waits for it. What it starts outlives the application.
  virtual void RunCommand(const std::string& command) = 0;
};

}  // namespace kestrin
