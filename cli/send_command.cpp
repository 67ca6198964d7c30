// `orvane send`: "Export && Send" on a scene file, with a console panel.
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <ostream>

#include "base/wide_text.h"
#include "cli/commands.h"
#include "cli/console_panel.h"
#include "cli/flags.h"
#include "cli/output_folder.h"
#include "cli/user_settings.h"
#include "host/environment.h"
#include "host/forwarding_file_system.h"
#include "host/memory/scene_file.h"
#include "host/memory/support_snapshot.h"
#include "pipeline/ini_settings.h"
#include "pipeline/panel_logic.h"
#include "pipeline/scene_scripts.h"
#include "pipeline/send_pipeline.h"
#include "service/curl_http_client.h"
#include "service/service_config.h"

namespace orvane::cli {

namespace {

namespace fs = std::filesystem;

// Which script a run was, for the event trace.
std::string ScriptName(std::u16string_view script) {
  if (script == kSplineCopiesScript) return "spline copies";
  if (script == kSplineRestoreScript) return "spline restore";
  if (script == kGeometryBakeScript) return "geometry bake";
  if (script == kVRayConvertScript) return "V-Ray conversion";
  return "probe";
}

// Deletions reach the event trace; everything else passes through.
class TracedFileSystem final : public host::ForwardingFileSystem {
 public:
  TracedFileSystem(host::FileSystem& inner, ConsolePanel*& panel)
      : ForwardingFileSystem(inner), panel_(panel) {}
  bool DeleteFile(std::u16string_view path) override {
    bool deleted = inner_.DeleteFile(path);
    if (deleted && panel_ != nullptr) panel_->Note("deleted", ToUtf8(path));
    return deleted;
  }

 private:
  ConsolePanel*& panel_;
};

enum class Outcome { kAccepted, kRefused, kNotSent };

Outcome OutcomeOf(const std::u16string& status) {
  if (status.starts_with(u"Done  OK")) return Outcome::kAccepted;
  if (status == u"Insufficient balance." || status.starts_with(u"Send failed (")) {
    return Outcome::kRefused;
  }
  return Outcome::kNotSent;
}

void PrintTimings(const ConsolePanel& panel, std::ostream& out) {
  auto steps = panel.StepTimes();
  double total = 0;
  for (const auto& [text, seconds] : steps)
    total += seconds;
  out << "timings (total " << total << " s):\n";
  for (const auto& [text, seconds] : steps) {
    char line[64];
    std::snprintf(line, sizeof line, "  %6.3f s  %5.1f%%  ", seconds,
                  total > 0 ? 100 * seconds / total : 0.0);
    out << line << ToUtf8(text) << "\n";
  }
}

}  // namespace

int RunSend(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  ParsedFlags flags = ParseFlags(
      args,
      {"--exchange", "--token", "--service", "--target", "--ca-file", "--events", "--save-scene"},
      {}, {"--bake-geometry", "--yes", "--no", "--timings"});
  if (flags.error.empty() && flags.positional.size() != 1) flags.error = "give exactly one SCENE";
  if (flags.error.empty() && flags.Has("--target") && flags.Get("--target") != "5.1" &&
      flags.Get("--target") != "5.2") {
    flags.error = "--target must be 5.1 or 5.2";
  }
  if (flags.error.empty() && flags.Has("--yes") && flags.Has("--no")) {
    flags.error = "give --yes or --no, not both";
  }
  if (!flags.error.empty()) return UsageError(err, flags.error);

  auto loaded = host::memory::LoadSceneFile(flags.positional[0]);
  if (!loaded.scene) {
    err << "orvane: " << loaded.error << "\n";
    return kExitFailure;
  }
  host::memory::MemScene& scene = *loaded.scene;

  fs::path settingsFile = UserSettingsFile();
  if (!MakeFolder(settingsFile.parent_path(), "the settings file", err)) return kExitFailure;
  IniSettingsStore settings(settingsFile);

  std::ofstream eventsFile;
  if (flags.Has("--events")) {
    eventsFile.open(flags.Get("--events"), std::ios::trunc);
    if (!eventsFile) {
      err << "orvane: cannot write the event trace to " << flags.Get("--events") << "\n";
      return kExitFailure;
    }
  }
  ConsolePanel* tracing = nullptr;
  uint64_t scriptsSeen = 0;
  ConsolePanel::Options options;
  options.terminal = &out == &std::cout && isatty(STDOUT_FILENO);
  if (flags.Has("--yes")) options.answer = MessageAnswer::kYes;
  if (flags.Has("--no")) options.answer = MessageAnswer::kNo;
  if (isatty(STDIN_FILENO)) options.in = &std::cin;
  options.events = eventsFile.is_open() ? &eventsFile : nullptr;
  options.beforeEvent = [&] {
    // The scene keeps only its latest runs; those older than what it keeps are counted, unnamed.
    for (; scriptsSeen < scene.scriptRunCount; ++scriptsSeen) {
      uint64_t fromEnd = scene.scriptRunCount - scriptsSeen;
      size_t kept = scene.scriptsRun.size();
      tracing->Note("script", fromEnd <= kept ? ScriptName(scene.scriptsRun[kept - fromEnd].script)
                                              : std::string("(not kept)"));
    }
  };
  ConsolePanel panel(out, options);
  tracing = &panel;

  // The panel opens with the file's settings; what the command line says is what the user
  // would have typed or clicked, and is remembered the same way.
  LoadPanelSettings(panel, settings);
  if (flags.Has("--exchange")) {
    panel.SetText(control::kExchangeFolder, FromUtf8(flags.Get("--exchange")));
    OnFolderEdited(panel, settings);
  }
  if (flags.Has("--target")) {
    panel.SetChecked(control::kTargetA, flags.Get("--target") == "5.1");
    panel.SetChecked(control::kTargetB, flags.Get("--target") == "5.2");
    OnTargetClicked(panel, settings);
  }
  if (flags.Has("--token")) {
    panel.SetText(control::kToken, FromUtf8(flags.Get("--token")));
    settings.Write(u"apiToken", TrimWhitespace(panel.GetText(control::kToken)));
  } else if (auto token = host::ReadProcessEnvironment(u"ORVANE_TOKEN")) {
    panel.SetText(control::kToken, *token);
  }
  panel.SetChecked(control::kBakeGeometry, flags.Has("--bake-geometry"));

  CurlHttpClient http(flags.Has("--ca-file") ? flags.Get("--ca-file") : std::string());
  TracedFileSystem files(scene.files, tracing);
  PanelState state;
  NodeTreeState trees;
  char16_t separator = static_cast<char16_t>(fs::path::preferred_separator);
  auto snapshot = host::memory::SupportSnapshot::FromEnvironment(
      scene, files, host::ReadProcessEnvironment, separator);
  SendContext context{
      snapshot ? static_cast<host::Interface&>(*snapshot) : scene,
      files,
      http,
      panel,
      state,
      trees,
      flags.Has("--service") ? FromUtf8(flags.Get("--service")) : std::u16string(kServiceBaseUrl),
      std::u16string(kDashboardUrl),
      [] {
        return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                         std::chrono::steady_clock::now().time_since_epoch())
                                         .count());
      },
      host::ReadProcessEnvironment,
      separator,
      snapshot.get()};
  try {
    RunSendPipeline(context);
  } catch (const std::exception& error) {
    panel.Finish();
    err << "orvane: the send stopped: " << error.what() << "\n";
    return kExitFailure;
  }
  if (options.beforeEvent) options.beforeEvent();
  panel.Finish();

  if (flags.Has("--save-scene")) {
    std::ofstream saved(flags.Get("--save-scene"), std::ios::binary | std::ios::trunc);
    saved << host::memory::WriteSceneText(scene);
    if (!saved) err << "orvane: cannot write the scene to " << flags.Get("--save-scene") << "\n";
  }
  if (flags.Has("--timings")) PrintTimings(panel, out);

  switch (OutcomeOf(panel.GetText(control::kStatusLine1))) {
    case Outcome::kAccepted: return kExitOk;
    case Outcome::kRefused: err << "orvane: the service refused the job\n"; return kExitFailure;
    case Outcome::kNotSent: break;
  }
  err << "orvane: nothing was sent\n";
  return kExitFailure;
}

}  // namespace orvane::cli
