// Room on the heap for a large document, before its many small pieces are allocated.
#pragma once

#include <cstddef>

namespace kestrin {

/// Grows the heap by about `bytes` at once and asks the system to back it with large pages. Nothing
/// is taken from the system yet. Where the small pages of a set of 100,000 events are fetched one
/// by one, fetching them costs more than reading and computing the events.
void ExpectOnHeap(size_t bytes);

}  // namespace kestrin
