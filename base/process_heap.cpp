#include "base/process_heap.h"

#include "base/huge_pages.h"

#ifdef ORVANE_HAVE_MIMALLOC
#include <mimalloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace orvane {

void PrepareProcessHeap([[maybe_unused]] char** argv) {
#ifdef ORVANE_HAVE_MIMALLOC
  // One range as large as the machine's memory, reserved but not yet backed, marked for huge
  // pages and handed to mimalloc, which serves every allocation from it first. Memory freed there
  // stays with the process for the next allocation instead of going back to the system and being
  // faulted in again: a large load frees its parsed text just before the build needs as much.
  // Where the reservation is refused, mimalloc maps memory as it always does.
  constexpr size_t kAlign = size_t{64} << 20;  // more than any block size of mimalloc's arenas
  long pages = sysconf(_SC_PHYS_PAGES), pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return;
  size_t bytes = static_cast<size_t>(pages) * static_cast<size_t>(pageSize) / kAlign * kAlign;
  void* reserved = mmap(nullptr, bytes + kAlign, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (reserved == MAP_FAILED) return;
  auto start = (reinterpret_cast<uintptr_t>(reserved) + kAlign - 1) & ~uintptr_t{kAlign - 1};
  AdviseHugePages(reinterpret_cast<void*>(start), bytes);
  mi_manage_os_memory(reinterpret_cast<void*>(start), bytes, /*is_committed=*/true,
                      /*is_large=*/false, /*is_zero=*/true, /*numa_node=*/-1);
#else
  RestartWithHugePageHeap(argv);
#endif
}

}  // namespace orvane
