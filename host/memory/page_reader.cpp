#include "host/memory/page_reader.h"

#include <system_error>

namespace orvane::host::memory {

BackwardPageReader::BackwardPageReader(std::string_view bytes) {
  // A thread costs more than it could save on a text of a few megabytes.
  constexpr size_t kPage = 4096, kWorthIt = size_t{8} << 20;
  if (bytes.size() < kWorthIt) return;
  try {
    thread_ = std::thread([this, bytes] {
      unsigned char seen = 0;
      for (size_t at = bytes.size() - 1; at >= kPage && !stop_.load(std::memory_order_relaxed);
           at -= kPage)
        seen |= static_cast<unsigned char>(bytes[at]);
      sink_.store(seen, std::memory_order_relaxed);  // so that the reads are not left out
    });
  } catch (const std::system_error&) {
    // No second thread: the caller reads every page itself, as it would have anyway.
  }
}

BackwardPageReader::~BackwardPageReader() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
}

}  // namespace orvane::host::memory
