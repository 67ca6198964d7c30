#include "cli/scene_disposal.h"

#include <vector>

namespace orvane::cli {

namespace {

bool processEndsAfterCommand = false;

}  // namespace

void EndProcessAfterCommand() {
  processEndsAfterCommand = true;
}

void LetGoOfScene(std::unique_ptr<host::memory::MemScene> scene) {
  if (!processEndsAfterCommand) return;  // freed as `scene` goes
  // Never destroyed, and reachable until the end, so leak checkers do not count what it holds.
  static auto* leftToTheSystem = new std::vector<std::unique_ptr<host::memory::MemScene>>;
  leftToTheSystem->push_back(std::move(scene));
}

}  // namespace orvane::cli
