#include "plugin/module_state.h"

// GDI+ needs the COM declarations, which a lean <windows.h> leaves out, before its own.
#include <objidl.h>

#include <gdiplus.h>

namespace orvane::plugin {

HINSTANCE gModuleInstance = nullptr;
LONG gCommonControlsReady = 0;
ULONG_PTR gGdiplusToken = 0;
HBITMAP gLogoBitmap = nullptr;
HWND gPanelWindow = nullptr;

void StartGdiplus() {
  Gdiplus::GdiplusStartupInput input;  // version 1, no debug callback, no thread suppressed
  Gdiplus::GdiplusStartup(&gGdiplusToken, &input, nullptr);
}

void StopGdiplus() {
  if (gLogoBitmap != nullptr) {
    DeleteObject(gLogoBitmap);
    gLogoBitmap = nullptr;
  }
  if (gGdiplusToken != 0) {
    Gdiplus::GdiplusShutdown(gGdiplusToken);
    gGdiplusToken = 0;
  }
}

}  // namespace orvane::plugin
