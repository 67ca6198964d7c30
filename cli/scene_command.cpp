#include <ostream>

#include "cli/commands.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_summary.h"

namespace orvane::cli {

using host::memory::LoadSceneFile;

int RunSceneCheck(const std::vector<std::string>& files, std::ostream& out, std::ostream& err) {
  int exitCode = kExitOk;
  for (const std::string& file : files) {
    auto result = LoadSceneFile(file);
    if (!result.scene) {
      err << "orvane: " << result.error << "\n";
      exitCode = kExitFailure;
      continue;
    }
    out << file << ": ok\n"
        << host::memory::FormatSceneSummary(host::memory::SummarizeScene(*result.scene));
  }
  return exitCode;
}

}  // namespace orvane::cli
