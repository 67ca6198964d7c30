#include "host/environment.h"
#include "pipeline/send_pipeline.h"
#include "plugin/panel_services.h"

namespace orvane::plugin {

void RunSendFromPanel(PanelView& panel, PanelState& state, PanelServices& services) {
  SendContext context{*services.scene,
                      *services.files,
                      *services.http,
                      panel,
                      state,
                      *services.nodeTrees,
                      services.serviceUrl,
                      services.dashboardUrl,
                      services.tickCount,
                      host::ReadProcessEnvironment,
                      u'\\'};
  RunSendPipeline(context);
}

}  // namespace orvane::plugin
