// The package's "cameras" section.
#pragma once

#include <string>
#include <vector>

#include "graph/write_context.h"

namespace orvane {

// ",\n  \"cameras\": [...]" with one record per camera in scene order, or empty text when the
// scene has none. Appends a line per camera and a count to `log`.
std::u16string CollectCamerasJson(const WriteContext& context, std::vector<std::u16string>& log);

}  // namespace orvane
