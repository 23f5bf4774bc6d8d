// The desktop around the application, as a port: files are described, opened and started, commands
// run. What blocks is called from a worker thread.
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
  /// Links are not followed to decide whether it exists. In a worker: it waits for the disk.
  virtual FileDescription Describe(const std::string& path) = 0;
  /// Starts an application or opens a document. False when that fails; already running is success.
  virtual bool Launch(const std::string& path) = 0;
  /// Opens a page in what shows such pages, at the anchor of that name.
  virtual bool OpenPage(const std::string& path, const std::string& anchor) = 0;
  /// Starts a shell with the command, which outlives the application. Any thread; waits for
  /// nothing. The number of its process, to be waited for; 0 or less when it could not be started.
  virtual int32 StartCommand(const std::string& command) = 0;
  /// Waits for its end: the exit status, or 128 and the signal that ended it.
  virtual int32 WaitForCommand(int32 shell) = 0;
};

}  // namespace kestrin
