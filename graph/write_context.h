// What every parameter writer needs from the scene besides the object it writes.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/interface.h"

namespace orvane::host {
class MtlBase;
}  // namespace orvane::host

namespace orvane {

// The replies of probe scripts, by script text. The scene does not change while one package is
// written, so within a build each probe runs once however many trees share its map; inside the
// host every run is a trip through the script interpreter.
struct ProbeReplies {
  std::unordered_map<std::u16string, std::optional<std::u16string>> byScript;
  int runs = 0;  // scripts actually run
};

// The parameter members of each material and map (its class's parameters and output probe), by
// object. For the same reason they are written once per build; node ids and references, which
// depend on the tree, are not part of them.
struct ParamFragments {
  std::unordered_map<const host::MtlBase*, std::vector<std::u16string>> byObject;
};

struct WriteContext {
  host::Interface& scene;
  host::TimeValue time = 0;
  ProbeReplies* probes = nullptr;    // null: every probe runs
  ParamFragments* params = nullptr;  // null: parameters are written afresh every time
};

}  // namespace orvane
