// Scene files: JSON descriptions of a scene ("format": "orvane-scene/1") that load into the
// in-memory host. The format is documented in docs/scene-file.md.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/memory/memory_scene.h"

namespace orvane::host::memory {

inline constexpr std::string_view kSceneFormat = "orvane-scene/1";

struct SceneLoadResult {
  std::unique_ptr<MemScene> scene;  // null on failure
  std::string error;                // "<JSON path>: <what is wrong>" on failure
};

// Loading is all or nothing: a scene with any error yields no scene at all. Paths in the
// scene's "files" table are relative to `folder` (the scene file's folder).
// readableBeyond: bytes after the text that may be read; see kParsePadding.
SceneLoadResult LoadSceneText(std::string_view text, const std::filesystem::path& folder,
                              size_t readableBeyond = 0);
SceneLoadResult LoadSceneFile(const std::filesystem::path& file);

// The scene as it is now (after whatever the core changed), in the same format.
std::string WriteSceneText(const MemScene& scene);

}  // namespace orvane::host::memory
