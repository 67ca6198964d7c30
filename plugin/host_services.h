// What the panel needs of the host it runs in (its scene, files and HTTP stack), made on first
// use and kept until the module unloads. Inside 3ds Max the host adapter provides it.
#pragma once

#include "plugin/panel_services.h"

namespace orvane::plugin {

PanelServices& HostPanelServices();

}  // namespace orvane::plugin
