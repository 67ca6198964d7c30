// What every parameter writer needs from the scene besides the object it writes.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "host/interface.h"

namespace orvane {

// The replies of probe scripts, by script text. The scene does not change while one package is
// written, so within a build each probe runs once however many trees share its map; inside the
// host every run is a trip through the script interpreter.
struct ProbeReplies {
  std::unordered_map<std::u16string, std::optional<std::u16string>> byScript;
  int runs = 0;  // scripts actually run
};

struct WriteContext {
  host::Interface& scene;
  host::TimeValue time = 0;
  ProbeReplies* probes = nullptr;  // null: every probe runs
};

}  // namespace orvane
