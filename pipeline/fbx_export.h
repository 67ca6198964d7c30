// The scene written as FBX into the job folder through the host's own exporter.
#pragma once

#include <string>
#include <string_view>

#include "host/file_system.h"
#include "host/interface.h"

namespace orvane {

// Exports the whole scene with the exporter the ".fbx" extension selects and the user's own FBX
// settings. On failure `message` says which of the two ways it failed (the exporter refused, or
// claimed success and wrote nothing); it is empty on success.
bool ExportFbx(host::Interface& scene, const host::FileSystem& files, std::u16string_view path,
               std::u16string& message);

}  // namespace orvane
