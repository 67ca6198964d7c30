#include "base/huge_pages.h"

#include <cstdint>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
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

void RestartWithHugePageHeap([[maybe_unused]] char** argv) {
#ifdef __linux__
  std::string mode;
  std::getline(std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"), mode);
  if (mode.find("[madvise]") == std::string::npos) return;
  const char* found = std::getenv("GLIBC_TUNABLES");
  std::string tunables = found != nullptr ? found : "";
  if (tunables.find("glibc.malloc.hugetlb") != std::string::npos) return;
  std::string value =
      tunables.empty() ? "glibc.malloc.hugetlb=1" : tunables + ":glibc.malloc.hugetlb=1";
  if (setenv("GLIBC_TUNABLES", value.c_str(), 1) != 0) return;
  execv("/proc/self/exe", argv);
  // The restart failed: go on as we were.
  if (found != nullptr) {
    setenv("GLIBC_TUNABLES", tunables.c_str(), 1);
  } else {
    unsetenv("GLIBC_TUNABLES");
  }
#endif
}

}  // namespace orvane
