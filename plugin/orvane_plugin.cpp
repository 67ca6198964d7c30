#include "plugin/orvane_plugin.h"

#include "plugin/host_services.h"
#include "plugin/module_state.h"
#include "plugin/panel_window.h"

namespace orvane::plugin {

namespace {

OrvaneUtility gUtility;
OrvaneClassDesc gClassDesc;

}  // namespace

void OrvaneUtility::BeginEditParams(Interface*, IUtil*) {
  OpenPanel(gModuleInstance, GetCOREInterface()->GetMAXHWnd(), HostPanelServices());
}

void OrvaneUtility::EndEditParams(Interface*, IUtil*) {
  ClosePanel();
}

void* OrvaneClassDesc::Create(BOOL) {
  return &gUtility;
}

HINSTANCE OrvaneClassDesc::HInstance() {
  return gModuleInstance;
}

OrvaneClassDesc* GetOrvaneClassDesc() {
  return &gClassDesc;
}

}  // namespace orvane::plugin
