// What every program here is made of: a trial of one input, and what it checks with.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

namespace kestrin {

/// One input; each program has its own. Choices are taken from the input's end, texts from its
/// beginning.
void TryInput(FuzzedDataProvider& in);

/// Ends the program, so that the input is kept, unless that holds.
inline void Demand(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not held: %s\n", what);
  std::abort();
}

}  // namespace kestrin
