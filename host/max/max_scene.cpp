#include "host/max/max_scene.h"

namespace orvane::host::max {

double MaxScene::GetSystemUnitScale(UnitType unitType) const {
  return ::GetSystemUnitScale(unitType);
}

host::Color MaxScene::GetBackGround(TimeValue t) const {
  Interval valid = FOREVER;
  ::Point3 colour = core_.GetBackGround(t, valid);
  return {colour.x, colour.y, colour.z};
}

bool MaxScene::ExportToFile(std::u16string_view path, bool suppressPrompts) {
  return core_.ExportToFile(SdkText(path).c_str(), suppressPrompts ? TRUE : FALSE) != FALSE;
}

ScriptResult MaxScene::ExecuteMAXScriptScript(std::u16string_view script, bool quietErrors,
                                              bool wantResult) {
  // Not settled: which ScriptSource a plug-in's own scripts should name; NotSpecified leaves the
  // host's safe-scene-script checks to their defaults.
  FPValue value;
  BOOL succeeded =
      ::ExecuteMAXScriptScript(SdkText(script).c_str(), MAXScript::ScriptSource::NotSpecified,
                               quietErrors ? TRUE : FALSE, wantResult ? &value : nullptr);
  ScriptResult result;
  result.succeeded = succeeded != FALSE;
  if (!result.succeeded || !wantResult) return result;
  switch (static_cast<int>(value.type)) {
    case TYPE_STRING: result.stringValue = Text(value.s); break;
    case TYPE_TSTR:
    case TYPE_TSTR_BV:
    case TYPE_TSTR_BR:
      if (value.tstr != nullptr) result.stringValue = Text(value.tstr->data());
      break;
    default: break;  // a value that is not a string is passed on as none
  }
  return result;
}

host::Animatable* MaxScene::GetAnimByHandle(AnimHandle handle) {
  return objects_.Any(::Animatable::GetAnimByHandle(static_cast<::AnimHandle>(handle)));
}

host::IFileResolutionManager* MaxScene::GetFileResolutionManager() {
  return ::IFileResolutionManager::GetInstance() != nullptr ? this : nullptr;
}

std::u16string MaxScene::GetFullFilePath(std::u16string_view path, AssetType type) const {
  ::IFileResolutionManager* resolver = ::IFileResolutionManager::GetInstance();
  if (resolver == nullptr) return {};
  MSTR full = resolver->GetFullFilePath(SdkText(path).c_str(),
                                        static_cast<MaxSDK::AssetManagement::AssetType>(type));
  return Text(full.data());
}

void MaxScene::Log(LogType type, std::u16string_view title, std::u16string_view text) {
  LogSys* log = core_.Log();
  if (log == nullptr) return;
  // The text goes in as an argument, never as the format: it may hold a "%".
  log->LogEntry(static_cast<DWORD>(type), NO_DIALOG, SdkText(title).c_str(), L"%s",
                SdkText(text).c_str());
}

void MaxScene::DecomposeMatrix(const host::Matrix3& matrix, host::Point3& position,
                               host::Quat& rotation, host::Point3& scale) const {
  // Not settled: the four-row Matrix3 constructor and Quat's public x, y, z, w.
  ::Matrix3 sdk(ToSdk(matrix.rows[0]), ToSdk(matrix.rows[1]), ToSdk(matrix.rows[2]),
                ToSdk(matrix.rows[3]));
  ::Point3 p, s;
  ::Quat q;
  ::DecomposeMatrix(sdk, p, q, s);
  position = FromSdk(p);
  scale = FromSdk(s);
  rotation = {q.x, q.y, q.z, q.w};
}

}  // namespace orvane::host::max
