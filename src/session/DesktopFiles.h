// What the desktop knows about files: which application opens them, and how it is started. Works
// without a display and without a running event loop.
#pragma once

#include <string>

#include "core/ports/Desktop.h"

namespace kestrin {

/// Reads no more than the head of a regular file; pipes and devices are not opened.
FileDescription DescribeFile(const std::string& path);

/// Starts an executable (an execute bit, and an ELF or "#!" head), the application of a desktop
/// entry, or the default application of a document or folder. Any thread.
bool LaunchFile(const std::string& path);

/// Opens a document at the anchor of that name, in its default application. Any thread.
bool OpenFileAt(const std::string& path, const std::string& anchor);

}  // namespace kestrin
