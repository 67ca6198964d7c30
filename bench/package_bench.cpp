// Times BuildPackage on scene files and reports the builder's own peak memory (the most it held
// through operator new beyond what the loaded scene held) against the size of the package it
// wrote. Usage: package_bench [--repeat N] OUTPUT_FOLDER SCENE... ; with
// "--boxes N" as a scene, a scene of N objects all named "Box" is built in memory instead. Each
// build runs N times on a freshly loaded scene; the fastest run is reported, since wall time on a
// shared machine only ever errs upwards. Two floors are measured in the same run: the writer floor,
// what this machine needs to produce the same JSON from its values in a tight loop (strings
// escaped, numbers formatted, the rest copied) and write it, and the copy floor, what it needs
// to append the package's own bytes record-sized piece by piece and write them. "x writer" and
// "x copy" are the build against each.
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "base/process_heap.h"
#include "bench/json_writer_floor.h"
#include "bench/live_heap.h"
#include "host/local_file_system.h"
#include "host/memory/scene_file.h"
#include "package/package_builder.h"

namespace {

namespace fs = std::filesystem;
using namespace orvane;

std::unique_ptr<host::memory::MemScene> Boxes(int count) {
  std::string nodes;
  for (int i = 0; i < count; ++i) {
    nodes += (i ? "," : "") + std::string(R"({"id": "n)") + std::to_string(i) +
             R"(", "name": "Box", "object": "o", "material": "m"})";
  }
  auto loaded =
      host::memory::LoadSceneText(R"({"format": "orvane-scene/1", "nodes": [)" + nodes + R"(],
      "objects": [{"id": "o", "class": "Box", "superClass": "geometry",
                   "mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}}],
      "materials": [{"id": "m", "class": "VRayMtl", "name": "M"}]})",
                                  ".");
  return std::move(loaded.scene);
}

struct Measurement {
  int objects = 0;
  double loadSeconds = 0, seconds = 0, packageMb = 0, builderMb = 0, copySeconds = 0,
         writerSeconds = 0;
};

double Seconds(std::chrono::steady_clock::time_point since) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

// Appends the package's bytes in 2 KiB pieces (about one object record) to a growing text and
// writes it, as a builder that did nothing but copy its output would.
double CopyFloorSeconds(const std::string& package, const fs::path& scratch) {
  constexpr size_t kPiece = 2048;
  auto start = std::chrono::steady_clock::now();
  std::string text;
  for (size_t at = 0; at < package.size(); at += kPiece)
    text.append(package, at, kPiece);
  std::ofstream(scratch, std::ios::binary | std::ios::trunc) << text;
  return Seconds(start);
}

// Writes the package's values as JSON and writes the text, as a builder that had every value at
// hand would. Stops the benchmark if the text it wrote is not about the package's size, since the
// floor would then measure something else.
double WriterFloorSeconds(const std::string& package, const fs::path& scratch) {
  bench::JsonValues values = bench::SplitJson(package);
  auto start = std::chrono::steady_clock::now();
  std::string text;
  bench::WriteJsonValues(values, text);
  std::ofstream(scratch, std::ios::binary | std::ios::trunc) << text;
  double seconds = Seconds(start);
  double ratio = static_cast<double>(text.size()) / static_cast<double>(package.size());
  if (ratio < 0.99 || ratio > 1.01) {
    std::fprintf(stderr, "the writer floor wrote %zu bytes for a package of %zu\n", text.size(),
                 package.size());
    std::exit(1);
  }
  return seconds;
}

Measurement BuildOnce(host::memory::MemScene& scene, const fs::path& document) {
  // The build and both floors each write a new file: replacing one would add the file system's
  // work of letting go of the old one (tens of milliseconds for 176 MB) to some of them only.
  fs::remove(document);
  size_t before = bench::LiveHeapBytes();
  bench::ResetPeakHeapBytes();
  auto start = std::chrono::steady_clock::now();
  NodeTreeState state;
  BuildResult result =
      BuildPackage(WriteContext{scene, scene.GetTime()}, scene.files, state, document.u16string());
  Measurement measured;
  measured.seconds = Seconds(start);
  measured.builderMb = static_cast<double>(bench::PeakHeapBytes() - before) / 1e6;
  measured.packageMb = static_cast<double>(fs::file_size(document)) / 1e6;
  measured.objects = result.objectCount;
  fs::path scratch = document;
  scratch.replace_extension(".floor");
  std::string package =
      host::LocalFileSystem().ReadBytes(document.u16string(), UINT64_MAX).value_or("");
  measured.copySeconds = CopyFloorSeconds(package, scratch);
  fs::remove(scratch);
  measured.writerSeconds = WriterFloorSeconds(package, scratch);
  fs::remove(scratch);
  return measured;
}

}  // namespace

int main(int argc, char** argv) {
  PrepareProcessHeap(argv);  // as the orvane tool does, so both measure one heap
  std::vector<std::string> args(argv + 1, argv + argc);
  int repeat = 1;
  if (args.size() >= 2 && args[0] == "--repeat") {
    repeat = std::max(1, std::stoi(args[1]));
    args.erase(args.begin(), args.begin() + 2);
  }
  if (args.size() < 2) {
    std::cerr << "usage: package_bench [--repeat N] OUTPUT_FOLDER SCENE... (or --boxes N)\n";
    return 2;
  }
  fs::path output = args[0];
  fs::create_directories(output);
  std::printf("%-24s %8s %7s %8s %9s %9s %7s %7s %11s %11s %9s\n", "scene", "objects", "load s",
              "seconds", "writer s", "x writer", "copy s", "x copy", "package MB", "builder MB",
              "x package");
  for (size_t i = 1; i < args.size(); ++i) {
    std::string source = args[i], boxes;
    if (source == "--boxes" && i + 1 < args.size()) boxes = args[++i];
    std::string label = boxes.empty() ? fs::path(source).filename().string() : "boxes-" + boxes;
    Measurement best;
    for (int run = 0; run < repeat; ++run) {
      std::unique_ptr<host::memory::MemScene> scene;
      auto loadStart = std::chrono::steady_clock::now();
      if (!boxes.empty()) {
        scene = Boxes(std::stoi(boxes));
      } else {
        auto loaded = host::memory::LoadSceneFile(source);
        if (!loaded.scene) {
          std::cerr << loaded.error << "\n";
          return 1;
        }
        scene = std::move(loaded.scene);
      }
      double loadSeconds = Seconds(loadStart);
      Measurement measured = BuildOnce(*scene, output / (label + ".json"));
      if (run == 0 || loadSeconds < best.loadSeconds) best.loadSeconds = loadSeconds;
      if (run == 0 || measured.seconds < best.seconds) best.seconds = measured.seconds;
      if (run == 0 || measured.copySeconds < best.copySeconds)
        best.copySeconds = measured.copySeconds;
      if (run == 0 || measured.writerSeconds < best.writerSeconds)
        best.writerSeconds = measured.writerSeconds;
      best.objects = measured.objects;
      best.packageMb = measured.packageMb;
      best.builderMb = std::max(best.builderMb, measured.builderMb);
    }
    std::printf("%-24s %8d %7.3f %8.3f %9.3f %9.2f %7.3f %7.2f %11.1f %11.1f %9.2f\n",
                label.c_str(), best.objects, best.loadSeconds, best.seconds, best.writerSeconds,
                best.seconds / best.writerSeconds, best.copySeconds,
                best.seconds / best.copySeconds, best.packageMb, best.builderMb,
                best.builderMb / best.packageMb);
  }
  return 0;
}
