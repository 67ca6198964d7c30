// The host's part for the plug-in module built against the SDK stand-ins: a core interface that
// has no main window, and for the panel an empty in-memory scene whose settings folder is the
// temporary folder, and WinHTTP.
#include <filesystem>
#include <memory>

#include "graph/node_tree.h"
#include "host/memory/scene_file.h"
#include "plugin/host_services.h"
#include "service/service_config.h"
#include "service/winhttp_client.h"

// Included after the host's own headers: the SDK's macros carry some of their names.
#include <max.h>

namespace {

// Only the main window is ever asked for, by the utility when it opens the panel.
class TestInterface final : public Interface {
 public:
  HWND GetMAXHWnd() const override { return nullptr; }
  TimeValue GetTime() override { return 0; }
  INode* GetRootNode() override { return nullptr; }
  const MCHAR* GetDir(int) override { return L""; }
  MSTR& GetCurFileName() override { return name_; }
  MSTR& GetCurFilePath() override { return name_; }
  BOOL ExportToFile(const MCHAR*, BOOL, DWORD, Class_ID*) override { return FALSE; }
  Point3 GetBackGround(TimeValue, Interval&) override { return {}; }
  BOOL GetUseEnvironmentMap() override { return FALSE; }
  Texmap* GetEnvironmentMap() override { return nullptr; }
  LogSys* Log() override { return nullptr; }

 private:
  MSTR name_;
};

}  // namespace

Interface* GetCOREInterface() {
  static TestInterface core;
  return &core;
}

namespace orvane::plugin {

PanelServices& HostPanelServices() {
  static std::unique_ptr<host::memory::MemScene> scene = [] {
    auto loaded = host::memory::LoadSceneText(R"({"format": "orvane-scene/1"})", ".");
    loaded.scene->settingsDirectory = std::filesystem::temp_directory_path().u16string();
    return std::move(loaded.scene);
  }();
  static WinHttpClient http;
  static NodeTreeState trees;
  static PanelServices services = [] {
    PanelServices made;
    made.scene = scene.get();
    made.files = &scene->files;
    made.http = &http;
    made.nodeTrees = &trees;
    made.serviceUrl = kServiceBaseUrl;
    made.dashboardUrl = kDashboardUrl;
    made.tickCount = [] { return uint64_t{0}; };
    return made;
  }();
  return services;
}

}  // namespace orvane::plugin
