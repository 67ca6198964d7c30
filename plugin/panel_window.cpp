#include "plugin/panel_window.h"

#include <commctrl.h>
#include <process.h>
#include <shellapi.h>
#include <shlobj.h>

#include <memory>
#include <string>

#include "base/wide_text.h"
#include "host/interface.h"
#include "pipeline/panel_logic.h"
#include "plugin/logo.h"
#include "plugin/module_state.h"
#include "plugin/panel_resources.h"
#include "plugin/profile_settings.h"
#include "plugin/win32_panel_view.h"
#include "service/account_status.h"
#include "service/service_config.h"

namespace orvane::plugin {

namespace {

// The panel's own state; one panel, one thread.
PanelServices* gServices = nullptr;
PanelState gPanelState;

ProfileSettingsStore Settings() {
  return ProfileSettingsStore(
      SettingsFilePath(gServices->scene->GetDir(host::APP_USER_SCRIPTS_DIR)));
}

// What the Refresh worker owns: a copy of everything it needs, nothing shared.
struct RefreshRequest {
  HWND panel;
  std::u16string serviceUrl;
  std::u16string token;
  HttpClient* http;  // re-entrant
};

unsigned __stdcall RefreshThread(void* argument) {
  std::unique_ptr<RefreshRequest> request(static_cast<RefreshRequest*>(argument));
  auto status = std::make_unique<AccountStatus>(
      QueryAccountStatus(*request->http, request->serviceUrl, request->token));
  // When the panel has gone in the meantime nobody takes the answer, so it is freed here.
  if (PostMessageW(request->panel, kRefreshResultMessage, 0,
                   reinterpret_cast<LPARAM>(status.get()))) {
    status.release();
  }
  return 0;
}

void StartRefreshWorker(HWND panel, std::u16string serviceUrl, std::u16string token) {
  auto* request =
      new RefreshRequest{panel, std::move(serviceUrl), std::move(token), gServices->http};
  uintptr_t thread = _beginthreadex(nullptr, 0, RefreshThread, request, 0, nullptr);
  if (thread == 0) {
    delete request;
    return;
  }
  CloseHandle(reinterpret_cast<HANDLE>(thread));  // never waited on
}

std::optional<std::u16string> SystemFolderPicker(HWND owner) {
  BROWSEINFOW browse{};
  browse.hwndOwner = owner;
  browse.lpszTitle = L"Select Exchange Folder";
  browse.ulFlags = BIF_RETURNONLYFSDIRS | BIF_NEWDIALOGSTYLE;
  PIDLIST_ABSOLUTE items = SHBrowseForFolderW(&browse);
  if (items == nullptr) return std::nullopt;
  wchar_t path[MAX_PATH] = {};
  bool converted = SHGetPathFromIDListW(items, path);
  CoTaskMemFree(items);
  if (!converted) return std::nullopt;
  return FromWindowsText(path);
}

void Initialise(HWND dialog, Win32PanelView& view) {
  ProfileSettingsStore settings = Settings();
  LoadPanelSettings(view, settings);
  SendDlgItemMessageW(dialog, IDC_PROGRESS, PBM_SETRANGE, 0, MAKELPARAM(0, 100));
  UINT dpi = GetDpiForWindow(dialog);
  ShowLogo(GetDlgItem(dialog, IDC_LOGO), LogoResourceForDpi(dpi), gModuleInstance);
  view.SetText(IDC_LINK, kSiteAddress);
}

void Command(HWND dialog, Win32PanelView& view, int id, int notification) {
  if (id == IDC_EXCHANGE_FOLDER) {
    if (notification != EN_KILLFOCUS) return;
    ProfileSettingsStore settings = Settings();
    OnFolderEdited(view, settings);
    return;
  }
  if (notification != BN_CLICKED) return;
  ProfileSettingsStore settings = Settings();
  DesktopShell& shell = gServices->shell;
  switch (id) {
    case IDC_EXPORT_DISPLACEMENT: OnExportDisplacementClicked(view, settings); break;
    case IDC_TARGET_A:
    case IDC_TARGET_B: OnTargetClicked(view, settings); break;
    case IDC_BROWSE:
      if (auto folder = shell.pickFolder ? shell.pickFolder() : SystemFolderPicker(dialog)) {
        OnFolderPicked(view, settings, *folder);
      }
      break;
    case IDC_SAVE: OnSave(view, settings, gServices->dashboardUrl); break;
    case IDC_REFRESH:
      OnRefresh(view, gPanelState, gServices->serviceUrl,
                [dialog](std::u16string url, std::u16string token) {
                  StartRefreshWorker(dialog, std::move(url), std::move(token));
                });
      break;
    case IDC_LINK:
      if (shell.openLink) {
        shell.openLink(gServices->serviceUrl);
      } else {
        ShellExecuteW(dialog, L"open", ToWindowsText(gServices->serviceUrl).c_str(), nullptr,
                      nullptr, SW_SHOWNORMAL);
      }
      break;
    case IDC_SEND: RunSendFromPanel(view, gPanelState, *gServices); break;
    default: break;
  }
}

}  // namespace

void OpenPanel(HINSTANCE module, HWND owner, PanelServices& services) {
  if (gPanelWindow != nullptr) {
    SetForegroundWindow(gPanelWindow);
    return;
  }
  gServices = &services;
  gModuleInstance = module;
  gPanelWindow =
      CreateDialogParamW(module, MAKEINTRESOURCEW(IDD_ORVANE_PANEL), owner, PanelProc, 0);
  if (gPanelWindow != nullptr) ShowWindow(gPanelWindow, SW_SHOW);
}

void ClosePanel() {
  if (gPanelWindow == nullptr) return;
  DestroyWindow(gPanelWindow);
  gPanelWindow = nullptr;
}

INT_PTR CALLBACK PanelProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (gServices == nullptr) return FALSE;
  Win32PanelView view(dialog, gServices->shell);
  switch (message) {
    case WM_INITDIALOG: Initialise(dialog, view); return TRUE;
    case WM_COMMAND: Command(dialog, view, LOWORD(wParam), HIWORD(wParam)); return TRUE;
    case WM_TIMER: TimerTick(view, gPanelState, static_cast<int>(wParam)); return TRUE;
    case WM_CTLCOLORSTATIC:
      // The link reads as one: link blue on the dialog's own background.
      if (reinterpret_cast<HWND>(lParam) != GetDlgItem(dialog, IDC_LINK)) return FALSE;
      SetTextColor(reinterpret_cast<HDC>(wParam), RGB(0, 102, 204));
      SetBkMode(reinterpret_cast<HDC>(wParam), TRANSPARENT);
      return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
    case kRefreshResultMessage: {
      std::unique_ptr<AccountStatus> status(reinterpret_cast<AccountStatus*>(lParam));
      OnRefreshResult(view, gPanelState, *status, gServices->dashboardUrl);
      return TRUE;
    }
    case WM_CLOSE:
      DestroyWindow(dialog);
      gPanelWindow = nullptr;
      return TRUE;
    case WM_DESTROY:
      // However the panel goes (its close box or the host leaving the utility), the spinners
      // stop with it, so the next panel starts them afresh.
      OnClose(view, gPanelState);
      return TRUE;
    default: return FALSE;
  }
}

}  // namespace orvane::plugin
