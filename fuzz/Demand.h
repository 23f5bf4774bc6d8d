// What every program here checks with.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace kestrin {

/// Ends the program, so that the input is kept, unless that holds.
inline void Demand(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not held: %s\n", what);
  std::abort();
}

}  // namespace kestrin
