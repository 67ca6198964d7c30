// Large buffers that are filled once, such as a scene file and its parse, cost a page fault per
// 4 KiB page as they are first written; on virtual machines a fault costs microseconds. Where the
// system offers transparent huge pages on request, asking for them cuts the faults 512-fold.
#pragma once

#include <cstddef>

namespace orvane {

// A hint only: it changes no contents, and does nothing where huge pages are not offered or the
// range is smaller than one huge page.
void AdviseHugePages(const void* start, size_t bytes);

}  // namespace orvane
