#include "host/memory/scene_summary.h"

#include "host/scene_walk.h"

namespace orvane::host::memory {

SceneSummary SummarizeScene(MemScene& scene) {
  SceneSummary summary;
  for (INode* node : ListSceneNodes(scene)) {
    ++summary.nodes;
    Object* object = node->EvalWorldState(scene.GetTime());
    if (object == nullptr) continue;
    switch (object->SuperClassID()) {
      case GEOMOBJECT_CLASS_ID:
        if (node->GetMtl() != nullptr) ++summary.geometryWithMaterials;
        break;
      case LIGHT_CLASS_ID: ++summary.lights; break;
      case CAMERA_CLASS_ID: ++summary.cameras; break;
      default: break;
    }
  }
  for (const auto& object : scene.objects()) {
    if (object->mesh && !object->mesh->colorFaces.empty()) ++summary.meshesWithVertexColors;
  }
  summary.materials = static_cast<int>(scene.materials().size());
  summary.maps = static_cast<int>(scene.maps().size());
  return summary;
}

std::string FormatSceneSummary(const SceneSummary& summary) {
  return "  nodes: " + std::to_string(summary.nodes) +
         "\n  geometry nodes with materials: " + std::to_string(summary.geometryWithMaterials) +
         "\n  materials: " + std::to_string(summary.materials) +
         "\n  maps: " + std::to_string(summary.maps) +
         "\n  lights: " + std::to_string(summary.lights) +
         "\n  cameras: " + std::to_string(summary.cameras) +
         "\n  meshes with vertex colours: " + std::to_string(summary.meshesWithVertexColors) + "\n";
}

}  // namespace orvane::host::memory
