#include <filesystem>
#include <ostream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "cli/flags.h"
#include "cli/output_folder.h"
#include "cli/scene_disposal.h"
#include "host/memory/scene_file.h"
#include "package/package_builder.h"

namespace orvane::cli {

int RunPackage(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseFlags(args, {"-o"}, {"-o"});
  if (flags.error.empty() && flags.positional.size() != 1) flags.error = "give exactly one SCENE";
  if (!flags.error.empty()) return UsageError(err, flags.error);
  auto loaded = host::memory::LoadSceneFile(flags.positional[0]);
  if (!loaded.scene) {
    err << "orvane: " << loaded.error << "\n";
    return kExitFailure;
  }
  if (!MakeFolder(std::filesystem::path(flags.Get("-o")).parent_path(), "the package", err)) {
    return kExitFailure;
  }
  host::memory::MemScene& scene = *loaded.scene;
  std::u16string document = FromUtf8(flags.Get("-o"));
  NodeTreeState state;
  BuildResult result =
      BuildPackage(WriteContext{scene, scene.GetTime()}, scene.files, state, document);
  if (!result.success) {
    err << "orvane: cannot write the package to " << flags.Get("-o")
        << ": the path is not a writable file, or the disk is full (nothing written)\n";
    return kExitFailure;
  }
  out << "package: " << flags.Get("-o") << "\nlog: " << ToUtf8(LogPathFor(document))
      << "\nobjects: " << result.objectCount << "\nlog lines: " << result.logLineCount << "\n";
  LetGoOfScene(std::move(loaded.scene));
  return kExitOk;
}

}  // namespace orvane::cli
