#include "pipeline/fbx_export.h"

namespace orvane {

bool ExportFbx(host::Interface& scene, const host::FileSystem& files, std::u16string_view path,
               std::u16string& message) {
  message.clear();
  if (!scene.ExportToFile(path, true)) {
    message =
        u"FBX export failed (FBX exporter not available or export was rejected \u2014 is the FBX "
        u"plugin installed in 3ds Max?)";
    return false;
  }
  if (!files.Exists(path)) {
    message = u"FBX was not created:\n" + std::u16string(path) +
              u"\n\nPossible reasons:\n\u2022 Exchange Folder is not accessible from Windows\n"
              u"\u2022 No write permissions\n\u2022 FBX export settings prohibit export";
    return false;
  }
  return true;
}

}  // namespace orvane
