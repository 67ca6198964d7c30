#include "host/overlapped_file_sink.h"

#include <system_error>
#include <utility>

namespace orvane::host {

OverlappedFileSink::~OverlappedFileSink() {
  if (!writer_.joinable()) return;
  {
    std::lock_guard lock(mutex_);
    finishing_ = true;
  }
  changed_.notify_all();
  writer_.join();
}

void OverlappedFileSink::Write(std::string_view bytes) {
  if (!writer_.joinable()) {
    WriteToFile(bytes);
    return;
  }
  std::string block(bytes);
  WriteBlock(block);
}

void OverlappedFileSink::WriteBlock(std::string& block) {
  if (!writer_.joinable() && !StartWriter()) {
    ByteSink::WriteBlock(block);
    return;
  }
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !waiting_; });
  std::swap(handedOver_, block);
  waiting_ = true;
  lock.unlock();
  changed_.notify_all();
}

bool OverlappedFileSink::StartWriter() {
  if (writerTried_) return false;
  writerTried_ = true;
  try {
    writer_ = std::thread([this] { WriteHandedOver(); });
  } catch (const std::system_error&) {
    // No second thread to be had: every block is written here, as it is handed over.
  }
  return writer_.joinable();
}

void OverlappedFileSink::WriteHandedOver() {
  std::string writing;
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return waiting_ || finishing_; });
    if (!waiting_) return;
    std::swap(writing, handedOver_);
    waiting_ = false;
    lock.unlock();
    changed_.notify_all();
    WriteToFile(writing);
    writing.clear();
    lock.lock();
  }
}

// After a failed write the stream writes nothing more, and its state tells the owner once the
// sink is gone; the flag tells the producer now.
void OverlappedFileSink::WriteToFile(std::string_view bytes) {
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (out_.fail()) failed_.store(true, std::memory_order_relaxed);
}

}  // namespace orvane::host
