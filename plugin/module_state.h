// What lives exactly as long as the module: its instance handle, the GDI+ session and the logo
// bitmap the panel shows, and the open panel window. One thread (the host's user interface)
// touches them, so nothing is locked.
#pragma once

#include "plugin/windows_api.h"

#include <cstdint>

namespace orvane::plugin {

extern HINSTANCE gModuleInstance;
extern LONG gCommonControlsReady;
extern ULONG_PTR gGdiplusToken;  // 0 while GDI+ is not running
extern HBITMAP gLogoBitmap;      // the bitmap in the panel's logo control, or null
extern HWND gPanelWindow;        // the open panel, or null

// GDI+ for the logo. A failed start leaves the token at 0 and the panel without a logo.
void StartGdiplus();
// The logo bitmap first, then GDI+; harmless when either was never made or is already gone.
void StopGdiplus();

}  // namespace orvane::plugin
