// The bytes a program holds through operator new, counted as it allocates and frees, and their
// highest level since the last reset. A resident-set figure cannot tell what the builder itself
// holds once the heap keeps freed memory for reuse: memory the load freed is resident before the
// build and is filled again by it.
#pragma once

#include <cstddef>

namespace orvane::bench {

size_t LiveHeapBytes();
size_t PeakHeapBytes();
// Starts the peak over from what is held now.
void ResetPeakHeapBytes();

}  // namespace orvane::bench
