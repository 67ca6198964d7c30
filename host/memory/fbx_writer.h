// The in-memory host's FBX export: the scene's nodes and meshes as binary FBX (version 7.4),
// enough for Blender's importer to rebuild names, hierarchy, transforms, materials per face and
// vertex colours. See docs/fbx-export.md.
#pragma once

#include <string>

namespace orvane::host::memory {

class MemScene;

// The whole file.
std::string WriteFbx(MemScene& scene);

}  // namespace orvane::host::memory
