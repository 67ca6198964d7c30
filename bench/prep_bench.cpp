// Scene preparation at scale: material-name deduplication as the material count grows tenfold,
// and the mesh-element bake over a million triangles (reported as triangles per second).
#include <benchmark/benchmark.h>

#include "host/memory/memory_scene.h"
#include "prep/material_names.h"
#include "prep/multitexture_bake.h"

namespace {

using namespace orvane;
using namespace orvane::host;
using namespace orvane::host::memory;

MemNode& AddGeometryNode(MemScene& scene, const std::string& id, MemObject& object) {
  MemNode& node = scene.AddNode(id);
  node.name = u"node";
  node.objectRef = &object;
  node.parent = static_cast<MemNode*>(scene.GetRootNode());
  node.parent->children.push_back(&node);
  return node;
}

// `materials` materials on as many boxes; every fifth is a variant of "Brick Wall" that
// sanitises to the same name, so one name group holds a fifth of them.
std::unique_ptr<MemScene> ManyMaterials(int materials) {
  auto scene = std::make_unique<MemScene>();
  MemObject& box = scene->AddObject("box");
  box.data.superClassId = GEOMOBJECT_CLASS_ID;
  static const char16_t* kVariants[] = {u"Brick Wall", u"Brick.Wall", u"Brick/Wall",
                                        u"Brick  Wall"};
  for (int i = 0; i < materials; ++i) {
    std::string id = std::to_string(i);
    MemMtl& material = scene->AddMaterial("m" + id);
    material.data.className = u"VRayMtl";
    material.data.superClassId = MATERIAL_CLASS_ID;
    material.name =
        i % 5 == 0 ? kVariants[i % 4] : u"Material #" + std::u16string(id.begin(), id.end());
    AddGeometryNode(*scene, "n" + id, box).material = &material;
  }
  scene->AssignMissingHandles();
  scene->IndexHandles();
  return scene;
}

void BM_DeduplicateMaterialNames(benchmark::State& state) {
  auto scene = ManyMaterials(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    std::vector<MtlRestoreEntry> list = DeduplicateMaterialNames(*scene);
    state.PauseTiming();
    RestoreMaterialNames(*scene, list);
    scene->renames.clear();
    state.ResumeTiming();
    benchmark::DoNotOptimize(list.data());
  }
  state.counters["materials"] = static_cast<double>(state.range(0));
}
BENCHMARK(BM_DeduplicateMaterialNames)
    ->Arg(5'000)
    ->Arg(50'000)
    ->Arg(500'000)
    ->Unit(benchmark::kMillisecond);

// One mesh of `triangles` triangles in quads of two: triangles / 2 elements.
std::unique_ptr<MemScene> BigMesh(int triangles) {
  auto scene = std::make_unique<MemScene>();
  MemObject& object = scene->AddObject("mesh");
  object.data.superClassId = GEOMOBJECT_CLASS_ID;
  object.isTriObject = true;
  MemMesh& mesh = object.mesh.emplace();
  for (int quad = 0; quad < triangles / 2; ++quad) {
    int v = static_cast<int>(mesh.vertices.size());
    float x = static_cast<float>(quad % 1000), y = static_cast<float>(quad / 1000);
    mesh.vertices.insert(mesh.vertices.end(),
                         {{x, y, 0}, {x + 1, y, 0}, {x, y + 1, 0}, {x + 1, y + 1, 0}});
    mesh.faces.push_back({{v, v + 1, v + 2}, 0});
    mesh.faces.push_back({{v + 2, v + 1, v + 3}, 0});
  }
  MemTexmap& map = scene->AddMap("multi");
  map.data.className = u"MultiTexture";
  map.data.superClassId = TEXMAP_CLASS_ID;
  AddGeometryNode(*scene, "node", object);
  return scene;
}

void BM_BakeMeshElements(benchmark::State& state) {
  int triangles = static_cast<int>(state.range(0));
  auto scene = BigMesh(triangles);
  auto& node = *static_cast<MemNode*>(scene->FindById("node"));
  auto& map = *static_cast<Texmap*>(scene->FindById("multi"));
  for (auto _ : state) {
    benchmark::DoNotOptimize(BakeMeshElements(node, map, 3, 0));
  }
  state.SetItemsProcessed(state.iterations() * triangles);  // items/s = triangles per second
}
BENCHMARK(BM_BakeMeshElements)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
