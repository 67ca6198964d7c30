// The host application as the core sees it: the open scene and the services around it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/host_types.h"

namespace orvane::host {

class Animatable;
class INode;
class Texmap;

// Outcome of running a script: whether the run succeeded, and its value when that is a string.
struct ScriptResult {
  bool succeeded = false;
  std::optional<std::u16string> stringValue;
};

// Finds assets the way the host does (project folders, asset search paths).
class IFileResolutionManager {
 public:
  virtual ~IFileResolutionManager() = default;
  // The full path of `path` as an asset of `type`, or empty text when the host cannot place it.
  virtual std::u16string GetFullFilePath(std::u16string_view path, AssetType type) const = 0;
};

class Interface {
 public:
  virtual ~Interface() = default;

  virtual TimeValue GetTime() const = 0;
  virtual INode* GetRootNode() = 0;
  // Length of one system unit in `unitType` units; the host may answer 0 or less.
  virtual double GetSystemUnitScale(UnitType unitType) const = 0;

  // File name of the open scene (no folder); empty for an untitled scene.
  virtual std::u16string GetCurFileName() const = 0;
  // Full path of the open scene file; empty for an untitled scene.
  virtual std::u16string GetCurFilePath() const = 0;
  virtual std::u16string GetDir(DirectoryCode which) const = 0;

  virtual Color GetBackGround(TimeValue t) const = 0;
  virtual bool GetUseEnvironmentMap() const = 0;
  // May answer null.
  virtual Texmap* GetEnvironmentMap() const = 0;

  // Exports the whole scene with the exporter that the file extension selects.
  virtual bool ExportToFile(std::u16string_view path, bool suppressPrompts) = 0;

  // Runs a script. `quietErrors` keeps script errors out of dialogs; `wantResult` asks for the
  // script's value (only a string value is passed back).
  virtual ScriptResult ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                              bool wantResult) = 0;

  // May answer null when no animatable has the handle.
  virtual Animatable* GetAnimByHandle(AnimHandle handle) = 0;
  // May answer null when the service is not available.
  virtual IFileResolutionManager* GetFileResolutionManager() = 0;

  virtual void Log(LogType type, std::u16string_view title, std::u16string_view text) = 0;

  // Splits a transform into translation, rotation and scale, with the host's conventions.
  virtual void DecomposeMatrix(const Matrix3& matrix, Point3& position, Quat& rotation,
                               Point3& scale) const = 0;
};

}  // namespace orvane::host
