// The package's "lights" section: supported lights with their parameters, transforms, instance
// groups and embedded IES profiles.
#pragma once

#include <string>
#include <vector>

#include "graph/json_text.h"
#include "graph/write_context.h"
#include "host/file_system.h"
#include "host/node.h"

namespace orvane {

enum class LightKind {
  kNone = 0,
  kCoronaLight = 1,
  kCoronaSun = 2,
  kVRayLight = 3,
  kVRaySun = 4,
  kVRayIES = 5,
  kPhotometricLight = 6,
};

struct LightContext {
  const WriteContext& write;
  const host::FileSystem& files;
  double unitScale;  // metres per system unit
};

// ",\n  \"lights\": [...]", or empty text without lights; appends log lines either way.
std::u16string CollectLightsJson(const WriteContext& context, const host::FileSystem& files,
                                 std::vector<std::u16string>& log);

LightKind ClassifyLight(host::INode& node, host::TimeValue t);

// The "transform" member: position in metres, rotation, scale and the unscaled basis rows; with
// `withTarget` and a target node, the target's position too.
std::u16string WriteLightTransform(const WriteContext& context, host::INode& node, double unitScale,
                                   bool withTarget);

// Appends "ies_file" and "ies_data" (or "ies_error") for the path in `parameter`, and a log line.
void EmbedIesFile(FragmentList& fragments, const LightContext& context,
                  const host::Animatable& light, std::u16string_view parameter,
                  std::vector<std::u16string>& log, std::u16string_view nodeName);

// The text of an IES file of 1 byte to 1 MiB: UTF-8, else the ANSI code page; empty on failure.
std::u16string ReadIesText(const host::FileSystem& files, std::u16string_view path);

// The light kind's parameter members, the transform member last.
FragmentList WriteLightParams(const LightContext& context, LightKind kind, host::INode& node);

// Metres per system unit; 0.0254 when the host reports 0 or less.
double SceneUnitScale(host::Interface& scene);

}  // namespace orvane
