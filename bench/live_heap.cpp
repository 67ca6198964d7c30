// Replaces the global operator new and delete of the program it is linked into.
#include "bench/live_heap.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace orvane::bench {

namespace {

std::atomic<size_t> live{0}, peak{0};

void* Counted(void* block) {
  if (block == nullptr) return nullptr;
  size_t bytes = malloc_usable_size(block);
  size_t now = live.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  size_t highest = peak.load(std::memory_order_relaxed);
  while (now > highest && !peak.compare_exchange_weak(highest, now, std::memory_order_relaxed)) {
  }
  return block;
}

void* Allocate(size_t bytes) {
  if (void* block = Counted(std::malloc(bytes == 0 ? 1 : bytes))) return block;
  throw std::bad_alloc();
}

void* AllocateAligned(size_t bytes, std::align_val_t alignment) {
  auto align = static_cast<size_t>(alignment);
  size_t rounded = (std::max<size_t>(bytes, 1) + align - 1) / align * align;
  if (void* block = Counted(std::aligned_alloc(align, rounded))) return block;
  throw std::bad_alloc();
}

void Release(void* block) {
  if (block == nullptr) return;
  live.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

size_t LiveHeapBytes() {
  return live.load(std::memory_order_relaxed);
}

size_t PeakHeapBytes() {
  return peak.load(std::memory_order_relaxed);
}

void ResetPeakHeapBytes() {
  peak.store(live.load(std::memory_order_relaxed), std::memory_order_relaxed);
}

}  // namespace orvane::bench

using orvane::bench::Allocate;
using orvane::bench::AllocateAligned;
using orvane::bench::Release;

// The library's nothrow forms call these, so what they allocate is counted too.
void* operator new(size_t bytes) {
  return Allocate(bytes);
}
void* operator new[](size_t bytes) {
  return Allocate(bytes);
}
void* operator new(size_t bytes, std::align_val_t alignment) {
  return AllocateAligned(bytes, alignment);
}
void* operator new[](size_t bytes, std::align_val_t alignment) {
  return AllocateAligned(bytes, alignment);
}
void operator delete(void* block) noexcept {
  Release(block);
}
void operator delete[](void* block) noexcept {
  Release(block);
}
void operator delete(void* block, size_t) noexcept {
  Release(block);
}
void operator delete[](void* block, size_t) noexcept {
  Release(block);
}
void operator delete(void* block, std::align_val_t) noexcept {
  Release(block);
}
void operator delete[](void* block, std::align_val_t) noexcept {
  Release(block);
}
void operator delete(void* block, size_t, std::align_val_t) noexcept {
  Release(block);
}
void operator delete[](void* block, size_t, std::align_val_t) noexcept {
  Release(block);
}
