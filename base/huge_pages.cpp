#include "base/huge_pages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#endif

namespace orvane {

void AdviseHugePages([[maybe_unused]] const void* start, [[maybe_unused]] size_t bytes) {
#ifdef __linux__
  constexpr uintptr_t kHugePage = uintptr_t{2} << 20;
  auto first = (reinterpret_cast<uintptr_t>(start) + kHugePage - 1) & ~(kHugePage - 1);
  auto end = (reinterpret_cast<uintptr_t>(start) + bytes) & ~(kHugePage - 1);
  if (end <= first) return;
  madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
#endif
}

}  // namespace orvane
