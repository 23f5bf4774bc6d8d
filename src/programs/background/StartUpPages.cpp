#include "programs/background/StartUpPages.h"

#include <link.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace kestrin {

namespace {

int ReleaseModule(dl_phdr_info* module, size_t, void*) {
  const uintptr_t page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
  for (int i = 0; i < module->dlpi_phnum; ++i) {
    const ElfW(Phdr)& part = module->dlpi_phdr[i];
    // A writable part holds data of our own, also where the loader has made it read-only since.
    if (part.p_type != PT_LOAD || (part.p_flags & PF_W) != 0) continue;
    const uintptr_t start = (module->dlpi_addr + part.p_vaddr) & ~(page - 1);
    const uintptr_t end = module->dlpi_addr + part.p_vaddr + part.p_memsz;
    // Best effort: where it fails, the pages stay.
    madvise(reinterpret_cast<void*>(start), end - start, MADV_DONTNEED);
  }
  return 0;
}

}  // namespace

void ReleaseStartUpPages() { dl_iterate_phdr(ReleaseModule, nullptr); }

}  // namespace kestrin
