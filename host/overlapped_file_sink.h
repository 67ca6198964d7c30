// A sink into an open file that writes whole blocks on a second thread.
#pragma once

#include <atomic>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>

#include "host/file_system.h"

namespace orvane::host {

// Copying a block into the file system's cache takes a large package's producer a fifth of its
// time on some machines; handed to a second thread, it overlaps with producing the next block.
// Blocks reach the file in the order they were handed over. Pieces given to Write go straight to
// the file until the first block is handed over, so a small file never starts a thread. Whether
// every write succeeded is read from the stream once the sink is gone: its destructor waits for
// every block handed over.
class OverlappedFileSink final : public ByteSink {
 public:
  explicit OverlappedFileSink(std::ofstream& out) : out_(out) {}
  ~OverlappedFileSink();
  OverlappedFileSink(const OverlappedFileSink&) = delete;
  OverlappedFileSink& operator=(const OverlappedFileSink&) = delete;

  void Write(std::string_view bytes) override;
  void WriteBlock(std::string& block) override;
  bool Failed() const override { return failed_.load(std::memory_order_relaxed); }

 private:
  bool StartWriter();
  void WriteHandedOver();  // the second thread
  // On whichever thread writes: this one until the writer starts, the writer after.
  void WriteToFile(std::string_view bytes);

  std::ofstream& out_;
  std::thread writer_;
  bool writerTried_ = false;
  std::mutex mutex_;
  std::condition_variable changed_;
  // The block waiting for the writer; once taken, the buffer the writer finished with, empty.
  std::string handedOver_;
  bool waiting_ = false;
  bool finishing_ = false;
  std::atomic<bool> failed_{false};
};

}  // namespace orvane::host
