// What a scene holds, in the terms a user checks a scene file by.
#pragma once

#include <string>

#include "host/memory/memory_scene.h"

namespace orvane::host::memory {

struct SceneSummary {
  int nodes = 0;
  int geometryWithMaterials = 0;
  int materials = 0;
  int maps = 0;
  int lights = 0;
  int cameras = 0;
  int meshesWithVertexColors = 0;  // objects whose mesh carries colours and colour faces
};

SceneSummary SummarizeScene(MemScene& scene);
std::string FormatSceneSummary(const SceneSummary& summary);

}  // namespace orvane::host::memory
