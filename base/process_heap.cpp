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
  // One range, reserved but not yet backed, marked for huge pages and handed to mimalloc, which
  // serves every allocation from it first. Memory freed there stays with the process for the next
  // allocation instead of going back to the system and being faulted in again: a large load frees
  // its parsed text just before the build needs as much. The range is four times the machine's
  // memory, since a parser asks for several times its text's size and fills only part of it.
  // Where the reservation is refused, mimalloc maps memory as it always does.
  constexpr size_t kAlign = size_t{64} << 20;  // more than any block size of mimalloc's arenas
  long pages = sysconf(_SC_PHYS_PAGES), pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return;
  size_t bytes = 4 * static_cast<size_t>(pages) * static_cast<size_t>(pageSize) / kAlign * kAlign;
  void* reserved = mmap(nullptr, bytes + kAlign, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (reserved == MAP_FAILED) return;
  auto start = (reinterpret_cast<uintptr_t>(reserved) + kAlign - 1) & ~uintptr_t{kAlign - 1};
  AdviseHugePages(reinterpret_cast<void*>(start), bytes);
  mi_arena_id_t arena = 0;
  if (!mi_manage_os_memory_ex(reinterpret_cast<void*>(start), bytes, /*is_committed=*/true,
                              /*is_large=*/false, /*is_zero=*/true, /*numa_node=*/-1,
                              /*exclusive=*/false, &arena)) {
    return;
  }
  // mimalloc took the main thread's first 32 MiB from the system as it started, before the range
  // existed, without huge pages: the main thread's heap would fill it 4 KiB page by page first.
  // Its allocations go to a heap that takes all its memory from the range instead. Other threads
  // start later and take theirs from the range anyway.
  if (mi_heap_t* heap = mi_heap_new_in_arena(arena)) mi_heap_set_default(heap);
#else
  RestartWithHugePageHeap(argv);
#endif
}

}  // namespace orvane
