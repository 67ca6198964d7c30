#include "plugin/win32_panel_view.h"

#include <commctrl.h>

#include <string>

#include "base/wide_text.h"
#include "plugin/panel_resources.h"

namespace orvane::plugin {

static_assert(IDC_TOKEN == control::kToken && IDC_SAVE == control::kSave &&
              IDC_BALANCE == control::kBalance && IDC_REFRESH == control::kRefresh &&
              IDC_EXCHANGE_FOLDER == control::kExchangeFolder && IDC_BROWSE == control::kBrowse &&
              IDC_EXPORT_DISPLACEMENT == control::kExportDisplacement &&
              IDC_BAKE_GEOMETRY == control::kBakeGeometry && IDC_SEND == control::kSend &&
              IDC_PROGRESS == control::kProgress && IDC_STATUS_LINE1 == control::kStatusLine1 &&
              IDC_STATUS_LINE2 == control::kStatusLine2 && IDC_TARGET_A == control::kTargetA &&
              IDC_TARGET_B == control::kTargetB);

namespace {

constexpr int kControlTextBuffer = 2048;

}  // namespace

std::u16string Win32PanelView::GetText(int controlId) {
  wchar_t text[kControlTextBuffer] = {};
  UINT length = GetDlgItemTextW(dialog_, controlId, text, kControlTextBuffer);
  return FromWindowsText(std::wstring_view(text, length));
}

void Win32PanelView::SetText(int controlId, std::u16string_view text) {
  SetDlgItemTextW(dialog_, controlId, ToWindowsText(text).c_str());
}

bool Win32PanelView::IsChecked(int controlId) {
  return IsDlgButtonChecked(dialog_, controlId) == BST_CHECKED;
}

void Win32PanelView::SetChecked(int controlId, bool checked) {
  CheckDlgButton(dialog_, controlId, checked ? BST_CHECKED : BST_UNCHECKED);
}

void Win32PanelView::Enable(int controlId, bool enabled) {
  EnableWindow(GetDlgItem(dialog_, controlId), enabled ? TRUE : FALSE);
}

void Win32PanelView::SetProgress(int percent) {
  SendDlgItemMessageW(dialog_, IDC_PROGRESS, PBM_SETPOS, static_cast<WPARAM>(percent), 0);
}

MessageAnswer Win32PanelView::ShowMessage(std::u16string_view title, std::u16string_view text,
                                          MessageIcon icon, MessageButtons buttons) {
  if (shell_.messageBox) return shell_.messageBox(title, text, icon, buttons);
  return SystemMessageBox(dialog_, title, text, icon, buttons);
}

void Win32PanelView::StartTimer(int timerId, int intervalMs) {
  SetTimer(dialog_, static_cast<UINT_PTR>(timerId), static_cast<UINT>(intervalMs), nullptr);
}

void Win32PanelView::StopTimer(int timerId) {
  KillTimer(dialog_, static_cast<UINT_PTR>(timerId));
}

void Win32PanelView::PumpMessages() {
  PumpWaitingMessages();
}

void PumpWaitingMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

MessageAnswer SystemMessageBox(HWND owner, std::u16string_view title, std::u16string_view text,
                               MessageIcon icon, MessageButtons buttons) {
  UINT style = buttons == MessageButtons::kYesNo ? MB_YESNO : MB_OK;
  if (icon == MessageIcon::kWarning) style |= MB_ICONWARNING;
  if (icon == MessageIcon::kError) style |= MB_ICONERROR;
  switch (MessageBoxW(owner, ToWindowsText(text).c_str(), ToWindowsText(title).c_str(), style)) {
    case IDYES: return MessageAnswer::kYes;
    case IDNO: return MessageAnswer::kNo;
    default: return MessageAnswer::kOk;
  }
}

}  // namespace orvane::plugin
