// The host interface over 3ds Max's core interface: the open scene and the services around it.
#pragma once

#include "host/max/wrappers.h"

namespace orvane::host::max {

class MaxScene final : public host::Interface, public host::IFileResolutionManager {
 public:
  explicit MaxScene(::Interface& core) : core_(core) {}

  // Lets go of every wrapper: the user may delete anything between two sends, and the SDK may
  // then reuse an address for an object of another kind.
  void ForgetObjects() { objects_.Clear(); }

  TimeValue GetTime() const override { return core_.GetTime(); }
  host::INode* GetRootNode() override { return objects_.Node(core_.GetRootNode()); }
  double GetSystemUnitScale(UnitType unitType) const override;
  std::u16string GetCurFileName() const override { return Text(core_.GetCurFileName().data()); }
  std::u16string GetCurFilePath() const override { return Text(core_.GetCurFilePath().data()); }
  std::u16string GetDir(DirectoryCode which) const override { return Text(core_.GetDir(which)); }
  host::Color GetBackGround(TimeValue t) const override;
  bool GetUseEnvironmentMap() const override { return core_.GetUseEnvironmentMap() != FALSE; }
  host::Texmap* GetEnvironmentMap() const override {
    return objects_.Map(core_.GetEnvironmentMap());
  }
  bool ExportToFile(std::u16string_view path, bool suppressPrompts) override;
  ScriptResult ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                      bool wantResult) override;
  host::Animatable* GetAnimByHandle(AnimHandle handle) override;
  host::IFileResolutionManager* GetFileResolutionManager() override;
  void Log(LogType type, std::u16string_view title, std::u16string_view text) override;
  void DecomposeMatrix(const host::Matrix3& matrix, host::Point3& position, host::Quat& rotation,
                       host::Point3& scale) const override;

  std::u16string GetFullFilePath(std::u16string_view path, AssetType type) const override;

 private:
  ::Interface& core_;
  mutable MaxObjects objects_;
};

}  // namespace orvane::host::max
