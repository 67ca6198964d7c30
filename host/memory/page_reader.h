// On virtual machines that fill their page tables lazily, the first read of each page of a
// mapped file is a trip to the hypervisor even after the system has mapped the page: parsing a
// 130 MB scene file spent most of its first pass on them.
#pragma once

#include <atomic>
#include <string_view>
#include <thread>

namespace orvane::host::memory {

// Reads one byte of each page of `bytes` on a thread of its own, from the last page towards the
// first, while the caller reads from the first: the two meet halfway and share the trips. Stops
// when it reaches the first page or is destroyed. Does nothing for a text of a few megabytes or
// where no thread can be had.
class BackwardPageReader {
 public:
  explicit BackwardPageReader(std::string_view bytes);
  ~BackwardPageReader();
  BackwardPageReader(const BackwardPageReader&) = delete;
  BackwardPageReader& operator=(const BackwardPageReader&) = delete;

 private:
  std::atomic<bool> stop_{false};
  std::atomic<unsigned char> sink_{0};
  std::thread thread_;
};

}  // namespace orvane::host::memory
