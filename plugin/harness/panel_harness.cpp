#include "plugin/harness/panel_harness.h"

#include <commctrl.h>

#include "base/wide_text.h"
#include "plugin/module_state.h"
#include "plugin/panel_window.h"
#include "plugin/win32_panel_view.h"

namespace orvane::plugin {

namespace {

constexpr wchar_t kOwnerClass[] = L"OrvanePanelHarnessOwner";

HWND MakeOwnerWindow() {
  WNDCLASSW windowClass{};
  windowClass.lpfnWndProc = DefWindowProcW;
  windowClass.hInstance = GetModuleHandleW(nullptr);
  windowClass.lpszClassName = kOwnerClass;
  RegisterClassW(&windowClass);  // fails harmlessly when already registered
  return CreateWindowExW(0, kOwnerClass, L"Host", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr,
                         nullptr, windowClass.hInstance, nullptr);
}

}  // namespace

PanelHarness::PanelHarness(host::Interface& scene, host::FileSystem& files, HttpClient& http,
                           std::u16string serviceUrl, std::u16string dashboardUrl) {
  services_.scene = &scene;
  services_.files = &files;
  services_.http = &http;
  services_.nodeTrees = &nodeTrees_;
  services_.serviceUrl = std::move(serviceUrl);
  services_.dashboardUrl = std::move(dashboardUrl);
  services_.tickCount = [] { return GetTickCount64(); };
  services_.shell.messageBox = [this](std::u16string_view title, std::u16string_view text,
                                      MessageIcon icon, MessageButtons buttons) {
    messages.push_back({std::u16string(title), std::u16string(text), icon, buttons});
    MessageAnswer answer =
        buttons == MessageButtons::kYesNo ? MessageAnswer::kNo : MessageAnswer::kOk;
    if (!answers.empty()) {
      answer = answers.front();
      answers.pop_front();
    }
    return answer;
  };
  services_.shell.pickFolder = [this] { return folderToPick; };
  services_.shell.openLink = [this](std::u16string_view url) { linksOpened.emplace_back(url); };
  owner_ = MakeOwnerWindow();
}

PanelHarness::~PanelHarness() {
  LeaveUtility();
  DestroyWindow(owner_);
}

void PanelHarness::Open() {
  OpenPanel(GetModuleHandleW(nullptr), owner_, services_);
  // Inside the host the user has just clicked, so the new panel is the active window; on a bare
  // display nobody activates it.
  if (Panel() != nullptr) SetForegroundWindow(Panel());
}

void PanelHarness::LeaveUtility() {
  ClosePanel();
}

void PanelHarness::CloseBox() {
  if (Panel() != nullptr) SendMessageW(Panel(), WM_CLOSE, 0, 0);
}

HWND PanelHarness::Panel() const {
  return gPanelWindow;
}

void PanelHarness::Type(int controlId, std::u16string_view text) {
  HWND edit = GetDlgItem(Panel(), controlId);
  SetFocus(edit);
  SetWindowTextW(edit, std::wstring(text.begin(), text.end()).c_str());
  SetFocus(Panel());  // leaving the edit is what tells the panel the text is final
  PumpUntil([] { return true; }, 0);
}

void PanelHarness::Click(int controlId) {
  HWND control = GetDlgItem(Panel(), controlId);
  wchar_t className[16] = {};
  GetClassNameW(control, className, 16);
  if (std::wstring(className) == L"Static") {
    // A static control that notifies (the link) answers the mouse, not BM_CLICK.
    SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 1));
    SendMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(1, 1));
    return;
  }
  SendMessageW(control, BM_CLICK, 0, 0);
}

std::u16string PanelHarness::Text(int controlId) const {
  HWND control = GetDlgItem(Panel(), controlId);
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return FromWindowsText(text);
}

bool PanelHarness::Checked(int controlId) const {
  return IsDlgButtonChecked(Panel(), controlId) == BST_CHECKED;
}

bool PanelHarness::Enabled(int controlId) const {
  return IsWindowEnabled(GetDlgItem(Panel(), controlId)) != FALSE;
}

int PanelHarness::Progress() const {
  return static_cast<int>(SendDlgItemMessageW(Panel(), control::kProgress, PBM_GETPOS, 0, 0));
}

bool PanelHarness::PumpUntil(const std::function<bool()>& done, int timeoutMs) {
  ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(timeoutMs);
  for (;;) {
    PumpWaitingMessages();
    if (done()) return true;
    if (GetTickCount64() >= deadline) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
  }
}

}  // namespace orvane::plugin
