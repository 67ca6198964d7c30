// orvane: the scene hand-over tool without the host application, driven by scene files.
#include <iostream>
#include <string>
#include <vector>

#include "base/process_heap.h"
#include "cli/commands.h"
#include "cli/scene_disposal.h"

int main(int argc, char** argv) {
  orvane::PrepareProcessHeap(argv);
  orvane::cli::EndProcessAfterCommand();
  return orvane::cli::RunOrvane({argv + 1, argv + argc}, std::cout, std::cerr);
}
