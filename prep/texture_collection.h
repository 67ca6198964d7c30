// Gathering every image file the export needs into the job folder's "textures" folder.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/file_system.h"
#include "host/interface.h"
#include "host/mtl.h"

namespace orvane {

struct TextureCollectResult {
  int32_t copied = 0;                   // copies issued, whatever each copy answered
  std::vector<std::u16string> missing;  // "Missing: " + file name, once per file
};

// The standard Bitmap map, CoronaBitmap, VRayBitmap and VRayHDRI: the maps whose file is copied.
bool IsFileTexmap(const host::Texmap& texmap);

// The text after the last "\" or "/"; the whole path when there is neither.
std::u16string FileNamePart(std::u16string_view path);

// Walks the materials of the scene's geometry nodes and then the environment map (each object
// once), resolves each file map's path (as it stands, then beside the scene file's path, then
// through the host's asset resolver) and copies it flat into jobFolder + "\textures", a later
// file overwriting an earlier one of the same name. Never fails: what cannot be found is listed.
TextureCollectResult CollectTextures(host::Interface& scene, host::FileSystem& files,
                                     std::u16string_view jobFolder);

}  // namespace orvane
