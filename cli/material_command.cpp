#include <ostream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "host/memory/scene_file.h"
#include "host/scene_walk.h"
#include "package/material_record.h"

namespace orvane::cli {

int RunMaterial(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 2) return UsageError(err, "expected: orvane material SCENE NODE");
  auto loaded = host::memory::LoadSceneFile(args[0]);
  if (!loaded.scene) {
    err << "orvane: " << loaded.error << "\n";
    return kExitFailure;
  }
  host::memory::MemScene& scene = *loaded.scene;
  std::u16string wanted = FromUtf8(args[1]);
  for (host::INode* node : ListSceneNodes(scene)) {
    if (node->GetName() != wanted) continue;
    WriteContext context{scene, scene.GetTime()};
    NodeTreeState state;
    std::vector<std::u16string> errors;
    std::string record;
    AppendMaterialRecord(context, state, node->GetMtl(), errors, record);
    out << record << "\n";
    return kExitOk;
  }
  err << "orvane: " << args[0] << ": no node named \"" << args[1] << "\"\n";
  return kExitFailure;
}

}  // namespace orvane::cli
