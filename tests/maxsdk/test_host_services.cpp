// The host's part for the plug-in module built against the SDK stand-ins: an empty in-memory
// scene whose settings folder is the temporary folder, and WinHTTP.
#include <filesystem>
#include <memory>

#include "graph/node_tree.h"
#include "host/memory/scene_file.h"
#include "plugin/host_services.h"
#include "service/service_config.h"
#include "service/winhttp_client.h"

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
