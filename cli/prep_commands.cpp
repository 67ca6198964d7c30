// Commands that run one preparation step of the send on a scene file, for users and support.
#include <filesystem>
#include <fstream>
#include <ostream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "cli/flags.h"
#include "cli/output_folder.h"
#include "host/memory/scene_file.h"
#include "host/memory/scene_summary.h"
#include "pipeline/fbx_export.h"
#include "prep/material_names.h"
#include "prep/multitexture_bake.h"
#include "prep/texture_collection.h"

namespace orvane::cli {

namespace {

// Flags plus exactly one scene, loaded; null (with the message written) on any fault.
std::unique_ptr<host::memory::MemScene> LoadOnly(const ParsedFlags& flags, std::ostream& err) {
  auto loaded = host::memory::LoadSceneFile(flags.positional[0]);
  if (!loaded.scene) err << "orvane: " << loaded.error << "\n";
  return std::move(loaded.scene);
}

ParsedFlags ParseSceneFlags(const std::vector<std::string>& args,
                            std::initializer_list<std::string_view> flags) {
  ParsedFlags parsed = ParseFlags(args, flags, flags);
  if (parsed.error.empty() && parsed.positional.size() != 1)
    parsed.error = "give exactly one SCENE";
  return parsed;
}

}  // namespace

int RunFbx(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseSceneFlags(args, {"-o"});
  if (!flags.error.empty()) return UsageError(err, flags.error);
  auto scene = LoadOnly(flags, err);
  if (!scene) return kExitFailure;
  std::filesystem::path file = flags.Get("-o");
  if (!MakeFolder(file.parent_path(), "the FBX file", err)) return kExitFailure;
  std::u16string message;
  if (!ExportFbx(*scene, scene->files, file.u16string(), message)) {
    err << "orvane: " << ToUtf8(message) << "\n";
    return kExitFailure;
  }
  out << "fbx: " << file.string() << "\n";
  return kExitOk;
}

int RunTextures(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseSceneFlags(args, {"--job"});
  if (!flags.error.empty()) return UsageError(err, flags.error);
  auto scene = LoadOnly(flags, err);
  if (!scene) return kExitFailure;
  std::filesystem::path job = flags.Get("--job");
  if (!MakeFolder(job, "the job", err)) return kExitFailure;
  TextureCollectResult result = CollectTextures(*scene, scene->files, job.u16string());
  out << "textures: " << (job / "textures").string() << "\ncopied: " << result.copied << "\n";
  for (const std::u16string& missing : result.missing)
    out << ToUtf8(missing) << "\n";
  return kExitOk;
}

int RunPrep(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseSceneFlags(args, {"-o"});
  if (!flags.error.empty()) return UsageError(err, flags.error);
  auto scene = LoadOnly(flags, err);
  if (!scene) return kExitFailure;
  std::filesystem::path file = flags.Get("-o");
  if (!MakeFolder(file.parent_path(), "the scene file", err)) return kExitFailure;

  for (const MtlRestoreEntry& entry : DeduplicateMaterialNames(*scene)) {
    out << "material renamed: \"" << ToUtf8(entry.previousName) << "\" -> \""
        << ToUtf8(entry.material->GetName()) << "\"\n";
  }
  BakeMultiTextureVC(*scene);
  for (const auto& line : scene->log)
    out << ToUtf8(line.text) << "\n";
  // The scene's file table names files relative to the scene file; written elsewhere, the
  // scene must still find them.
  std::filesystem::path from = std::filesystem::absolute(flags.positional[0]).parent_path();
  std::filesystem::path to = std::filesystem::absolute(file).parent_path();
  for (auto& [hostPath, local] : scene->fileAliases) {
    local = (from / local).lexically_normal().lexically_relative(to).generic_string();
  }
  std::ofstream written(file, std::ios::binary | std::ios::trunc);
  written << host::memory::WriteSceneText(*scene);
  written.close();
  if (!written) {
    err << "orvane: cannot write the scene to " << file.string() << "\n";
    return kExitFailure;
  }
  out << "meshes with vertex colours: "
      << host::memory::SummarizeScene(*scene).meshesWithVertexColors << "\nscene: " << file.string()
      << "\n";
  return kExitOk;
}

}  // namespace orvane::cli
