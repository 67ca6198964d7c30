// The panel window: dialog template 101 as a modeless dialog owned by the host's main window.
#pragma once

#include "plugin/windows_api.h"

#include "plugin/panel_services.h"

namespace orvane::plugin {

// The Refresh worker's answer: the long parameter is an AccountStatus the panel then owns.
inline constexpr UINT kRefreshResultMessage = WM_APP + 1;

// Opens the panel, or brings the open one to the front. The services must outlive the panel.
void OpenPanel(HINSTANCE module, HWND owner, PanelServices& services);

// Destroys the open panel, if any.
void ClosePanel();

INT_PTR CALLBACK PanelProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

}  // namespace orvane::plugin
