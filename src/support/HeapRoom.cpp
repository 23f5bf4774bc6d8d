#include "support/HeapRoom.h"

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace kestrin {

namespace {

constexpr size_t LargePage = size_t{2} << 20;
constexpr size_t MostAtOnce = size_t{128} << 20;
constexpr int DefaultTopPad = 128 * 1024;
/// Below what the allocator fetches apart from the heap, and above what it has left at a start.
constexpr size_t Trigger = 120 * 1024;

}  // namespace

void ExpectOnHeap(size_t bytes) {
  const size_t room = std::min(bytes, MostAtOnce);
  if (room < 2 * LargePage) return;
  mallopt(M_TOP_PAD, static_cast<int>(room));
  mallopt(M_TRIM_THRESHOLD, static_cast<int>(MostAtOnce));  // or the room is given back at once
  // Volatile, or the compiler leaves allocations out that nobody uses.
  void* volatile first = std::malloc(Trigger);
  void* volatile second = std::malloc(Trigger);  // one of the two makes the heap grow
  mallopt(M_TOP_PAD, DefaultTopPad);
  const auto begin = reinterpret_cast<uintptr_t>(first);
  const auto end = reinterpret_cast<uintptr_t>(sbrk(0)) / LargePage * LargePage;
  std::free(second);
  std::free(first);
  const uintptr_t aligned = (begin + LargePage - 1) / LargePage * LargePage;
  // A heap that lies elsewhere (another allocator) is left alone.
  if (aligned < end && end - aligned <= 2 * MostAtOnce)
    madvise(reinterpret_cast<void*>(aligned), end - aligned, MADV_HUGEPAGE);
}

}  // namespace kestrin
