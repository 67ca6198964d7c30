// The module's entry points: what the host calls to find, load and unload the plug-in.
#include "plugin/module_state.h"
#include "plugin/orvane_plugin.h"

#include <commctrl.h>  // after <windows.h>, which the SDK's headers bring

// The host refuses modules built for another SDK; a different SDK must fail to build instead.
static_assert(VERSION_3DSMAX == 0x69784200, "built against an SDK other than 3ds Max 2025's");

// Whatever the reason for the call, the module handle is kept; the common controls are set up on
// the first call only.
BOOL WINAPI DllMain(HINSTANCE instance, DWORD, LPVOID) {
  orvane::plugin::gModuleInstance = instance;
  if (orvane::plugin::gCommonControlsReady == 0) {
    orvane::plugin::gCommonControlsReady = 1;
    InitCommonControls();
  }
  return TRUE;
}

extern "C" {

__declspec(dllexport) const MCHAR* LibDescription() {
  return L"Orvane Platform \u2014 3ds Max Plugin";
}

__declspec(dllexport) int LibNumberClasses() {
  return 1;
}

__declspec(dllexport) ClassDesc* LibClassDesc(int i) {
  return i == 0 ? orvane::plugin::GetOrvaneClassDesc() : nullptr;
}

__declspec(dllexport) ULONG LibVersion() {
  return VERSION_3DSMAX;
}

// A failed GDI+ start only means the panel shows no logo.
__declspec(dllexport) int LibInitialize() {
  orvane::plugin::StartGdiplus();
  return TRUE;
}

__declspec(dllexport) int LibShutdown() {
  orvane::plugin::StopGdiplus();
  return TRUE;
}

}  // extern "C"
