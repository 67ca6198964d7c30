// Material export at growing sizes: a material library with shared maps, and one tree whose
// nodes are heavily shared. Linear cost shows as times that grow 4x from each size to the next.
#include <benchmark/benchmark.h>

#include <random>

#include "graph/node_tree.h"
#include "host/memory/memory_scene.h"
#include "package/material_record.h"

namespace {

using namespace orvane;
using namespace orvane::host;
using namespace orvane::host::memory;

MemParam FloatParam(std::u16string name, float value) {
  return {std::move(name), TYPE_FLOAT, {value}};
}

void AddBlock(AnimatableData& data, std::vector<MemParam> params) {
  auto block = std::make_unique<MemParamBlock>();
  block->params = std::move(params);
  data.blocks.push_back(std::move(block));
}

MemTexmap& AddBitmap(MemScene& scene, int index) {
  MemTexmap& map = scene.AddMap("map" + std::to_string(index));
  map.data.className = u"CoronaBitmap";
  map.name = u"map " + std::u16string(1, static_cast<char16_t>(u'a' + index % 26));
  AddBlock(map.data,
           {{u"filename", TYPE_FILENAME, {std::optional<std::u16string>(u"C:\\maps\\wood.jpg")}},
            {u"uvwScale", TYPE_POINT3, {Point3{2, 2, 1}}},
            FloatParam(u"gamma", 2.2f)});
  return map;
}

// `materials` Corona materials with 10 map slots each, drawn from a pool of maps a fifth as large
// as the slots, so most maps are shared between materials.
std::unique_ptr<MemScene> MaterialLibrary(int materials) {
  auto scene = std::make_unique<MemScene>();
  std::vector<MemTexmap*> pool;
  for (int i = 0; i < materials * 2; ++i)
    pool.push_back(&AddBitmap(*scene, i));
  std::mt19937 random(1);
  for (int i = 0; i < materials; ++i) {
    MemMtl& material = scene->AddMaterial("mtl" + std::to_string(i));
    material.data.className = u"CoronaPhysicalMtl";
    material.name = u"Material " + std::u16string(1, u'A');
    AddBlock(material.data, {FloatParam(u"baseRoughness", 0.3f),
                             FloatParam(u"baseMapAmount", 0.5f),
                             {u"baseColor", TYPE_FRGBA, {Color{0.5f, 0.4f, 0.3f}}}});
    for (int slot = 0; slot < 10; ++slot) {
      material.slots.push_back({u"slot" + std::u16string(1, static_cast<char16_t>(u'0' + slot)),
                                pool[random() % pool.size()]});
    }
  }
  scene->AssignMissingHandles();
  return scene;
}

void BM_MaterialLibrary(benchmark::State& state) {
  auto scene = MaterialLibrary(static_cast<int>(state.range(0)));
  WriteContext context{*scene, 0};
  std::vector<std::u16string> errors;
  for (auto _ : state) {
    NodeTreeState tree;
    size_t bytes = 0;
    std::string record;
    for (const auto& material : scene->materials()) {
      record.clear();
      AppendMaterialRecord(context, tree, material.get(), errors, record);
      bytes += record.size();
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_MaterialLibrary)->Arg(625)->Arg(2500)->Arg(10000)->Unit(benchmark::kMillisecond);

// One material over `nodes` maps; every map points at two earlier maps, so most slots are
// references back into the tree.
std::unique_ptr<MemScene> SharedTree(int nodes) {
  auto scene = std::make_unique<MemScene>();
  std::vector<MemTexmap*> maps;
  std::mt19937 random(2);
  for (int i = 0; i < nodes; ++i) {
    MemTexmap& map = scene->AddMap("m" + std::to_string(i));
    map.data.className = u"Mix";
    AddBlock(map.data, {FloatParam(u"mixAmount", 0.5f)});
    for (int k = 0; k < 2 && i > 0; ++k)
      map.slots.push_back({u"Map", maps[random() % maps.size()]});
    maps.push_back(&map);
  }
  MemMtl& root = scene->AddMaterial("root");
  root.data.className = u"VRayMtl";
  for (auto it = maps.rbegin(); it != maps.rend(); ++it)
    root.slots.push_back({u"Map", *it});
  scene->AssignMissingHandles();
  return scene;
}

void BM_SharedTree(benchmark::State& state) {
  auto scene = SharedTree(static_cast<int>(state.range(0)));
  WriteContext context{*scene, 0};
  const MemMtl& root = *scene->materials().back();
  for (auto _ : state) {
    NodeTreeState tree;
    benchmark::DoNotOptimize(WriteNodeTree(context, tree, &root, 2).size());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SharedTree)->Arg(1250)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
