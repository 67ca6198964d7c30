// What becomes of a command's loaded scene once the command is done with it.
#pragma once

#include <memory>

#include "host/memory/memory_scene.h"

namespace orvane::cli {

// Called by the program's entry point: the process ends once the command returns. Tests that
// run commands in their own process do not call it.
void EndProcessAfterCommand();

// Freeing a loaded scene of 100,000 objects piece by piece takes a tenth of a second, a tenth of
// a whole `orvane package`; when the process ends right after the command, the scene is left to
// the system, which takes all of the process's memory back at once. Otherwise it is freed now.
void LetGoOfScene(std::unique_ptr<host::memory::MemScene> scene);

}  // namespace orvane::cli
