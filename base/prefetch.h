// A hint that memory will be read soon, so that the wait for it overlaps with other work. It
// reads nothing and changes nothing; a compiler without the hint drops it.
#pragma once

namespace orvane {

inline void Prefetch([[maybe_unused]] const void* address) {
#if defined(__GNUC__) || defined(__clang__)
  __builtin_prefetch(address);
#endif
}

}  // namespace orvane
