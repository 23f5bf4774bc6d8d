// An open set is brought in step with a file, in place.
#pragma once

#include <string>

#include "core/files/EventSetFile.h"

namespace kestrin {

class EventSet;

/// The events that the set's own file and this one know by the same name keep their handles,
/// windows and editors and take the file's values; the others go, and those of the file alone come
/// behind. The layout of the window stays. False, with the fault in `report` and nothing changed,
/// when the file cannot be read. Main thread.
bool MergeFromFile(EventSet& set, const std::string& path, SetFileReport& report);

}  // namespace kestrin
