// Support's copy of a send. When the environment variable ORVANE_SNAPSHOT_DIR names a folder,
// the send runs on a SupportSnapshot: it passes every call on to the host, notes every script
// the send runs with the host's answer, copies the scene when the send says it is ready for
// export (and later whatever the send finds by handle), and when the send ends writes all of it
// into that folder as the scene file
// "<job name>.scene.json". `orvane send` on that file replays the send on any machine.
#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/environment.h"
#include "host/file_system.h"
#include "host/interface.h"
#include "host/memory/memory_scene.h"
#include "host/memory/scene_snapshot.h"
#include "pipeline/send_pipeline.h"

namespace orvane::host::memory {

inline constexpr std::u16string_view kSnapshotFolderVariable = u"ORVANE_SNAPSHOT_DIR";

class SupportSnapshot final : public Interface, public SendObserver {
 public:
  // `separator` joins the folder and the file name, as the send joins its job folder.
  SupportSnapshot(Interface& host, FileSystem& files, std::u16string folder, char16_t separator);

  // The snapshot the environment asks for, or null when ORVANE_SNAPSHOT_DIR is unset or empty.
  static std::unique_ptr<SupportSnapshot> FromEnvironment(Interface& host, FileSystem& files,
                                                          const EnvironmentLookup& environment,
                                                          char16_t separator);

  void SceneReady() override;
  void SendEnded(std::u16string_view jobName) noexcept override;

  ScriptResult ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                      bool wantResult) override;

  // Everything else is the host's.
  TimeValue GetTime() const override { return host_.GetTime(); }
  INode* GetRootNode() override { return host_.GetRootNode(); }
  double GetSystemUnitScale(UnitType unitType) const override {
    return host_.GetSystemUnitScale(unitType);
  }
  std::u16string GetCurFileName() const override { return host_.GetCurFileName(); }
  std::u16string GetCurFilePath() const override { return host_.GetCurFilePath(); }
  std::u16string GetDir(DirectoryCode which) const override { return host_.GetDir(which); }
  Color GetBackGround(TimeValue t) const override { return host_.GetBackGround(t); }
  bool GetUseEnvironmentMap() const override { return host_.GetUseEnvironmentMap(); }
  Texmap* GetEnvironmentMap() const override { return host_.GetEnvironmentMap(); }
  bool ExportToFile(std::u16string_view path, bool suppressPrompts) override {
    return host_.ExportToFile(path, suppressPrompts);
  }
  Animatable* GetAnimByHandle(AnimHandle handle) override;
  IFileResolutionManager* GetFileResolutionManager() override {
    return host_.GetFileResolutionManager();
  }
  void Log(LogType type, std::u16string_view title, std::u16string_view text) override {
    host_.Log(type, title, text);
  }
  void DecomposeMatrix(const Matrix3& matrix, Point3& position, Quat& rotation,
                       Point3& scale) const override {
    host_.DecomposeMatrix(matrix, position, rotation, scale);
  }

 private:
  void Write(std::u16string_view jobName);
  template <class Step>
  void Guarded(std::u16string_view failure, Step step) noexcept;

  Interface& host_;
  FileSystem& files_;
  std::u16string folder_;
  char16_t separator_;
  std::unique_ptr<SceneSnapshot> snapshot_;
  std::vector<ScriptRule> scripts_;
  std::unordered_set<std::u16string> scriptsSeen_;
};

}  // namespace orvane::host::memory
