// The host's part inside 3ds Max: the scene through the SDK adapter, the local file system,
// WinHTTP and the system's tick count.
#include "graph/node_tree.h"
#include "host/local_file_system.h"
#include "host/max/max_scene.h"
#include "plugin/host_services.h"
#include "service/service_config.h"
#include "service/winhttp_client.h"

namespace orvane::plugin {

PanelServices& HostPanelServices() {
  static host::max::MaxScene scene(*GetCOREInterface());
  static host::LocalFileSystem files;
  static WinHttpClient http;
  static NodeTreeState trees;
  static PanelServices services = [] {
    PanelServices made;
    made.scene = &scene;
    made.files = &files;
    made.http = &http;
    made.nodeTrees = &trees;
    made.serviceUrl = kServiceBaseUrl;
    made.dashboardUrl = kDashboardUrl;
    made.tickCount = [] { return static_cast<uint64_t>(GetTickCount64()); };
    made.sendEnded = [] { scene.ForgetObjects(); };
    return made;
  }();
  return services;
}

}  // namespace orvane::plugin
