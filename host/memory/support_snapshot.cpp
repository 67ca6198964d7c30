#include "host/memory/support_snapshot.h"

#include <algorithm>

#include "base/wide_text.h"
#include "host/memory/scene_file.h"

namespace orvane::host::memory {

namespace {

constexpr std::u16string_view kLogTitle = u"Orvane Platform";

}  // namespace

SupportSnapshot::SupportSnapshot(Interface& host, FileSystem& files, std::u16string folder,
                                 char16_t separator)
    : host_(host), files_(files), folder_(std::move(folder)), separator_(separator) {}

std::unique_ptr<SupportSnapshot> SupportSnapshot::FromEnvironment(
    Interface& host, FileSystem& files, const EnvironmentLookup& environment, char16_t separator) {
  std::optional<std::u16string> folder = environment(kSnapshotFolderVariable);
  if (!folder || folder->empty()) return nullptr;
  return std::make_unique<SupportSnapshot>(host, files, std::move(*folder), separator);
}

ScriptResult SupportSnapshot::ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                                     bool wantResult) {
  ScriptResult result = host_.ExecuteMAXScriptScript(script, quietErrors, wantResult);
  // The first answer stands: a replay answers each text the same way every time.
  if (scriptsSeen_.emplace(script).second) {
    ScriptRule rule;
    rule.contains.emplace_back(script);
    rule.fails = !result.succeeded;
    rule.reply = result.stringValue;
    scripts_.push_back(std::move(rule));
  }
  return result;
}

// The snapshot is for support: whatever goes wrong with it is logged and never stops the send.
template <class Step>
void SupportSnapshot::Guarded(std::u16string_view failure, Step step) noexcept {
  try {
    step();
  } catch (const std::exception& error) {
    snapshot_.reset();
    host_.Log(SYSLOG_WARN, kLogTitle, std::u16string(failure) + FromUtf8(error.what()));
  }
}

Animatable* SupportSnapshot::GetAnimByHandle(AnimHandle handle) {
  Animatable* found = host_.GetAnimByHandle(handle);
  // A replay must find it too, though nothing in the scene may lead to it.
  if (found != nullptr && snapshot_) {
    Guarded(u"The support snapshot was not taken: ", [&] { snapshot_->Add(*found); });
  }
  return found;
}

void SupportSnapshot::SceneReady() {
  Guarded(u"The support snapshot was not taken: ",
          [&] { snapshot_ = std::make_unique<SceneSnapshot>(host_); });
}

void SupportSnapshot::SendEnded(std::u16string_view jobName) noexcept {
  if (!snapshot_ || jobName.empty()) return;
  Guarded(u"The support snapshot was not written: ", [&] { Write(jobName); });
}

void SupportSnapshot::Write(std::u16string_view jobName) {
  // A rule matches any script that contains its text, so longer texts are tried first: no
  // script is then answered by the rule of a shorter script inside it.
  std::stable_sort(scripts_.begin(), scripts_.end(), [](const ScriptRule& a, const ScriptRule& b) {
    return a.contains.front().size() > b.contains.front().size();
  });
  std::unique_ptr<MemScene> scene = snapshot_->Release();
  snapshot_.reset();
  scene->scriptRules = std::move(scripts_);
  std::u16string path = folder_;
  if (path.back() != separator_) path += separator_;
  path += std::u16string(jobName) + u".scene.json";
  files_.CreateDirectory(folder_);
  if (files_.WriteBytes(path, WriteSceneText(*scene))) {
    host_.Log(SYSLOG_INFO, kLogTitle, u"Support snapshot written: " + path);
  } else {
    host_.Log(SYSLOG_WARN, kLogTitle, u"The support snapshot could not be written: " + path);
  }
}

}  // namespace orvane::host::memory
