// The heap of a command-line program that loads and writes scenes of hundreds of megabytes. Most
// of its time goes to filling memory it has just asked for, and on virtual machines each fresh
// 4 KiB page costs a fault of microseconds.
#pragma once

namespace orvane {

// Called first thing in main. Where the program is linked with mimalloc, the heap is one range
// of huge pages that keeps what is freed for the next allocation; otherwise glibc's heap is
// restarted with huge pages (RestartWithHugePageHeap).
void PrepareProcessHeap(char** argv);

}  // namespace orvane
