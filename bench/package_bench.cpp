// Times BuildPackage on scene files and reports the builder's own peak memory against the size
// of the package it wrote. Usage: package_bench OUTPUT_FOLDER SCENE... ; with "--boxes N" as a
// scene, a scene of N objects all named "Box" is built in memory instead.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "host/memory/scene_file.h"
#include "package/package_builder.h"

namespace {

namespace fs = std::filesystem;
using namespace orvane;

// The process's resident set and its high-water mark, in KiB.
long StatusKib(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(field, 0) == 0) return std::stol(line.substr(std::string(field).size()));
  }
  return -1;
}

void ResetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

std::unique_ptr<host::memory::MemScene> Boxes(int count) {
  std::string nodes;
  for (int i = 0; i < count; ++i) {
    nodes += (i ? "," : "") + std::string(R"({"id": "n)") + std::to_string(i) +
             R"(", "name": "Box", "object": "o", "material": "m"})";
  }
  auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "nodes": [)" + nodes + R"(],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry",
                   "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}}],
      "materials": [{"id": "m", "class": "VRayMtl", "name": "M"}]})",
                                            ".");
  return std::move(loaded.scene);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: package_bench OUTPUT_FOLDER SCENE... (or --boxes N)\n";
    return 2;
  }
  fs::path output = argv[1];
  fs::create_directories(output);
  std::printf("%-28s %10s %9s %12s %12s %9s\n", "scene", "objects", "seconds", "package MB",
              "builder MB", "x package");
  for (int i = 2; i < argc; ++i) {
    std::string label = argv[i];
    std::unique_ptr<host::memory::MemScene> scene;
    if (label == "--boxes" && i + 1 < argc) {
      label = std::string("boxes-") + argv[++i];
      scene = Boxes(std::stoi(argv[i]));
    } else {
      auto loaded = host::memory::LoadSceneFile(label);
      if (!loaded.scene) {
        std::cerr << loaded.error << "\n";
        return 1;
      }
      scene = std::move(loaded.scene);
      label = fs::path(label).filename().string();
    }
    fs::path document = output / (label + ".json");
    long before = StatusKib("VmRSS:");
    ResetPeak();
    auto start = std::chrono::steady_clock::now();
    NodeTreeState state;
    BuildResult result =
        BuildPackage(WriteContext{*scene, scene->GetTime()}, scene->files, state, document.u16string());
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    long peak = StatusKib("VmHWM:");
    double packageMb = static_cast<double>(fs::file_size(document)) / 1e6;
    double builderMb = static_cast<double>(peak - before) * 1024 / 1e6;
    std::printf("%-28s %10d %9.2f %12.1f %12.1f %9.2f\n", label.c_str(), result.objectCount, seconds,
                packageMb, builderMb, builderMb / packageMb);
  }
  return 0;
}
