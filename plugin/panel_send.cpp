#include "host/environment.h"
#include "host/memory/support_snapshot.h"
#include "pipeline/send_pipeline.h"
#include "plugin/panel_services.h"

namespace orvane::plugin {

void RunSendFromPanel(PanelView& panel, PanelState& state, PanelServices& services) {
  struct EndOfSend {
    const std::function<void()>& sendEnded;
    ~EndOfSend() {
      if (sendEnded) sendEnded();
    }
  } endOfSend{services.sendEnded};
  auto snapshot = host::memory::SupportSnapshot::FromEnvironment(
      *services.scene, *services.files, host::ReadProcessEnvironment, u'\\');
  SendContext context{snapshot ? static_cast<host::Interface&>(*snapshot) : *services.scene,
                      *services.files,
                      *services.http,
                      panel,
                      state,
                      *services.nodeTrees,
                      services.serviceUrl,
                      services.dashboardUrl,
                      services.tickCount,
                      host::ReadProcessEnvironment,
                      u'\\',
                      snapshot.get()};
  RunSendPipeline(context);
}

}  // namespace orvane::plugin
