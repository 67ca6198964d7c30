// Large scenes fill hundreds of megabytes that are written once, and each first write of a 4 KiB
// page is a page fault; on virtual machines a fault costs microseconds, a third of the time of a
// 100,000-object load. Where the system offers transparent huge pages on request, asking for
// them cuts the faults 512-fold.
#pragma once

#include <cstddef>

namespace orvane {

// A hint only: it changes no contents, and does nothing where huge pages are not offered or the
// range is smaller than one huge page.
void AdviseHugePages(const void* start, size_t bytes);

// glibc backs its heap with huge pages only when told so by its tunable at process start, so a
// program that wants them restarts itself once with "glibc.malloc.hugetlb=1" added to
// GLIBC_TUNABLES. Nothing happens where huge pages are off or already always on, where the
// tunable is already set (so GLIBC_TUNABLES=glibc.malloc.hugetlb=0 keeps the normal heap, as a
// tool such as valgrind needs), or where the restart fails. Returns only if nothing happened.
void RestartWithHugePageHeap(char** argv);

}  // namespace orvane
