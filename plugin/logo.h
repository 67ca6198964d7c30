// The panel's logo: a PNG resource turned into a GDI bitmap for a static control.
#pragma once

#include "plugin/windows_api.h"

namespace orvane::plugin {

// Loads PNG resource `resourceId` (raw data) from `module` and shows it in `control`. On
// success the bitmap replaces the module's previous logo bitmap; on any failure nothing changes.
bool ShowLogo(HWND control, int resourceId, HINSTANCE module);

}  // namespace orvane::plugin
