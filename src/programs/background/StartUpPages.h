// Giving back the memory that only starting needed.
#pragma once

namespace kestrin {

/// Unmaps the resident pages of everything this process has loaded read-only: the loader's, the
/// libraries' and its own code and constants. They are clean copies of files; those still needed
/// are mapped again from the page cache as they are touched. Call once, when the start is over:
/// most of what is dropped (relocation, constructors of libraries that libsystemd brings along)
/// never runs again.
void ReleaseStartUpPages();

}  // namespace kestrin
